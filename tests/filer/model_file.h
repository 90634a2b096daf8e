#pragma once

// What the tests of the questions about a model share: a model in a file, and a filer that has read it.

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "entity/own_entity_table.h"
#include "filer/container.h"
#include "orvio/orv_filer.h"
#include "support/forged_model.h"
#include "support/messages.h"
#include "support/orv_test.h"

namespace orv_test {

using Ints = std::vector<int>;
using Floats = std::vector<float>;
using Results = std::vector<ORVResult*>;

/// An array of the C allocator that an operation has handed out.
template <class T>
class HandedOut {
 public:
  HandedOut() = default;
  ~HandedOut() { std::free(array); }
  HandedOut(const HandedOut&) = delete;
  HandedOut& operator=(const HandedOut&) = delete;

  std::vector<T> first(int count) const { return array ? std::vector<T>(array, array + count) : std::vector<T>(); }

  T* array = nullptr;
};

class ModelFiler : public ORVFiler {
 public:
  using ORVFiler::ORVFiler;
  ORVContainer*& data() { return m_pData; }
};

/// Entity types are those of the test alone, with NODE for nodes and FLUID for fluid particles.
class ModelTest : public OrvTest, public ::testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  ModelTest() {
    ORVCheckAppendToEntityMap(50, 1, "NODE");
    ORVCheckAppendToEntityMap(2005, 2, "FLUID");
  }

  /// A filer on the file as it is.
  ModelFiler& Open() {
    filer_ = std::make_unique<ModelFiler>(model_.path().c_str());
    int next_id = 1;
    EXPECT_EQ(filer_->InitReader(next_id), 0);
    return *filer_;
  }

  Results& all() { return filer_->GetResultList(1); }

  /// Group of a part of a block, for what a model does not forge.
  ForgedFile& Data(const std::string& section, const std::string& block) {
    return model_.file().at(model_.Part(section + "/" + block, "data"));
  }
  ForgedFile& Header(const std::string& section, const std::string& block) {
    return model_.file().at(model_.Part(section + "/" + block, "header"));
  }

  const OwnEntityTable table_;
  const Messages messages_;
  ForgedModel model_{GetParam()};
  std::unique_ptr<ModelFiler> filer_;
};

/// Takes what a filer holds away from it for the life of the scope, as lack of memory does.
class WithoutData {
 public:
  explicit WithoutData(ModelFiler& filer) : without_(filer.data(), nullptr) {}

 private:
  orvio::Swapped<ORVContainer*> without_;
};

inline std::string NameOfModelLayout(const testing::TestParamInfo<ForgedModel::Layout>& info) {
  return info.param == ForgedModel::kSplit ? "split" : "single";
}

}  // namespace orv_test
