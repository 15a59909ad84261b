// The form of answers, and how they reach the web server.
#include "Answer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "Descriptor.h"

namespace gateway {

namespace {

TEST(RenderedAnswer, HasThePhraseOfItsStatus) {
  const struct {
    int status;
    const char* phrase;
  } cRows[] = {
      {200, "OK"},
      {204, "No Content"},
      {400, "Bad Request"},
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
      {299, ""},
  };
  for (const auto& row : cRows) {
    EXPECT_EQ(render({row.status, "", "", ""}), "Status: " + std::to_string(row.status) + ' ' +
                                                    row.phrase +
                                                    "\r\nCache-Control: no-store\r\n\r\n");
  }
}

TEST(RenderedAnswer, OfAReportNamesItsSchema) {
  EXPECT_EQ(render({200, "{}", "status", "X-More: 1\r\n"}),
            "Status: 200 OK\r\nCache-Control: no-store\r\nX-More: 1\r\nContent-Length: 2\r\n"
            "Content-Type: application/json\r\n"
            "Link: </schemas/status.schema.json>; rel=\"describedby\"\r\n\r\n{}");
}

TEST(RenderedAnswer, OfAProblemIsAProblem) {
  EXPECT_EQ(render({404, "{}", "", ""}),
            "Status: 404 Not Found\r\nCache-Control: no-store\r\nContent-Length: 2\r\n"
            "Content-Type: application/problem+json\r\n\r\n{}");
}

TEST(Problem, TellsWhatIsKnown) {
  EXPECT_EQ(problem(409, "Why.").body, R"({"title":"Conflict","status":409,"detail":"Why."})");
  ProblemFacts facts;
  facts.instrumentStatus = -1;
  facts.libraryStatus = 4294967295U;
  facts.message = "Words\xFF";
  facts.isOutcomeUnknown = true;
  const Answer answer = problem(504, "Why\xFF.", facts);
  EXPECT_EQ(answer.status, 504);
  EXPECT_EQ(answer.schema + answer.headers, "");
  EXPECT_EQ(answer.body,
            "{\"title\":\"Gateway Timeout\",\"status\":504,\"detail\":\"Why\xEF\xBF\xBD.\","
            "\"status-of-instrument\":-1,\"status-of-library\":4294967295,"
            "\"message\":\"Words\xEF\xBF\xBD\",\"outcome\":\"unknown\"}");
}

TEST(RenderedAnswer, CanBeChanged) {
  const std::string rendered = render({404, "{}", "", ""});
  EXPECT_EQ(withHeader(rendered, "X-More: 1\r\n"),
            "Status: 404 Not Found\r\nX-More: 1\r\n" + rendered.substr(23));
  EXPECT_EQ(withoutBody(rendered) + "{}", rendered);
}

TEST(PercentEncoded, IsAllButPlainOctets) {
  const std::string plain = "ABCXYZabcxyz0189-._~";
  EXPECT_EQ(percentEncoded(plain), plain);
  EXPECT_EQ(percentEncoded("a b%\"/\r\n"), "a%20b%25%22%2F%0D%0A");
  EXPECT_EQ(percentEncoded(std::string("\0\xC3\xBC\xFF", 4)), "%00%C3%BC%FF");
}

TEST(Sent, IsAllOfIt) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  const Descriptor reader(ends[0]);
  Descriptor writer(ends[1]);
  std::string all(1'000'000, 'x');
  all += "end";
  // The pipe takes only part of it at a time.
  std::thread sender([&] {
    send(writer.get(), all);
    writer.close();
  });
  std::string came;
  char chunk[65536];
  ssize_t length = 0;
  while ((length = ::read(reader.get(), chunk, sizeof chunk)) > 0) {
    came.append(chunk, static_cast<std::size_t>(length));
  }
  sender.join();
  EXPECT_EQ(came, all);
}

TEST(Sent, GoesOnAfterAnInterruption) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  const Descriptor reader(ends[0]);
  Descriptor writer(ends[1]);
  struct sigaction action = {};
  struct sigaction before = {};
  action.sa_handler = [](int) {};  // without SA_RESTART
  ASSERT_EQ(::sigaction(SIGUSR1, &action, &before), 0);
  const std::string all(1'000'000, 'x');
  const pthread_t sender = ::pthread_self();
  std::string came;
  std::thread other([&] {
    char chunk[1000];
    ssize_t length = 0;
    while ((length = ::read(reader.get(), chunk, sizeof chunk)) > 0) {
      came.append(chunk, static_cast<std::size_t>(length));
      ::pthread_kill(sender, SIGUSR1);
    }
  });
  send(writer.get(), all);
  writer.close();
  other.join();
  ::sigaction(SIGUSR1, &before, nullptr);
  EXPECT_EQ(came, all);
}

TEST(Sent, EndsWhenNobodyReads) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  ::close(ends[0]);
  const Descriptor writer(ends[1]);
  const auto action = std::signal(SIGPIPE, SIG_IGN);
  send(writer.get(), "x");
  std::signal(SIGPIPE, action);
  SUCCEED();
}

TEST(Sent, IsNothingOfNothing) {
  errno = 0;
  send(-1, "");
  EXPECT_EQ(errno, 0);
}

}  // namespace

}  // namespace gateway
