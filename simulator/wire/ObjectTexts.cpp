// Texts in a CDR stream. ACE's own string reader trusts that a zero ends what arrives; this one
// looks.
#include "ObjectTexts.h"

#include "NetworkOrder.h"

namespace wire {

bool writeText(ACE_OutputCDR& stream, std::string_view text) {
  if (text.length() > cMaxText) {
    return false;
  }
  const auto length = static_cast<std::uint32_t>(text.length());
  return writeNumber(stream, length + 1) && stream.write_char_array(text.data(), length) &&
         stream.write_char('\0');
}

bool readText(ACE_InputCDR& stream, ACE_CString& text) {
  std::uint32_t size = 0;
  if (!readNumber(stream, size) || size == 0 || size > cMaxText + 1 || size > stream.length()) {
    return false;
  }
  const char* octets = stream.rd_ptr();
  if (octets[size - 1] != '\0') {
    return false;
  }
  text.set(octets, size - 1, true);
  return stream.skip_bytes(size);
}

std::vector<char> marshalTexts(const std::string* texts, std::size_t count) {
  std::size_t room = 0;
  for (std::size_t i = 0; i < count; ++i) {
    room += texts[i].length() + 1 + 8;  // its length, and padding before that
  }
  // Zeroed, and large enough never to grow: padding would carry whatever the memory held before.
  std::vector<char> contents(room, '\0');
  ACE_OutputCDR stream(contents.data(), contents.size());
  for (std::size_t i = 0; i < count; ++i) {
    if (!writeText(stream, texts[i])) {
      return {};
    }
  }
  contents.resize(stream.length());
  return contents;
}

}  // namespace wire
