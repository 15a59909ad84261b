// Fetching a remote object of a given class.
#pragma once

#include <InstrumentClient.h>
#include <RemoteObjects.h>

/// The instrument's text objects, by their numbers.
enum eRemoteObjects : unsigned long {
  eSiteInformation = 2,
  eInstrumentName = 3,
  eInstrumentApplication = 4,
  eBOOTPName = 5,
  eColumnDescriptions = 6,
};

/// Fetches remote object `number`. Returns null when it does not arrive or is of another class; the
/// library's status adds nothing to that and is ignored. The library owns the object.
template <class Wanted>
const Wanted* fetchObject(unsigned long handle, unsigned long number) {
  // The library can only create objects whose prototype the factory holds.
  ACE_Singleton<CloneFactory, ACE_Thread_Mutex>::instance()->registerObject(Wanted());
  RemoteObject* lObject = nullptr;
  ReadObject(handle, number, lObject);
  return dynamic_cast<const Wanted*>(lObject);
}

/// Sets the string to the text of remote object `number`; leaves it unchanged if there is none.
void fetchText(unsigned long handle, unsigned long number, ACE_CString& aTagName);
