// The datasets of a variable, read. Writing them is in variable_write.cpp, their buffers in variable_buffers.cpp.

#include <algorithm>

#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "orvio/orv_variable.h"
#include "variable/variable_identity.h"
#include "variable/variable_tables.h"

using namespace orvio;

namespace {

/// Reads whole datasets into the buffers of a variable. A missing buffer is no failure: nobody wants that table. Nor does
/// a failed table always end the reading, which is why these are no lines of an h5::DatasetReader.
class Tables {
 public:
  Tables(IOH5Reader& reader, hid_t data) : reader_(reader), data_(data) {}

  bool Has(const char* name) const { return h5::LinkExists(data_, name); }

  [[nodiscard]] int Numbers(const char* name, int rank, hsize_t* dims, _ORVDataType type, void* buffer) const {
    return buffer ? reader_.ReadDatasetAll(data_, name, rank, dims, CellType(type), buffer) : kOk;
  }
  [[nodiscard]] int Column(const char* name, hsize_t count, _ORVDataType type, void* buffer) const {
    return Numbers(name, 1, &count, type, buffer);
  }
  [[nodiscard]] int ColumnIfThere(const char* name, hsize_t count, _ORVDataType type, void* buffer) const {
    return Has(name) ? Column(name, count, type, buffer) : kOk;
  }
  [[nodiscard]] int Texts(const char* name, hsize_t count, hsize_t width, char* buffer) const {
    hsize_t dims[] = {count, width};
    return buffer ? reader_.ReadDatasetAll(data_, name, 2, dims, ORV_CHAR, buffer) : kOk;
  }

 private:
  IOH5Reader& reader_;
  hid_t data_;
};

/// As for the texts of the header, the terminator never stands behind byte 255.
void TrimComponentNames(ORVVariable& variable) {
  for (std::uint64_t i = 0; variable.m_pCname && i < ComponentsOf(variable); ++i) {
    char* name = variable.m_pCname + i * disk::kTextWidth;
    const std::size_t length = Content(name).find_last_not_of(' ') + 1;  // npos + 1 is 0: all blanks
    name[std::min(length, disk::kTextWidth - 1)] = '\0';
  }
}

/// QUIRK: names and ids may be missing only where the variable has a key, and the names of such a variable keep
/// their blanks. A file with keys holds neither dataset, one without them names its components in no other way, so an
/// unkeyed variable of the single layout is not read at all. Pinned by
/// VariableData.WithoutAKeyNeedsItsComponentNamesAndIds, VariableData.WithAKeyGoesOnWithoutComponentNamesAndIds and
/// VariableData.KeepsTheBlanksOfComponentNamesOfAKeyedVariable.
int ReadComponents(ORVVariable& variable, const Tables& tables) {
  const hsize_t components = ComponentsOf(variable);
  const bool keyed = HasKey(variable);
  const int names = tables.Texts(disk::cname, components, disk::kTextWidth, variable.m_pCname);
  if (names != kOk && !keyed) return names;
  const int ids = tables.Column(disk::cid, components, variable.m_cidType, variable.m_pCid);
  if (ids != kOk && !keyed) return ids;
  if (!keyed) TrimComponentNames(variable);
  return kOk;
}

int ReadMap(ORVVariable& variable, const Tables& tables) {
  auto shape = MapShapeOf(variable);
  return shape ? tables.Numbers(disk::vmap, shape->rank, shape->dims, ORV_FLOAT, variable.m_pVmap) : kOk;
}

int ReadLabels(ORVVariable& variable, const Tables& tables) {
  if (variable.m_subslen <= 0) return kOk;  // a negative one is reported when handles are made
  const hsize_t components = ComponentsOf(variable);
  int status = tables.ColumnIfThere(disk::subscnt, components, ORV_INT, variable.m_pSubscnt);
  if (status == kOk) status = tables.ColumnIfThere(disk::subsoffs, components, ORV_INT, variable.m_pSubsoffs);
  if (status == kOk) status = tables.Texts(disk::subscr, LabelBytesOf(variable), 1, variable.m_pSubscr);
  return status;
}

/// Reads the counts of one kind of units and gives their sum.
int ReadUnitCounts(const Tables& tables, const char* name, hsize_t components, _ORVDataType type, int* counts,
                   std::uint64_t& sum) {
  sum = 0;
  if (!counts || !tables.Has(name)) return kOk;
  const int status = tables.Column(name, components, type, counts);
  if (status != kOk) return status;
  if (!FitUnitTables(counts, components)) return kFail;
  sum = SumOfCounts(counts, components);
  return kOk;
}

int ReadUnits(ORVVariable& variable, const Tables& tables) {
  const hsize_t components = ComponentsOf(variable);
  std::uint64_t base = 0, derived = 0;
  int status = ReadUnitCounts(tables, disk::mbunit, components, variable.m_mbunitType, variable.m_pMbunit, base);
  if (status != kOk) return status;
  status = ReadUnitCounts(tables, disk::mdunit, components, variable.m_mdunitType, variable.m_pMdunit, derived);
  if (status != kOk) return status;
  if (base != 0) {
    status = tables.ColumnIfThere(disk::ubid, base, variable.m_ubidType, variable.m_pUbid);
    if (status == kOk) status = tables.ColumnIfThere(disk::ubexp, base, variable.m_ubexpType, variable.m_pUbexp);
  }
  if (derived != 0 && status == kOk) {
    status = tables.ColumnIfThere(disk::udid, derived, variable.m_udidType, variable.m_pUdid);
    if (status == kOk) status = tables.ColumnIfThere(disk::udexp, derived, variable.m_udexpType, variable.m_pUdexp);
  }
  return status;
}

int ReadTables(ORVVariable& variable, IOH5Reader* reader, hid_t data) {
  if (!reader || variable.m_ncoo < 0) return kFail;
  const Tables tables(*reader, data);
  int status = ReadComponents(variable, tables);
  if (status == kOk) status = ReadMap(variable, tables);
  if (status == kOk) status = ReadLabels(variable, tables);
  if (status == kOk) status = ReadUnits(variable, tables);
  return status;
}

}  // namespace

int ORVVariable::ReadData(hid_t data, int flags) {
  return h5::Entry(kFail, [&] {
    int status = kFail;
    if (flags & ORV_READ_DATA && m_ncoo != 0) {
      status = ReadTables(*this, GetH5Reader(), data);
      if (status != kOk) return status;
    }
    if (flags & ORV_READ_DATA_INFO) status = OH5Read_DATATYPE(data, disk::cid, &m_cidType);
    return status;
  });
}
