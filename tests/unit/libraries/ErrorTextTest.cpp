// Texts of error codes, all within the bounds of their buffer.
#include <ErrorText.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <set>
#include <string>

namespace {

constexpr std::size_t cBufferSize = 128;
constexpr char cGuard = '\x5A';

/// The text, from a buffer whose octet after the promised 128 must stay unchanged.
std::string textOf(int aCode) {
  char buffer[cBufferSize + 1];
  std::memset(buffer, cGuard, sizeof buffer);
  getErrorText(aCode, buffer);
  EXPECT_EQ(cGuard, buffer[cBufferSize]) << aCode;
  EXPECT_NE(nullptr, std::memchr(buffer, '\0', cBufferSize)) << aCode;
  buffer[cBufferSize] = '\0';
  return buffer;
}

TEST(ErrorText, KnownCodes) {
  const struct {
    int code;
    const char* text;
  } cRows[] = {
      {0, "No error"},
      {101, "Configuration memory damaged, defaults loaded"},
      {102, "Method memory damaged"},
      {103, "Clock battery empty"},
      {104, "Analytical module does not answer"},
      {105, "Analytical module has another serial number than configured"},
      {106, "Supply voltage out of range"},
      {107, "Electronics temperature too high"},
      {108, "Restarted by the watchdog"},
      {201, "Carrier gas pressure too low"},
      {202, "Carrier gas pressure too high"},
      {203, "Carrier gas supply missing"},
      {204, "Column head pressure not reached"},
      {205, "Column head pressure sensor defective"},
      {301, "Column heater open circuit"},
      {302, "Column temperature not reached"},
      {303, "Column temperature too high"},
      {304, "Injector heater open circuit"},
      {305, "Injector temperature not reached"},
      {306, "Sample line heater open circuit"},
      {307, "Sample line temperature too high"},
      {308, "Ambient temperature out of range"},
      {401, "Sample pressure too low"},
      {402, "Sample pump does not start"},
      {403, "Stream selection valve does not answer"},
      {404, "Stream selection valve not in position"},
      {405, "Injection valve does not switch"},
      {501, "Detector filament open circuit"},
      {502, "Detector bridge out of balance"},
      {503, "Detector signal saturated"},
      {504, "Baseline drift too large"},
      {505, "No peak found in the calibration gas"},
      {506, "Response factor outside its limits"},
  };
  for (const auto& row : cRows) {
    EXPECT_EQ(row.text, textOf(row.code));
  }
}

TEST(ErrorText, UnknownCodesShowTheirNumber) {
  EXPECT_EQ("Unknown error 4711", textOf(4711));
  EXPECT_EQ("Unknown error 1", textOf(1));
  EXPECT_EQ("Unknown error 507", textOf(507));
  EXPECT_EQ("Unknown error -1", textOf(-1));
  EXPECT_EQ("Unknown error 2147483647", textOf(INT_MAX));
  EXPECT_EQ("Unknown error -2147483648", textOf(INT_MIN));
}

TEST(ErrorText, EveryCodeHasATextOfItsOwnInPrintableAscii) {
  std::set<std::string> texts;
  int known = 0;
  for (int code = -10; code < 1000; ++code) {
    const std::string text = textOf(code);
    EXPECT_TRUE(texts.insert(text).second) << code;
    EXPECT_FALSE(text.empty()) << code;
    for (const char c : text) {
      EXPECT_TRUE(c >= ' ' && c <= '~') << code;
    }
    known += text.rfind("Unknown error ", 0) == 0 ? 0 : 1;
  }
  EXPECT_EQ(33, known);
}

TEST(ErrorText, NullBufferIsLeftAlone) {
  getErrorText(0, nullptr);
}

}  // namespace
