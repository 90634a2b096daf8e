#pragma once

// Attributes whose states hold changes only, and their reading.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "entity/entity_list_forge.h"
#include "orvio/orv_filer.h"
#include "support/orv_test.h"

namespace orv_test {

/// What a state holds of an attribute.
struct ForgedAttribute {
  std::vector<std::int32_t> ids;
  std::vector<std::int32_t> integers = {};  ///< the same number for each entity
  int flag = 1;                             ///< `indexic`; 0 for a full state
  int identifier = 0;                       ///< of the index; 0 for the number of the state
  std::vector<std::string> titles = {};     ///< none are stored when empty
  std::string etyp = "NODE";
};

/// A file that states are added to, and the attribute NODE as it is read from it.
class IncrAttributeTest : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  IncrAttributeTest() { std::strcpy(block_.m_etyp, "NODE"); }
  ~IncrAttributeTest() override { CleanUp(); }

  static std::string GroupOf(int state, const std::string& etyp = "NODE") {
    return InState(state, "attributes/" + etyp);
  }
  PartPaths PartsOf(int state, const std::string& etyp = "NODE") const { return {GroupOf(state, etyp), GetParam()}; }
  ForgedFile& DataOf(int state) { return file_.at(PartsOf(state).data); }
  ForgedFile& HeaderOf(int state) { return file_.at(PartsOf(state).header); }

  void Add(int state, const ForgedAttribute& attribute) {
    const PartPaths parts = PartsOf(state, attribute.etyp);
    const hsize_t nent = attribute.ids.size();
    const hsize_t nuid = nent ? attribute.integers.size() / nent : 0;
    file_.at(parts.data).dataset<std::int32_t>("entid", {nent}, attribute.ids);
    if (nuid) file_.dataset<std::int32_t>("uid", {nent, nuid}, attribute.integers);
    if (!attribute.titles.empty()) file_.texts("title", 8, {nent}, attribute.titles);
    const std::int32_t identifier = attribute.identifier ? attribute.identifier : state;
    file_.at(parts.index).dataset<std::int32_t>("indexident", {1}, {identifier});
    file_.dataset<float>("indexval", {1}, {static_cast<float>(identifier)});
    file_.at(parts.header).integer("block", 200).text("etyp", attribute.etyp).integer("nindex", 1);
    file_.integer("nent", static_cast<std::int64_t>(nent)).integer("nuid", static_cast<std::int64_t>(nuid));
    file_.integer32("length", attribute.titles.empty() ? 0 : 8);
    if (attribute.flag) file_.integer32("indexic", attribute.flag);
  }
  /// A state without attributes.
  void AddState(int state) { file_.at(InState(state, "attributes")); }

  /// The block is one that was met in a state before.
  void MeetIn(int state) {
    block_.SetBlkPath(GroupOf(state, block_.m_etyp) + (GetParam() == Layout::kSplit ? "" : "/orvblock"));
  }

  /// Reads by the records of the block itself.
  int Read(int state, bool append_new = false) { return ReadBy(false, state, append_new); }
  /// Reads by the map of the file.
  int ReadByFile(int state, bool append_new = false) { return ReadBy(true, state, append_new); }

  ORVFiler& Filer() {
    if (!filer_) filer_ = std::make_unique<ORVFiler>(file_.path().c_str());
    return *filer_;
  }
  void CleanUp() { Filer().CleanUpEntAttribute(&block_); }

  std::vector<int> Ids() const { return Copy(block_.m_entid, block_.m_nent); }
  std::vector<int> Integers() const { return Copy(block_.m_uid, block_.m_nent * block_.m_nuid); }

  void ExpectNoArrays() const {
    EXPECT_EQ(block_.m_entid, nullptr);
    EXPECT_EQ(block_.m_uid, nullptr);
    EXPECT_EQ(block_.m_title, nullptr);
  }

  ForgedFile file_;
  ORVEntAttribute block_;

 private:
  int ReadBy(bool map_of_file, int state, bool append_new) {
    CleanUp();
    (void)file_.path();  // closes it
    return Filer().ReadIncrDataValues(&block_, state, append_new, map_of_file);
  }

  static std::vector<int> Copy(const void* array, std::int64_t count) {
    const int* first = static_cast<const int*>(array);
    return array ? std::vector<int>(first, first + count) : std::vector<int>();
  }

  std::unique_ptr<ORVFiler> filer_;
};

using Ints = std::vector<int>;

}  // namespace orv_test
