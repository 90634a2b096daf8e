// The fields of the unit system block and its reading. The block stands in "post/constant/system". Its arrays are in
// system_read.cpp, its writing in system_write.cpp, the objects made of it in unit_tables.cpp.

#include "orvio/orv_system.h"

#include <string>

#include "block/block_keys.h"
#include "h5/dataset_reader.h"
#include "h5/entry.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "unit/system_read.h"
#include "variable/variable_tables.h"

using namespace orvio;

namespace {

constexpr std::int64_t kUnknownVersion = -1;  // of the creator; not stored then

}  // namespace

ORVSystem::ORVSystem() { ORVSystem::Initialize(); }

ORVSystem::~ORVSystem() = default;

void ORVSystem::Initialize() {
  ORVBlock::Initialize();
  m_BlkKey = kSystemKey;
  for (Text* text : {&m_title, &m_sys, &m_solverName, &m_solverVers}) Assign(*text, "");
  for (auto* date : {&m_cdate, &m_ctime, &m_mdate, &m_mtime}) Assign(*date, "");
  m_nbunit = m_ndunit = 0;
  m_ubidType = m_udidType = m_ndbunitType = m_udbidType = ORV_INT;
  m_ubconType = m_ubshiftType = m_udscalType = m_udbexpType = ORV_FLOAT;
  m_pUbid = m_pUdid = m_pNdbunit = m_pUdbid = nullptr;
  m_pUbtyp = m_pUbnam = m_pUdnam = nullptr;
  m_pUbshift = m_pUbcon = m_pUdscal = m_pUdbexp = nullptr;
  m_cversion = kUnknownVersion;
}

int ORVSystem::AppendBlockSchema(std::string& /*path*/) { return kOk; }

int ORVSystem::ReadSystemAtt(hid_t /*group*/, _ORVBlockAtt /*att*/) { return kFail; }

