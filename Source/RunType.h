// Run types, as named in the status and the sequence table.
#pragma once

/// Text of a run type code: 0 "Analysis", 1 "Calibration", 2 "Blank", 3 "Verification", any other
/// "None".
const char* runTypeText(int aCode);

/// Code of a run type text, compared exactly; 0 for any other text, "None" included, so that a line
/// printed as "None" downloads as an analysis.
int runTypeCode(const char* aText);
