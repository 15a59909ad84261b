// Tables of texts that stand for the instrument's codes.
#pragma once

#include <cstddef>

/// One row of a table whose codes run from 0 without a gap.
struct CodeText {
  int code;
  const char* text;
};

/// Whether row i holds code i; asserted of every table, since look-ups index it.
template <std::size_t size>
constexpr bool isIndexedByCode(const CodeText (&rows)[size]) {
  for (std::size_t i = 0; i < size; ++i) {
    if (rows[i].code != static_cast<int>(i)) {
      return false;
    }
  }
  return true;
}

/// The text of any code; `fallback` for one that the table does not have, negative ones included:
/// as a size they lie above every table.
template <std::size_t size>
constexpr const char* textOfCode(const CodeText (&rows)[size], int code, const char* fallback) {
  return static_cast<std::size_t>(code) < size ? rows[code].text : fallback;
}
