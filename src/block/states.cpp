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

/// HDF5's iteration must not be left by an exception: lack of memory ends it with -1.
herr_t AppendName(hid_t /*group*/, const char* name, const H5L_info1_t* /*info*/, void* data) noexcept {
  try {
    std::string link = name;
    if (link.size() >= disk::kNameWidth) link.clear();
    static_cast<std::vector<std::string>*>(data)->push_back(std::move(link));
    return 0;
  } catch (...) {
    return -1;
  }
}

}  // namespace

std::vector<std::string> StateNames(IOH5Reader& reader) {
  std::vector<std::string> names;
  if (reader.GetFileId() < 0) return names;
  const h5::Group section = h5::OpenGroup(reader.GetFileId(), SectionPath().c_str());
  hsize_t next = 0;
  // A damaged group ends its iteration: the states before the damage are there all the same.
  if (section) (void)H5Literate1(section.get(), H5_INDEX_NAME, H5_ITER_INC, &next, AppendName, &names);
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
