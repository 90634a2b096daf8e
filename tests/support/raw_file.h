#pragma once

// A look into files with HDF5 alone, so that no fault of our reader hides one of our writer.

#include <hdf5.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/raw_hdf5.h"

namespace orv_test {

/// A file open for reading. Paths are absolute. What HDF5 refuses throws, so ask exists() first where in doubt.
class RawFile {
 public:
  explicit RawFile(const std::string& path);

  bool exists(const std::string& path) const;  ///< every part of it, a dangling last link included
  std::vector<std::string> children(const std::string& path) const;  ///< link names of a group, in order
  /// All paths below a group, in order of their names: groups and datasets, links as "path -> target". Throws on a cycle.
  std::vector<std::string> tree(const std::string& path = "/") const;
  bool is_soft_link(const std::string& path) const;
  std::string link_target(const std::string& path) const;

  // Attributes of the object at a path.
  bool has_attribute(const std::string& path, const char* name) const;
  std::vector<std::string> attributes(const std::string& path) const;  ///< names in the order of making
  std::int64_t attribute_int(const std::string& path, const char* name) const;
  double attribute_real(const std::string& path, const char* name) const;
  std::string attribute_text(const std::string& path, const char* name) const;  ///< all stored bytes
  H5T_class_t attribute_class(const std::string& path, const char* name) const;
  size_t attribute_size(const std::string& path, const char* name) const;  ///< bytes of one element
  int attribute_rank(const std::string& path, const char* name) const;

  // Datasets.
  std::vector<hsize_t> shape(const std::string& path) const;  ///< empty for rank 0
  std::vector<hsize_t> max_shape(const std::string& path) const;
  H5T_class_t type_class(const std::string& path) const;
  size_t type_size(const std::string& path) const;
  H5T_str_t text_padding(const std::string& path) const;
  H5D_layout_t layout(const std::string& path) const;
  std::vector<hsize_t> chunk(const std::string& path) const;
  std::vector<int> filters(const std::string& path) const;
  std::vector<unsigned> filter_values(const std::string& path, unsigned index = 0) const;
  template <class T>
  std::vector<T> values(const std::string& path) const;
  std::vector<std::string> texts(const std::string& path) const;  ///< all stored bytes of each

 private:
  Id Object(const std::string& path) const;
  Id AttributeAt(const std::string& path, const char* name) const;
  Id CreationList(const std::string& path) const;
  void AppendTree(const std::string& path, std::vector<std::string>& paths) const;

  Id file_;
};

extern template std::vector<std::int32_t> RawFile::values(const std::string&) const;
extern template std::vector<std::int64_t> RawFile::values(const std::string&) const;
extern template std::vector<float> RawFile::values(const std::string&) const;
extern template std::vector<double> RawFile::values(const std::string&) const;

/// All bytes of a file, to see that it was left alone.
std::string BytesOf(const std::string& path);

}  // namespace orv_test
