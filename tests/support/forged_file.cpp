#include "support/forged_file.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <numeric>
#include <stdexcept>

namespace orv_test {
namespace {

constexpr size_t kHeaderSize = 64;
constexpr std::string_view kMagic = "\x89ORV\r\n\x1A\n";

std::string NewPath(std::string_view test) {
  std::string pattern = (std::filesystem::temp_directory_path() / "orvio-").string();
  pattern.append(test).append("-XXXXXX");
  const int file = mkstemp(pattern.data());
  if (file < 0) throw std::runtime_error("no temporary file: " + pattern);
  close(file);
  return pattern;
}

hsize_t CountOf(const std::vector<hsize_t>& shape) {
  return std::accumulate(shape.begin(), shape.end(), hsize_t{1}, std::multiplies<>());
}

Id SpaceOf(const std::vector<hsize_t>& shape) {
  const int rank = static_cast<int>(shape.size());
  return Id(rank == 0 ? H5Screate(H5S_SCALAR) : H5Screate_simple(rank, shape.data(), nullptr), "dataspace");
}

Id TextType(size_t width) {
  Id type(H5Tcopy(H5T_C_S1), "text type");
  Check(H5Tset_size(type.get(), width), "text size");
  return type;
}

std::string Padded(std::string_view value, size_t width) {
  std::string padded(value.substr(0, width));
  padded.resize(width, ' ');
  return padded;
}

Id Intermediate() {
  Id list(H5Pcreate(H5P_LINK_CREATE), "link creation list");
  Check(H5Pset_create_intermediate_group(list.get(), 1), "intermediate groups");
  return list;
}

void MakeGroup(hid_t loc, const std::string& path) {
  const Id list = Intermediate();
  const Id made(H5Gcreate2(loc, path.c_str(), list.get(), H5P_DEFAULT, H5P_DEFAULT), "make group " + path);
}

/// The type and values that retype() puts in place of others.
struct Replacement {
  explicit Replacement(H5T_class_t replaced, hsize_t count)
      : type(replaced == H5T_STRING ? Id(H5Tcopy(H5T_NATIVE_INT), "integer type") : TextType(8)),
        values(replaced == H5T_STRING ? std::string(count * 4, '\0') : std::string(count * 8, 'x')) {}
  Id type;
  std::string values;
};

std::vector<hsize_t> ShapeOf(hid_t space) {
  std::vector<hsize_t> shape(static_cast<size_t>(H5Sget_simple_extent_ndims(space)));
  if (!shape.empty()) Check(H5Sget_simple_extent_dims(space, shape.data(), nullptr), "extents");
  return shape;
}

}  // namespace

ForgedFile::ForgedFile(std::string_view test) : path_(NewPath(test)) {
  file_ = Id(H5Fcreate(path_.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT), "make " + path_);
  group("/post/constant").group("/post/singlestate").header(2, 0, 0);
}

ForgedFile::ForgedFile(ForgedFile&& other) noexcept
    : path_(std::exchange(other.path_, {})), here_(std::move(other.here_)), file_(std::move(other.file_)) {}

ForgedFile::~ForgedFile() {
  file_ = Id();
  if (path_.empty()) return;
  unlink(path_.c_str());
  unlink((path_ + "-journal").c_str());  // that a writer left for readers
}

hid_t ForgedFile::File() {
  if (!file_.open()) file_ = Id(H5Fopen(path_.c_str(), H5F_ACC_RDWR, H5P_DEFAULT), "open " + path_);
  return file_.get();
}

Id ForgedFile::Here() { return Id(H5Oopen(File(), here_.c_str(), H5P_DEFAULT), "open " + here_); }

ForgedFile& ForgedFile::at(const std::string& path) {
  here_ = path;
  if (!PathExists(File(), path)) MakeGroup(File(), path);
  return *this;
}

ForgedFile& ForgedFile::group(const std::string& name) {
  const Id here = Here();
  if (!PathExists(here.get(), name)) MakeGroup(here.get(), name);
  return *this;
}

ForgedFile& ForgedFile::Attribute(const char* name, hid_t type, const std::vector<hsize_t>& shape, const void* values) {
  const Id here = Here();
  if (H5Aexists(here.get(), name) > 0) Check(H5Adelete(here.get(), name), "replace attribute");
  const Id space = SpaceOf(shape);
  const Id attribute(H5Acreate2(here.get(), name, type, space.get(), H5P_DEFAULT, H5P_DEFAULT), name);
  if (values) Check(H5Awrite(attribute.get(), type, values), name);
  return *this;
}

ForgedFile& ForgedFile::integer(const char* name, std::int64_t value) {
  return Attribute(name, H5T_NATIVE_INT64, {}, &value);
}

ForgedFile& ForgedFile::integer32(const char* name, int value) { return Attribute(name, H5T_NATIVE_INT, {}, &value); }

ForgedFile& ForgedFile::real(const char* name, double value) { return Attribute(name, H5T_NATIVE_DOUBLE, {}, &value); }

ForgedFile& ForgedFile::integers(const char* name, const std::vector<std::int64_t>& values) {
  return Attribute(name, H5T_NATIVE_INT64, {values.size()}, values.data());
}

ForgedFile& ForgedFile::text(const char* name, std::string_view value, size_t width) {
  const Id type = TextType(width);
  return Attribute(name, type.get(), {}, Padded(value, width).data());
}

ForgedFile& ForgedFile::variable_text(const char* name, const char* value) {
  const Id type = TextType(H5T_VARIABLE);
  return Attribute(name, type.get(), {}, value ? &value : nullptr);
}

ForgedFile& ForgedFile::Dataset(const char* name, hid_t type, const std::vector<hsize_t>& shape, const void* values) {
  const Id here = Here();
  if (H5Lexists(here.get(), name, H5P_DEFAULT) > 0) Check(H5Ldelete(here.get(), name, H5P_DEFAULT), "replace dataset");
  const Id space = SpaceOf(shape);
  const Id dataset(H5Dcreate2(here.get(), name, type, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name);
  if (CountOf(shape) > 0) Check(H5Dwrite(dataset.get(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), name);
  return *this;
}

template <class T>
ForgedFile& ForgedFile::dataset(const char* name, const std::vector<hsize_t>& shape, const std::vector<T>& values) {
  if (CountOf(shape) != values.size()) throw std::invalid_argument(std::string("shape and values differ: ") + name);
  return Dataset(name, NativeType<T>(), shape, values.data());
}

template <class T>
ForgedFile& ForgedFile::scalar(const char* name, T value) {
  return Dataset(name, NativeType<T>(), {}, &value);
}

ForgedFile& ForgedFile::texts(const char* name, size_t width, const std::vector<hsize_t>& shape,
                              const std::vector<std::string>& values) {
  if (CountOf(shape) != values.size()) throw std::invalid_argument(std::string("shape and texts differ: ") + name);
  std::string bytes;
  for (const std::string& value : values) bytes += Padded(value, width);
  const Id type = TextType(width);
  return Dataset(name, type.get(), shape, bytes.data());
}

ForgedFile& ForgedFile::soft_link(const char* name, const std::string& target) {
  Check(H5Lcreate_soft(target.c_str(), Here().get(), name, H5P_DEFAULT, H5P_DEFAULT), name);
  return *this;
}

ForgedFile& ForgedFile::hard_link(const char* name, const std::string& target) {
  const Id here = Here();
  Check(H5Lcreate_hard(here.get(), target.c_str(), here.get(), name, H5P_DEFAULT, H5P_DEFAULT), name);
  return *this;
}

ForgedFile& ForgedFile::external_link(const char* name, const std::string& file, const std::string& target) {
  Check(H5Lcreate_external(file.c_str(), target.c_str(), Here().get(), name, H5P_DEFAULT, H5P_DEFAULT), name);
  return *this;
}

ForgedFile& ForgedFile::drop(const char* name) {
  const Id here = Here();
  if (H5Aexists(here.get(), name) > 0) {
    Check(H5Adelete(here.get(), name), name);
  } else {
    Check(H5Ldelete(here.get(), name, H5P_DEFAULT), name);
  }
  return *this;
}

ForgedFile& ForgedFile::retype(const char* name) {
  const Id here = Here();
  const bool is_attribute = H5Aexists(here.get(), name) > 0;
  Id old(is_attribute ? H5Aopen(here.get(), name, H5P_DEFAULT) : H5Dopen2(here.get(), name, H5P_DEFAULT), name);
  const Id type(is_attribute ? H5Aget_type(old.get()) : H5Dget_type(old.get()), name);
  const Id space(is_attribute ? H5Aget_space(old.get()) : H5Dget_space(old.get()), name);
  const std::vector<hsize_t> shape = ShapeOf(space.get());
  old = Id();
  const Replacement with(H5Tget_class(type.get()), CountOf(shape));
  return is_attribute ? Attribute(name, with.type.get(), shape, with.values.data())
                      : Dataset(name, with.type.get(), shape, with.values.data());
}

ForgedFile& ForgedFile::header(int major, int minor, int patch) {
  std::string bytes(kMagic);
  bytes += std::to_string(major) + " " + std::to_string(minor) + " " + std::to_string(patch) + '\0';
  bytes.resize(kHeaderSize, ' ');
  return header_bytes(bytes);
}

ForgedFile& ForgedFile::header_bytes(std::string_view bytes) {
  std::string header(bytes);
  header.resize(kHeaderSize, '\0');
  const std::string before = here_;
  const Id type = TextType(kHeaderSize);
  at("/post/orvheader").Dataset("orvheader", type.get(), {}, header.data());
  here_ = before;
  return *this;
}

ForgedFile& ForgedFile::raw(const std::function<void(hid_t here)>& act) {
  const Id here = Here();
  act(here.get());
  return *this;
}

std::string ForgedFile::path() {
  file_ = Id();
  return path_;
}

template ForgedFile& ForgedFile::dataset(const char*, const std::vector<hsize_t>&, const std::vector<std::int32_t>&);
template ForgedFile& ForgedFile::dataset(const char*, const std::vector<hsize_t>&, const std::vector<std::int64_t>&);
template ForgedFile& ForgedFile::dataset(const char*, const std::vector<hsize_t>&, const std::vector<float>&);
template ForgedFile& ForgedFile::dataset(const char*, const std::vector<hsize_t>&, const std::vector<double>&);
template ForgedFile& ForgedFile::scalar(const char*, std::int32_t);
template ForgedFile& ForgedFile::scalar(const char*, std::int64_t);
template ForgedFile& ForgedFile::scalar(const char*, float);
template ForgedFile& ForgedFile::scalar(const char*, double);

}  // namespace orv_test
