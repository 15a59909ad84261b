// Tables of texts for the instrument's codes.
#pragma once

#include <cstddef>

/// One row of a table whose codes have no gaps.
struct CodeText {
  int code;
  const char* text;
};

/// Whether the codes count up from `first`; asserted for every table, since look-ups index it.
template <std::size_t size>
constexpr bool isIndexedByCode(const CodeText (&rows)[size], int first = 0) {
  for (std::size_t i = 0; i < size; ++i) {
    if (rows[i].code != first + static_cast<int>(i)) {
      return false;
    }
  }
  return true;
}

/// The text of a code; `fallback` for a code that the table does not have.
template <std::size_t size>
constexpr const char* textOfCode(const CodeText (&rows)[size], int code, const char* fallback,
                                 int first = 0) {
  // Unsigned, so that a code below the first wraps to more than any size.
  const unsigned int index = static_cast<unsigned int>(code) - static_cast<unsigned int>(first);
  return index < size ? rows[index].text : fallback;
}
