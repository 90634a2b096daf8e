// The datasets of a variable, written, and the write of the whole block.

#include <algorithm>
#include <climits>
#include <string>

#include "block/block_write.h"
#include "block/stored_shapes.h"
#include "filer/versions.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/group_paths.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_variable.h"
#include "variable/variable_identity.h"
#include "variable/variable_tables.h"

using namespace orvio;

namespace {

/// Writes the tables of a variable, one after the other.
///
/// QUIRK: a table that fails does not end the write, and the status is that of the last one. Writers of partly
/// filled variables rely on the tables behind a missing one. Pinned by
/// VariableDataWrite.AnswersTheStatusOfTheLastTable.
class TableWriter {
 public:
  explicit TableWriter(hid_t data) : data_(data) {}

  void Integers(const char* name, hsize_t count, _ORVDataType type, const int* values) {
    status_ = OH5Write_INT(data_, name, 1, &count, CellType(type), values);
  }
  void Floats(const char* name, hsize_t count, _ORVDataType type, const float* values) {
    status_ = OH5Write_FLOAT(data_, name, 1, &count, CellType(type), values);
  }
  void Map(const MapShape& shape, const float* values) {
    status_ = OH5Write_FLOAT(data_, disk::vmap, shape.rank, shape.dims, ORV_FLOAT, values);
  }
  void Texts(const char* name, hsize_t count, int width, const char* values) {
    status_ = OH5Write_CHAR(data_, name, 1, &count, width, values);
  }
  void TotalUnlessThere(const char* name, std::uint64_t total) {
    if (h5::HasAttribute(data_, name)) return;
    const int value = static_cast<int>(std::min<std::uint64_t>(total, INT_MAX));
    status_ = OH5write_ATTRIBUTE(data_, name, nullptr, ORV_INT, 0, &value);
  }
  int status() const { return status_; }

 private:
  hid_t data_;
  int status_ = kOk;
};

/// Takes the same tables for what they would be in the file.
class VariableShapes : public TableShapes {
 public:
  void Map(const MapShape& shape, const float* /*values*/) { Add({disk::vmap, {shape.dims, shape.dims + shape.rank}}); }
  void TotalUnlessThere(const char* /*name*/, std::uint64_t /*total*/) {}
};

template <class Tables>
void PutUnits(const ORVVariable& variable, Tables& out, std::uint64_t base, std::uint64_t derived) {
  const hsize_t components = ComponentsOf(variable);
  if (variable.m_pMbunit) out.Integers(disk::mbunit, components, variable.m_mbunitType, variable.m_pMbunit);
  if (variable.m_pMdunit) out.Integers(disk::mdunit, components, variable.m_mdunitType, variable.m_pMdunit);
  if (base != 0) {
    if (variable.m_pUbid) out.Integers(disk::ubid, base, variable.m_ubidType, variable.m_pUbid);
    if (variable.m_pUbexp) out.Floats(disk::ubexp, base, variable.m_ubexpType, variable.m_pUbexp);
  }
  if (derived != 0) {
    if (variable.m_pUdid) out.Integers(disk::udid, derived, variable.m_udidType, variable.m_pUdid);
    if (variable.m_pUdexp) out.Floats(disk::udexp, derived, variable.m_udexpType, variable.m_pUdexp);
  }
}

template <class Tables>
void PutLabelsAndMap(const ORVVariable& variable, Tables& out) {
  const hsize_t components = ComponentsOf(variable);
  if (variable.m_subslen > 0) {
    out.Texts(disk::subscr, LabelBytesOf(variable), 1, variable.m_pSubscr);
    out.Integers(disk::subscnt, components, ORV_INT, variable.m_pSubscnt);
    out.Integers(disk::subsoffs, components, ORV_INT, variable.m_pSubsoffs);
  }
  if (const auto shape = MapShapeOf(variable)) out.Map(*shape, variable.m_pVmap);
}

template <class Tables>
void PutTables(const ORVVariable& variable, Tables& out) {
  const hsize_t components = ComponentsOf(variable);
  const std::uint64_t base = SumOfCounts(variable.m_pMbunit, components);
  const std::uint64_t derived = SumOfCounts(variable.m_pMdunit, components);
  PutUnits(variable, out, base, derived);
  if (process().g_nWriterVersion < kFirstSingleLayoutVersion) {
    out.Integers(disk::cid, components, variable.m_cidType, variable.m_pCid);
    out.Texts(disk::cname, components, static_cast<int>(disk::kTextWidth), variable.m_pCname);
    return;
  }
  out.TotalUnlessThere(disk::lenb, base);
  out.TotalUnlessThere(disk::lend, derived);
  PutLabelsAndMap(variable, out);
}

WrittenShapes ShapesOf(const ORVVariable& variable) {
  VariableShapes tables;
  if (variable.m_ncoo > 0) PutTables(variable, tables);
  return tables.shapes();
}

/// The group is named before the header is written: that fills an empty key with blanks.
int WriteInto(hid_t file, ORVVariable& variable, int what) {
  const bool single = process().g_nWriterVersion >= kFirstSingleLayoutVersion;
  h5::Group type_group = h5::OpenGroup(file, h5::GroupPath(single ? h5::kVariable : h5::kVariables).c_str());
  if (!type_group) return kFail;
  const std::string name(GroupNameOf(variable));
  if (what & ORV_WRITE_DATA && !FitsStoredBlock(type_group.get(), name, ShapesOf(variable))) return kFail;
  int status = kFail;
  {
    BlockParts parts(type_group.get(), name.c_str(), what);
    if (parts) status = parts.Close(WriteStages(variable, parts, what));
  }
  return type_group.Close() ? status : kFail;
}

}  // namespace

int ORVVariable::WriteData(hid_t data) {
  if (m_ncoo <= 0) return kFail;
  return h5::Entry(kFail, [&] {
    TableWriter out(data);
    PutTables(*this, out);
    return out.status();
  });
}

int ORVVariable::WriteBlock(const char* path, int /*state*/, int flags) {
  if (!path) return kFail;
  return h5::Entry(kFail, [&] {
    h5::WriteFile file(h5::OpenFile(path, H5F_ACC_RDWR));
    if (!file) return kFail;
    return file.Finish(WriteInto(file.get(), *this, flags & (ORV_WRITE_HEADER | ORV_WRITE_DATA)));
  });
}
