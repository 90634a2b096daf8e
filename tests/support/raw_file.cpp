#include "support/raw_file.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <numeric>
#include <stdexcept>

namespace orv_test {
namespace {

std::vector<hsize_t> ExtentsOf(hid_t space, bool maximum) {
  const int rank = H5Sget_simple_extent_ndims(space);
  std::vector<hsize_t> now(static_cast<size_t>(rank)), most(static_cast<size_t>(rank));
  if (rank > 0) Check(H5Sget_simple_extent_dims(space, now.data(), most.data()), "extents");
  return maximum ? most : now;
}

std::vector<std::string> Cut(const std::string& bytes, size_t width) {
  std::vector<std::string> parts;
  for (size_t at = 0; at < bytes.size(); at += width) parts.push_back(bytes.substr(at, width));
  return parts;
}

std::string Below(const std::string& path, const std::string& name) {
  return path == "/" ? "/" + name : path + "/" + name;
}

}  // namespace

RawFile::RawFile(const std::string& path) : file_(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), "open " + path) {}

Id RawFile::Object(const std::string& path) const {
  return Id(H5Oopen(file_.get(), path.c_str(), H5P_DEFAULT), "open " + path);
}

Id RawFile::AttributeAt(const std::string& path, const char* name) const {
  return Id(H5Aopen_by_name(file_.get(), path.c_str(), name, H5P_DEFAULT, H5P_DEFAULT), path + "." + name);
}

Id RawFile::CreationList(const std::string& path) const {
  return Id(H5Dget_create_plist(Object(path).get()), "creation list of " + path);
}

bool RawFile::exists(const std::string& path) const { return PathExists(file_.get(), path); }

std::vector<std::string> RawFile::children(const std::string& path) const {
  const Id group = Object(path);
  H5G_info_t info = {};
  Check(H5Gget_info(group.get(), &info), path);
  std::vector<std::string> names;
  for (hsize_t i = 0; i < info.nlinks; ++i) {
    char name[1024] = {};
    Check(H5Lget_name_by_idx(group.get(), ".", H5_INDEX_NAME, H5_ITER_INC, i, name, sizeof name, H5P_DEFAULT), path);
    names.emplace_back(name);
  }
  return names;
}

void RawFile::AppendTree(const std::string& path, std::vector<std::string>& paths) const {
  if (path.size() > 4000) throw std::runtime_error("the tree has a cycle");
  for (const std::string& name : children(path)) {
    const std::string child = Below(path, name);
    H5L_info2_t info = {};
    Check(H5Lget_info2(file_.get(), child.c_str(), &info, H5P_DEFAULT), child);
    if (info.type != H5L_TYPE_HARD) {
      paths.push_back(child + " -> " + link_target(child));
      continue;
    }
    paths.push_back(child);
    if (H5Iget_type(Object(child).get()) == H5I_GROUP) AppendTree(child, paths);
  }
}

std::vector<std::string> RawFile::tree(const std::string& path) const {
  std::vector<std::string> paths;
  AppendTree(path, paths);
  return paths;
}

bool RawFile::is_soft_link(const std::string& path) const {
  H5L_info2_t info = {};
  Check(H5Lget_info2(file_.get(), path.c_str(), &info, H5P_DEFAULT), path);
  return info.type == H5L_TYPE_SOFT;
}

std::string RawFile::link_target(const std::string& path) const {
  char target[1024] = {};
  Check(H5Lget_val(file_.get(), path.c_str(), target, sizeof target - 1, H5P_DEFAULT), path);
  return target;
}

bool RawFile::has_attribute(const std::string& path, const char* name) const {
  return H5Aexists_by_name(file_.get(), path.c_str(), name, H5P_DEFAULT) > 0;
}

std::vector<std::string> RawFile::attributes(const std::string& path) const {
  std::vector<std::string> names;
  const auto append = [](hid_t, const char* name, const H5A_info_t*, void* list) -> herr_t {
    static_cast<std::vector<std::string>*>(list)->emplace_back(name);
    return 0;
  };
  Check(H5Aiterate2(Object(path).get(), H5_INDEX_CRT_ORDER, H5_ITER_INC, nullptr, append, &names), path);
  return names;
}

std::int64_t RawFile::attribute_int(const std::string& path, const char* name) const {
  std::int64_t value = 0;
  Check(H5Aread(AttributeAt(path, name).get(), H5T_NATIVE_INT64, &value), path + "." + name);
  return value;
}

