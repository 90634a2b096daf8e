// The typed reads on everything that a walk finds.

#include <H5public.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <string>
#include <vector>

#include "h5/disk_names.h"
#include "orvio/orvio.h"
#include "reading.h"

namespace orvio::fuzz {
namespace {

constexpr int kDeepest = 9;
constexpr int kMostObjects = 400;
constexpr hsize_t kMostElements = 1 << 16;
constexpr std::size_t kTextWidth = 256;

std::size_t SizeOf(_ORVDataType type) {
  if (type == ORV_INT || type == ORV_FLOAT) return 4;
  return type == ORV_CHAR ? 1 : 8;
}

/// What is asked of a dataset: shape and type, be they right or not.
struct Wish {
  std::vector<hsize_t> shape;
  _ORVDataType type;

  hsize_t Elements() const {
    hsize_t product = 1;
    for (const hsize_t extent : shape) {
      if (extent > kMostElements || product > kMostElements) return 0;
      product *= extent;
    }
    return product <= kMostElements ? product : 0;
  }
};

class Walk {
 public:
  Walk(IOH5Reader& reader, bool wrong_shapes, Tally& tally)
      : reader_(reader), wrong_shapes_(wrong_shapes), tally_(tally) {}

  void Group(hid_t group, const std::string& own_name, int depth) {
    if (own_name == disk::header || own_name == disk::orvblock) Attributes(group);
    const int links = std::min(reader_.GetNumLinks(group), 64);
    for (int i = 0; i < links && left_ > 0; ++i) {
      std::string name;
      hid_t child = -1;
      if (reader_.GetChildByIndex(group, i, name, &child, 0) != 0) continue;
      --left_;
      if (child > 0) {
        if (depth < kDeepest) Group(child, name, depth + 1);
        (void)reader_.CloseGroup(child);
      } else {
        Dataset(group, name);
      }
    }
  }

 private:
  void Dataset(hid_t group, const std::string& name) {
    int rank = 0;
    hsize_t dims[32] = {}, total = 0;
    _ORVDataType type = ORV_UNKNOWN_TYPE;
    std::vector<int> filters;
    if (reader_.GetDatasetInfo(group, name, rank, dims, total, type, &filters) != 0) return;
    std::string target, file;
    reader_.GetLinkInfo(group, name, target, file);
    if (rank < 0 || rank > 32) std::abort();  // of `dims`: promised by the reader
    const std::vector<hsize_t> shape(dims, dims + rank);
    Read(group, name, {shape, type == ORV_INT || type == ORV_LONG ? ORV_LONG : ORV_DOUBLE});
    if (!wrong_shapes_) return;
    for (const _ORVDataType as : {ORV_INT, ORV_LONG, ORV_FLOAT, ORV_DOUBLE, ORV_CHAR}) Shapes(group, name, shape, as);
    Texts(group, name, shape);
    Parts(group, name, shape, type);
  }

  /// The stored shape and its neighbours.
  void Shapes(hid_t group, const std::string& name, std::vector<hsize_t> shape, _ORVDataType type) {
    if (type == ORV_CHAR) {
      shape.push_back(kTextWidth);
      Read(group, name, {shape, type});
      return;
    }
    Read(group, name, {shape, type});
    Read(group, name, {{Wish{shape, type}.Elements()}, type});
    Read(group, name, {{}, type});
    if (shape.empty()) return;
    for (const hsize_t change : {hsize_t{1}, ~hsize_t{0}}) {
      std::vector<hsize_t> other = shape;
      other.back() += change;
      Read(group, name, {other, type});
      other.front() += change;
      Read(group, name, {other, type});
    }
    shape.push_back(1);
    Read(group, name, {shape, type});
  }

  void Read(hid_t group, const std::string& name, Wish wish) {
    const hsize_t count = wish.Elements();
    if (count == 0) return;
    const auto size = static_cast<std::size_t>(count) * SizeOf(wish.type);
    const Owned<char> buffer(static_cast<char*>(std::malloc(size)));
    const int rank = static_cast<int>(wish.shape.size());
    Note(reader_.ReadDatasetAll(group, name.c_str(), rank, wish.shape.data(), wish.type, buffer.get()), count);
  }

