// Remote objects, for the floors whose reports fetch some.
#pragma once

#include <InstrumentClient.h>
#include <RemoteObjects.h>

namespace bench {

/// The object with this number, which must exist and be of this class.
template <class Wanted>
const Wanted& fetch(unsigned long handle, unsigned long number) {
  ACE_Singleton<CloneFactory, ACE_Thread_Mutex>::instance()->registerObject(Wanted());
  RemoteObject* object = nullptr;
  ReadObject(handle, number, object);
  return *dynamic_cast<const Wanted*>(object);
}

}  // namespace bench
