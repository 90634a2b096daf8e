// Writing of a part block, in the order of the format page.

#include "block/home_group.h"
#include "filer/process_state.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_part.h"

using namespace orvio;

namespace {

/// Versions up to 1.2 have property types, but titles of one width only and no word of what was left out.
bool IsOldWriter() { return process().g_nWriterVersion <= ORV_VERSION_1_2; }

/// Writes the datasets of a part block, one per line. Once a line has failed the later ones do nothing.
class PartWriter {
 public:
  PartWriter(hid_t data, std::int64_t parts) : data_(data), parts_(static_cast<hsize_t>(parts)) {}

  void integers(const char* name, _ORVDataType type, const void* array) {
    if (status_ == kOk) status_ = OH5Write_INT(data_, name, 1, &parts_, type, array);
  }
  void texts(const char* name, int width, const char* texts) {
    if (status_ == kOk) status_ = OH5Write_CHAR(data_, name, 1, &parts_, width, texts);
  }
  bool ok() const { return status_ == kOk; }
  [[nodiscard]] int status() const { return status_; }

 private:
  hid_t data_;
  hsize_t parts_;
  int status_ = kOk;
};

/// QUIRK: files up to version 1.2 get 256 bytes a title whatever `m_length` says. Their readers know no other width, and
/// hosts hand over 256-byte titles for them without a look at `m_length`. Pinned by
/// PartWrite.TakesTitlesOf256BytesForOldVersionsWhateverTheLength.
void WriteOldTail(const ORVPart& block, PartWriter& out) {
  if (block.m_title) out.texts(disk::title, static_cast<int>(disk::kTextWidth), block.m_title);
  if (block.m_pvtyp) out.integers(disk::pvtyp, block.m_pvtypType, block.m_pvtyp);
}

/// Tells later readers which lists were left out.
///
/// QUIRK: property types are dropped without a word, and the bits of what was left out do not name them. Hosts hand over
/// the same block for every version: a refusal would cost them the parts, and no reader knows a fourth bit. Pinned by
/// PartWrite.DropsPropertyTypesInLaterVersionsAndSaysNothing.
[[nodiscard]] int WriteLeftOut(const ORVPart& block, hid_t data) {
  constexpr int kNoMid = 1, kNoMtyp = 2, kNoPcol = 4;
  h5::HeaderWriter out(data);
  out.integer32(disk::off, (block.m_mid ? 0 : kNoMid) | (block.m_mtyp ? 0 : kNoMtyp) | (block.m_pcol ? 0 : kNoPcol));
  return out.status();
}

}  // namespace

int ORVPart::WriteHeader(hid_t header) {
  h5::HeaderWriter out(header);
  out.integer(disk::block, m_BlkKey);
  out.text(disk::blocktype, disk::parts);
  out.text(disk::etyppart, m_etyppart);
  out.integer(disk::npart, m_npart);
  if (!IsOldWriter()) out.integer32(disk::length, m_length);
  out.integer(disk::nindex, m_nindex);
  return out.status();
}

int ORVPart::WriteData(hid_t data) {
  if (m_npart < 0) return kFail;
  PartWriter out(data, m_npart);
  out.integers(disk::pid, m_pidType, m_pid);
  if (m_pcol) out.integers(disk::pcol, m_pcolType, m_pcol);
  if (m_mid) out.integers(disk::mid, m_midType, m_mid);
  if (m_mtyp) out.integers(disk::mtyp, m_mtypType, m_mtyp);
  if (IsOldWriter()) {
    WriteOldTail(*this, out);
    return out.status();
  }
  if (m_title && m_length != 0) out.texts(disk::title, m_length, m_title);
  return out.ok() ? WriteLeftOut(*this, data) : out.status();
}

int ORVPart::WriteBlock(const char* path, int state, int mode) {
  if (!path || Content(m_etyppart).empty()) return kFail;
  return h5::Entry(kFail, [&] {
    const WriteAccess access;
    const int written =
        mode & ~ORV_WRITE_INDEX;  // the group of an index is made; this block has nothing to put into it
    return WriteIntoHome(OpenHome(path, state, {disk::parts, true, true}), Content(m_etyppart),
                         ExistingName::kIsRefused, mode,
                         [&](const BlockParts& parts) { return WriteStages(*this, parts, written); });
  });
}
