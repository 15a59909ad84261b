// One instrument parameter, converted to and from the record sent over the connection.
#include "Parameter.h"

#include <InstrumentClient.h>

#include <cstdint>
#include <cstdio>

Parameter::Parameter(unsigned long aChannel, unsigned long aParmID)
    : Parameter(aChannel, aParmID, 0, 0.0, 0, 0) {}

Parameter::Parameter(unsigned long aChannel, unsigned long aParmID, long aIntValue,
                     double aRealValue, unsigned long aStep, unsigned long aMethod)
    : mChannel(aChannel),
      mMethod(aMethod),
      mStep(aStep),
      mParmID(aParmID),
      mRealvalue(aRealValue),
      mIntvalue(aIntValue),
      mServiceStatus(0) {}

void Parameter::fill(ParamList& aParamList) const {
  aParamList.Channel = static_cast<std::uint32_t>(mChannel);
  aParamList.Method = static_cast<std::uint32_t>(mMethod);
  aParamList.Step = static_cast<std::uint32_t>(mStep);
  aParamList.ParmID = static_cast<std::uint32_t>(mParmID);
  aParamList.realvalue = mRealvalue;
  aParamList.intvalue = static_cast<std::int32_t>(mIntvalue);
  aParamList.ServiceStatus = static_cast<std::uint32_t>(mServiceStatus);
}

long Parameter::update(const ParamList& aParamList) {
  if (aParamList.Channel != mChannel || aParamList.ParmID != mParmID) {
    return -1;
  }
  mRealvalue = aParamList.realvalue;
  mIntvalue = aParamList.intvalue;
  mServiceStatus = aParamList.ServiceStatus;
  return 0;
}

void Parameter::print() {
  std::printf(
      "mChannel[%ld],  mParmID[%ld] , mRealvalue[%f], mIntvalue[%ld]  ,mServiceStatus[%ld]\n",
      static_cast<long>(mChannel), static_cast<long>(mParmID), mRealvalue, mIntvalue,
      static_cast<long>(mServiceStatus));
}
