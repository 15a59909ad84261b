// The remote object classes of the client library, reporting to the scripted instrument.
#include "FakeInstrument.h"

#include <ace/CDR_Stream.h>

namespace {
void reportDestroyed(const Clone& aObject, const char* aClass) {
  if (FakeInstrument* const lInstrument = FakeInstrument::current()) {
    lInstrument->destroyed(aObject, aClass);
  }
}
}  // namespace

Clone::~Clone() = default;
Serializable::~Serializable() = default;
RemoteObject::~RemoteObject() = default;

SiteInfoTag::SiteInfoTag() = default;
SiteInfoTag::~SiteInfoTag() {
  reportDestroyed(*this, "SiteInfoTag");
}
const ACE_CString& SiteInfoTag::getTagName() const {
  return mTagName;
}
Clone* SiteInfoTag::clone() const {
  return new SiteInfoTag(*this);
}
const char* SiteInfoTag::className() const {
  return "SiteInfoTag";
}
bool SiteInfoTag::save(ACE_OutputCDR& aStream) const {
  return aStream << mTagName;
}
bool SiteInfoTag::load(ACE_InputCDR& aStream) {
  return aStream >> mTagName;
}

ColumnDescriptions::ColumnDescriptions() = default;
ColumnDescriptions::~ColumnDescriptions() {
  reportDestroyed(*this, "ColumnDescriptions");
}
const ACE_CString& ColumnDescriptions::getDescriptionColumn1() const {
  return mDescriptions[0];
}
const ACE_CString& ColumnDescriptions::getDescriptionColumn2() const {
  return mDescriptions[1];
}
const ACE_CString& ColumnDescriptions::getDescriptionColumn3() const {
  return mDescriptions[2];
}
const ACE_CString& ColumnDescriptions::getDescriptionColumn4() const {
  return mDescriptions[3];
}
Clone* ColumnDescriptions::clone() const {
  return new ColumnDescriptions(*this);
}
const char* ColumnDescriptions::className() const {
  return "ColumnDescriptions";
}

bool ColumnDescriptions::save(ACE_OutputCDR& aStream) const {
  for (const ACE_CString& description : mDescriptions) {
    aStream << description;
  }
  return aStream.good_bit();
}

bool ColumnDescriptions::load(ACE_InputCDR& aStream) {
  for (ACE_CString& description : mDescriptions) {
    aStream >> description;
  }
  return aStream.good_bit();
}

CloneFactory::CloneFactory() : mPrototypes(nullptr) {}
CloneFactory::~CloneFactory() {}

void CloneFactory::registerObject(const Clone& aPrototype) {
  FakeInstrument* const lInstrument = FakeInstrument::current();
  const auto* const lNamed = dynamic_cast<const Serializable*>(&aPrototype);
  if (lInstrument != nullptr && lNamed != nullptr) {
    lInstrument->registered(aPrototype, lNamed->className());
  }
}
