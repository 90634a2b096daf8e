// Listing of states, and the opening of a block in each of them.

#include "block/states.h"

#include "block/block_keys.h"
#include "block/block_schema.h"
#include "block/reader_lease.h"
#include "h5/disk_names.h"
#include "h5/file_access.h"
#include "h5/status.h"

namespace orvio {
namespace {

std::string SectionPath() { return std::string("/") + disk::post + "/" + disk::singlestate; }

}  // namespace

std::vector<std::string> StateNames(IOH5Reader& reader) {
  if (reader.GetFileId() < 0) return {};
  const h5::Group section = h5::OpenGroup(reader.GetFileId(), SectionPath().c_str());
  if (!section) return {};
  std::vector<std::string> names = h5::LinkNames(section.get());
  for (std::string& name : names) {
    if (name.size() >= disk::kNameWidth) name.clear();
  }
  return names;
}

std::string StatePath(const std::string& state_name) { return SectionPath() + "/" + state_name; }

h5::Group OpenInState(ORVBlock& block, const std::string& state_name) {
  const hid_t file = ORVBlockAccess::Reader(block)->GetFileId();
  if (IsFixedToSection(block.GetKey())) return OpenBySchemaPath(block, file, 0);
  const _OH5BlockKeyMap* row = FindBlockKey(block.GetKey());
  if (state_name.empty() || (block.GetKey() != kNoKey && !row)) return h5::Group();
  std::string group = StatePath(state_name);
  if (row && *row->name) group.append("/").append(row->name);
  std::string path;
  if (block.MergeSchemaPath(block.GetBlkPath(), group, path) != kOk || path.empty()) return h5::Group();
  return h5::OpenGroup(file, path.c_str());
}

}  // namespace orvio
