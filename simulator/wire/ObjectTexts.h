// How the texts of remote objects lie in a CDR stream, for the library's classes and the
// controller.
#pragma once

#include <ace/CDR_Stream.h>
#include <ace/SString.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace wire {

constexpr std::uint32_t cMaxText = 4096;  ///< octets, the terminating zero not counted

// Names of the classes, as an ObjectReply carries them, and the texts that their contents are.
constexpr char cSiteInfoTag[] = "SiteInfoTag";
constexpr std::size_t cSiteInfoTexts = 1;
constexpr char cColumnDescriptions[] = "ColumnDescriptions";
constexpr std::size_t cColumnTexts = 4;

/// Writes a text as its length with the terminating zero, in network order whatever the stream's,
/// its octets, zeros among them, and the zero. False for more than cMaxText.
bool writeText(ACE_OutputCDR& stream, std::string_view text);

/// Reads what writeText wrote. False, and an unspecified text, when the stream does not hold it
/// whole and terminated, or when it is longer than cMaxText.
bool readText(ACE_InputCDR& stream, ACE_CString& text);

/// The contents of a remote object that consists of `count` texts, as ObjectReply carries them.
/// Empty when a text is longer than cMaxText.
std::vector<char> marshalTexts(const std::string* texts, std::size_t count);

}  // namespace wire
