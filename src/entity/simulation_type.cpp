// The block of the index types, read and written. It stands in "post/constant/indices". Files up to version 1.2 hold
// the names themselves; later ones name a group of variables, see index_types.cpp.

#include "block/block_keys.h"
#include "block/block_write.h"
#include "filer/versions.h"
#include "h5/dataset_reader.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_definitions.h"

using namespace orvio;

ORVSimulationType::ORVSimulationType() : m_nindex(0), m_etypvar{}, m_pEtypindex(nullptr), m_reserved(-1) {
  m_BlkKey = kSimulationTypeKey;
}

ORVSimulationType::~ORVSimulationType() = default;

int ORVSimulationType::AppendBlockSchema(std::string& /*path*/) { return kOk; }

int ORVSimulationType::ReadHeader(hid_t header, int flags) {
  if (!(flags & ORV_READ_HEADER)) return kFail;
  h5::HeaderReader in(GetH5Reader(), header);
  in.required(disk::block, m_BlkKey);
  in.required(disk::nindex, m_nindex);
  in.if_present(disk::etypvar, m_etypvar);
  in.strip(m_etypvar);
  return in.status();
}

int ORVSimulationType::ReadData(hid_t data, int flags) {
  if (!(flags & ORV_READ_DATA) || !GetH5Reader()) return kFail;
  return h5::Entry(kFail, [&] {
    if (!h5::LinkExists(data, disk::etypindex)) return kOk;
    h5::DatasetReader in(GetH5Reader(), data);
    in.texts(disk::etypindex, disk::kTextWidth, m_pEtypindex, m_nindex);
    if (in.ok()) StripEach(m_pEtypindex, static_cast<std::uint64_t>(m_nindex));
    return in.status();
  });
}

int ORVSimulationType::WriteHeader(hid_t header) {
  h5::HeaderWriter out(header);
  out.integer(disk::block, m_BlkKey);
  out.text(disk::blocktype, disk::indices);
  out.integer(disk::nindex, m_nindex);
  if (process().g_nWriterVersion >= kFirstSingleLayoutVersion) out.text(disk::etypvar, m_etypvar);
  return out.status();
}

int ORVSimulationType::WriteData(hid_t data) {
  if (m_nindex < 1) return kFail;
  if (process().g_nWriterVersion >= kFirstSingleLayoutVersion) return kOk;
  const auto count = static_cast<hsize_t>(m_nindex);
  return OH5Write_CHAR(data, disk::etypindex, 1, &count, static_cast<int>(disk::kTextWidth), m_pEtypindex);
}

int ORVSimulationType::WriteBlock(const char* path, int /*state*/, int flags) {
  if (!path) return kFail;
  return h5::Entry(kFail, [&] {
    return WriteIntoFixedGroup(*this, path, h5::kIndices, flags & (ORV_WRITE_HEADER | ORV_WRITE_DATA),
                               {{disk::etypindex, {m_nindex}, disk::kTextWidth}});
  });
}
