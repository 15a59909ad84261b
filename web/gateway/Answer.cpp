// An answer to the browser, and its form as CGI output.
#include "Answer.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

#include "Json.h"

namespace gateway {

namespace {

struct StatusRow {
  int status;
  const char* phrase;
};

constexpr StatusRow cStatuses[] = {
    {200, "OK"},
    {204, "No Content"},
    {400, "Bad Request"},
    {401, "Unauthorized"},
    {403, "Forbidden"},
    {404, "Not Found"},
    {405, "Method Not Allowed"},
    {409, "Conflict"},
    {411, "Length Required"},
    {413, "Content Too Large"},
    {415, "Unsupported Media Type"},
    {422, "Unprocessable Content"},
    {500, "Internal Server Error"},
    {502, "Bad Gateway"},
    {503, "Service Unavailable"},
    {504, "Gateway Timeout"},
};

const char* phraseOf(int aStatus) {
  for (const StatusRow& row : cStatuses) {
    if (row.status == aStatus) {
      return row.phrase;
    }
  }
  return "";
}

constexpr char cEndOfHeaders[] = "\r\n\r\n";

}  // namespace

Answer problem(int aStatus, const std::string& aDetail, const ProblemFacts& aFacts) {
  rapidjson::StringBuffer buffer;
  rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
  writer.StartObject();
  writer.Key("title");
  writer.String(phraseOf(aStatus));
  writer.Key("status");
  writer.Int(aStatus);
  writer.Key("detail");
  writer.String(repairUtf8(aDetail));
  if (aFacts.instrumentStatus.has_value()) {
    writer.Key("status-of-instrument");
    writer.Int(*aFacts.instrumentStatus);
  }
  if (aFacts.libraryStatus.has_value()) {
    writer.Key("status-of-library");
    writer.Uint(*aFacts.libraryStatus);
  }
  if (!aFacts.message.empty()) {
    writer.Key("message");
    writer.String(repairUtf8(aFacts.message));
  }
  if (aFacts.isOutcomeUnknown) {
    writer.Key("outcome");
    writer.String("unknown");
  }
  writer.EndObject();
  return {aStatus, buffer.GetString(), "", ""};
}

std::string render(const Answer& aAnswer) {
  std::string text = "Status: " + std::to_string(aAnswer.status) + ' ' + phraseOf(aAnswer.status) +
                     "\r\nCache-Control: no-store\r\n" + aAnswer.headers;
  if (!aAnswer.body.empty()) {
    text += "Content-Length: " + std::to_string(aAnswer.body.size()) + "\r\n";
    text += aAnswer.schema.empty() ? "Content-Type: application/problem+json"
                                   : "Content-Type: application/json\r\nLink: </schemas/" +
                                         aAnswer.schema + ".schema.json>; rel=\"describedby\"";
    text += "\r\n";
  }
  return text + "\r\n" + aAnswer.body;
}

std::string withHeader(const std::string& aRendered, const std::string& aHeader) {
  std::string text = aRendered;
  return text.insert(text.find('\n') + 1, aHeader);
}

std::string percentEncoded(const std::string& aOctets) {
  constexpr char cDigits[] = "0123456789ABCDEF";
  constexpr char cPlain[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
  std::string text;
  for (const char octet : aOctets) {
    if (octet != '\0' && std::strchr(cPlain, octet) != nullptr) {
      text += octet;
    } else {
      const auto value = static_cast<unsigned char>(octet);
      text += {'%', cDigits[value / 16U], cDigits[value % 16U]};
    }
  }
  return text;
}

std::string withoutBody(const std::string& aRendered) {
  return aRendered.substr(0, aRendered.find(cEndOfHeaders) + sizeof cEndOfHeaders - 1);
}

void send(int aDescriptor, const std::string& aRendered) {
  std::size_t sent = 0;
  while (sent < aRendered.size()) {
    const ssize_t count = ::write(aDescriptor, aRendered.data() + sent, aRendered.size() - sent);
    if (count > 0) {
      sent += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      return;
    }
  }
}

}  // namespace gateway
