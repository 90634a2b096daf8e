// Making of a file for writing.

#include "filer/write_file.h"

#include <hdf5.h>

#include <memory>

#include "filer/container.h"
#include "filer/versions.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"

namespace orvio {

int MakeFileForWriting(const char* name, _ORVVersion version, _ORVFileMode mode, bool keep_tree, ORVContainer** made) {
  hid_t id = H5I_INVALID_HID;
  const int opened = OH5WriteOpenFile(name, mode, &id);
  if (opened != kOk) return opened;
  h5::WriteFile file{h5::File(id)};
  auto container = std::make_unique<ORVContainer>(name);
  container->version = std::make_unique<ORVFileVersion>(VersionOfNumber(version));
  int status = kOk;
  if (mode != ORV_FILE_APPEND || !keep_tree) {
    const Swapped<int> writer_version(process().g_nWriterVersion, static_cast<int>(version));
    status = OH5CreateSkeleton(file.get()) == kOk ? kOk : kFail;
  }
  status = file.Finish(status);
  *made = container.release();
  return status;
}

Swapped<int> UseWriterVersion(const ORVContainer& container) {
  const ORVFileVersion version = container.version ? *container.version : ORVFileVersion{};
  return Swapped<int>(process().g_nWriterVersion, NumberOfVersion(version));
}

std::vector<std::string> LinksBelow(const std::string& block_path, const std::vector<std::string>& names) {
  std::vector<std::string> paths;
  paths.reserve(names.size());
  for (const std::string& name : names) paths.emplace_back(block_path).append("/").append(name);
  return paths;
}

}  // namespace orvio
