// Writing states with HDF5 alone: the groups, attributes and datasets that the library makes, with open, flush and
// close for each commit.

#include <cstring>

#include "raw_hdf5.h"
#include "roads.h"

namespace orvio::bench {
namespace {

constexpr std::size_t kTextWidth = 256;

void PutAttribute(hid_t group, const char* name, hid_t type, const void* value) {
  const SpaceId space(H5Screate(H5S_SCALAR), "H5Screate");
  const AttributeId attribute(H5Acreate2(group, name, type, space.get(), H5P_DEFAULT, H5P_DEFAULT), name);
  Check(H5Awrite(attribute.get(), type, value), name);
}

void PutNumber(hid_t group, const char* name, std::int64_t value) {
  PutAttribute(group, name, H5T_NATIVE_INT64, &value);
}

void PutText(hid_t group, const char* name, const char* text) {
  char field[kTextWidth];
  std::memset(field, ' ', sizeof field);
  std::memcpy(field, text, std::strlen(text));
  const TypeId type(H5Tcopy(H5T_C_S1), name);
  Check(H5Tset_size(type.get(), sizeof field), name);
  PutAttribute(group, name, type.get(), field);
}

template <int Rank>
void PutData(hid_t group, const char* name, hid_t type, const hsize_t (&shape)[Rank], const void* values) {
  const SpaceId space(H5Screate_simple(Rank, shape, nullptr), name);
  const DatasetId data(H5Dcreate2(group, name, type, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name);
  Check(H5Dwrite(data.get(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), name);
}

GroupId MakeGroup(hid_t parent, const char* name) {
  return {H5Gcreate2(parent, name, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name};
}

GroupId OpenOrMake(hid_t parent, const char* name) {
  const htri_t there = H5Lexists(parent, name, H5P_DEFAULT);
  Demand(there >= 0, "H5Lexists");
  return there > 0 ? GroupId(H5Gopen2(parent, name, H5P_DEFAULT), name) : MakeGroup(parent, name);
}

void PutHeader(hid_t block, int nodes, const Quantity& quantity) {
  PutNumber(block, "block", 1000);
  PutText(block, "blocktype", "entityresults");
  PutText(block, "etypvar", quantity.name);
  PutNumber(block, "ncoo", quantity.components);
  PutText(block, "etypzone", "ZONE");
  PutText(block, "etypframe", "FRAME");
  PutNumber(block, "zoneid", 0);
  PutText(block, "etyp", kNodeType);
  PutNumber(block, "nent", nodes);
  PutNumber(block, "nindex", 1);
  PutNumber(block, "fswitch", 0);
  PutNumber(block, "fidglob", 0);
  PutNumber(block, "dmpswitch", 0);
  const int indexic = 0;
  PutAttribute(block, "indexic", H5T_NATIVE_INT, &indexic);
}

class RawWriter : public Writer {
 public:
  RawWriter(const std::string& path, const Commit& commit) : path_(path), whole_state_(commit.whole_state) {}

  void WriteState(int state, StateValues& values) override {
    if (whole_state_) {
      const FileId file = Open();
      for (int quantity = 0; quantity < kCount; ++quantity) WriteBlock(file.get(), state, quantity, values);
      Check(H5Fflush(file.get(), H5F_SCOPE_GLOBAL), "H5Fflush");
      return;
    }
    for (int quantity = 0; quantity < kCount; ++quantity) {
      const FileId file = Open();
      WriteBlock(file.get(), state, quantity, values);
      Check(H5Fflush(file.get(), H5F_SCOPE_GLOBAL), "H5Fflush");
    }
  }

 private:
  static constexpr int kCount = static_cast<int>(kQuantities.size());

  FileId Open() const { return {H5Fopen(path_.c_str(), H5F_ACC_RDWR, H5P_DEFAULT), "H5Fopen"}; }

  static void WriteBlock(hid_t file, int state, int quantity, const StateValues& values) {
    const auto at = static_cast<std::size_t>(quantity);
    const GroupId states(H5Gopen2(file, "/post/singlestate", H5P_DEFAULT), "singlestate");
    const GroupId of_state = OpenOrMake(states.get(), StateGroup(state).c_str());
    const GroupId results = OpenOrMake(of_state.get(), "entityresults");
    const GroupId entity = OpenOrMake(results.get(), kNodeType);
    const GroupId variable = OpenOrMake(entity.get(), kQuantities[at].name);
    const GroupId block = MakeGroup(variable.get(), "orvblock");
    PutHeader(block.get(), values.job.nodes, kQuantities[at]);
    const auto nodes = static_cast<hsize_t>(values.job.nodes);
    PutData(block.get(), "res", H5T_NATIVE_FLOAT, {nodes, static_cast<hsize_t>(kQuantities[at].components)},
            values.values[at].get());
    PutData(block.get(), "entid", H5T_NATIVE_INT, {nodes}, values.ids.get());
    const int ident = IdentOf(state);
    const float time = TimeOf(state);
    PutData(block.get(), "indexident", H5T_NATIVE_INT, {1}, &ident);
    PutData(block.get(), "indexval", H5T_NATIVE_FLOAT, {1}, &time);
  }

  std::string path_;
  bool whole_state_;
};

}  // namespace

std::unique_ptr<Writer> MakeRawWriter(const std::string& path, const Commit& commit) {
  return std::make_unique<RawWriter>(path, commit);
}

}  // namespace orvio::bench
