// Files that must survive a power failure, and their folders.
#pragma once

#include <string>
#include <vector>

namespace gateway {

/// The whole file from the beginning, as far as it can be read.
std::string contentOf(int aFile);

/// Writes the content and waits until it is on disk; false if that fails.
bool writeToDisk(int aFile, const std::string& aContent);

/// Waits until a folder's entries are on disk.
bool syncFolder(const std::string& aPath);

/// Creates a folder for this user only, unless it exists. A failure shows when the folder is used.
void makeFolder(const std::string& aPath);

/// The folder that contains a file or folder.
std::string parentOf(const std::string& aPath);

/// Names of the files in a folder, except hidden ones, unsorted; none if there is no such folder.
std::vector<std::string> namesIn(const std::string& aPath);

}  // namespace gateway
