// Tables as they were before a download replaced them: the last ones, on the disk.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "Operation.h"

/// Who replaced the table, by which command.
struct Replacement {
  std::string id;
  std::string user;
  std::string address;
};

constexpr std::size_t cMostBackups = 20;  ///< of each table

// `aTable` is eSequence or eCalibration.

/// Keeps a table, unless it is the same as the one kept last, and drops the oldest beyond the
/// number kept. False when it is not on the disk.
bool keepBackup(const std::string& aDataFolder, eOperation aTable, const Replacement& aBy,
                const std::string& aDownload);

/// A document with all of them, the latest first.
std::string listBackups(const std::string& aDataFolder, eOperation aTable);

/// One of them, in the form that the download takes. The number is decimal digits.
std::optional<std::string> readBackup(const std::string& aDataFolder, eOperation aTable,
                                      const std::string& aNumber);