double RawFile::attribute_real(const std::string& path, const char* name) const {
  double value = 0;
  Check(H5Aread(AttributeAt(path, name).get(), H5T_NATIVE_DOUBLE, &value), path + "." + name);
  return value;
}

std::string RawFile::attribute_text(const std::string& path, const char* name) const {
  const Id attribute = AttributeAt(path, name);
  const Id type(H5Aget_type(attribute.get()), name);
  std::string bytes(H5Tget_size(type.get()), '\0');
  Check(H5Aread(attribute.get(), type.get(), bytes.data()), path + "." + name);
  return bytes;
}

H5T_class_t RawFile::attribute_class(const std::string& path, const char* name) const {
  return H5Tget_class(Id(H5Aget_type(AttributeAt(path, name).get()), name).get());
}

size_t RawFile::attribute_size(const std::string& path, const char* name) const {
  return H5Tget_size(Id(H5Aget_type(AttributeAt(path, name).get()), name).get());
}

int RawFile::attribute_rank(const std::string& path, const char* name) const {
  return H5Sget_simple_extent_ndims(Id(H5Aget_space(AttributeAt(path, name).get()), name).get());
}

std::vector<hsize_t> RawFile::shape(const std::string& path) const {
  return ExtentsOf(Id(H5Dget_space(Object(path).get()), path).get(), false);
}

std::vector<hsize_t> RawFile::max_shape(const std::string& path) const {
  return ExtentsOf(Id(H5Dget_space(Object(path).get()), path).get(), true);
}

H5T_class_t RawFile::type_class(const std::string& path) const {
  return H5Tget_class(Id(H5Dget_type(Object(path).get()), path).get());
}

size_t RawFile::type_size(const std::string& path) const {
  return H5Tget_size(Id(H5Dget_type(Object(path).get()), path).get());
}

H5T_str_t RawFile::text_padding(const std::string& path) const {
  return H5Tget_strpad(Id(H5Dget_type(Object(path).get()), path).get());
}

H5D_layout_t RawFile::layout(const std::string& path) const { return H5Pget_layout(CreationList(path).get()); }

std::vector<hsize_t> RawFile::chunk(const std::string& path) const {
  std::vector<hsize_t> chunk(shape(path).size());
  Check(H5Pget_chunk(CreationList(path).get(), static_cast<int>(chunk.size()), chunk.data()), path);
  return chunk;
}

std::vector<int> RawFile::filters(const std::string& path) const {
  const Id list = CreationList(path);
  std::vector<int> ids;
  for (int i = 0; i < H5Pget_nfilters(list.get()); ++i) {
    unsigned flags = 0;
    size_t count = 0;
    ids.push_back(H5Pget_filter2(list.get(), static_cast<unsigned>(i), &flags, &count, nullptr, 0, nullptr, nullptr));
  }
  return ids;
}

std::vector<unsigned> RawFile::filter_values(const std::string& path, unsigned index) const {
  unsigned flags = 0;
  size_t count = 32;
  std::vector<unsigned> values(count);
  Check(H5Pget_filter2(CreationList(path).get(), index, &flags, &count, values.data(), 0, nullptr, nullptr), path);
  values.resize(count);
  return values;
}

template <class T>
std::vector<T> RawFile::values(const std::string& path) const {
  const std::vector<hsize_t> extents = shape(path);
  std::vector<T> values(std::accumulate(extents.begin(), extents.end(), size_t{1}, std::multiplies<>()));
  Check(H5Dread(Object(path).get(), NativeType<T>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), path);
  return values;
}

std::vector<std::string> RawFile::texts(const std::string& path) const {
  const Id dataset = Object(path);
  const Id type(H5Dget_type(dataset.get()), path);
  const std::vector<hsize_t> extents = shape(path);
  const size_t width = H5Tget_size(type.get());
  std::string bytes(std::accumulate(extents.begin(), extents.end(), width, std::multiplies<>()), '\0');
  Check(H5Dread(dataset.get(), type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()), path);
  return Cut(bytes, width);
}

template std::vector<std::int32_t> RawFile::values(const std::string&) const;
template std::vector<std::int64_t> RawFile::values(const std::string&) const;
template std::vector<float> RawFile::values(const std::string&) const;
template std::vector<double> RawFile::values(const std::string&) const;

std::string BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace orv_test
