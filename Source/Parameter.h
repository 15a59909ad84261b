// One instrument parameter, and the map of the parameters that an operation needs.
#pragma once

#include <ace/Hash_Map_Manager_T.h>  // IWYU pragma: export
#include <ace/Null_Mutex.h>
#include <ace/SString.h>  // IWYU pragma: export

struct ParamList;

/// One parameter of the instrument, addressed by channel and parameter id. Values are zero until a
/// batch transfer or the section sets them.
class Parameter {
 public:
  /// `aChannel`: 0 for the whole instrument, 1 to 4 for an analytical channel.
  Parameter(unsigned long aChannel, unsigned long aParmID);
  Parameter(unsigned long aChannel, unsigned long aParmID, long aIntValue, double aRealValue,
            unsigned long aStep, unsigned long aMethod);
  ~Parameter() = default;

  /// Copies all seven fields into a record.
  void fill(ParamList& aParamList) const;

  /// Takes values and service status from a record, never its method or step. Returns -1 and
  /// changes nothing when the record belongs to another channel or id; otherwise 0.
  long update(const ParamList& aParamList);

  long getIntValue() const { return mIntvalue; }
  double getRealValue() const { return mRealvalue; }
  void setIntValue(long v) { mIntvalue = v; }
  void setRealValue(double v) { mRealvalue = v; }
  void setStep(unsigned long s) { mStep = s; }

  /// Writes the parameter to standard output, for use in a debugger. No operation calls it:
  /// standard output carries the document.
  void print();

 private:
  unsigned long mChannel;
  unsigned long mMethod;
  unsigned long mStep;
  unsigned long mParmID;
  double mRealvalue;
  long mIntvalue;
  unsigned long mServiceStatus;
};

/// Maps a parameter's name ("mColumnTemp1") to the parameter. Owns its parameters once they are
/// bound; clearParamMap deletes them.
using ParameterMap = ACE_Hash_Map_Manager<ACE_CString, Parameter*, ACE_Null_Mutex>;
using ParameterMapConstIter = ParameterMap::const_iterator;
