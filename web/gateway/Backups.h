// Backups on disk of the last tables that downloads replaced.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "Operation.h"

namespace gateway {

/// Who replaced the table, and with which command.
struct Replacement {
  std::string id;
  std::string user;
  std::string address;
};

constexpr std::size_t cMostBackups = 20;  ///< per table

// `aTable` is eSequence or eCalibration.

/// Stores a table, unless it equals the latest backup, and deletes the oldest ones beyond the
/// limit. False if it could not be written to disk.
bool keepBackup(const std::string& aDataFolder, eOperation aTable, const Replacement& aBy,
                const std::string& aDownload);

/// A document listing all backups, newest first.
std::string listBackups(const std::string& aDataFolder, eOperation aTable);

/// One backup, in the form that a download takes. The number is in decimal digits.
std::optional<std::string> readBackup(const std::string& aDataFolder, eOperation aTable,
                                      const std::string& aNumber);

}  // namespace gateway
