// Parameter maps for the tests.
#pragma once

#include "Common.h"

/// A map that deletes its parameters at the end of the test.
class TestMap : public ParameterMap {
 public:
  explicit TestMap(std::size_t aBuckets = 128) : ParameterMap(aBuckets) {}
  ~TestMap() { clearParamMap(*this, true); }
  TestMap(const TestMap&) = delete;
  TestMap& operator=(const TestMap&) = delete;

  /// Binds a parameter; returns it.
  Parameter* add(const char* aName, unsigned long aChannel, unsigned long aId) {
    auto* const lParameter = new Parameter(aChannel, aId);
    bind(ACE_CString(aName), lParameter);
    return lParameter;
  }

  /// The parameter with this name; null if the name is not bound.
  Parameter* at(const char* aName) {
    Parameter* lParameter = nullptr;
    find(ACE_CString(aName), lParameter);
    return lParameter;
  }
};
