#pragma once

// Result files made with HDF5 alone, so that no fault of our writer hides one of our reader.

#include <hdf5.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "support/raw_hdf5.h"

namespace orv_test {

/// A result file made with HDF5 alone: a file header of version 2.0.0 and the groups "post", "post/constant" and
/// "post/singlestate". Calls act in the object chosen by at(), at first the root; each returns *this. What HDF5
/// refuses throws. The file is in the folder for temporary files and is removed with the object.
class ForgedFile {
 public:
  explicit ForgedFile(std::string_view test = "forged");
  ForgedFile(ForgedFile&& other) noexcept;
  ForgedFile(const ForgedFile&) = delete;
  ForgedFile& operator=(const ForgedFile&) = delete;
  ForgedFile& operator=(ForgedFile&&) = delete;
  ~ForgedFile();

  /// Chooses a group (or dataset) by its absolute path; what is missing is made as a group, with its parents.
  ForgedFile& at(const std::string& path);
  ForgedFile& group(const std::string& name);  ///< made with its parents, not chosen

  // Attributes; one that exists already is replaced.
  ForgedFile& integer(const char* name, std::int64_t value);                        ///< scalar, 64 bits
  ForgedFile& integer32(const char* name, int value);                               ///< scalar, 32 bits
  ForgedFile& real(const char* name, double value);                                 ///< scalar, 64 bits
  ForgedFile& integers(const char* name, const std::vector<std::int64_t>& values);  ///< rank 1
  ForgedFile& text(const char* name, std::string_view value, size_t width = 256);   ///< blank padded, fixed length
  ForgedFile& variable_text(const char* name, const char* value);                   ///< null: never written

  // Datasets; one that exists already is replaced. T is int32_t, int64_t, float or double.
  template <class T>
  ForgedFile& dataset(const char* name, const std::vector<hsize_t>& shape, const std::vector<T>& values);
  template <class T>
  ForgedFile& scalar(const char* name, T value);  ///< rank 0
  /// Fixed-length texts, blank padded. An empty shape is rank 0.
  ForgedFile& texts(const char* name, size_t width, const std::vector<hsize_t>& shape,
                    const std::vector<std::string>& values);

  ForgedFile& soft_link(const char* name, const std::string& target);
  ForgedFile& hard_link(const char* name, const std::string& target);
  ForgedFile& external_link(const char* name, const std::string& file, const std::string& target);

  /// Removes an attribute, or else a link.
  ForgedFile& drop(const char* name);
  /// Puts an attribute or dataset of the same name and shape but of another HDF5 class in its place: a text for a
  /// number, an integer for a text.
  ForgedFile& retype(const char* name);

  /// Replaces the file header, wherever at() is.
  ForgedFile& header(int major, int minor, int patch);
  ForgedFile& header_bytes(std::string_view bytes);  ///< zeros follow up to 64 bytes

  /// For all else: hands the id of the chosen object over for the time of the call.
  ForgedFile& raw(const std::function<void(hid_t here)>& act);

  /// Closes the file and answers where it is. A later call of the others opens it again.
  std::string path();

 private:
  hid_t File();
  Id Here();
  ForgedFile& Attribute(const char* name, hid_t type, const std::vector<hsize_t>& shape, const void* values);
  ForgedFile& Dataset(const char* name, hid_t type, const std::vector<hsize_t>& shape, const void* values);

  std::string path_;
  std::string here_ = "/";
  Id file_;
};

extern template ForgedFile& ForgedFile::dataset(const char*, const std::vector<hsize_t>&,
                                                const std::vector<std::int32_t>&);
extern template ForgedFile& ForgedFile::dataset(const char*, const std::vector<hsize_t>&,
                                                const std::vector<std::int64_t>&);
extern template ForgedFile& ForgedFile::dataset(const char*, const std::vector<hsize_t>&, const std::vector<float>&);
extern template ForgedFile& ForgedFile::dataset(const char*, const std::vector<hsize_t>&, const std::vector<double>&);
extern template ForgedFile& ForgedFile::scalar(const char*, std::int32_t);
extern template ForgedFile& ForgedFile::scalar(const char*, std::int64_t);
extern template ForgedFile& ForgedFile::scalar(const char*, float);
extern template ForgedFile& ForgedFile::scalar(const char*, double);

}  // namespace orv_test
