#include "seeds/recast.h"

#include <hdf5.h>

#include <vector>

#include "support/raw_hdf5.h"

namespace orvio::fuzz {
namespace {

using orv_test::Check;
using orv_test::Id;

std::vector<hsize_t> ShapeOf(hid_t space) {
  std::vector<hsize_t> shape(static_cast<std::size_t>(H5Sget_simple_extent_ndims(space)));
  if (!shape.empty()) Check(H5Sget_simple_extent_dims(space, shape.data(), nullptr), "extents");
  return shape;
}

class Copy {
 public:
  explicit Copy(const Form& form) : form_(form) {}

  void Group(hid_t from, hid_t to) {
    Attributes(from, to);
    H5G_info_t info{};
    Check(H5Gget_info(from, &info), "links");
    for (hsize_t i = 0; i < info.nlinks; ++i) {
      char name[512] = {};
      Check(H5Lget_name_by_idx(from, ".", H5_INDEX_NAME, H5_ITER_INC, i, name, sizeof name, H5P_DEFAULT), "name");
      Link(from, to, name);
    }
  }

 private:
  void Link(hid_t from, hid_t to, const char* name) {
    H5L_info2_t link{};
    Check(H5Lget_info2(from, name, &link, H5P_DEFAULT), name);
    if (link.type == H5L_TYPE_SOFT) {
      char target[512] = {};
      Check(H5Lget_val(from, name, target, sizeof target - 1, H5P_DEFAULT), name);
      Check(H5Lcreate_soft(target, to, name, H5P_DEFAULT, H5P_DEFAULT), name);
      return;
    }
    const Id source(H5Oopen(from, name, H5P_DEFAULT), name);
    if (H5Iget_type(source.get()) == H5I_DATASET) return Dataset(source.get(), to, name);
    const Id copy(H5Gcreate2(to, name, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name);
    Group(source.get(), copy.get());
  }

  void Dataset(hid_t from, hid_t to, const char* name) {
    const Id type(H5Dget_type(from), name), space(H5Dget_space(from), name);
    const Id list = CreationList(type.get(), ShapeOf(space.get()));
    const Id copy(H5Dcreate2(to, name, type.get(), space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), name);
    const auto count = static_cast<std::size_t>(H5Sget_simple_extent_npoints(space.get()));
    std::vector<char> bytes(count * H5Tget_size(type.get()));
    if (bytes.empty()) return;
    Check(H5Dread(from, type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()), name);
    Check(H5Dwrite(copy.get(), type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()), name);
    Attributes(from, copy.get());
  }

  /// As compressing programs store it: one chunk of the size of the dataset.
  Id CreationList(hid_t type, const std::vector<hsize_t>& shape) const {
    Id list(H5Pcreate(H5P_DATASET_CREATE), "creation list");
    const H5T_class_t kind = H5Tget_class(type);
    const bool empty = shape.empty() || shape.front() == 0;
    if (!form_.packed || empty || kind == H5T_STRING) return list;
    Check(H5Pset_chunk(list.get(), static_cast<int>(shape.size()), shape.data()), "chunk");
    if (kind == H5T_FLOAT) {
      Check(H5Pset_scaleoffset(list.get(), H5Z_SO_FLOAT_DSCALE, 3), "scale-offset");
    } else {
      Check(H5Pset_scaleoffset(list.get(), H5Z_SO_INT, H5Z_SO_INT_MINBITS_DEFAULT), "scale-offset");
    }
    return list;
  }

  static void Attributes(hid_t from, hid_t to) {
    H5O_info2_t info{};
    Check(H5Oget_info3(from, &info, H5O_INFO_NUM_ATTRS), "attributes");
    for (hsize_t i = 0; i < info.num_attrs; ++i) {
      const Id source(H5Aopen_by_idx(from, ".", H5_INDEX_NAME, H5_ITER_INC, i, H5P_DEFAULT, H5P_DEFAULT), "attribute");
      char name[512] = {};
      Check(H5Aget_name(source.get(), sizeof name, name), "attribute");
      const Id type(H5Aget_type(source.get()), name), space(H5Aget_space(source.get()), name);
      const Id copy(H5Acreate2(to, name, type.get(), space.get(), H5P_DEFAULT, H5P_DEFAULT), name);
      std::vector<char> bytes(static_cast<std::size_t>(H5Sget_simple_extent_npoints(space.get())) *
                              H5Tget_size(type.get()));
      Check(H5Aread(source.get(), type.get(), bytes.data()), name);
      Check(H5Awrite(copy.get(), type.get(), bytes.data()), name);
    }
  }

  const Form& form_;
};

Id AccessList(Form::Age age) {
  Id list(H5Pcreate(H5P_FILE_ACCESS), "access list");
  if (age == Form::kNewer) Check(H5Pset_libver_bounds(list.get(), H5F_LIBVER_V18, H5F_LIBVER_V18), "bounds");
  if (age == Form::kLatest) Check(H5Pset_libver_bounds(list.get(), H5F_LIBVER_LATEST, H5F_LIBVER_LATEST), "bounds");
  // A seed is small, and so is what it wastes: metadata come in blocks of this many bytes.
  Check(H5Pset_meta_block_size(list.get(), 512), "block size");
  return list;
}

}  // namespace

void Recast(const std::string& from, const std::string& to, const Form& form) {
  const Id source(H5Fopen(from.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), from);
  const Id creation(H5Pcreate(H5P_FILE_CREATE), "creation list");
  if (form.small_nodes && form.age == Form::kOldest) {
    Check(H5Pset_sym_k(creation.get(), 2, 2), "nodes");
    Check(H5Pset_istore_k(creation.get(), 1), "nodes of chunks");
  }
  const Id access = AccessList(form.age);
  const Id copy(H5Fcreate(to.c_str(), H5F_ACC_TRUNC, creation.get(), access.get()), to);
  const Id from_root(H5Gopen2(source.get(), "/", H5P_DEFAULT), "root"),
      to_root(H5Gopen2(copy.get(), "/", H5P_DEFAULT), "root");
  Copy(form).Group(from_root.get(), to_root.get());
}

}  // namespace orvio::fuzz
