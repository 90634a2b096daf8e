// What is in the file, group by group.

#include <hdf5.h>

#include <algorithm>
#include <stdexcept>

#include "faults/look.h"
#include "support/raw_hdf5.h"

namespace orvio::faults {
namespace {

using orv_test::Check;
using orv_test::Id;

/// Names of what is in a group, sorted.
std::vector<std::string> ChildrenOf(hid_t file, const std::string& group) {
  std::vector<std::string> names;
  const auto add = [](hid_t, const char* name, const H5L_info2_t*, void* list) -> herr_t {
    static_cast<std::vector<std::string>*>(list)->emplace_back(name);
    return 0;
  };
  Check(H5Literate_by_name2(file, group.c_str(), H5_INDEX_NAME, H5_ITER_INC, nullptr, add, &names, H5P_DEFAULT), group);
  std::sort(names.begin(), names.end());
  return names;
}

bool HasLink(hid_t file, const std::string& group, const std::string& name) {
  const auto names = ChildrenOf(file, group);
  return std::find(names.begin(), names.end(), name) != names.end();
}

template <class T>
std::vector<T> DataOf(hid_t file, const std::string& path, const std::vector<hsize_t>& shape) {
  const Id data(H5Dopen2(file, path.c_str(), H5P_DEFAULT), path);
  const Id space(H5Dget_space(data.get()), path);
  std::vector<hsize_t> stored(H5S_MAX_RANK);
  const int rank = H5Sget_simple_extent_dims(space.get(), stored.data(), nullptr);
  Check(rank, path);
  stored.resize(static_cast<std::size_t>(rank));
  if (stored != shape) throw std::runtime_error("another shape: " + path);
  hsize_t count = 1;
  for (const hsize_t extent : shape) count *= extent;
  std::vector<T> values(count);
  Check(H5Dread(data.get(), orv_test::NativeType<T>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), path);
  return values;
}

std::int64_t NumberOf(hid_t group, const char* name) {
  const Id attribute(H5Aopen(group, name, H5P_DEFAULT), name);
  std::int64_t value = 0;
  Check(H5Aread(attribute.get(), H5T_NATIVE_INT64, &value), name);
  return value;
}

std::string TextOf(hid_t group, const char* name) {
  const Id attribute(H5Aopen(group, name, H5P_DEFAULT), name);
  const Id type(H5Aget_type(attribute.get()), name);
  std::string text(H5Tget_size(type.get()), ' ');
  Check(H5Aread(attribute.get(), type.get(), text.data()), name);
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

bool IsHeaderRight(hid_t file, const std::string& path, const BlockRow& row) {
  const Id header(H5Gopen2(file, path.c_str(), H5P_DEFAULT), path);
  return NumberOf(header.get(), "block") == 1000 && NumberOf(header.get(), "ncoo") == row.components &&
         NumberOf(header.get(), "nent") == kNodes && NumberOf(header.get(), "nindex") == 1 &&
         NumberOf(header.get(), "dmpswitch") == 0 && TextOf(header.get(), "etypvar") == row.variable &&
         TextOf(header.get(), "etyp") == kNodeType;
}

bool IsBlockRight(hid_t file, Form form, int block, Generation generation, int state) {
  const BlockRow& row = kBlocks[static_cast<std::size_t>(block)];
  const std::string path = "/post/singlestate/" + StateGroup(state) + "/" + BlockGroup(block);
  const auto components = static_cast<hsize_t>(row.components);
  const std::string data = PartOf(path, "data", form), index = PartOf(path, "index", form);
  return IsHeaderRight(file, PartOf(path, "header", form), row) &&
         DataOf<float>(file, data + "/res", {kNodes, components}) == ValuesOf(block, generation, state) &&
         DataOf<std::int32_t>(file, data + "/entid", {kNodes}) == NodeIds() &&
         DataOf<float>(file, index + "/indexval", {1}).front() == TimeOf(state) &&
         DataOf<std::int32_t>(file, index + "/indexident", {1}).front() == IdentOf(state);
}

Piece LookAtBlock(hid_t file, Form form, int block, Generation generation, int state) {
  std::string group = "/post/singlestate/" + StateGroup(state);
  try {
    for (const std::string& name : {std::string("entityresults"), std::string(kNodeType),
                                    std::string(kBlocks[static_cast<std::size_t>(block)].variable)}) {
      if (!HasLink(file, group, name)) return Piece::kAbsent;
      group += "/" + name;
    }
    return IsBlockRight(file, form, block, generation, state) ? Piece::kWhole : Piece::kTorn;
  } catch (const std::exception&) {
    return Piece::kTorn;
  }
}

/// Nothing but the blocks that the model has.
bool HasOnlyBlocks(hid_t file, int state) {
  const std::string group = "/post/singlestate/" + StateGroup(state);
  const std::string nodes = group + "/entityresults/" + kNodeType;
  if (ChildrenOf(file, group) != std::vector<std::string>{"entityresults"}) return false;
  if (ChildrenOf(file, group + "/entityresults") != std::vector<std::string>{kNodeType}) return false;
  for (const std::string& name : ChildrenOf(file, nodes)) {
    if (std::none_of(kBlocks.begin(), kBlocks.end(), [&](const BlockRow& row) { return name == row.variable; })) {
      return false;
    }
  }
  return true;
}

bool IsStateRight(hid_t file, Form form, int state) {
  for (int block = 0; block < kBlockCount; ++block) {
    if (LookAtBlock(file, form, block, 0, state) != Piece::kWhole) return false;
  }
  try {
    return HasOnlyBlocks(file, state);
  } catch (const std::exception&) {
    return false;
  }
}

bool IsModelRight(hid_t file, Form form) {
  try {
    const std::string constant = "/post/constant/";
    const auto nodes =
        DataOf<std::int32_t>(file, PartOf(constant + "connectivities/" + kQuadType, "data", form) + "/ic", {kQuads, 4});
    std::vector<std::string> names;
    for (const BlockRow& row : kBlocks) names.emplace_back(row.variable);
    return nodes == QuadNodes() && ChildrenOf(file, constant + (form.split ? "variables" : "variable")) == names;
  } catch (const std::exception&) {
    return false;
  }
}

void LookAtNewStates(hid_t file, const Expected& expected, const std::vector<std::string>& names, Seen& seen) {
  for (int i = 0; i < expected.new_states; ++i) {
    const auto at = static_cast<std::size_t>(i);
    const int state = expected.states + 1 + i;
    if (std::find(names.begin(), names.end(), StateGroup(state)) == names.end()) continue;
    bool whole = false;
    for (int block = 0; block < kBlockCount; ++block) {
      Piece& piece = seen.pieces[at][static_cast<std::size_t>(block)];
      piece = LookAtBlock(file, expected.form, block, expected.generations[at], state);
      whole = whole || piece == Piece::kWhole;
    }
    try {
      if (!whole || !HasOnlyBlocks(file, state)) seen.ghost = true;
    } catch (const std::exception&) {
      seen.ghost = true;
    }
  }
}

/// The states are those that may be there, without a gap.
bool AreNamesRight(const std::vector<std::string>& names, const Expected& expected) {
  const int count = static_cast<int>(names.size());
  if (count > expected.states + expected.new_states) return false;
  for (int state = 1; state <= count; ++state) {
    if (names[static_cast<std::size_t>(state) - 1] != StateGroup(state)) return false;
  }
  return true;
}

}  // namespace

void LookWithHdf5(const std::string& path, const Expected& expected, Seen& seen) {
  (void)H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
  const hid_t opened = H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
  if (opened < 0) return;
  const Id file(opened, path);
  seen.opened = true;
  seen.model = IsModelRight(file.get(), expected.form);
  for (int state = 1; state <= expected.states && IsStateRight(file.get(), expected.form, state); ++state) {
    seen.right = state;
  }
  try {
    const std::vector<std::string> names = ChildrenOf(file.get(), "/post/singlestate");
    seen.ghost = !AreNamesRight(names, expected);
    LookAtNewStates(file.get(), expected, names, seen);
    seen.ended = true;
  } catch (const std::exception&) {
    seen.ended = false;
  }
}

}  // namespace orvio::faults
