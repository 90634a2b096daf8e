// The walk over the properties blocks of a section or state. They lie in it without a type group, so the walk meets
// blocks of every kind. One scratch block is read over and over; what is kept is copied.

#include "result/properties_discovery.h"

#include <memory>

#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/orv_properties.h"

namespace orvio {
namespace {

/// The scratch block of a walk, and where its copies go.
class PropertiesScan : public ORVProperties {
 public:
  explicit PropertiesScan(std::vector<ORVProperties*>& found) : found_(found) {}

  /// What a block lacks must not be that of the one before it.
  int ReadHeader(hid_t group, int flags) override {
    ResetSection(ORV_READ_HEADER);
    Initialize();
    return ORVProperties::ReadHeader(group, flags);
  }

  void HeaderWasRead() {
    if (m_BlkKey != ORV_RESULT_PROPERTIES) return;
    auto copy = std::make_unique<ORVProperties>(*this);
    found_.push_back(copy.get());
    copy.release();  // NOLINT(bugprone-unused-return-value): the list has it now
  }

 private:
  std::vector<ORVProperties*>& found_;
};

/// The walk runs inside HDF5's iteration: no exception may leave. Whatever becomes of one block, the others are wanted.
_ORVAction TakeProperties(int status, int stage, void* /*name*/, void* block) {
  h5::EntryVoid([&] {
    auto& scan = *static_cast<PropertiesScan*>(static_cast<ORVBlock*>(block));
    if (status == kOk && stage == ORV_READ_HEADER) scan.HeaderWasRead();
  });
  return ORV_ACTION_CONTINUE;
}

}  // namespace

void ReadProperties(const char* file, int state, std::vector<ORVProperties*>& properties) {
  PropertiesScan scan(properties);
  (void)scan.IterateBlock(file, state, ORV_READ_HEADER, TakeProperties);  // a place that is not there holds none
}

}  // namespace orvio
