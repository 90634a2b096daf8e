#pragma once

// A block that keeps a record of what the base asks of it, and a callback that keeps one of what it is told.

#include <hdf5.h>

#include <functional>
#include <string>
#include <vector>

#include "orvio/orv_block.h"
#include "support/forged_file.h"

namespace orv_test {

/// Answers the three reads and writes with `status` and notes each as "<operation> <stages> <path of the group>".
class RecordingBlock : public ORVBlock {
 public:
  explicit RecordingBlock(std::int64_t key = -1, std::string schema = "") : schema_(std::move(schema)) {
    m_BlkKey = key;
  }

  int ReadHeader(hid_t group, int stages) override { return Note("header", group, stages, header_status); }
  int ReadData(hid_t group, int stages) override { return Note("data", group, stages, data_status); }
  int ReadIndex(hid_t group, int stages) override { return Note("index", group, stages, index_status); }
  int WriteBlock(const char*, int, int) override { return 1; }
  int WriteHeader(hid_t group) override { return Note("write header", group, 0, header_status); }
  int WriteData(hid_t group) override { return Note("write data", group, 0, data_status); }
  int WriteIndex(hid_t group) override { return Note("write index", group, 0, index_status); }

  /// The empty schema is that of a class without names of its own, which has no block group.
  int AppendBlockSchema(std::string& path) override {
    if (schema_.empty()) return ORVBlock::AppendBlockSchema(path);
    path += "/" + schema_;
    return 0;
  }

  hid_t OpenMergedPath(hid_t file, hid_t group) { return GetBlkGrpUsingSchemaPath(file, group); }

  using ORVBlock::CloseH5Reader;
  using ORVBlock::GetH5Reader;
  using ORVBlock::OpenBlockGroup;
  using ORVBlock::OpenH5Reader;
  using ORVBlock::ReadBlockStep;
  using ORVBlock::ReadBlockStepWrap;
  using ORVBlock::ReadDataset;
  using ORVBlock::ReadIndexComm;
  using ORVBlock::SetH5Reader;

  using ORVBlock::OH5Read_ATTRIBUTE;
  using ORVBlock::OH5Read_CHAR;
  using ORVBlock::OH5Read_DATATYPE;
  using ORVBlock::OH5Read_FLOAT;
  using ORVBlock::OH5Read_INT;
  using ORVBlock::OH5Read_SELECTIVE;

  using ORVBlock::m_BlkKey;
  using ORVBlock::m_indexIdentType;
  using ORVBlock::m_indexValueType;
  using ORVBlock::m_nActionResult;
  using ORVBlock::m_nIncremental;
  using ORVBlock::m_nIterFlags;
  using ORVBlock::m_nReserved;
  using ORVBlock::m_pCacheMap;
  using ORVBlock::m_pfnAction;
  using ORVBlock::m_pfnCallBackImp;
  using ORVBlock::m_pfnCallBackImp2;
  using ORVBlock::m_pUserData;

  std::vector<std::string> calls;
  int header_status = 0, data_status = 0, index_status = 0;
  std::function<void()> on_write = [] {};

 private:
  int Note(const char* operation, hid_t group, int stages, int status) {
    char path[4096] = "no group";
    H5Iget_name(group, path, sizeof path);
    calls.push_back(std::string(operation) + (stages ? " " + std::to_string(stages) : "") + " " + path);
    on_write();
    return status;
  }

  std::string schema_;
};

/// What the callback is told, each as "<status> <stage> <where> <path of the block>", and what it answers.
struct CallBackRecord {
  std::vector<std::string> told;
  std::function<_ORVAction(int stage, const std::string& where)> answer;
};

inline CallBackRecord& Record() {
  static CallBackRecord record;
  return record;
}

inline void ClearRecord() {
  Record().told.clear();
  Record().answer = [](int, const std::string&) { return ORV_ACTION_CONTINUE; };
}

inline _ORVAction Tell(int status, int stage, const std::string& where, const void* block) {
  Record().told.push_back(std::to_string(status) + " " + std::to_string(stage) + " " + where + " " +
                          static_cast<const ORVBlock*>(block)->GetBlkPath());
  return Record().answer(stage, where);
}

/// For walks that tell names.
inline _ORVAction RecordName(int status, int stage, void* where, void* block) {
  return Tell(status, stage, static_cast<const char*>(where), block);
}

/// For walks that tell the 0-based index of a state.
inline _ORVAction RecordIndex(int status, int stage, void* where, void* block) {
  return Tell(status, stage, std::to_string(*static_cast<const int*>(where)), block);
}

/// For IterateBlockOver, which tells the index of a state that does not open, and else names.
inline _ORVAction RecordEither(int status, int stage, void* where, void* block) {
  return stage == -1 ? RecordIndex(status, stage, where, block) : RecordName(status, stage, where, block);
}

/// Group of a state with up to nine.
inline std::string State(int number) { return "/post/singlestate/state00000000000" + std::to_string(number); }

}  // namespace orv_test
