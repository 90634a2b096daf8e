#pragma once

// The opening and giving back of a block's reader, and what else the library's own code needs of a block.

#include <string>
#include <utility>

#include "orvio/orv_block.h"

/// What the library's own code needs of a block besides its interface.
struct ORVBlockAccess {
  static int Open(ORVBlock& block, const char* file) { return block.CreateH5Reader(file, 0); }
  static void Close(ORVBlock& block) { (void)block.DeleteH5Reader(); }  // reading: nothing to lose
  static IOH5Reader* Reader(const ORVBlock& block) { return block.m_pH5Reader; }
  static IOH5Reader* ExchangeReader(ORVBlock& block, IOH5Reader* reader) {
    return std::exchange(block.m_pH5Reader, reader);
  }
  static int AppendSchema(ORVBlock& block, std::string& path) { return block.AppendBlockSchema(path); }
  static auto CacheMap(const ORVBlock& block) { return block.m_pCacheMap; }

  static hid_t OpenBySchemaPath(ORVBlock& block, hid_t file, hid_t group) {
    return block.GetBlkGrpUsingSchemaPath(file, group);
  }

  static void StartWalk(ORVBlock& block, ORVIterationCallBack action, int stages) {
    block.m_pfnAction = action;
    block.m_nIterFlags = stages;
    block.m_nActionResult = ORV_ACTION_CONTINUE;
  }
  static auto LinkVisitor(const ORVBlock& block) { return block.m_pfnCallBackImp2; }
  static auto GroupVisitor(const ORVBlock& block) { return block.m_pfnCallBackImp; }
  static int Stages(const ORVBlock& block) { return block.m_nIterFlags; }
  static int& ActionResult(ORVBlock& block) { return block.m_nActionResult; }
  static ORVIterationCallBack Action(const ORVBlock& block) { return block.m_pfnAction; }
};

namespace orvio {

/// A block's reader for the length of an entry point. Declare it before the handles: the close of the file closes
/// what is still open in it, so the handles must go first. A callback may start a second read on the block of its
/// walk, so the reader of the walk is put back afterwards.
class ReaderLease {
 public:
  ReaderLease(ORVBlock& block, const char* file)
      : block_(block),
        outer_(ORVBlockAccess::ExchangeReader(block, nullptr)),
        open_(ORVBlockAccess::Open(block, file) == 0) {}
  ~ReaderLease() {
    ORVBlockAccess::Close(block_);
    (void)ORVBlockAccess::ExchangeReader(block_, outer_);  // the one given back is gone
  }
  ReaderLease(const ReaderLease&) = delete;
  ReaderLease& operator=(const ReaderLease&) = delete;

  explicit operator bool() const { return open_; }
  IOH5Reader* operator->() const { return ORVBlockAccess::Reader(block_); }
  IOH5Reader& operator*() const { return *ORVBlockAccess::Reader(block_); }

 private:
  ORVBlock& block_;
  IOH5Reader* outer_;
  bool open_;
};

}  // namespace orvio
