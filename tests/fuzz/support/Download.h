// The two downloads: what a file requests from the instrument, determined independently of the
// tool.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Input.h"

enum class eDownload { eSequence, eCalibration };

/// Runs the program with a file of this content, on an instrument that refuses according to the
/// input, and requires the writes, commands and verdict that the content calls for; if the content
/// must be rejected, only its verdict. Returns whether the content is valid.
bool requireDownload(eDownload aDownload, const std::string& aContent, Input& input);

/// The content of a file: a table for the download, with faults taken from the input.
std::string makeTable(eDownload aDownload, Input& input);
