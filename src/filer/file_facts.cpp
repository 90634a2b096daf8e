// Sharing of containers, and facts of a file that need it open for a moment.

#include "filer/file_facts.h"

#include <hdf5.h>

#include "filer/container.h"
#include "h5/handle.h"
#include "h5/reader_pool.h"
#include "h5/status.h"
#include "orvio/orv_result.h"
#include "orvio/orv_variable.h"
#include "variable/variable_buffers.h"

namespace orvio {

ORVContainer* Share(ORVContainer* container) {
  if (container) ++container->sharers;
  return container;
}

void Release(ORVContainer* container) {
  if (!container || --container->sharers > 0) return;
  ClearContainer(*container);
  delete container;
}

void ClearContainer(ORVContainer& container) {
  for (ORVVariable* variable : container.variables) {
    FreeBuffers(*variable);
    delete variable;
  }
  container.variables.clear();
  for (std::vector<ORVResult*>* results : {&container.single_results, &container.multi_results}) {
    for (ORVResult* result : *results) delete result;
    results->clear();
  }
}

namespace {

/// A reader of a file for the length of a question.
class ShortLease {
 public:
  explicit ShortLease(const char* file) : reader_(OH5ReaderPool::Get().Request(file, H5F_ACC_RDONLY)) {}
  ~ShortLease() { (void)OH5ReaderPool::Get().Release(reader_); }  // reading only: nothing to lose
  ShortLease(const ShortLease&) = delete;
  ShortLease& operator=(const ShortLease&) = delete;
  IOH5Reader* operator->() const { return reader_; }

 private:
  IOH5Reader* reader_;
};

}  // namespace

ORVFileVersion* VersionOnDemand(ORVContainer& container) {
  if (container.version) return container.version.get();
  container.version = std::make_unique<ORVFileVersion>();
  if (!container.path.empty()) {
    const ShortLease reader(container.path.c_str());
    ORVFileVersion& version = *container.version;
    // A file that cannot be read has version 0.0.0 from now on: hosts ask often.
    (void)reader->ReadFileVersion(version.m_major, version.m_minor, version.m_patch);
  }
  return container.version.get();
}

int AvailableDatasets(const ORVContainer& container) {
  if (container.variables.empty()) return 0;
  return (container.single_results.empty() ? 0 : kSinglestateData) |
         (container.multi_results.empty() ? 0 : kMultistateData);
}

bool FileHasRootGroup(const char* file, const char* name) {
  const ShortLease reader(file);
  const h5::Group group(reader->OpenGroup(reader->GetFileId(), name, H5P_DEFAULT));
  return static_cast<bool>(group);
}

}  // namespace orvio
