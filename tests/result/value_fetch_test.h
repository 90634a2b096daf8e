#pragma once

// What the tests of the value fetch share.

#include <string>
#include <vector>

#include "result/block_file.h"
#include "result/fetched_values.h"
#include "result/value_fetch.h"
#include "result/variable_with_handles.h"
#include "support/messages.h"
#include "support/orv_test.h"

namespace orv_test {

using Floats = std::vector<float>;
using Ints = std::vector<int>;

/// A file and a variable of three components: handles 1, 2 and 3 of the components, 9 of a measure of all of them, 8 of
/// one of the first and the last.
class ValueFetchTest : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  static constexpr int kFirst = 1, kSecond = 2, kThird = 3, kApart = 8, kAll = 9;

  ValueFetchTest() {
    speed_.Add(kFirst, 0);
    speed_.Add(kSecond, 1);
    speed_.Add(kThird, 2);
    speed_.AddComputed(kAll, 50, {{kFirst, kSecond, kThird}});
    speed_.AddComputed(kApart, 50, {{kFirst}, {kThird}});
    values_.m_state = 1;
    values_.m_wantIds = 1;
  }

  /// Nodes with values 10 x number of the node + number of the component, from 1 on; ids are 100 x number of the node.
  static StoredBlock<float> Nodes(int nodes, const char* etyp = "Node", int first = 1) {
    StoredBlock<float> block{.etyp = etyp, .nent = nodes, .shape = {static_cast<hsize_t>(nodes), 3}};
    for (int node = first; node < first + nodes; ++node) {
      for (int component = 1; component <= 3; ++component) block.values.push_back(float(10 * node + component));
      block.ids.push_back(100 * node);
    }
    return block;
  }

  ORVResult Listed(const char* etyp = "Node", int nent = 1) {
    return ListedBlock(1000, etyp, "SPEED", nent, 3, speed_.get());
  }

  template <class T>
  int Fetch(ORVResultValuesBase<T, int>& values, const std::vector<ORVResult*>& blocks,
            const orvio::FetchQuantity& quantity) {
    return orvio::FetchValues(file_.path().c_str(), values, blocks, quantity);
  }

  int Fetch(const std::vector<ORVResult*>& blocks, const orvio::FetchQuantity& quantity) {
    return Fetch(values_, blocks, quantity);
  }

  void ExpectNoAnswer() {
    EXPECT_EQ(values_.m_values, nullptr);
    EXPECT_EQ(values_.m_valueCount, 0);
    EXPECT_EQ(values_.m_ids, nullptr);
    EXPECT_EQ(values_.m_idCount, 0);
  }

  Messages messages_;
  BlockFile file_{GetParam()};
  VariableWithHandles speed_{"SPEED", 3};
  FetchedValues<float> values_;
};

}  // namespace orv_test
