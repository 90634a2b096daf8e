// Reading of a part block into vectors. Their size comes from the header of a file and is held against what the file
// really has before anything is made.

#include "entity/part_info.h"

#include <algorithm>
#include <utility>

#include "block/reader_lease.h"
#include "entity/titles.h"
#include "h5/c_array.h"
#include "h5/disk_names.h"
#include "h5/extents.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_part.h"

namespace orvio {
namespace {

/// A part block that makes its arrays when it has come to its datasets.
class PartReader : public ORVPart {
 public:
  explicit PartReader(const std::string& type) { Assign(m_etyppart, type); }

  /// Nothing without a block or parts, empty without their data.
  std::optional<PartInfo> Read(const char* file, int state);

 protected:
  int ReadData(hid_t data, int mode) override;

 private:
  std::uint64_t Slot() const { return m_length > 0 ? static_cast<std::uint64_t>(m_length) : disk::kTextWidth; }
  bool MakeArrays(hid_t data);
  PartInfo Take();

  PartInfo info_;
  CArray<char> titles_;
};

/// Bytes that are made for each part besides its title.
constexpr std::uint64_t kBytesPerPart = 3 * sizeof(int) + sizeof(std::string);

std::optional<PartInfo> PartReader::Read(const char* file, int state) {
  const ReaderLease reader(*this, file);
  if (!reader) return std::nullopt;
  const h5::Group group(OpenBlockGroup(state));
  if (!group || ReadBlockStepWrap(group.get(), ORV_READ_HEADER) != kOk || m_npart < 1) return std::nullopt;
  return ReadBlockStepWrap(group.get(), ORV_READ_DATA) == kOk ? Take() : PartInfo();
}

/// False when nothing in the file stands behind so many parts or so long titles.
bool PartReader::MakeArrays(hid_t data) {
  const auto parts = static_cast<std::uint64_t>(m_npart);
  const std::uint64_t title = h5::LinkExists(data, disk::title) ? Slot() : 0;
  std::uint64_t bytes = 0;
  if (__builtin_mul_overflow(parts, kBytesPerPart + title, &bytes)) return false;
  if (bytes > h5::kUnbackedBytes) {
    if (h5::BackedElements(data, disk::pid, 1) < parts) return false;
    if (title > 0 && h5::BackedElements(data, disk::title, title) < parts) return false;
  }
  if (title > 0) titles_ = ZeroedArray<char>(parts * title + 1);
  for (auto* list : {&info_.ids, &info_.material_ids, &info_.material_types}) list->resize(parts);
  info_.names.resize(parts);
  return title == 0 || titles_;
}

int PartReader::ReadData(hid_t data, int mode) {
  if (!MakeArrays(data)) return kFail;
  m_pid = info_.ids.data();
  m_title = titles_.get();
  m_mid = info_.material_ids.data();
  m_mtyp = info_.material_types.data();
  return ORVPart::ReadData(data, mode);
}

/// What the read has left out is null.
PartInfo PartReader::Take() {
  if (!m_mid) info_.material_ids.clear();
  if (!m_mtyp) info_.material_types.clear();
  if (m_title) {
    for (std::size_t i = 0; i < info_.names.size(); ++i) {
      info_.names[i] = TitleAt(m_title, static_cast<std::int64_t>(i), static_cast<std::int64_t>(Slot()));
    }
  }
  return std::move(info_);
}

}  // namespace

std::optional<PartInfo> ReadPartInfo(const char* file, const std::string& type, int state) {
  if (type.empty()) return std::nullopt;
  return PartReader(type).Read(file, state);
}

}  // namespace orvio
