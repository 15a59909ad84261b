// The two downloads: what a file asks the instrument for, told apart from the tool.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Input.h"

enum class eDownload { eSequence, eCalibration };

/// Runs the program with a file of this content, on an instrument that refuses what the input says,
/// and requires the writes, the commands and the verdict that the content asks for; with a content
/// that is to be refused, nothing else than its verdict. Returns whether it is a good one.
bool requireDownload(eDownload aDownload, const std::string& aContent, Input& input);

/// The content of a file: a table of the download's own kind, with whatever the input puts wrong.
std::string makeTable(eDownload aDownload, Input& input);
