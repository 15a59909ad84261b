// The factory of remote objects: prototypes by class name, few enough for a plain list.
#include <RemoteObjects.h>

#include <cstring>
#include <memory>
#include <vector>

#include "CloneFactoryAccess.h"

struct CloneFactory::Prototypes {
  std::vector<std::unique_ptr<RemoteObject>> list;

  std::unique_ptr<RemoteObject>* find(const char* aClassName) {
    for (std::unique_ptr<RemoteObject>& prototype : list) {
      if (std::strcmp(prototype->className(), aClassName) == 0) {
        return &prototype;
      }
    }
    return nullptr;
  }
};

namespace {

/// A copy, or null of what is no remote object.
std::unique_ptr<RemoteObject> copy(const Clone& aOriginal) {
  Clone* lClone = aOriginal.clone();
  auto* object = dynamic_cast<RemoteObject*>(lClone);
  if (object == nullptr) {
    delete lClone;
  }
  return std::unique_ptr<RemoteObject>(object);
}

}  // namespace

CloneFactory::CloneFactory() : mPrototypes(new Prototypes) {}
CloneFactory::~CloneFactory() {
  delete mPrototypes;
}

void CloneFactory::registerObject(const Clone& aPrototype) {
  std::unique_ptr<RemoteObject> prototype = copy(aPrototype);
  if (prototype == nullptr) {
    return;
  }
  if (std::unique_ptr<RemoteObject>* earlier = mPrototypes->find(prototype->className())) {
    earlier->swap(prototype);
  } else {
    mPrototypes->list.push_back(std::move(prototype));
  }
}

std::unique_ptr<RemoteObject> CloneFactoryAccess::create(const char* aClassName) {
  const CloneFactory* factory = ACE_Singleton<CloneFactory, ACE_Thread_Mutex>::instance();
  const std::unique_ptr<RemoteObject>* prototype = factory->mPrototypes->find(aClassName);
  return prototype == nullptr ? nullptr : copy(**prototype);
}

// The library's copy of the singleton; the loader binds it to the program's.
template class ACE_Singleton<CloneFactory, ACE_Thread_Mutex>;
