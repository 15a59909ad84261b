// Run types, as status and sequence table name them.
#pragma once

/// Text of a run type code: 0 "Analysis", 1 "Calibration", 2 "Blank", 3 "Verification", any other
/// "None".
const char* runTypeText(int aCode);

/// Code of a run type text, compared exactly; 0 for a text that is none, "None" included, so that a
/// line that printed "None" downloads as an analysis.
int runTypeCode(const char* aText);
