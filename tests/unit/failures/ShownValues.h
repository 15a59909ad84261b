// Where reports show what they read, and what they show if it has not arrived.
#pragma once

#include <cstdint>

#include "GC_Web.h"

/// How many parameters, and places in the document, a row stands for. In its texts, '%' is the
/// number counted from 1, '#' counted from 0.
enum class eFamily { eOne, eChannel, eId, eStep };

struct ShownValue {
  eSections operation = NR_OF_SECTIONS;
  eFamily family = eFamily::eOne;
  unsigned int members = 0;  ///< of the family
  std::uint32_t channel = 0;
  std::uint32_t id = 0;
  const char* pointer = nullptr;  ///< JSON pointer into the document
  const char* unread = nullptr;   ///< the JSON there if unread; null: see tests/failures.json
  bool real = false;              ///< shown as "-" if not finite
  std::uint32_t step = 0;         ///< of eOne
  std::uint32_t unless = 0;       ///< not if the parameter with this id in the batch is unread too
};

// An overriding row follows the rows that it overrides, such as a member that contains them.
constexpr ShownValue cShownValues[] = {
    {eStatusRead, eFamily::eOne, 1, 0, 173, "/Host"},
    {eStatusRead, eFamily::eOne, 1, 2, 204, "/Total_run_time"},
    {eStatusRead, eFamily::eOne, 1, 0, 161, "/Run_time"},
    {eStatusRead, eFamily::eOne, 1, 0, 132, "/Error_code"},
    {eStatusRead, eFamily::eOne, 1, 0, 132, "/Error_str", R"("text of error 0")"},
    {eStatusRead, eFamily::eOne, 1, 0, 2211, "/Alarm_overall"},
    {eStatusRead, eFamily::eOne, 1, 0, 58, "/Curr_stream"},
    {eStatusRead, eFamily::eOne, 1, 0, 2202, "/Last_counter"},
    {eStatusRead, eFamily::eOne, 1, 0, 12, "/Continuous"},
    {eStatusRead, eFamily::eOne, 1, 0, 136, "/Seq_line"},
    {eStatusRead, eFamily::eOne, 1, 0, 137, "/Line_replicate"},
    {eStatusRead, eFamily::eOne, 1, 0, 135, "/Seq_replicate"},
    {eStatusRead, eFamily::eOne, 1, 0, 141, "/Run_type"},
    {eStatusRead, eFamily::eOne, 1, 0, 161, "/GC_state", R"("Running")"},
    {eStatusRead, eFamily::eOne, 1, 0, 102, "/GC_state"},
    {eStatusRead, eFamily::eOne, 1, 0, 131, "/Ext_ready_in"},
    {eStatusRead, eFamily::eOne, 1, 0, 162, "/Auto_state", R"("Running Sequence")"},
    {eStatusRead, eFamily::eOne, 1, 0, 138, "/Auto_state"},
    {eStatusRead, eFamily::eOne, 1, 0, 70, "/Service_switch"},
    {eStatusRead, eFamily::eOne, 1, 0, 104, "/Ambient_press", nullptr, true},
    {eStatusRead, eFamily::eOne, 1, 0, 103, "/Ambient_temp"},
    {eStatusRead, eFamily::eOne, 1, 0, 1, "/Sample_line_temp/Setpoint", nullptr, true},
    {eStatusRead, eFamily::eOne, 1, 0, 100, "/Sample_line_temp/Actual", nullptr, true},
    {eStatusRead, eFamily::eOne, 1, 0, 602, "/Sample_line_temp"},
    {eStatusRead, eFamily::eChannel, 2, 1, 202, "/Channel%/Column_temp/Setpoint", nullptr, true},
    {eStatusRead, eFamily::eChannel, 2, 1, 300, "/Channel%/Column_temp/Actual", nullptr, true},
    {eStatusRead, eFamily::eChannel, 2, 1, 342, "/Channel%/Column_press/Setpoint", nullptr, true},
    {eStatusRead, eFamily::eChannel, 2, 1, 304, "/Channel%/Column_press/Actual", nullptr, true},
    {eStatusRead, eFamily::eChannel, 2, 1, 203, "/Channel%/Injector_temp/Setpoint", nullptr, true},
    {eStatusRead, eFamily::eChannel, 2, 1, 302, "/Channel%/Injector_temp/Actual", nullptr, true},
    {eStatusRead, eFamily::eChannel, 2, 1, 307, "/Channel%/TCD/Auto_zero", nullptr, true},
    {eStatusRead, eFamily::eChannel, 2, 1, 215, "/Channel%/TCD/State"},
    {eStatusRead, eFamily::eChannel, 2, 1, 323, "/Channel%/TCD/Calibrated"},
    {eStatusRead, eFamily::eId, 2, 0, 502, "/Channel%"},

    {eConfigRead, eFamily::eOne, 1, 0, 601, "/Inst_serial"},
    {eConfigRead, eFamily::eOne, 1, 0, 525, "/Stream_configured"},
    {eConfigRead, eFamily::eOne, 1, 0, 524, "/Stream_max"},
    {eConfigRead, eFamily::eId, 4, 0, 502, "/Channel%/Installed"},
    {eConfigRead, eFamily::eChannel, 4, 1, 200, "/Channel%/Disabled"},
    {eConfigRead, eFamily::eChannel, 4, 1, 826, "/Channel%/Serial"},
    {eConfigRead, eFamily::eChannel, 4, 1, 827, "/Channel%/PN"},
    {eConfigRead, eFamily::eChannel, 4, 1, 201, "/Channel%/Gas"},

    {eSequenceRead, eFamily::eOne, 1, 0, 15, "/Table_repeat"},
    {eSequenceRead, eFamily::eOne, 1, 0, 12, "/Continuous"},
    {eSequenceRead, eFamily::eStep, 2, 0, 23, "/rows/#/Type"},
    {eSequenceRead, eFamily::eStep, 2, 0, 24, "/rows/#/Repeat"},
    {eSequenceRead, eFamily::eStep, 2, 0, 22, "/rows/#/Stream"},
    {eSequenceRead, eFamily::eStep, 2, 1, 1010, "/rows/#/Slot"},
    {eSequenceRead, eFamily::eStep, 2, 0, 26, "/rows/#/Flush_time", nullptr, true},
    // Without a line count there are no lines; without a stream selection there is one, whatever
    // the count.
    {eSequenceRead, eFamily::eOne, 1, 0, 144, "/total", "0", false, 0, 525},
    {eSequenceRead, eFamily::eOne, 1, 0, 144, "/rows", "null", false, 0, 525},
    {eSequenceRead, eFamily::eOne, 1, 0, 525, "/total"},
    {eSequenceRead, eFamily::eOne, 1, 0, 525, "/rows/1"},

    {eCalibRead, eFamily::eStep, 2, 1, 1196, "/rows/#/Ret_time", nullptr, true},
    {eCalibRead, eFamily::eStep, 2, 1, 1230, "/rows/#/Level_amt", nullptr, true},
    {eCalibRead, eFamily::eStep, 2, 1, 1242, "/rows/#/Linear", nullptr, true},

    {eAlarmRead, eFamily::eOne, 1, 0, 2038, "/rows/0/SampleType", R"("Analysis")", false, 1},
    {eAlarmRead, eFamily::eOne, 1, 0, 2030, "/rows/1/SampleType", R"("Analysis")", false, 2},
    {eAlarmRead, eFamily::eStep, 2, 0, 2212, "/rows/#/Triggered"},
    {eAlarmRead, eFamily::eStep, 2, 0, 2032, "/rows/#/ParamID"},
    {eAlarmRead, eFamily::eOne, 1, 0, 2032, "/rows/0/ParamStr", R"("0. None")", false, 1},
    {eAlarmRead, eFamily::eOne, 1, 0, 2032, "/rows/1/ParamStr", R"("0. ")", false, 2},
    {eAlarmRead, eFamily::eStep, 2, 0, 2031, "/rows/#/GroupID"},
    {eAlarmRead, eFamily::eStep, 2, 0, 2031, "/rows/#/GroupStr"},
    {eAlarmRead, eFamily::eStep, 2, 0, 2031, "/rows/#/ParamStr"},
    {eAlarmRead, eFamily::eOne, 1, 0, 2028, "/total"},
    {eAlarmRead, eFamily::eOne, 1, 0, 2029, "/total"},
    {eAlarmRead, eFamily::eOne, 1, 0, 2028, "/rows"},
    {eAlarmRead, eFamily::eOne, 1, 0, 2029, "/rows", nullptr, false, 0, 2028},
};

