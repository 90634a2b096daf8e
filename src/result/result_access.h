#pragma once

// What the library's own code and its tests need of a result block besides its interface.

#include "orvio/orv_result.h"

struct ORVResultAccess {
  static int Path(ORVResult& block, const _OH5BlockKeyMap* key, char* path) { return block.GetResultPath(key, path); }
  static hid_t OpenGroup(ORVResult& block, int state) { return block.OpenBlockGroup(state); }
  static void StatePath(int state, char* path) { ORVResult::CreateStatePath(state, path); }
  static int ValueDimension(ORVResult& block, std::uint64_t* dims) { return block.GetResultValueDimension(dims); }
};
