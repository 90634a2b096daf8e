// Writing of a block at a given path, and the removal of links.

#include <string>
#include <vector>

#include "block/block_write.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"

using namespace orvio;

int ORVBlock::WriteBlkGivenPath(const char* file, const std::string& path, int what) {
  if (!file) return kFail;
  return h5::Entry(kFail, [&] {
    const WriteAccess access;
    hid_t file_id = H5I_INVALID_HID;
    h5::Group group(OH5OpenGroupChain(file, &file_id, path));
    h5::WriteFile opened{h5::File(file_id)};
    if (!group) return kFail;
    int status = kFail;
    {
      BlockParts parts(group.get(), nullptr, what);
      if (parts) status = parts.Close(WriteStages(*this, parts, what));
    }
    if (!group.Close() && status == kOk) status = kFail;
    return opened.Finish(status);
  });
}

namespace {

h5::File OpenForDeletion(const char* file) {
  // A missing file is made. One that is there and cannot be opened is never truncated.
  return h5::FileExists(file) ? h5::OpenFile(file, H5F_ACC_RDWR) : h5::CreateFile(file);
}

int DeleteEach(hid_t file, const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    if (h5::LinkExists(file, name.c_str()) && H5Ldelete(file, name.c_str(), H5P_DEFAULT) < 0) return kFail;
  }
  return kOk;
}

}  // namespace

int ORVBlock::DeleteLinks(const char* file, std::vector<std::string>& names) {
  if (names.empty()) return kOk;
  if (!file) return kFail;
  return h5::Entry(kFail, [&] {
    h5::WriteFile opened(OpenForDeletion(file));
    if (!opened) return kFileOpenError;
    const int status = DeleteEach(opened.get(), names);
    const int written = opened.Finish(kOk);  // what could be removed is, whatever stopped the rest
    return status != kOk ? status : written;
  });
}
