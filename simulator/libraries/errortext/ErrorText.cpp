// Stand-in of the error text library: a table of codes and texts of our own.
#include <ErrorText.h>

#include <cstddef>
#include <cstdio>
#include <string_view>

namespace {

constexpr std::size_t cBufferSize = 128;

struct ErrorRow {
  int code;
  const char* text;
};

// 100s: electronics and start; 200s: gases; 300s: ovens and heaters; 400s: valves and sample;
// 500s: detectors and calibration.
constexpr ErrorRow cErrors[] = {
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

constexpr bool rowsAreSound() {
  for (std::size_t i = 0; i < std::size(cErrors); ++i) {
    if (std::string_view(cErrors[i].text).size() >= cBufferSize ||
        (i > 0 && cErrors[i].code <= cErrors[i - 1].code)) {
      return false;
    }
  }
  return true;
}
static_assert(rowsAreSound(), "codes ascend, and every text fits the caller's buffer");

}  // namespace

void getErrorText(int code, char* buffer) {
  if (buffer == nullptr) {
    return;
  }
  for (const ErrorRow& row : cErrors) {
    if (row.code == code) {
      std::snprintf(buffer, cBufferSize, "%s", row.text);
      return;
    }
  }
  std::snprintf(buffer, cBufferSize, "Unknown error %d", code);
}
