#include "linking/sidecar.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace orvio::program {
namespace {

constexpr char kRoot[] = "VTKHDF", kType[] = "UnstructuredGrid";

/// In names of sources HDF5 takes a percent sign for the begin of a pattern.
std::string WithoutPatterns(const std::string& name) {
  std::string plain;
  for (const char c : name) plain += c == '%' ? std::string("%%") : std::string(1, c);
  return plain;
}

hid_t StoredType(NumberKind kind) {
  switch (kind) {
    case NumberKind::kFloat:
      return H5T_IEEE_F32LE;
    case NumberKind::kDouble:
      return H5T_IEEE_F64LE;
    case NumberKind::kInt:
      return H5T_STD_I32LE;
    case NumberKind::kLong:
      return H5T_STD_I64LE;
  }
  return H5I_INVALID_HID;
}

/// The system's file driver, whatever variables of the surroundings say.
OwnedId DiskAccess() {
  OwnedId list(H5Pcreate(H5P_FILE_ACCESS));
  constexpr bool kNoLocks = false, kEvenIfDisabled = true;  // nobody else knows the working name
  (void)(H5Pset_fapl_sec2(list.get()) >= 0 && H5Pset_vol(list.get(), H5VL_NATIVE, nullptr) >= 0 &&
         H5Pset_file_locking(list.get(), kNoLocks, kEvenIfDisabled) >= 0);
  return list;
}

}  // namespace

std::size_t SizeOf(NumberKind kind) { return kind == NumberKind::kFloat || kind == NumberKind::kInt ? 4 : 8; }

std::vector<hsize_t> ShapeOf(const LinkedArray& array) {
  if (array.components == 1) return {array.rows};
  return {array.rows, array.components};
}

Sidecar::Sidecar(const std::string& path, std::string told_as, const std::string& source)
    : told_as_(std::move(told_as)), source_(WithoutPatterns(source)) {
  const OwnedId access = DiskAccess();
  file_ = Made(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, access.get()), "the file");
  root_ = Made(H5Gcreate2(file_.get(), kRoot, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), kRoot);
  const long long version[] = {2, 0};
  AddAttribute("Version", root_.get(), H5T_STD_I64LE, {2}, version);
  const OwnedId text = Made(H5Tcopy(H5T_C_S1), "a text");
  Require(H5Tset_size(text.get(), std::strlen(kType)) >= 0 && H5Tset_strpad(text.get(), H5T_STR_NULLPAD) >= 0,
          "a text");
  AddAttribute("Type", root_.get(), text.get(), {}, kType);
}

void Sidecar::Refuse(const std::string& what) const {
  throw UnfinishedSidecar(told_as_, what + " cannot be written",
                          "check the free space and your permissions in its folder");
}

void Sidecar::Require(bool done, const std::string& what) const {
  if (!done) Refuse(what);
}

OwnedId Sidecar::Made(hid_t id, const std::string& what) const {
  Require(id >= 0, what);
  return OwnedId(id);
}

void Sidecar::AddAttribute(const char* name, hid_t place, hid_t type, const std::vector<hsize_t>& shape,
                           const void* value) {
  const OwnedId space = Made(
      shape.empty() ? H5Screate(H5S_SCALAR) : H5Screate_simple(static_cast<int>(shape.size()), shape.data(), nullptr),
      name);
  OwnedId attribute = Made(H5Acreate2(place, name, type, space.get(), H5P_DEFAULT, H5P_DEFAULT), name);
  const bool is_text = H5Tget_class(type) == H5T_STRING;
  Require(H5Awrite(attribute.get(), is_text ? type : H5T_NATIVE_LLONG, value) >= 0 && attribute.Close(), name);
}

