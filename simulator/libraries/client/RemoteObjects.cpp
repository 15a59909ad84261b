// The remote object classes: texts that cross the connection as bounded CDR strings.
#include <ObjectTexts.h>
#include <RemoteObjects.h>

namespace {

bool saveTexts(ACE_OutputCDR& aStream, const ACE_CString* texts, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    if (!wire::writeText(aStream, {texts[i].fast_rep(), texts[i].length()})) {
      return false;
    }
  }
  return true;
}

/// Leaves the texts as they were when the stream does not hold them all.
bool loadTexts(ACE_InputCDR& aStream, ACE_CString* texts, std::size_t count) {
  std::vector<ACE_CString> arrived(count);
  for (ACE_CString& text : arrived) {
    if (!wire::readText(aStream, text)) {
      return false;
    }
  }
  for (std::size_t i = 0; i < count; ++i) {
    texts[i].swap(arrived[i]);
  }
  return true;
}

}  // namespace

Clone::~Clone() = default;
Serializable::~Serializable() = default;
RemoteObject::~RemoteObject() = default;

SiteInfoTag::SiteInfoTag() = default;
SiteInfoTag::~SiteInfoTag() = default;

const ACE_CString& SiteInfoTag::getTagName() const {
  return mTagName;
}
Clone* SiteInfoTag::clone() const {
  return new SiteInfoTag(*this);
}
const char* SiteInfoTag::className() const {
  return wire::cSiteInfoTag;
}
bool SiteInfoTag::save(ACE_OutputCDR& aStream) const {
  return saveTexts(aStream, &mTagName, 1);
}
bool SiteInfoTag::load(ACE_InputCDR& aStream) {
  return loadTexts(aStream, &mTagName, 1);
}

ColumnDescriptions::ColumnDescriptions() = default;
ColumnDescriptions::~ColumnDescriptions() = default;

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
  return wire::cColumnDescriptions;
}

bool ColumnDescriptions::save(ACE_OutputCDR& aStream) const {
  return saveTexts(aStream, mDescriptions, std::size(mDescriptions));
}

bool ColumnDescriptions::load(ACE_InputCDR& aStream) {
  return loadTexts(aStream, mDescriptions, std::size(mDescriptions));
}
