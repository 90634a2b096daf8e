// Writing of a collector block, in the order of the format page. The incremental flag is read from other writers' files;
// this library never writes it.

#include <utility>

#include "block/home_group.h"
#include "block/stored_shapes.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_collector.h"

using namespace orvio;

int ORVCollector::WriteHeader(hid_t header) {
  h5::HeaderWriter out(header);
  out.integer(disk::block, m_BlkKey);
  out.text(disk::blocktype, disk::collector);
  out.text(disk::etypcoll, m_etypcoll);
  out.integer(disk::ncoll, m_ncoll);
  out.integer(disk::ntyp, m_ntyp);
  out.integer(disk::nenttot, m_nenttot);
  out.integer(disk::nindex, m_nindex);
  return out.status();
}

/// QUIRK: collectors without any id leave all but these in the file and answer 1. Readers take such a block for one with
/// empty collectors; hosts that write one have to look at `m_nenttot` and not at the answer. Pinned by
/// CollectorWrite.WithoutIdsStoresAllButThemAndAnswersOne.
int ORVCollector::WriteData(hid_t data) {
  if (m_ncoll < 1 || m_ntyp < 0 || m_nenttot < 0) return kFail;
  const hsize_t collectors[] = {static_cast<hsize_t>(m_ncoll), static_cast<hsize_t>(m_ntyp)};
  const hsize_t types[] = {collectors[1]};
  const hsize_t ids[] = {static_cast<hsize_t>(m_nenttot)};
  int status = OH5Write_INT(data, disk::idcoll, 1, collectors, m_idcollType, m_idcoll);
  if (status == kOk) status = OH5Write_CHAR(data, disk::etyp, 1, types, disk::kTextWidth, m_etyp);
  if (status == kOk) status = OH5Write_INT(data, disk::nent, 2, collectors, m_nentType, m_nent);
  if (status == kOk) status = OH5Write_INT(data, disk::entid, 1, ids, m_entidType, m_entid);
  return status;
}

int ORVCollector::WriteIndex(hid_t index) {
  if (index < 0 || m_nindex < 1) return kFail;
  return WriteIndexComm(index, static_cast<hsize_t>(m_nindex), 0, 1, m_indexidentType, m_indexident, m_indexvalType,
                        m_indexval);
}

int ORVCollector::WriteBlock(const char* path, int state, int mode) {
  const std::string_view name = Content(m_etypcoll);
  if (!path || name.empty()) return kFail;
  return h5::Entry(kFail, [&] {
    const WriteAccess access;
    Home home = OpenHome(path, state, {disk::collector, false, false});
    if (!home.group) return kFail;
    const bool fits = FitsStoredBlock(home.group.get(), name,
                                      {{disk::idcoll, {m_ncoll}},
                                       {disk::etyp, {m_ntyp}, disk::kTextWidth},
                                       {disk::nent, {m_ncoll, m_ntyp}},
                                       {disk::entid, {m_nenttot}}});
    // Under a header of other counts the data could not be read any more.
    if (mode & (ORV_WRITE_HEADER | ORV_WRITE_DATA) && !fits) return kFail;
    // In the constant section the group of an index is made all the same.
    const int written = state > 0 ? mode : mode & ~ORV_WRITE_INDEX;
    return WriteIntoHome(std::move(home), name, ExistingName::kIsWrittenInto, mode,
                         [&](const BlockParts& parts) { return WriteStages(*this, parts, written); });
  });
}
