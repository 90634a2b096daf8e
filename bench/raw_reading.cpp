// Reading with HDF5 alone: every dataset by its full path, nothing looked for, nothing checked but HDF5's answers.

#include <cstdio>
#include <vector>

#include "roads.h"
#include "support/raw_hdf5.h"

namespace orvio::bench {
namespace {

using orv_test::Check;
using orv_test::Id;

constexpr char kStates[] = "/post/singlestate";

std::vector<std::string> ChildrenOf(hid_t file, const std::string& group) {
  std::vector<std::string> names;
  const auto add = [](hid_t, const char* name, const H5L_info2_t*, void* list) -> herr_t {
    static_cast<std::vector<std::string>*>(list)->emplace_back(name);
    return 0;
  };
  Check(H5Literate_by_name2(file, group.c_str(), H5_INDEX_NAME, H5_ITER_INC, nullptr, add, &names, H5P_DEFAULT),
        "H5Literate_by_name");
  return names;
}

class RawReader : public Reader {
 public:
  RawReader(const Files& files, bool kept) : job_(files.job), path_(files.orv) {
    if (kept) kept_ = Open();
  }

  void Read(const Asked& asked, Answer& answer) override {
    const auto read = [&](hid_t file) {
      float* values = answer.TakeValues(ValuesAsked(job_, asked));
      const int first = asked.state == Asked::kAll ? 1 : asked.state;
      const int last = asked.state == Asked::kAll ? job_.states : asked.state;
      const std::size_t step = ValuesAsked(job_, asked) / static_cast<std::size_t>(last - first + 1);
      for (int state = first; state <= last; ++state, values += step) ReadState(file, asked, state, values);
      if (!asked.with_ids) return;
      ReadWhole(file, DatasetPath(asked.quantity, StateGroup(asked.state), data_, "entid"), H5T_NATIVE_INT,
                answer.TakeIds(static_cast<std::size_t>(job_.nodes)));
    };
    WithFile(read);
  }

  void List(Listing& listing) override {
    WithFile([&](hid_t file) {
      for (const std::string& kind : ChildrenOf(file, "/post/constant")) {
        (void)ChildrenOf(file, "/post/constant/" + kind);  // what a reader has to know of the model
      }
      const std::vector<std::string> states = ChildrenOf(file, kStates);
      Demand(!states.empty(), "no states");
      listing.quantities =
          ChildrenOf(file, std::string(kStates) + "/" + states.front() + "/entityresults/" + kNodeType);
      ReadRows(file, states, listing);
    });
  }

  void ReadStates(Listing& listing) override {
    WithFile([&](hid_t file) { ReadRows(file, ChildrenOf(file, kStates), listing); });
  }

 private:
  Id Open() const { return {H5Fopen(path_.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), "H5Fopen"}; }

  template <class Work>
  void WithFile(Work work) const {
    if (kept_.open()) return work(kept_.get());
    const Id file = Open();
    work(file.get());
  }

  std::string DatasetPath(int quantity, const std::string& state, const char* part, const char* name) const {
    char path[256];
    (void)std::snprintf(path, sizeof path, "%s/%s/entityresults/%s/%s/%s/%s", kStates, state.c_str(), kNodeType,
                        kQuantities[static_cast<std::size_t>(quantity)].name, part, name);
    return path;
  }

  static void ReadWhole(hid_t file, const std::string& path, hid_t type, void* to) {
    const Id data(H5Dopen2(file, path.c_str(), H5P_DEFAULT), "H5Dopen");
    Check(H5Dread(data.get(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, to), "H5Dread");
  }

  void ReadState(hid_t file, const Asked& asked, int state, float* to) const {
    const std::string path = DatasetPath(asked.quantity, StateGroup(state), data_, "res");
    if (asked.node == Asked::kAll && asked.component == Asked::kAll) {
      return ReadWhole(file, path, H5T_NATIVE_FLOAT, to);
    }
    const Id data(H5Dopen2(file, path.c_str(), H5P_DEFAULT), "H5Dopen");
    const Id space(H5Dget_space(data.get()), "H5Dget_space");
    const int components = kQuantities[static_cast<std::size_t>(asked.quantity)].components;
    const hsize_t start[] = {First(asked.node), First(asked.component)};
    const hsize_t count[] = {Extent(asked.node, job_.nodes), Extent(asked.component, components)};
    const hsize_t total = count[0] * count[1];
    Check(H5Sselect_hyperslab(space.get(), H5S_SELECT_SET, start, nullptr, count, nullptr), "H5Sselect_hyperslab");
    const Id memory(H5Screate_simple(1, &total, nullptr), "H5Screate_simple");
    Check(H5Dread(data.get(), H5T_NATIVE_FLOAT, memory.get(), space.get(), H5P_DEFAULT, to), "H5Dread");
  }

  static hsize_t First(int asked) { return asked == Asked::kAll ? 0 : static_cast<hsize_t>(asked); }
  static hsize_t Extent(int asked, int all) { return asked == Asked::kAll ? static_cast<hsize_t>(all) : 1; }

  void ReadRows(hid_t file, const std::vector<std::string>& states, Listing& listing) const {
    listing.idents.resize(states.size());
    listing.times.resize(states.size());
    for (std::size_t i = 0; i < states.size(); ++i) {
      ReadWhole(file, DatasetPath(kStress, states[i], index_, "indexident"), H5T_NATIVE_INT, &listing.idents[i]);
      ReadWhole(file, DatasetPath(kStress, states[i], index_, "indexval"), H5T_NATIVE_FLOAT, &listing.times[i]);
    }
  }

  Job job_;
  std::string path_;
  Id kept_;
  const char* data_ = job_.split ? "data" : "orvblock";
  const char* index_ = job_.split ? "index" : "orvblock";
};

}  // namespace

std::unique_ptr<Reader> MakeRawReader(const Files& files) { return std::make_unique<RawReader>(files, false); }
std::unique_ptr<Reader> MakeKeptRawReader(const Files& files) { return std::make_unique<RawReader>(files, true); }

}  // namespace orvio::bench
