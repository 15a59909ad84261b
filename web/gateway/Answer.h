// An answer to the browser, and its form as CGI output.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace gateway {

struct Answer {
  int status = 500;
  std::string body;     ///< JSON; empty when there is none
  std::string schema;   ///< name of the schema of a document; empty for a problem
  std::string headers;  ///< additional ones, each ending in CRLF
};

/// Optional members of a problem document besides its detail; empty ones are left out.
struct ProblemFacts {
  std::optional<int> instrumentStatus = std::nullopt;         ///< set if the instrument refused
  std::optional<std::uint32_t> libraryStatus = std::nullopt;  ///< set if no answer arrived
  std::string message = {};                                   ///< from the tool
  bool isOutcomeUnknown = false;  ///< the command may have been carried out, in full or in part
};

/// A problem document (RFC 9457) from the gateway itself. Its texts may contain any octets.
Answer problem(int aStatus, const std::string& aDetail, const ProblemFacts& aFacts = {});

/// Headers, an empty line, the body. Rendered here because each header class of cgicc ends the
/// header block: it can send a status or a type, but not both.
std::string render(const Answer& aAnswer);

/// A rendered answer with one more header, which must end in CRLF.
std::string withHeader(const std::string& aRendered, const std::string& aHeader);

/// Percent-encodes (RFC 3986) all octets except letters, digits and "-._~".
std::string percentEncoded(const std::string& aOctets);

/// The answer to HEAD: as rendered, without the body.
std::string withoutBody(const std::string& aRendered);

/// Writes the whole text, or as much as the reader takes.
void send(int aDescriptor, const std::string& aRendered);

}  // namespace gateway