  void Texts(hid_t group, const std::string& name, const std::vector<hsize_t>& shape) {
    const hsize_t count = Wish{shape, ORV_CHAR}.Elements();
    if (count == 0 || count > 4096) return;
    for (const int width : {1, 64, 256}) {
      const Owned<char> buffer(static_cast<char*>(std::malloc(count * static_cast<std::size_t>(width))));
      Note(OH5Read_CHAR(group, name.c_str(), static_cast<int>(shape.size()), shape.data(), width, buffer.get()), count);
    }
  }

  /// The first half of each axis, all of it, and one behind its end.
  void Parts(hid_t group, const std::string& name, std::vector<hsize_t> shape, _ORVDataType type) {
    if (shape.empty() || shape.size() > 8 || SizeOf(type) < 4) return;
    std::vector<hsize_t> zero(shape.size()), half = shape, ones(shape.size(), 1);
    for (hsize_t& extent : half) extent = (extent + 1) / 2;
    Select(group, name, zero, half, nullptr, nullptr);
    Select(group, name, zero, half, ones.data(), ones.data());
    Select(group, name, half, half, nullptr, nullptr);
    Select(group, name, shape, ones, nullptr, nullptr);
    Select(group, name, zero, shape, nullptr, nullptr);
  }

  void Select(hid_t group, const std::string& name, std::vector<hsize_t> start, std::vector<hsize_t> count,
              hsize_t* stride, hsize_t* block) {
    const hsize_t elements = Wish{count, ORV_DOUBLE}.Elements();
    if (elements == 0) return;
    for (const _ORVDataType type : {ORV_DOUBLE, ORV_FLOAT, ORV_INT}) {
      const Owned<char> buffer(static_cast<char*>(std::malloc(static_cast<std::size_t>(elements) * SizeOf(type))));
      Note(reader_.ReadDatasetSelective(group, name.c_str(), static_cast<int>(start.size()), start.data(), count.data(),
                                        stride, block, type, buffer.get()),
           elements);
    }
  }

  void Attributes(hid_t group) {
    constexpr std::array<const char*, 34> names = {
        disk::block,   disk::blocktype, disk::indexic, disk::nindex, disk::etyp,     disk::etypelem, disk::etypvar,
        disk::nent,    disk::nele,      disk::npele,   disk::ncoo,   disk::numl,     disk::nstate,   disk::zoneid,
        disk::fswitch, disk::series,    disk::varnam,  disk::varkey, disk::varclass, disk::nvar,     disk::subslen,
        disk::title,   disk::cdate,     disk::nbunit,  disk::ndunit, disk::length,   disk::etypprop, disk::nbstring,
        disk::nuid,    disk::etypcoll,  disk::ncoll,   disk::npart,  disk::etyppart, disk::tensor};
    for (const char* name : names) {
      std::int64_t number = 0;
      if (reader_.ReadAttributeValue(group, name, 0, nullptr, ORV_LONG, &number) == 0) ++tally_.values;
      if (!wrong_shapes_) continue;
      int small = 0;
      (void)reader_.ReadAttributeValue(group, name, 0, nullptr, ORV_INT, &small);
      const Owned<char> text(static_cast<char*>(std::malloc(kTextWidth)));
      if (reader_.ReadAttributeValue(group, name, 0, nullptr, ORV_CHAR, text.get()) == 0) ++tally_.values;
      hsize_t dims[1] = {2};
      double reals[2] = {};
      (void)reader_.ReadAttributeValue(group, name, 1, dims, ORV_DOUBLE, reals);
    }
  }

  void Note(int status, hsize_t count) {
    if (status == 0) {
      tally_.values += count;
    } else {
      ++tally_.refusals;
    }
  }

  IOH5Reader& reader_;
  bool wrong_shapes_;
  Tally& tally_;
  int left_ = kMostObjects;
};

}  // namespace

void ReadTyped(const char* path, bool wrong_shapes, Tally& tally) {
  OH5Reader reader(path);
  if (reader.GetFileId() <= 0) return;
  tally.opened = true;
  int major = 0, minor = 0, patch = 0;
  (void)reader.ReadFileVersion(major, minor, patch);
  std::vector<std::string> roots;
  reader.ListPostRoots(roots);
  const hid_t root = reader.OpenGroup(reader.GetFileId(), "/", 0);
  if (root > 0) {
    Walk(reader, wrong_shapes, tally).Group(root, "", 0);
    (void)reader.CloseGroup(root);
  }
  (void)reader.CloseFile();
}

}  // namespace orvio::fuzz
