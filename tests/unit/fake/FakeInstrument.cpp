// The scripted instrument's scripts and log.
#include "FakeInstrument.h"

#include <ace/CDR_Stream.h>

#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <limits>
#include <sstream>

namespace {
FakeInstrument* sInstrument = nullptr;

/// Fills an object with texts from a stream, the only way from outside the class.
template <class Object>
std::unique_ptr<RemoteObject> load(const std::string* aTexts, std::size_t aCount) {
  ACE_OutputCDR lOut;
  for (std::size_t i = 0; i < aCount; ++i) {
    lOut << ACE_CString(aTexts[i].data(), aTexts[i].size());
  }
  ACE_InputCDR lIn(lOut);
  auto lObject = std::make_unique<Object>();
  lObject->load(lIn);
  return lObject;
}

void show(std::ostream& aStream, const ParamList& aRecord) {
  aStream << ' ' << aRecord.Channel << ':' << aRecord.ParmID;
  if (aRecord.Step != 0) {
    aStream << '@' << aRecord.Step;
  }
  if (aRecord.intvalue != 0) {
    aStream << '=' << aRecord.intvalue;
  }
  if (aRecord.realvalue != 0.0) {
    aStream << '~' << aRecord.realvalue;
  }
  if (aRecord.Method != 0) {
    aStream << '#' << aRecord.Method;
  }
  if (aRecord.ServiceStatus != 0) {
    aStream << '!' << aRecord.ServiceStatus;
  }
}
}  // namespace

FakeInstrument::FakeInstrument() {
  if (sInstrument != nullptr) {
    std::fputs("There is a scripted instrument already\n", stderr);
    std::abort();
  }
  sInstrument = this;
}

FakeInstrument::~FakeInstrument() {
  sInstrument = nullptr;
}

FakeInstrument* FakeInstrument::current() {
  return sInstrument;
}

void FakeInstrument::setStatus(eFunction aFunction, unsigned long aStatus) {
  mStatus[aFunction] = aStatus;
}

void FakeInstrument::setStatusOfCall(eFunction aFunction, unsigned int aCall,
                                     unsigned long aStatus) {
  mStatusOfCall[{aFunction, aCall}] = aStatus;
}

void FakeInstrument::setValue(std::uint32_t aChannel, std::uint32_t aId, Answer aAnswer) {
  mValues[{aChannel, aId}] = aAnswer;
}

void FakeInstrument::setStepValue(std::uint32_t aChannel, std::uint32_t aId, std::uint32_t aStep,
                                  Answer aAnswer) {
  mStepValues[{aChannel, aId, aStep}] = aAnswer;
}

void FakeInstrument::setObject(unsigned long aNumber, std::unique_ptr<RemoteObject> aObject) {
  mObjects[aNumber] = std::move(aObject);
}

void FakeInstrument::setTag(unsigned long aNumber, const std::string& aText) {
  setObject(aNumber, load<SiteInfoTag>(&aText, 1));
}

void FakeInstrument::setColumns(unsigned long aNumber, const std::array<std::string, 4>& aTexts) {
  setObject(aNumber, load<ColumnDescriptions>(aTexts.data(), aTexts.size()));
}

void FakeInstrument::setErrorText(int aCode, const std::string& aText) {
  mErrorTexts[aCode] = aText;
}

void FakeInstrument::setProgramInfo(unsigned long aChannel, unsigned long aFirst,
                                    unsigned long aSecond) {
  mProgramInfo[aChannel] = {aFirst, aSecond};
}

std::vector<std::string> FakeInstrument::calls() const {
  std::vector<std::string> lTexts;
  for (const Call& call : mLog) {
    lTexts.push_back(call.text);
  }
  return lTexts;
}

std::vector<std::string> FakeInstrument::traffic() const {
  std::vector<std::string> lTexts;
  for (const Call& call : mLog) {
    std::ostringstream lText;
    lText << std::setprecision(std::numeric_limits<double>::max_digits10) << call.text
          << (call.records.empty() ? "" : ":");
    for (const ParamList& record : call.records) {
      show(lText, record);
    }
    lTexts.push_back(lText.str());
  }
  return lTexts;
}

std::vector<ParamList> FakeInstrument::batch(std::size_t n) const {
  for (const Call& call : mLog) {
    const bool lIsBatch = call.text.find("ParamList(") != std::string::npos;
    if (lIsBatch && n-- == 0) {
      return call.records;
    }
  }
  return {};
}

void FakeInstrument::record(const std::string& aText) {
  mLog.push_back({aText, {}});
  if (atCall) {
    atCall(aText);
  }
}

unsigned long FakeInstrument::answerStatus(eFunction aFunction) {
  const auto lCall = mStatusOfCall.find({aFunction, ++mCallCount[aFunction]});
  if (lCall != mStatusOfCall.end()) {
    return lCall->second;
  }
  const auto lAll = mStatus.find(aFunction);
  return lAll != mStatus.end() ? lAll->second : 0;
}

unsigned long FakeInstrument::transfer(eFunction aFunction, const char* aName,
                                       unsigned long aHandle, ParamList* aRecords,
                                       unsigned long aCount) {
  const std::string lHandle = aHandle == cHandle ? "handle" : std::to_string(aHandle);
  const std::string lCount = aRecords != nullptr ? std::to_string(aCount) : "null";
  record(std::string(aName) + "(" + lHandle + ", " + lCount + ")");
  mLog.back().records.assign(aRecords, aRecords + aCount);

  const bool lAnswers = aFunction == eFunction::eReadParamList && !silent;
  for (unsigned long i = 0; lAnswers && i < aCount; ++i) {
    ParamList& record = aRecords[i];
    const auto lStep = mStepValues.find({record.Channel, record.ParmID, record.Step});
    const auto lAny = mValues.find({record.Channel, record.ParmID});
    if (lStep == mStepValues.end() && lAny == mValues.end()) {
      continue;
    }
    const Answer& answer = lStep != mStepValues.end() ? lStep->second : lAny->second;
    record.intvalue = answer.integer;
    record.realvalue = answer.real;
    record.ServiceStatus = answer.serviceStatus;
  }
  if (tamper) {
    tamper(aRecords, aCount);
  }
  return answerStatus(aFunction);
}

void FakeInstrument::registered(const Clone& aPrototype, const char* aClass) {
  record(std::string("registerObject(") + aClass + ")");
  mPrototype = &aPrototype;
}

void FakeInstrument::destroyed(const Clone& aObject, const char* aClass) {
  if (&aObject == mPrototype) {
    record(std::string("~") + aClass + "()");
    mPrototype = nullptr;
  }
}

RemoteObject* FakeInstrument::object(unsigned long aNumber) const {
  const auto lObject = mObjects.find(aNumber);
  return lObject != mObjects.end() ? lObject->second.get() : nullptr;
}

std::string FakeInstrument::errorText(int aCode) const {
  const auto lText = mErrorTexts.find(aCode);
  return lText != mErrorTexts.end() ? lText->second : "text of error " + std::to_string(aCode);
}

const std::pair<unsigned long, unsigned long>* FakeInstrument::programInfo(
    unsigned long aChannel) const {
  const auto lInfo = mProgramInfo.find(aChannel);
  return lInfo != mProgramInfo.end() ? &lInfo->second : nullptr;
}
