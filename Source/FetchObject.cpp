// Texts from remote objects, and the tool's only instantiation of the factory singleton.
#include "FetchObject.h"

#include <RemoteObjects.h>

template class ACE_Singleton<CloneFactory, ACE_Thread_Mutex>;

void fetchText(unsigned long handle, unsigned long number, ACE_CString& aTagName) {
  if (const auto* tag = fetchObject<SiteInfoTag>(handle, number)) {
    aTagName = tag->getTagName();
  }
}
