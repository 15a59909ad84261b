// An answer to the browser, and its form as output of a CGI program.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

struct Answer {
  int status = 500;
  std::string body;     ///< JSON; empty when there is none
  std::string schema;   ///< name of the schema of a document; empty for a problem
  std::string headers;  ///< further ones, each ended by CRLF
};

/// What a problem document may tell beside its detail; what is empty is left out.
struct ProblemFacts {
  std::optional<int> instrumentStatus = std::nullopt;         ///< with which it refused
  std::optional<std::uint32_t> libraryStatus = std::nullopt;  ///< with which it got no answer
  std::string message = {};                                   ///< the tool's
  bool isOutcomeUnknown = false;  ///< the command may have been carried out, or a part of it
};

/// A problem document (RFC 9457) of the gateway's own. Its texts may hold any octets.
Answer problem(int aStatus, const std::string& aDetail, const ProblemFacts& aFacts = {});

/// Headers, an empty line, the body. Written out here because each header class of cgicc ends the
/// headers: it can send a status or a type, but not both.
std::string render(const Answer& aAnswer);

/// A rendered answer with one more header, which is ended by CRLF.
std::string withHeader(const std::string& aRendered, const std::string& aHeader);

/// Octets in percent-encoding (RFC 3986), all but letters, digits and "-._~".
std::string percentEncoded(const std::string& aOctets);

/// What is sent for HEAD: as rendered, without the body.
std::string withoutBody(const std::string& aRendered);

/// Writes it all, as far as anybody reads it.
void send(int aDescriptor, const std::string& aRendered);