void Sidecar::AddGroup(const std::string& name) {
  OwnedId group = Made(H5Gcreate2(root_.get(), name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name);
  Require(group.Close(), name);
}

void Sidecar::AddSteps(std::int64_t count) {
  const OwnedId group = Made(H5Gcreate2(root_.get(), "Steps", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "Steps");
  const long long steps = count;
  AddAttribute("NSteps", group.get(), H5T_STD_I64LE, {}, &steps);
}

OwnedId Sidecar::CreationList() const {
  OwnedId list = Made(H5Pcreate(H5P_DATASET_CREATE), "a dataset");
  Require(H5Pset_obj_track_times(list.get(), false) >= 0, "a dataset");  // the same input makes the same file
  return list;
}

void Sidecar::WriteAs(const std::string& name, const std::vector<hsize_t>& shape, hid_t stored, hid_t given,
                      const void* values) {
  const OwnedId space = Made(H5Screate_simple(static_cast<int>(shape.size()), shape.data(), nullptr), name);
  const OwnedId list = CreationList();
  OwnedId dataset =
      Made(H5Dcreate2(root_.get(), name.c_str(), stored, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), name);
  const bool has_values = H5Sget_simple_extent_npoints(space.get()) > 0;
  const bool written = !has_values || H5Dwrite(dataset.get(), given, H5S_ALL, H5S_ALL, H5P_DEFAULT, values) >= 0;
  Require(written && dataset.Close(), name);
}

void Sidecar::Write(const std::string& name, const std::vector<hsize_t>& shape, const std::vector<long long>& values) {
  WriteAs(name, shape, H5T_STD_I64LE, H5T_NATIVE_LLONG, values.data());
}

void Sidecar::Write(const std::string& name, const std::vector<hsize_t>& shape, const std::vector<double>& values) {
  WriteAs(name, shape, H5T_IEEE_F64LE, H5T_NATIVE_DOUBLE, values.data());
}

void Sidecar::Write(const std::string& name, const std::vector<hsize_t>& shape,
                    const std::vector<std::uint8_t>& values) {
  WriteAs(name, shape, H5T_STD_U8LE, H5T_NATIVE_UINT8, values.data());
}

namespace {

/// Where runs are in a dataspace: those of an array (`to`) or of a source (`from`).
struct Place {
  std::vector<hsize_t> extents, start;
  std::size_t row_axis = 0, column_axis = 0;
  hsize_t column = 0, columns = 1;
  hsize_t Run::*first = &Run::to;
};

/// Halves are put together: one run after the other takes HDF5 seconds for thousands of them.
OwnedId SelectRuns(const Place& place, std::span<const Run> runs) {
  if (runs.size() > 1) {
    const std::size_t half = runs.size() / 2;
    const OwnedId a = SelectRuns(place, runs.first(half)), b = SelectRuns(place, runs.subspan(half));
    return OwnedId(a && b ? H5Scombine_select(a.get(), H5S_SELECT_OR, b.get()) : H5I_INVALID_HID);
  }
  OwnedId space(H5Screate_simple(static_cast<int>(place.extents.size()), place.extents.data(), nullptr));
  std::vector<hsize_t> start = place.start, count(start.size(), 1);
  start[place.row_axis] += runs.front().*place.first;
  count[place.row_axis] = runs.front().count;
  if (place.column_axis < start.size()) {
    start[place.column_axis] += place.column;
    count[place.column_axis] = place.columns;
  }
  const bool selected =
      space && H5Sselect_hyperslab(space.get(), H5S_SELECT_SET, start.data(), nullptr, count.data(), nullptr) >= 0;
  return selected ? std::move(space) : OwnedId();
}

}  // namespace

/// The selections of the array and of the source have as many values, in the same order.
void Sidecar::MapRuns(hid_t list, const LinkedArray& array, const Piece& piece, std::span<const Run> runs,
                      const ColumnGroup& columns) const {
  Place rows{ShapeOf(array), {}, 0, 1, columns.to, columns.count, &Run::to};
  rows.start.resize(rows.extents.size(), 0);
  rows.start[0] = piece.first_row;
  Place values{piece.source->extents, piece.start,   piece.entity_axis, piece.start.size(),
               columns.from,          columns.count, &Run::from};
  if (piece.component_axis >= 0) values.column_axis = static_cast<std::size_t>(piece.component_axis);
  const OwnedId to = SelectRuns(rows, runs), from = SelectRuns(values, runs);
  const std::string path = WithoutPatterns(piece.source->path);
  Require(to && from && H5Pset_virtual(list, to.get(), source_.c_str(), path.c_str(), from.get()) >= 0, array.name);
}

void Sidecar::MapPiece(hid_t list, const LinkedArray& array, const Piece& piece) const {
  for (const ColumnGroup& columns : GroupColumns(array.columns)) {
    for (const std::span<const Run> runs : InOrder(*piece.runs)) MapRuns(list, array, piece, runs, columns);
  }
}

void Sidecar::WriteVirtual(const std::string& name, const LinkedArray& array, double fill) {
  const OwnedId list = CreationList();
  const hid_t type = StoredType(array.kind);
  Require(H5Pset_fill_value(list.get(), H5T_NATIVE_DOUBLE, &fill) >= 0, name);
  Require(H5Pset_layout(list.get(), H5D_VIRTUAL) >= 0, name);
  for (const Piece& piece : array.pieces) MapPiece(list.get(), array, piece);
  const std::vector<hsize_t> shape = ShapeOf(array);
  const OwnedId space = Made(H5Screate_simple(static_cast<int>(shape.size()), shape.data(), nullptr), name);
  OwnedId dataset =
      Made(H5Dcreate2(root_.get(), name.c_str(), type, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), name);
  Require(dataset.Close(), name);
}

Sidecar::Rows Sidecar::StartRows(const std::string& name, const LinkedArray& array) {
  const std::vector<hsize_t> shape = ShapeOf(array);
  const OwnedId space = Made(H5Screate_simple(static_cast<int>(shape.size()), shape.data(), nullptr), name);
  const OwnedId list = CreationList();
  return {*this,
          Made(H5Dcreate2(root_.get(), name.c_str(), StoredType(array.kind), space.get(), H5P_DEFAULT, list.get(),
                          H5P_DEFAULT),
               name),
          array.components};
}

void Sidecar::Rows::Write(hsize_t first_row, const std::vector<double>& values) {
  if (values.empty()) return;
  const OwnedId space = sidecar_.Made(H5Dget_space(dataset_.get()), "an array");
  const hsize_t start[] = {first_row, 0}, count[] = {values.size() / components_, components_}, all = values.size();
  const OwnedId memory = sidecar_.Made(H5Screate_simple(1, &all, nullptr), "an array");
  sidecar_.Require(
      H5Sselect_hyperslab(space.get(), H5S_SELECT_SET, start, nullptr, count, nullptr) >= 0 &&
          H5Dwrite(dataset_.get(), H5T_NATIVE_DOUBLE, memory.get(), space.get(), H5P_DEFAULT, values.data()) >= 0,
      "an array");
}

void Sidecar::Rows::Close() { sidecar_.Require(dataset_.Close(), "an array"); }

void Sidecar::Close() {
  const bool closed = root_.Close();
  Require(file_.Close() && closed, "the file");
}

}  // namespace orvio::program
