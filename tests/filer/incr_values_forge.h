#pragma once

// Results whose states hold changes only, and their fetch.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "orvio/orv_filer.h"
#include "result/fetched_values.h"
#include "support/forged_model.h"
#include "support/orv_test.h"

namespace orv_test {

using Floats = std::vector<float>;
using Ints = std::vector<int>;
using Results = std::vector<ORVResult*>;

/// What a state holds of a result.
struct ForgedChange {
  std::vector<int> ids;
  std::vector<float> values;
  int flag = 1;        ///< `indexic`; 0 for a full state
  int identifier = 0;  ///< of the index; 0 for the number of the state
  std::string etyp = "NODE";
  int zone = 0;
  int kind = 1000;
  int numl = 0;
  std::string variable = "MASS";  ///< one component; "FLOW" has two
};

/// A file that states are added to, its filer, and the answer of a fetch.
class IncrValuesTest : public OrvTest, public ::testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  IncrValuesTest() {
    model_.variable({.name = "MASS", .key = "MASS"}).variable({.name = "FLOW", .key = "FLOW", .ncoo = 2});
    values_.m_wantIds = 1;
  }

  static std::string BlockOf(int state, const ForgedChange& change) {
    const char* group = change.kind < 1100 ? "/entityresults/" : "/elementresults/";
    return ForgedModel::StateGroup(state) + group + change.etyp + "/" + change.variable;
  }
  /// Chooses a part of NODE/MASS in a state.
  ForgedFile& PartOf(int state, const char* part) {
    return model_.file().at(model_.Part(BlockOf(state, ForgedChange{}), part));
  }

  void Add(int state, const ForgedChange& change) {
    const std::int32_t identifier = change.identifier ? change.identifier : state;
    model_.in_state(state, {.kind = change.kind,
                            .etyp = change.etyp,
                            .variable = change.variable,
                            .nent = static_cast<int>(change.ids.size()),
                            .ncoo = change.variable == "FLOW" ? 2 : 1,
                            .numl = change.numl,
                            .zoneid = change.zone,
                            .values = change.values,
                            .ids = change.ids,
                            .index = {static_cast<float>(identifier)}});
    const std::string block = BlockOf(state, change);
    model_.file().at(model_.Part(block, "index")).dataset<std::int32_t>("indexident", {1}, {identifier});
    if (change.flag) model_.file().at(model_.Part(block, "header")).integer32("indexic", change.flag);
  }
  /// A state without results.
  void AddState(int state) { model_.file().at(ForgedModel::StateGroup(state)); }

  void Open() {
    filer_ = std::make_unique<ORVFiler>(model_.path().c_str());
    int next_id = 1;
    ASSERT_EQ(filer_->InitReader(next_id), 0);
    blocks_ = filer_->GetResultList(1);
  }

  int Handle(const char* variable = "MASS") { return filer_->GetVariable(variable)->GetExtVariables().at(0)->GetIID(); }

  /// Fetches the first component of MASS for all blocks. Arrays of the answer before are freed unless they are reused.
  int Fetch(int state) {
    if (values_.m_capacity == 0) values_.DeleteAllocation(true);
    values_.m_state = state;
    return filer_->GetIncrValues(values_, blocks_, Handle(), -1, nullptr);
  }

  void ExpectNoAnswer() const {
    EXPECT_EQ(values_.m_values, nullptr);
    EXPECT_EQ(values_.m_valueCount, 0);
    EXPECT_EQ(values_.m_ids, nullptr);
    EXPECT_EQ(values_.m_idCount, 0);
  }

  ForgedModel model_{GetParam()};
  std::unique_ptr<ORVFiler> filer_;
  FetchedValues<float> values_;
  Results blocks_;
};

inline std::string NameOfLayout(const ::testing::TestParamInfo<ForgedModel::Layout>& layout) {
  return layout.param == ForgedModel::kSplit ? "Split" : "Single";
}

}  // namespace orv_test
