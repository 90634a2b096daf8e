// Before HDF5 copies an object, all of it is looked at: a copy opens what it copies.

#include "copying/plain_copy.h"

#include <algorithm>
#include <set>
#include <vector>

#include "checking/stored_object.h"

namespace orvio::program {
namespace {

constexpr int kDeepest = 128;
constexpr std::size_t kMostBytes = 1 << 20;  // of an attribute

bool IsPlainType(hid_t type, int depth = 0) {
  constexpr int kDeepestType = 16;
  const H5T_class_t type_class = H5Tget_class(type);
  switch (type_class) {
    case H5T_INTEGER:
    case H5T_FLOAT:
    case H5T_BITFIELD:
    case H5T_OPAQUE:
    case H5T_ENUM:
      return true;
    case H5T_STRING:
      return H5Tis_variable_str(type) == 0;
    case H5T_ARRAY:
      return depth < kDeepestType && IsPlainType(OwnedId(H5Tget_super(type)).get(), depth + 1);
    case H5T_COMPOUND:
      break;
    default:
      return false;
  }
  for (int i = 0; i < H5Tget_nmembers(type); ++i) {
    const OwnedId member(H5Tget_member_type(type, static_cast<unsigned>(i)));
    if (depth >= kDeepestType || !member || !IsPlainType(member.get(), depth + 1)) return false;
  }
  return true;
}

herr_t NoteName(hid_t /*object*/, const char* name, const H5A_info_t* /*info*/, void* names) {
  static_cast<std::vector<std::string>*>(names)->emplace_back(name);
  return 0;
}

std::vector<std::string> AttributeNames(hid_t object) {
  std::vector<std::string> names;
  hsize_t position = 0;
  (void)H5Aiterate2(object, H5_INDEX_NAME, H5_ITER_INC, &position, NoteName, &names);  // the damaged ones stay behind
  return names;
}

bool HasPlainAttributes(hid_t object) {
  return std::ranges::all_of(AttributeNames(object), [&](const std::string& name) {
    const OwnedId attribute(H5Aopen(object, name.c_str(), H5P_DEFAULT));
    const OwnedId type(attribute ? H5Aget_type(attribute.get()) : H5I_INVALID_HID);
    return type && IsPlainType(type.get());
  });
}

/// Looks at an object and all below it.
class PlainLook {
 public:
  bool IsPlain(hid_t object, int depth = 0) {
    H5O_info2_t info = {};
    if (depth > kDeepest || H5Oget_info3(object, &info, H5O_INFO_BASIC) < 0) return false;
    if (!seen_.insert(std::string(reinterpret_cast<const char*>(&info.token), sizeof info.token)).second) return true;
    if (!HasPlainAttributes(object)) return false;
    if (info.type == H5O_TYPE_DATASET) return IsPlainDataset(object);
    return info.type == H5O_TYPE_GROUP && IsPlainGroup(object, depth);
  }

 private:
  static bool IsPlainDataset(hid_t dataset) {
    if (LookAt(dataset, "").place != StoredDataset::Place::kHere) return false;
    const OwnedId type(H5Dget_type(dataset));
    return type && IsPlainType(type.get());
  }

  bool IsPlainGroup(hid_t group, int depth) {
    const auto links = LinksOf(group);
    return links && std::ranges::all_of(*links, [&](const StoredLink& link) {
             if (link.type == H5L_TYPE_SOFT) return true;
             const OwnedId access = LinkAccess();
             const bool is_hard = link.type == H5L_TYPE_HARD;
             const OwnedId child(is_hard ? H5Oopen(group, link.name.c_str(), access.get()) : H5I_INVALID_HID);
             return child && IsPlain(child.get(), depth + 1);
           });
  }

  std::set<std::string> seen_;
};

bool CopyAttribute(hid_t from, const std::string& name, hid_t to) {
  const OwnedId attribute(H5Aopen(from, name.c_str(), H5P_DEFAULT));
  if (!attribute) return false;
  const OwnedId stored(H5Aget_type(attribute.get())), space(H5Aget_space(attribute.get()));
  if (!stored || !space || !IsPlainType(stored.get())) return false;
  const OwnedId type(H5Tcopy(stored.get()));  // a named type belongs to its file
  const hssize_t count = H5Sget_simple_extent_npoints(space.get());
  const std::size_t size = H5Tget_size(type.get());
  if (count < 0 || size == 0 || static_cast<std::size_t>(count) > kMostBytes / size) return false;
  std::vector<char> bytes(std::max<std::size_t>(static_cast<std::size_t>(count) * size, 1));
  if (count > 0 && H5Aread(attribute.get(), type.get(), bytes.data()) < 0) return false;
  const OwnedId made(H5Acreate2(to, name.c_str(), type.get(), space.get(), H5P_DEFAULT, H5P_DEFAULT));
  return made && (count == 0 || H5Awrite(made.get(), type.get(), bytes.data()) >= 0);
}

OwnedId Open(hid_t file, const std::string& path) {
  const OwnedId access = LinkAccess();
  return OwnedId(H5Oopen(file, path.c_str(), access.get()));
}

}  // namespace

bool CopyPlain(hid_t from, const std::string& path, hid_t to, const std::string& name) {
  const OwnedId object = Open(from, path);
  if (!object || !PlainLook().IsPlain(object.get())) return false;
  return H5Ocopy(object.get(), ".", to, name.c_str(), H5P_DEFAULT, H5P_DEFAULT) >= 0;
}

bool CopyAttributes(hid_t from, const std::string& path, hid_t to, const std::string& name) {
  const OwnedId object = Open(from, path);
  if (!object) return false;
  bool are_copied = true;
  for (const std::string& stored : AttributeNames(object.get())) {
    if (name.empty() || stored == name) are_copied = CopyAttribute(object.get(), stored, to) && are_copied;
  }
  return are_copied;
}

}  // namespace orvio::program
