// How many blocks ACE holds: parameter map entries, their tables and their names.
#pragma once

#include <ace/Malloc_Allocator.h>

/// Counts the blocks that ACE's containers have allocated and not freed during its lifetime.
class AceBlocks : public ACE_New_Allocator {
 public:
  AceBlocks() : mUsual(ACE_Allocator::instance(this)) {}
  ~AceBlocks() override { ACE_Allocator::instance(mUsual); }
  AceBlocks(const AceBlocks&) = delete;
  AceBlocks& operator=(const AceBlocks&) = delete;

  int held() const { return mHeld; }

  void* malloc(std::size_t aSize) override {
    ++mHeld;
    return ACE_New_Allocator::malloc(aSize);
  }
  void free(void* aBlock) override {
    mHeld -= aBlock != nullptr ? 1 : 0;
    ACE_New_Allocator::free(aBlock);
  }

 private:
  ACE_Allocator* mUsual;
  int mHeld = 0;
};
