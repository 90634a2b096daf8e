#pragma once

// Files with properties blocks of records, and a filer that shows what it has.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "filer/container.h"
#include "orvio/orv_filer.h"
#include "support/forged_model.h"

namespace orv_test {

/// A block of two entities, each with two integers, a float and two texts of three bytes.
struct StoredProperties {
  std::string section = "/post/constant";
  std::string etyp = "SECURED_NODE";
  std::string name = "COORDINATE";
  std::vector<int> ids = {101, 102};
  int nbint = 2;
  std::vector<int> ints = {1, 2, 3, 4};
  int nbfloat = 1;
  std::vector<float> floats = {0.5F, 1.5F};
  int length = 3;
  int nbstring = 2;
  std::vector<std::string> texts = {"abc", "de", "f", "ghi"};

  std::string Path() const { return section + "/" + etyp + "/" + name; }
};

/// One with ids alone.
inline StoredProperties IdsOnly(const std::string& section, const std::string& etyp, const std::string& name,
                                std::vector<int> ids = {1}) {
  return {section, etyp, name, std::move(ids), 0, {}, 0, {}, 0, 0, {}};
}

/// A file of version 2.2 whose blocks are of either layout.
class PropertiesFile {
 public:
  explicit PropertiesFile(ForgedModel::Layout layout = ForgedModel::kSingle) : model_(layout) {
    model_.file().header(2, 2, 0);
  }

  /// Leaves the file at the header of the block.
  ForgedFile& Add(const StoredProperties& block = {}) {
    const hsize_t nent = block.ids.size();
    Data(block).dataset<std::int32_t>("entid", {nent}, block.ids);
    if (!block.ints.empty()) {
      file().dataset<std::int32_t>("iparam", {nent, static_cast<hsize_t>(block.nbint)}, block.ints);
    }
    if (!block.floats.empty()) {
      file().dataset<float>("fparam", {nent, static_cast<hsize_t>(block.nbfloat)}, block.floats);
    }
    if (!block.texts.empty()) {
      file().texts("cparam", static_cast<std::size_t>(block.length), {block.texts.size()}, block.texts);
    }
    Header(block).integer("block", 500).text("etypprop", block.name).text("etyp", block.etyp);
    file().integer32("length", block.length).integer32("nbstring", block.nbstring).integer32("nbint", block.nbint);
    return file().integer32("nbfloat", block.nbfloat).integer32("nbid", 1).integer("nent", static_cast<int>(nent));
  }

  ForgedFile& Header(const StoredProperties& block = {}) { return file().at(model_.Part(block.Path(), "header")); }
  ForgedFile& Data(const StoredProperties& block = {}) { return file().at(model_.Part(block.Path(), "data")); }
  /// As the walk through the file finds it.
  std::string BlockPath(const StoredProperties& block = {}) const {
    const std::string header = model_.Part(block.Path(), "header");
    return header.ends_with("/orvblock") ? header : block.Path();
  }
  ForgedModel& model() { return model_; }
  ForgedFile& file() { return model_.file(); }
  std::string path() { return model_.path(); }

 private:
  ForgedModel model_;
};

class PropertiesFiler : public ORVFiler {
 public:
  using ORVFiler::InitProperityBlockReading;
  using ORVFiler::ORVFiler;
  using ORVFiler::ReadPropertiesBlks;
  ORVContainer& data() { return *m_pData; }

  std::vector<std::string> Names() { return NamesOf(GetPropertiesBlocks(false)); }

  template <class Block>
  static std::vector<std::string> NamesOf(const std::vector<Block*>& blocks) {
    std::vector<std::string> names;
    for (const ORVResult* block : blocks) names.push_back(std::string(block->m_etyp) + "/" + block->m_etypvar);
    return names;
  }
};

inline constexpr char kState1[] = "/post/singlestate/state000000000001";
inline constexpr char kState2[] = "/post/singlestate/state000000000002";
inline constexpr char kMultistate[] = "/post/multistate";

inline std::string NameOfLayout(const testing::TestParamInfo<ForgedModel::Layout>& info) {
  return info.param == ForgedModel::kSplit ? "split" : "single";
}

}  // namespace orv_test
