// Writing of the unit system block.

#include <optional>

#include "block/block_write.h"
#include "block/stored_shapes.h"
#include "filer/versions.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_system.h"
#include "unit/system_read.h"
#include "variable/variable_tables.h"

using namespace orvio;

namespace {

constexpr std::size_t kDateWidth = 8;
constexpr int kNameWidth = static_cast<int>(disk::kTextWidth);
constexpr std::int64_t kUnknownVersion = -1;

/// Writes the tables, each of them whatever became of those before it: a reader does more with a part than with none.
/// status() tells of any failure.
class TableWriter {
 public:
  explicit TableWriter(hid_t data) : data_(data) {}

  void Integers(const char* name, hsize_t count, _ORVDataType type, const int* values) {
    Keep(OH5Write_INT(data_, name, 1, &count, CellType(type), values));
  }
  void Floats(const char* name, hsize_t count, _ORVDataType type, const float* values) {
    Keep(OH5Write_FLOAT(data_, name, 1, &count, CellType(type), values));
  }
  void Texts(const char* name, hsize_t count, int width, const char* values) {
    Keep(OH5Write_CHAR(data_, name, 1, &count, width, values));
  }
  void Number(const char* name, int value) {
    h5::HeaderWriter out(data_);
    out.integer32(name, value);
    Keep(out.status());
  }
  int status() const { return status_; }

 private:
  void Keep(int status) {
    if (status_ == kOk) status_ = status;
  }

  hid_t data_;
  int status_ = kOk;
};

template <class Tables>
void PutBaseUnits(const ORVSystem& system, Tables& out) {
  const auto count = static_cast<hsize_t>(system.m_nbunit);
  out.Integers(disk::ubid, count, system.m_ubidType, system.m_pUbid);
  out.Texts(disk::ubtyp, count, kNameWidth, system.m_pUbtyp);
  out.Texts(disk::ubnam, count, kNameWidth, system.m_pUbnam);
  // Readers take a missing table for shifts of 0.
  if (system.m_pUbshift) out.Floats(disk::ubshift, count, system.m_ubshiftType, system.m_pUbshift);
  out.Floats(disk::ubcon, count, system.m_ubconType, system.m_pUbcon);
}

template <class Tables>
void PutDerivedUnits(const ORVSystem& system, Tables& out, std::int64_t entries) {
  const auto count = static_cast<hsize_t>(system.m_ndunit);
  out.Integers(disk::udid, count, system.m_udidType, system.m_pUdid);
  out.Texts(disk::udnam, count, kNameWidth, system.m_pUdnam);
  out.Floats(disk::udscal, count, system.m_udscalType, system.m_pUdscal);
  out.Integers(disk::ndbunit, count, system.m_ndbunitType, system.m_pNdbunit);
  if (entries == 0) return;
  out.Integers(disk::udbid, static_cast<hsize_t>(entries), system.m_udbidType, system.m_pUdbid);
  out.Floats(disk::udbexp, static_cast<hsize_t>(entries), system.m_udbexpType, system.m_pUdbexp);
}

/// `entries` of the derived units: nothing where these cannot be told.
template <class Tables>
void PutTables(const ORVSystem& system, Tables& out, std::optional<std::int64_t> entries) {
  if (system.m_nbunit > 0) PutBaseUnits(system, out);
  if (system.m_ndunit > 0 && entries) PutDerivedUnits(system, out, *entries);
}

WrittenShapes ShapesOf(const ORVSystem& system) {
  TableShapes tables;
  PutTables(system, tables, EntriesOfDerivedUnits(system));
  return tables.shapes();
}

}  // namespace

int ORVSystem::WriteHeader(hid_t header) {
  h5::HeaderWriter out(header);
  out.integer(disk::block, m_BlkKey);
  out.text(disk::blocktype, disk::system_);
  out.text(disk::title, m_title);
  out.text(disk::sys, m_sys);
  out.text(disk::solver_name, m_solverName);
  out.text(disk::solver_vers, m_solverVers);
  out.text(disk::cdate, m_cdate, kDateWidth);
  out.text(disk::ctime, m_ctime, kDateWidth);
  out.text(disk::mdate, m_mdate, kDateWidth);
  out.text(disk::mtime, m_mtime, kDateWidth);
  out.integer(disk::nbunit, m_nbunit);
  out.integer(disk::ndunit, m_ndunit);
  if (m_cversion != kUnknownVersion) out.integer(disk::cversion, m_cversion);
  return out.status();
}

int ORVSystem::WriteData(hid_t data) {
  return h5::Entry(kFail, [&] {
    const auto entries = EntriesOfDerivedUnits(*this);
    TableWriter out(data);
    PutTables(*this, out, entries);
    if (process().g_nWriterVersion >= kFirstSingleLayoutVersion) {
      out.Number(disk::lenudb, static_cast<int>(entries.value_or(0)));
    }
    return entries ? out.status() : kFail;
  });
}

int ORVSystem::WriteIndex(hid_t /*index*/) { return kOk; }

int ORVSystem::WriteBlock(const char* path, int /*state*/, int flags) {
  if (!path) return kFail;
  return h5::Entry(kFail, [&] {
    const WrittenShapes shapes = flags & ORV_WRITE_DATA ? ShapesOf(*this) : WrittenShapes();
    return WriteIntoFixedGroup(*this, path, h5::kSystem, flags & (ORV_WRITE_HEADER | ORV_WRITE_DATA), shapes);
  });
}
