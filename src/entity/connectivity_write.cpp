// Writing of an element connectivity block, in the order of the format page. The unit tables of the float parameters
// and the incremental flag are read from other writers' files; this library never writes them.

#include "block/home_group.h"
#include "entity/connectivity.h"
#include "filer/process_state.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_ele_connectivity.h"

using namespace orvio;

int ORVEleConnectivity::WriteHeader(hid_t header) {
  h5::HeaderWriter out(header);
  out.integer(disk::block, m_BlkKey);
  out.text(disk::blocktype, disk::connectivities);
  out.text(disk::etypelem, m_etypelem);
  out.text(disk::etyppart, m_etyppart);
  out.text(disk::etypnode, m_etypnode);
  out.integer(disk::nele, m_nele);
  out.integer(disk::npele, m_npele);
  if (m_ndim != kUnknownDim) out.integer(disk::ndim, m_ndim);
  out.integer(disk::nbint, m_nbint);
  out.integer(disk::nbfloat, m_nbfloat);
  out.integer(disk::nindex, m_nindex);
  // Readers build the generic entity types from it: without one, every element type stands for itself.
  if (process().g_nWriterVersion > ORV_VERSION_1_2) out.text(disk::etyp, *m_etyp ? m_etyp : m_etypelem);
  return out.status();
}

int ORVEleConnectivity::WriteData(hid_t data) {
  if (m_nele < 1 || m_npele < 1 || m_nbint < 0 || m_nbfloat < 0) return kFail;
  const hsize_t one[] = {static_cast<hsize_t>(m_nele)};
  const hsize_t rows[] = {one[0], static_cast<hsize_t>(m_npele)};
  const hsize_t int_rows[] = {one[0], static_cast<hsize_t>(m_nbint)};
  const hsize_t float_rows[] = {one[0], static_cast<hsize_t>(m_nbfloat)};
  // QUIRK: only the last write tells; one before it may fail without a word. Solvers leave out element or part ids by
  // a null buffer and go on at 0; they would stop at any other answer. Pinned by
  // ConnectivityWrite.ReportsOnlyTheLastDataset.
  (void)OH5Write_INT(data, disk::idele, 1, one, m_ideleType, m_idele);
  (void)OH5Write_INT(data, disk::pid, 1, one, m_pidType, m_pid);
  int status = OH5Write_INT(data, disk::ic, 2, rows, m_icType, m_ic);
  if (m_nbint != 0) status = OH5Write_INT(data, disk::iparam, 2, int_rows, m_iparamType, m_iparam);
  if (m_nbfloat != 0) status = OH5Write_FLOAT(data, disk::fparam, 2, float_rows, m_fparamType, m_fparam);
  return status;
}

int ORVEleConnectivity::WriteIndex(hid_t index) {
  if (index < 0 || m_nindex < 1) return kFail;
  return WriteIndexComm(index, static_cast<hsize_t>(m_nindex), 0, 1, m_indexidentType, m_indexident, m_indexvalType,
                        m_indexval);
}

int ORVEleConnectivity::WriteBlock(const char* path, int state, int mode) {
  if (!path) return kFail;
  // QUIRK: state 0 alone has no index. A state below it goes to the constant section with its index: so do hosts store a
  // constant mesh that has one. Pinned by ConnectivityWrite.TakesANegativeStateForTheConstantSection.
  const int stages = state != 0 ? mode : mode & ~ORV_WRITE_INDEX;
  return h5::Entry(kFail, [&] {
    const WriteAccess access;
    process().g_hLastFile = H5I_INVALID_HID;
    return WriteIntoHome(OpenHome(path, state, {disk::connectivities, false, false}), Content(m_etypelem),
                         ExistingName::kIsRefused, mode,
                         [&](const BlockParts& parts) { return WriteStages(*this, parts, stages); });
  });
}
