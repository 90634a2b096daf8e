// The header of a result block, and its index. Which attributes are written stands in result_write.cpp; `blocktype` and
// `dmpswitch` are written and never read.

#include "block/block_keys.h"
#include "h5/entry.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "result/result_kinds.h"

using namespace orvio;

int ORVResult::ReadHeader(hid_t group, int flags) {
  return h5::Entry(kFail, [&] {
    h5::HeaderReader in(GetH5Reader(), group);
    in.required(disk::block, m_BlkKey);
    in.defaulted(disk::indexic, m_nIncremental);
    const ResultKind* kind = FindResultKind(m_BlkKey);
    if (!in.ok() || !kind) return kFail;
    // QUIRK: multi-state element blocks end here, with the key of the file: they have never had a layer count in their
    // header. Hosts fill such a block item by item. Pinned by ResultHeader.OfAMultiElementKindFailsWithTheKeyRead.
    if (kind->IsProperties() || (kind->IsElement() && kind->IsMultistate())) return kFail;
    if (kind->IsElement()) {
      in.required(disk::numl, m_numl);
      in.required(disk::ndim, m_ndim);
    }
    if (!(flags & ORV_READ_HEADER)) return in.status();

    in.required(disk::etypvar, m_etypvar);
    in.required(disk::ncoo, m_ncoo);
    in.required(TypeName(*kind), m_etyp);
    in.required(CountName(*kind), m_nent);
    in.strip(m_etyp);
    in.strip(m_etypvar);
    in.defaulted(disk::nstate, m_nstate);
    in.defaulted(disk::series, m_series);
    in.strip(m_series);
    in.defaulted(disk::etypzone, m_etypzone);
    in.strip(m_etypzone);
    in.defaulted(disk::zoneid, m_zoneid);
    if (!in.ok()) return in.status();
    // Every writer stores these two. A header without them is told to be short of them and taken all the same.
    (void)OH5Read_ATTRIBUTE(group, disk::nindex, 0, nullptr, ORV_LONG, &m_nindex);
    (void)OH5Read_ATTRIBUTE(group, disk::fswitch, 0, nullptr, ORV_LONG, &m_fswitch);
    in.tolerated(disk::etypframe, m_etypframe);
    in.strip(m_etypframe);
    return in.status();
  });
}

int ORVResult::ReadIndex(hid_t group, int flags) {
  if (!FindBlockKey(m_BlkKey)) return kFail;
  return ReadIndexComm(group, static_cast<hsize_t>(m_nindex), static_cast<hsize_t>(m_nstate), flags, &m_indexidentType,
                       m_indexident, &m_indexvalType, m_indexval);
}