namespace {

using h5::DatasetReader;

/// QUIRK: the terminator never stands behind byte 255, so a text of exactly 256 characters loses its last one. Hosts
/// show and compare the solver's name as every reader of this format cuts it. Pinned by
/// SystemHeader.ATextOfExactly256CharactersLosesTheLast.
void ReadText(h5::HeaderReader& in, const char* name, Text& text) {
  in.required(name, text);
  in.strip(text);
  if (in.ok()) text[disk::kTextWidth - 1] = '\0';
}

void ReadBaseUnits(ORVSystem& system, DatasetReader& in) {
  const std::int64_t count = system.m_nbunit;
  in.integers(disk::ubid, CellType(system.m_ubidType), system.m_pUbid, {count});
  in.texts(disk::ubtyp, disk::kTextWidth, system.m_pUbtyp, count);
  in.texts(disk::ubnam, disk::kTextWidth, system.m_pUbnam, count);
  if (!in.ok()) return;
  StripEach(system.m_pUbtyp, static_cast<std::uint64_t>(count));
  StripEach(system.m_pUbnam, static_cast<std::uint64_t>(count));
  in.floats(disk::ubcon, CellType(system.m_ubconType), system.m_pUbcon, {count});
  if (in.wants(disk::ubshift, system.m_pUbshift)) {
    in.floats(disk::ubshift, CellType(system.m_ubshiftType), system.m_pUbshift, {count});
  }
}

/// Whether the arrays have room for what the derived units consist of.
bool FitsArrays(const ORVSystem& system, std::int64_t entries) {
  std::int64_t room = 0;
  return __builtin_mul_overflow(system.m_ndunit, system.m_nbunit, &room) || entries <= room;
}

/// The base units of the derived units, and their exponents.
void ReadProducts(ORVSystem& system, DatasetReader& in) {
  in.integers(disk::ndbunit, CellType(system.m_ndbunitType), system.m_pNdbunit, {system.m_ndunit});
  if (!in.ok()) return;
  const auto entries = EntriesOfDerivedUnits(system);
  if (!entries || !FitsArrays(system, *entries)) return in.fail();
  if (*entries == 0) return;
  in.integers(disk::udbid, CellType(system.m_udbidType), system.m_pUdbid, {*entries});
  // QUIRK: whether the exponents could be read does not count; they are then 0. Writers exist that store ids without
  // exponents, and their files would lose all units. Pinned by SystemData.GoesOnWithoutExponents.
  DatasetReader exponents = in;
  exponents.floats(disk::udbexp, CellType(system.m_udbexpType), system.m_pUdbexp, {*entries});
}

void ReadDerivedUnits(ORVSystem& system, DatasetReader& in) {
  const std::int64_t count = system.m_ndunit;
  in.integers(disk::udid, CellType(system.m_udidType), system.m_pUdid, {count});
  in.texts(disk::udnam, disk::kTextWidth, system.m_pUdnam, count);
  in.floats(disk::udscal, CellType(system.m_udscalType), system.m_pUdscal, {count});
  if (!in.ok()) return;
  StripEach(system.m_pUdnam, static_cast<std::uint64_t>(count));
  ReadProducts(system, in);
}

[[nodiscard]] int ReadTables(ORVSystem& system, DatasetReader in) {
  // QUIRK: without base units the derived ones are not read either, stored or not: their counts stay in the header and
  // their arrays zero. Hosts take such a file for one without units. Pinned by
  // SystemData.WithoutBaseUnitsReadsNoDerivedOnes.
  if (system.m_nbunit == 0) return kOk;
  ReadBaseUnits(system, in);
  if (system.m_ndunit != 0) ReadDerivedUnits(system, in);
  return in.status();
}

/// Stored types of the numeric datasets.
[[nodiscard]] int QueryTypes(ORVSystem& system, IOH5Reader& reader, hid_t data) {
  int status = kOk;
  const auto query = [&](const char* name, _ORVDataType& type) {
    type = ORV_UNKNOWN_TYPE;
    if (reader.ReadDatasetType(data, name, &type) != kOk) status = kFail;
  };
  query(disk::ubid, system.m_ubidType);
  query(disk::ubcon, system.m_ubconType);
  query(disk::ubshift, system.m_ubshiftType);
  query(disk::udid, system.m_udidType);
  // QUIRK: the scales of the derived units get the type of the factors of the base units. A host that sizes its own
  // buffers by the answer reads both into buffers of one kind. Pinned by SystemProbe.OfUdscalLooksAtUbcon.
  query(disk::ubcon, system.m_udscalType);
  query(disk::ndbunit, system.m_ndbunitType);
  query(disk::udbid, system.m_udbidType);
  query(disk::udbexp, system.m_udbexpType);
  return status;
}

}  // namespace

int ORVSystem::ReadHeader(hid_t header, int flags) {
  if (!(flags & ORV_READ_HEADER)) return kFail;
  h5::HeaderReader in(GetH5Reader(), header);
  in.required(disk::block, m_BlkKey);
  ReadText(in, disk::title, m_title);
  ReadText(in, disk::sys, m_sys);
  ReadText(in, disk::solver_name, m_solverName);
  ReadText(in, disk::solver_vers, m_solverVers);
  in.required(disk::cdate, m_cdate);
  in.strip(m_cdate);
  in.required(disk::ctime, m_ctime);
  in.strip(m_ctime);
  in.required(disk::mdate, m_mdate);
  in.strip(m_mdate);
  in.required(disk::mtime, m_mtime);
  in.strip(m_mtime);
  in.required(disk::nbunit, m_nbunit);
  in.required(disk::ndunit, m_ndunit);
  if (!in.attempted(disk::cversion, m_cversion) && in.ok()) m_cversion = kUnknownVersion;
  return in.status();
}

int ORVSystem::ReadData(hid_t data, int flags) {
  IOH5Reader* reader = GetH5Reader();
  if (!reader) return kFail;
  return h5::Entry(kFail, [&] {
    int status = kFail;
    if (flags & ORV_READ_DATA) {
      status = ReadTables(*this, DatasetReader(reader, data));
      if (status != kOk) return status;
    }
    return flags & ORV_READ_DATA_INFO ? QueryTypes(*this, *reader, data) : status;
  });
}
