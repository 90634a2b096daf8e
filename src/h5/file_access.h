#pragma once

// The one door to files, groups and datasets: every open of the library comes through here.

#include <string>
#include <vector>

#include "h5/disk_names.h"
#include "h5/handle.h"

namespace orvio::h5 {

/// Opens a regular file with the flags of H5Fopen, through the library's own driver whatever the environment says. A pipe
/// or a device would hang or invent data: neither opens. Nor does a file whose structure is damaged: the last error text
/// says where.
File OpenFile(const char* name, unsigned flags);

/// Makes a file, truncating what is there.
File CreateFile(const char* name);

/// Closes a file that may have been changed. False when what was changed is not in the file: the last error text tells why.
[[nodiscard]] bool CloseFile(File& file);

/// Whether something stands under that name, readable or not.
bool FileExists(const char* name);

/// Opens a group or object. Links into other files are refused on every level of the path, whatever `access` says of
/// them: an access list of the caller, or 0 for that of the library.
Group OpenGroup(hid_t loc, const char* name, hid_t access = H5P_DEFAULT);
/// The same for the link at a position in the order of names, which has that name.
Group OpenGroupAt(hid_t group, hsize_t position, const std::string& name, hid_t access);
Object OpenObject(hid_t loc, const char* name, hid_t access = H5P_DEFAULT);

/// The access list of groups and links: external links are refused. HDF5's default one would follow them.
hid_t GroupAccess();

/// The access list of datasets: external links are refused. The open itself is that of StoredDataset.
hid_t DatasetAccess();

/// Type of the object that a link leads to, without opening the object; H5O_TYPE_UNKNOWN where it leads nowhere or out of
/// the file.
H5O_type_t TypeOfObject(hid_t loc, const char* name);

/// Whether the last link of a path leads to an object of the same file. Names without a link of their own, like ".", do.
bool StaysInside(hid_t loc, const char* name);

Group CreateGroup(hid_t loc, const char* name);
Group OpenOrCreateGroup(hid_t loc, const char* name);

/// Whether a link of that name is there, wherever it leads.
bool LinkExists(hid_t loc, const char* name);

/// Absolute path of an object; empty when it has none or one of 3000 bytes and more.
std::string NameOf(hid_t object);

/// Whether an object was opened through that id of its file.
bool IsOpenIn(hid_t file, hid_t object);

/// Number of links of a group; -1 on failure.
hssize_t CountLinks(hid_t group);

/// What HDF5 tells of an object: which one it is, and of what type. False when it cannot.
bool ReadObjectInfo(hid_t object, H5O_info1_t& info);

/// Calls `visit` for each link of a group, in the order of names. A damaged group ends its own iteration: what stands
/// before the damage is visited all the same.
void VisitLinks(hid_t group, H5L_iterate1_t visit, void* data);

/// Names of the links of a group in their order.
std::vector<std::string> LinkNames(hid_t group);

/// Name of the link with a 0-based index, by name; empty when there is none or when it does not fit `width` bytes.
std::string LinkName(hid_t group, hsize_t index, size_t width = disk::kNameWidth);

/// Length of that name; 0 when there is none.
size_t LinkNameLength(hid_t group, hsize_t index);

/// A file open for writing, and the changes that are made to it. They are kept only if Finish ends them and the disk took
/// them all; on every other way the file is closed as it was.
class WriteFile {
 public:
  explicit WriteFile(File file);
  WriteFile(WriteFile&&) = default;
  WriteFile& operator=(WriteFile&& other) noexcept;
  ~WriteFile();
  explicit operator bool() const { return static_cast<bool>(file_); }
  hid_t get() const { return file_.get(); }

  /// Flushes and closes. `status` if that was a failure already, else 1 when the flush or the close fails.
  [[nodiscard]] int Finish(int status);
  /// Closes the file as it was. 1 when the close fails.
  [[nodiscard]] int GiveUp();
  /// Nothing of the changes will be kept: Finish will close the file as it was, and fail.
  void Spoil() { spoiled_ = true; }

 private:
  File file_;
  bool spoiled_ = false;
};

}  // namespace orvio::h5
