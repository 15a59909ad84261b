// Checks on a request before its body is read.
#include "Request.h"

#include <arpa/inet.h>
#include <cgicc/CgiUtils.h>
#include <netinet/in.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>

namespace gateway {

namespace {

constexpr unsigned long cLargestBody = 65536;

using cgicc::stringsAreEqual;  // case-insensitive

/// Some web servers pass a query on as program arguments; no legitimate client sends one.
bool hasNoQuery(cgicc::CgiInput& input) {
  return input.getenv("QUERY_STRING").empty();
}

bool isSecure(cgicc::CgiInput& input) {
  return stringsAreEqual(input.getenv("HTTPS"), "on");
}

bool isLoopback(const std::string& aAddress) {
  constexpr unsigned char cLoopbackNet = 127;
  in6_addr address = {};
  if (::inet_pton(AF_INET, aAddress.c_str(), &address) == 1) {
    return address.s6_addr[0] == cLoopbackNet;
  }
  if (::inet_pton(AF_INET6, aAddress.c_str(), &address) != 1) {
    return false;
  }
  return IN6_IS_ADDR_LOOPBACK(&address) ||
         (IN6_IS_ADDR_V4MAPPED(&address) && address.s6_addr[12] == cLoopbackNet);
}

/// Headers that a proxy adds to a forwarded request.
bool isPassedOn(cgicc::CgiInput& input) {
  constexpr const char* cMarks[] = {"HTTP_FORWARDED", "HTTP_X_FORWARDED_FOR", "HTTP_X_REAL_IP",
                                    "HTTP_VIA"};
  return std::any_of(std::begin(cMarks), std::end(cMarks),
                     [&input](const char* aMark) { return !input.getenv(aMark).empty(); });
}

/// A login over HTTP can be overheard and, while its nonce is valid, replayed with another body,
/// which it does not protect.
bool isOutOfOthersReach(cgicc::CgiInput& input) {
  return isSecure(input) || (isLoopback(input.getenv("REMOTE_ADDR")) && !isPassedOn(input)) ||
         input.getenv("GC_WEB_PLAIN_HTTP_COMMANDS") == "allowed";
}

bool isUserKnown(cgicc::CgiInput& input) {
  return !input.getenv("REMOTE_USER").empty();
}

/// A page of another origin cannot set this header without a CORS preflight.
bool isMarked(cgicc::CgiInput& input) {
  return input.getenv("HTTP_X_GC_REQUEST") == "1";
}

/// The host without the scheme's default port.
std::string withoutPort(const std::string& aHost, const std::string& aPort) {
  const std::size_t end = aHost.size() - std::min(aHost.size(), aPort.size());
  return aHost.substr(end) == aPort ? aHost.substr(0, end) : aHost;
}

bool isOwnOrigin(cgicc::CgiInput& input) {
  const std::string origin = input.getenv("HTTP_ORIGIN");
  const std::string host = input.getenv("HTTP_HOST");
  const std::string own = isSecure(input) ? "https://" + withoutPort(host, ":443")
                                          : "http://" + withoutPort(host, ":80");
  return origin.empty() || (!host.empty() && stringsAreEqual(origin, own));
}

bool isFromOwnPage(cgicc::CgiInput& input) {
  const std::string site = input.getenv("HTTP_SEC_FETCH_SITE");
  return site.empty() || site == "same-origin";
}

std::string trimmed(const std::string& aText) {
  const std::size_t begin = aText.find_first_not_of(" \t");
  const std::size_t end = aText.find_last_not_of(" \t");
  return begin == std::string::npos ? "" : aText.substr(begin, end - begin + 1);
}

/// True for any parameter other than charset, and for charset=utf-8.
bool isAcceptable(const std::string& aParameter) {
  const std::size_t sign = aParameter.find('=');
  const std::string value = sign == std::string::npos ? "" : trimmed(aParameter.substr(sign + 1));
  return !stringsAreEqual(trimmed(aParameter.substr(0, sign)), "charset") ||
         stringsAreEqual(value, "utf-8") || stringsAreEqual(value, "\"utf-8\"");
}

bool isJson(cgicc::CgiInput& input) {
  const std::string type = input.getenv("CONTENT_TYPE");
  std::size_t end = type.find(';');
  bool isGood = stringsAreEqual(trimmed(type.substr(0, end)), "application/json");
  while (end != std::string::npos) {
    const std::size_t begin = end + 1;
    end = type.find(';', begin);
    isGood = isGood && isAcceptable(type.substr(begin, end - begin));
  }
  return isGood;
}

bool hasLength(cgicc::CgiInput& input) {
  const std::string length = input.getenv("CONTENT_LENGTH");
  return !length.empty() && length.find_first_not_of("0123456789") == std::string::npos;
}

unsigned long lengthOf(cgicc::CgiInput& input) {
  // A number that is too large becomes the largest one.
  return std::strtoul(input.getenv("CONTENT_LENGTH").c_str(), nullptr, 10);
}

struct CheckRow {
  bool (*isGood)(cgicc::CgiInput& input);
  int status;
  const char* detail;
};

// In this order: who asks, from where, for what.
constexpr CheckRow cChecks[] = {
    {hasNoQuery, 400, "A command takes no query."},
    {isOutOfOthersReach, 403,
     "Commands over plain HTTP are refused, because others on the network could read and replay "
     "them. Open this page over https:// (set up in tls.conf) or on the controller itself."},
    {isUserKnown, 403, "Commands are off until a password is set (gc-web-password)."},
    {isMarked, 403, "A command needs the header X-GC-Request: 1."},
    {isOwnOrigin, 403, "The Origin of a command must be this server."},
    {isFromOwnPage, 403, "The Sec-Fetch-Site of a command must be same-origin."},
    {isJson, 415, "A command needs the Content-Type application/json, in UTF-8."},
    {hasLength, 411, "A command needs a Content-Length."},
};

}  // namespace

std::string pathOf(cgicc::CgiInput& input) {
  return input.getenv("SCRIPT_NAME") + input.getenv("PATH_INFO");
}

Answer methodNotAllowed(const std::string& aAllowed) {
  Answer answer = problem(405, "This path accepts only " + aAllowed + '.');
  answer.headers = "Allow: " + aAllowed + "\r\n";
  return answer;
}

std::optional<Answer> findHeaderFault(cgicc::CgiInput& input) {
  for (const CheckRow& row : cChecks) {
    if (!row.isGood(input)) {
      return problem(row.status, row.detail);
    }
  }
  if (lengthOf(input) > cLargestBody) {
    return problem(413, "The body is longer than " + std::to_string(cLargestBody) + " octets.");
  }
  return std::nullopt;
}

std::optional<std::string> readBody(cgicc::CgiInput& input) {
  std::string body(lengthOf(input), '\0');
  if (input.read(body.data(), body.size()) != body.size()) {
    return std::nullopt;
  }
  return body;
}

}  // namespace gateway
