#pragma once

// What orv repair makes of damaged files, for tests: places in a file to damage, and all that a file holds.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <hdf5.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "program/checked_file.h"
#include "program/sound_file.h"
#include "support/raw_hdf5.h"

namespace orv_test {

/// Everything in a file by its path: bytes of datasets, of attributes ("path@name"), targets of soft links.
inline std::map<std::string, std::string> ContentsOf(const std::string& path) {
  const Id file(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), path);
  std::map<std::string, std::string> contents;
  struct Visitor {
    std::map<std::string, std::string>& contents;

    static std::string Bytes(hid_t type, hssize_t points, const std::function<herr_t(hid_t type, void*)>& read) {
      const Id native(H5Tget_native_type(type, H5T_DIR_ASCEND), "type");
      std::string bytes(H5Tget_size(native.get()) * static_cast<size_t>(points), '\0');
      Check(read(native.get(), bytes.data()), "values");
      return bytes;
    }
    void AddAttributes(hid_t object, const std::string& at) const {
      H5O_info2_t info = {};
      Check(H5Oget_info3(object, &info, H5O_INFO_NUM_ATTRS), at);
      for (hsize_t i = 0; i < info.num_attrs; ++i) {
        const Id attribute(H5Aopen_by_idx(object, ".", H5_INDEX_NAME, H5_ITER_INC, i, H5P_DEFAULT, H5P_DEFAULT), at);
        char name[256] = {};
        Check(H5Aget_name(attribute.get(), sizeof name, name), at);
        const Id type(H5Aget_type(attribute.get()), at), space(H5Aget_space(attribute.get()), at);
        contents[at + "@" + name] = Bytes(type.get(), H5Sget_simple_extent_npoints(space.get()),
                                          [&](hid_t native, void* to) { return H5Aread(attribute.get(), native, to); });
      }
    }
    void AddDataset(hid_t dataset, const std::string& at) const {
      const Id type(H5Dget_type(dataset), at), space(H5Dget_space(dataset), at);
      contents[at] = Bytes(type.get(), H5Sget_simple_extent_npoints(space.get()), [&](hid_t native, void* to) {
        return H5Dread(dataset, native, H5S_ALL, H5S_ALL, H5P_DEFAULT, to);
      });
    }
    void Visit(hid_t group, const std::string& at) const {
      AddAttributes(group, at);
      H5G_info_t info = {};
      Check(H5Gget_info(group, &info), at);
      for (hsize_t i = 0; i < info.nlinks; ++i) {
        char name[256] = {};
        Check(H5Lget_name_by_idx(group, ".", H5_INDEX_NAME, H5_ITER_INC, i, name, sizeof name, H5P_DEFAULT), at);
        AddLink(group, name, at + "/" + name);
      }
    }
    void AddLink(hid_t group, const char* name, const std::string& at) const {
      H5L_info2_t link = {};
      Check(H5Lget_info2(group, name, &link, H5P_DEFAULT), at);
      if (link.type != H5L_TYPE_HARD) {
        contents[at] = "link";
        return;
      }
      const Id object(H5Oopen(group, name, H5P_DEFAULT), at);
      if (H5Iget_type(object.get()) == H5I_GROUP) {
        contents[at] = "group";
        return Visit(object.get(), at);
      }
      AddAttributes(object.get(), at);
      if (H5Iget_type(object.get()) == H5I_DATASET) AddDataset(object.get(), at);
    }
  };
  const Id root(H5Gopen2(file.get(), "/", H5P_DEFAULT), "/");
  Visitor{contents}.Visit(root.get(), "");
  return contents;
}

/// The bytes of a file with groups of the oldest form, and where in them its structures are.
class Bytes {
 public:
  explicit Bytes(const std::string& path) : path_(path), bytes_(BytesOf(path)) {}

  const std::string& all() const { return bytes_; }
  size_t HeaderOf(const std::string& object) const {
    const Id file(H5Fopen(path_.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), path_);
    H5O_info2_t info = {};
    Check(H5Oget_info_by_name3(file.get(), object.c_str(), &info, H5O_INFO_BASIC, H5P_DEFAULT), object);
    haddr_t address = 0;
    Check(H5VLnative_token_to_addr(file.get(), info.token, &address), object);
    return address;
  }
  size_t TreeOf(const std::string& group) const { return NumberAt(HeaderOf(group) + 24); }
  size_t HeapOf(const std::string& group) const { return NumberAt(HeaderOf(group) + 32); }
  /// The address of a symbol node: the child of the tree at a position.
  size_t NodeOf(const std::string& group, size_t position = 0) const {
    return NumberAt(TreeOf(group) + 32 + 16 * position);
  }
  std::uint64_t NumberAt(size_t at) const {
    std::uint64_t number = 0;
    std::memcpy(&number, bytes_.data() + at, sizeof number);
    return number;
  }

  Bytes& Wipe(size_t at, size_t count = 8) {
    bytes_.replace(at, count, count, '\0');
    return *this;
  }
  Bytes& Put(size_t at, std::uint64_t number) {
    std::memcpy(bytes_.data() + at, &number, sizeof number);
    return *this;
  }

 private:
  std::string path_;
  std::string bytes_;
};

struct RepairRun {
  int exit_code = 0;
  nlohmann::json report;  ///< empty where there was trouble
  std::string err;

  /// "place" of what is lost, "place ~" of what is damaged.
  std::vector<std::string> Lost() const {
    std::vector<std::string> lost;
    for (const nlohmann::json& loss : report.at("lost")) {
      lost.push_back(loss.at("place").get<std::string>() + (loss.at("partial").get<bool>() ? " ~" : ""));
    }
    return lost;
  }
};

class RepairTest : public ProgramTest {
 protected:
  /// A sound file with so many states.
  static void Fill(ForgedModel& model, int states) {
    FillSoundFile(model);
    for (int state = 3; state <= states; ++state) AddSoundState(model, state);
  }

  std::string out() const { return TempPath("out.orv"); }

  RepairRun RepairFileAt(const std::string& path, const std::vector<std::string>& options = {}) const {
    std::vector<std::string> arguments = {"repair", path, "-o", out(), "--json", "--force"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const ProgramRun run = RunOrv(arguments);
    RepairRun repair{run.exit_code, {}, run.err};
    if (!run.out.empty()) repair.report = nlohmann::json::parse(run.out);
    return repair;
  }

  /// Repairs a damaged file. What comes out must be sound, and all of it as it was in the original.
  RepairRun Repair(const std::string& bytes, const std::string& original,
                   const std::vector<std::string>& options = {}) const {
    std::filesystem::remove(out());
    const RepairRun run = RepairFileAt(WriteFile("damaged.orv", bytes), options);
    EXPECT_THAT(run.exit_code, testing::AnyOf(0, 1)) << run.err;
    if (run.exit_code == 0 || run.exit_code == 1) ExpectSoundPartOf(original);
    return run;
  }

  void ExpectSoundPartOf(const std::string& original, const std::vector<std::string>& made = {}) const {
    const ProgramRun check = RunOrv({"check", "--level", "error", out()});
    EXPECT_NE(check.out.find("0 errors"), std::string::npos) << check.out;
    const auto before = ContentsOf(original), after = ContentsOf(out());
    for (const auto& [place, bytes] : after) {
      if (bytes == "group" || std::ranges::find(made, place) != made.end()) continue;
      const auto found = before.find(place);
      ASSERT_NE(found, before.end()) << place;
      EXPECT_EQ(found->second, bytes) << place;
    }
  }

  bool Has(const std::string& place) const { return ContentsOf(out()).contains(place); }
};

}  // namespace orv_test
