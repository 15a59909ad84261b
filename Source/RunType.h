// Run types, as status and sequence table name them.
#pragma once

/// Text of a run type code: 0 "Analysis", 1 "Calibration", 2 "Blank", 3 "Verification", any other
/// "None".
const char* runTypeText(int aCode);
