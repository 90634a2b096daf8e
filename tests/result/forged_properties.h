#pragma once

// Properties blocks in forged files.

#include <string>
#include <vector>

#include "orvio/orv_properties.h"
#include "result/forged_result.h"

namespace orv_test {

inline constexpr char kCoordinate[] = "/post/constant/SECURED_NODE/COORDINATE";

/// A block of two entities, each with two texts of three bytes, two integers and one float. The calls choose a part.
class ForgedProperties : public ForgedResult {
 public:
  explicit ForgedProperties(Layout layout = Layout::kSplit, const std::string& block = kCoordinate)
      : ForgedResult(layout, block) {
    data().texts("cparam", 3, {4}, {"abc", "de", "f", "ghi"}).dataset<std::int32_t>("entid", {2}, {101, 102});
    data().dataset<std::int32_t>("iparam", {2, 2}, {1, 2, 3, 4}).dataset<float>("fparam", {2, 1}, {0.5F, 1.5F});
    header().integer("block", 500).integer32("indexic", 1).text("etypprop", "COORDINATE").integer32("length", 3);
    header().integer32("nbfloat", 1).integer32("nbid", 1).integer32("nbint", 2).integer32("nbstring", 2);
    header().text("etyp", "SECURED_NODE").integer("nent", 2).text("etypzone", "ZONE").integer("zoneid", 7);
    header().integer("nindex", 2);
    index().dataset<std::int32_t>("indexident", {2}, {1, 2}).dataset<float>("indexval", {2}, {0.25F, 4});
  }
};

/// A block that finds itself by its names, with buffers for what the forged one holds.
struct TestProperties : ORVProperties {
  TestProperties() { SetEntityAndVarName("SECURED_NODE", "COORDINATE"); }
  TestProperties(const TestProperties&) = delete;
  TestProperties& operator=(const TestProperties&) = delete;
  ~TestProperties() override = default;

  int Read(ForgedProperties& file, int stages) { return ReadBlock(file.path().c_str(), 0, stages); }
  /// Reads the header and points the members to the buffers.
  void Prepare(ForgedProperties& file) {
    EXPECT_EQ(Read(file, ORV_READ_HEADER), 0);
    m_cparam = texts.data();
    m_entid = ids.data();
    m_iparam = integers.data();
    m_fparam = floats.data();
  }

  std::string texts = std::string(12, '?');
  std::vector<int> ids = std::vector<int>(2, -1), integers = std::vector<int>(4, -1);
  std::vector<float> floats = std::vector<float>(2, -1);
};

}  // namespace orv_test
