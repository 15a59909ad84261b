// What an operation inherits unless it overrides it.
#include "Section.h"

#include <algorithm>
#include <iterator>

SectionBase::SectionBase() : mMap(nullptr), mHandle(0), mSections{}, mcount(0) {}

SectionBase::~SectionBase() {
  mMap = nullptr;
  mHandle = 0;
  mcount = 0;
}

int SectionBase::readGC() {
  return 0;
}

int SectionBase::writeGC() {
  return 0;
}

int SectionBase::parseFile(char* /*file*/) {
  return 0;
}

void SectionBase::setArgument(int /*arg*/) {}

void SectionBase::printJson() {}

bool SectionBase::addSubSection(SectionBase* sec) {
  if (mcount >= std::size(mSections)) {
    return false;
  }
  mSections[mcount++] = sec;
  return true;
}

void SectionBase::clearSubSection() {
  std::fill(std::begin(mSections), std::end(mSections), nullptr);
  mcount = 0;
}
