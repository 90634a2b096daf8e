// Writing of entity attribute and identifiers blocks, in the order of the format page.

#include <utility>

#include "block/block_keys.h"
#include "block/home_group.h"
#include "block/stored_shapes.h"
#include "filer/process_state.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_ent_attribute.h"

using namespace orvio;

namespace {

/// Versions up to 1.2 know neither titles of other widths nor incremental blocks.
bool StoresTitleLength() { return process().g_nWriterVersion > ORV_VERSION_1_2; }

/// QUIRK: files up to version 1.2 get 256 bytes a title whatever `m_length` says. Their readers know no other width, and
/// hosts hand over 256-byte titles for them without a look at `m_length`. Pinned by
/// AttributeWriteTitles.OfOldVersionsHave256BytesWhateverTheLength.
int StoredTitleWidth(const ORVEntAttribute& block) {
  return StoresTitleLength() ? block.m_length : static_cast<int>(disk::kTextWidth);
}

}  // namespace

int ORVEntAttribute::WriteHeader(hid_t header) {
  char group[disk::kTextWidth];
  GetGroupName(group);
  h5::HeaderWriter out(header);
  out.integer(disk::block, m_BlkKey);
  out.text(disk::blocktype, group);
  out.text(disk::etyp, m_etyp);
  out.integer(disk::nent, m_nent);
  out.integer(disk::nuid, m_nuid);
  out.integer(disk::nindex, m_nindex);
  if (StoresTitleLength()) out.integer32(disk::length, m_length);
  if (StoresTitleLength() && m_BlkKey == kAttributeKey) out.integer32(disk::indexic, m_nIncremental);
  return out.status();
}

int ORVEntAttribute::WriteData(hid_t data) {
  if (m_nent < 1 || m_nuid < 0) return kFail;
  const hsize_t one[] = {static_cast<hsize_t>(m_nent)};
  const hsize_t rows[] = {one[0], static_cast<hsize_t>(m_nuid)};
  const int width = StoredTitleWidth(*this);
  int status = OH5Write_INT(data, disk::entid, 1, one, m_entidType, m_entid);
  if (status == kOk && m_nuid != 0) status = OH5Write_INT(data, disk::uid, 2, rows, m_uidType, m_uid);
  if (status == kOk && width != 0) status = OH5Write_CHAR(data, disk::title, 1, one, width, m_title);
  return status;
}

int ORVEntAttribute::WriteIndex(hid_t index) {
  if (index < 0 || m_nindex < 1) return kFail;
  return WriteIndexComm(index, static_cast<hsize_t>(m_nindex), 0, 1, m_indexidentType, m_indexident, m_indexvalType,
                        m_indexval);
}

int ORVEntAttribute::WriteBlock(const char* path, int state, int mode) {
  const std::string_view name = Content(m_etyp);
  if (!path || name.empty()) return kFail;
  return h5::Entry(kFail, [&] {
    const WriteAccess access;
    char group[disk::kTextWidth];
    GetGroupName(group);
    Home home = OpenHome(path, state, {group, true, false});
    if (!home.group) return kFail;
    const auto width = static_cast<std::size_t>(StoredTitleWidth(*this));
    const bool fits =
        FitsStoredBlock(home.group.get(), name,
                        {{disk::entid, {m_nent}}, {disk::uid, {m_nent, m_nuid}}, {disk::title, {m_nent}, width}});
    // Under a header of other counts the data could not be read any more.
    if (mode & (ORV_WRITE_HEADER | ORV_WRITE_DATA) && !fits) return kFail;
    // QUIRK: the group of an index is made, the index left to WriteIndex. Hosts ask for all parts and set no index; the
    // state tells what these blocks hold for. Pinned by
    // AttributeWriteVersion.WithEveryPartAskedForStoresHeaderAndDataOnly.
    const int written = mode & ~ORV_WRITE_INDEX;
    return WriteIntoHome(std::move(home), name, ExistingName::kIsWrittenInto, mode,
                         [&](const BlockParts& parts) { return WriteStages(*this, parts, written); });
  });
}
