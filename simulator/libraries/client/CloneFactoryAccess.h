// The library's way to the prototypes that the program registered.
#pragma once

#include <RemoteObjects.h>

#include <memory>

class CloneFactoryAccess {
 public:
  /// Creates an object of the class, or returns null when no prototype of it is registered.
  // Hidden by name: the class is declared among what the library exports.
  __attribute__((visibility("hidden"))) static std::unique_ptr<RemoteObject> create(
      const char* aClassName);
};