/// Real values that appear within a text, and that text for non-finite values.
struct SpecialReal {
  eSections operation;
  std::uint32_t channel;
  std::uint32_t id;
  const char* pointer;
  const char* notANumber;
  const char* positive;  ///< infinity
  const char* negative;
};

constexpr SpecialReal cSpecialReals[] = {
    {eStatusRead, 0, 162, "/Auto_state", R"("Running Sequence")", R"("Run Delay 2147483647s")",
     R"("Running Sequence")"},
};

/// How a failed call other than a parameter batch shows in the document.
enum class eWrong { eUnfilled, eFailed };

struct ShownCall {
  eSections operation;
  const char* call;  ///< its beginning
  unsigned int nth;  ///< among these calls, from 1
  eWrong wrong;
  const char* pointer;
  const char* shown;  ///< JSON, or a pointer to a member with the same value
};

constexpr ShownCall cShownCalls[] = {
    {eStatusRead, "plxGetTime(", 1, eWrong::eUnfilled, "/GC_time", R"("0-0-0 00:00:00")"},
    {eStatusRead, "ReadObject(handle, 4)", 1, eWrong::eUnfilled, "/Application", R"("")"},
    // One buffer for all texts: if it is not filled, it still holds the clock.
    {eStatusRead, "getErrorText(", 1, eWrong::eUnfilled, "/Error_str", "/GC_time"},
    {eConfigRead, "ReadObject(handle, 5)", 1, eWrong::eUnfilled, "/Inst_name", R"("")"},
    {eConfigRead, "ReadObject(handle, 2)", 1, eWrong::eUnfilled, "/Site_info", "/Inst_name"},
    {eConfigRead, "ReadObject(handle, 6)", 1, eWrong::eUnfilled, "/Channel1/Description", R"("")"},
    {eConfigRead, "ReadObject(handle, 6)", 2, eWrong::eUnfilled, "/Channel2/Description", R"("")"},
    {eConfigRead, "ReadObject(handle, 6)", 3, eWrong::eUnfilled, "/Channel3/Description", R"("")"},
    {eConfigRead, "ReadObject(handle, 6)", 4, eWrong::eUnfilled, "/Channel4/Description", R"("")"},

    {eAlarmRead, "ReadParamList(handle, 20)", 1, eWrong::eUnfilled, "/rows/1/ParamStr", R"("3. ")"},
    {eAlarmRead, "ReadParamList(handle, 20)", 1, eWrong::eFailed, "/rows/1/ParamStr",
     R"("3. Unknown")"},
    {eCalibRead, "ReadProgramInfo(handle, 0, 1,", 1, eWrong::eUnfilled, "/total", "0"},
    {eCalibRead, "ReadProgramInfo(handle, 0, 1,", 1, eWrong::eUnfilled, "/rows", "[]"},
};

/// Calls that are not made because their cause has not arrived.
struct SkippedCall {
  eSections operation;
  const char* cause;  ///< beginning of the call that returned nothing; null: a parameter is unread
  std::uint32_t id;
  std::uint32_t step;
  std::uint32_t unless;  ///< as in ShownValue
  const char* call;      ///< beginning of the calls with their records
};

constexpr SkippedCall cSkippedCalls[] = {
    {eSequenceRead, nullptr, 144, 0, 525, "ReadParamList(handle, 5)"},
    {eSequenceRead, nullptr, 525, 0, 0, "ReadParamList(handle, 5): 0:23@2"},
    {eAlarmRead, nullptr, 2028, 0, 0, "ReadParamList(handle, "},
    {eAlarmRead, nullptr, 2029, 0, 0, "ReadParamList(handle, "},
    {eAlarmRead, nullptr, 2031, 2, 0, "ReadParamList(handle, 20)"},
    {eCalibRead, "ReadProgramInfo(handle, 0, 1,", 0, 0, 0, "ReadParamList(handle, 23)"},
};
