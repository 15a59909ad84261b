// An answer to the browser, and its form as output of a CGI program.
#pragma once

#include <optional>
#include <string>

struct Answer {
  int status = 500;
  std::string body;     ///< JSON; empty when there is none
  std::string schema;   ///< name of the schema of a document; empty for a problem
  std::string headers;  ///< further ones, each ended by CRLF
};

/// A problem document (RFC 9457) of the gateway's own. The detail may hold any octets;
/// the instrument's status is told when there is one.
Answer problem(int aStatus, const std::string& aDetail,
               std::optional<int> aInstrumentStatus = std::nullopt);

/// Headers, an empty line, the body. Written out here because each header class of cgicc ends the
/// headers: it can send a status or a type, but not both.
std::string render(const Answer& aAnswer);

/// What is sent for HEAD: as rendered, without the body.
std::string withoutBody(const std::string& aRendered);

/// Writes it all, as far as anybody reads it.
void send(int aDescriptor, const std::string& aRendered);
