// Files that must survive a power cut, and folders of them.
#pragma once

#include <string>
#include <vector>

/// The whole file, from its beginning; what could be read of it.
std::string contentOf(int aFile);

/// Writes the content and waits until it is on the disk; false when it is not.
bool writeToDisk(int aFile, const std::string& aContent);

/// Waits until the names in a folder are on the disk.
bool syncFolder(const std::string& aPath);

/// Makes a folder for this user alone if it is not there. What cannot be made fails when it is
/// used.
void makeFolder(const std::string& aPath);

/// The folder that a file or folder is in.
std::string parentOf(const std::string& aPath);

/// Names of the files in a folder, but hidden ones, in no order; none when there is no such folder.
std::vector<std::string> namesIn(const std::string& aPath);
