// Writing of an element activation block, in the order of the format page.

#include "block/home_group.h"
#include "filer/process_state.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_ele_activation.h"

using namespace orvio;

int ORVEleActivation::WriteHeader(hid_t header) {
  h5::HeaderWriter out(header);
  out.integer(disk::block, m_BlkKey);
  out.text(disk::blocktype, disk::activflags);
  out.text(disk::etyp, m_etyp);
  out.integer(disk::nent, m_nent);
  out.integer(disk::nindex, m_nindex);
  if (process().g_nWriterVersion > ORV_VERSION_1_2) out.integer32(disk::indexic, m_nIncremental);
  return out.status();
}

int ORVEleActivation::WriteData(hid_t data) {
  if (m_nent < 0) return kFail;
  const auto count = static_cast<hsize_t>(m_nent);
  const int status = OH5Write_INT(data, disk::entid, 1, &count, m_entidType, m_entid);
  return status == kOk ? OH5Write_INT(data, disk::status, 1, &count, m_statusType, m_status) : status;
}

int ORVEleActivation::WriteIndex(hid_t index) {
  if (index < 0 || m_nindex < 1) return kFail;
  return WriteIndexComm(index, static_cast<hsize_t>(m_nindex), 0, 1, m_indexidentType, m_indexident, m_indexvalType,
                        m_indexval);
}

int ORVEleActivation::WriteBlock(const char* path, int state, int mode) {
  if (!path || state < 1 || Content(m_etyp).empty()) return kFail;
  return h5::Entry(kFail, [&] {
    const WriteAccess access;
    process().g_hLastFile = H5I_INVALID_HID;
    // QUIRK: the state is found by its name, that of other blocks by its position. Solvers number the states of their flags
    // themselves and may be ahead of the results. Pinned by ActivationWrite.FindsAStateByItsName.
    return WriteIntoHome(*this, OpenHomeInNamedState(path, state, disk::activflags), Content(m_etyp),
                         ExistingName::kIsRefused, mode);
  });
}
