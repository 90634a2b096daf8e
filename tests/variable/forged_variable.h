#pragma once

// Variables in forged files, and what tests of variables share.

#include <cstring>
#include <string>

#include "orvio/orv_switches.h"
#include "orvio/orv_variable.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "variable/variable_buffers.h"

namespace orv_test {

inline constexpr char kSingleGroup[] = "/post/constant/variable/ZPS:Stress/orvblock";
inline constexpr char kSplitHeader[] = "/post/constant/variables/STRESS/header";
inline constexpr char kSplitData[] = "/post/constant/variables/STRESS/data";

/// One variable of two components with a key, as files of version 2 have it. at() is its group.
inline ForgedFile ForgeKeyed() {
  ForgedFile file("keyed");
  file.at(kSingleGroup).integer("block", 30).text("blocktype", "variable").text("varnam", "Stress");
  file.integer("ncoo", 2).integer("rank", 1).integer("ndim", 3).text("varkey", "ZPS:Stress");
  file.text("varclass", "CLASS_STRESS").text("type", "free").integer32("lenb", 3).integer32("lend", 1);
  file.integer32("subslen", 5).integer32("lvmap", 1).integer32("tensor", 1);
  file.dataset<std::int32_t>("mbunit", {2}, {2, 1}).dataset<std::int32_t>("mdunit", {2}, {0, 1});
  file.dataset<std::int32_t>("ubid", {3}, {11, 12, 13}).dataset<float>("ubexp", {3}, {1, -2, 0.5F});
  file.dataset<std::int32_t>("udid", {1}, {21}).dataset<float>("udexp", {1}, {2});
  file.texts("subscr", 1, {5}, {"X", "X", "Y", "Y", "Y"});
  file.dataset<std::int32_t>("subscnt", {2}, {2, 3}).dataset<std::int32_t>("subsoffs", {2}, {0, 2});
  file.dataset<float>("vmap", {2, 3}, {1, 2, 3, 4, 5, 6});
  return file;
}

/// One variable of two components as files of version 1 have it. at() is its group "header".
inline ForgedFile ForgeUnkeyed() {
  ForgedFile file("unkeyed");
  file.header(1, 1, 0).at(kSplitData);
  file.texts("cname", 256, {2}, {"first", "  second one"}).dataset<std::int32_t>("cid", {2}, {7, 8});
  file.dataset<std::int32_t>("mbunit", {2}, {1, 0}).dataset<std::int32_t>("mdunit", {2}, {0, 2});
  file.dataset<std::int32_t>("ubid", {1}, {11}).dataset<float>("ubexp", {1}, {-1});
  file.dataset<std::int32_t>("udid", {2}, {21, 22}).dataset<float>("udexp", {2}, {2, 3});
  file.at(kSplitHeader).integer("block", 30).text("blocktype", "variables").text("etypvar", "STRESS");
  file.integer("ncoo", 2).integer("rank", 1).integer("ndim", 3).integer("idtrans", 44);
  return file;
}

/// A variable whose tables come from AllocateBuffers.
struct TestVariable : ORVVariable {
  TestVariable() = default;
  TestVariable(const TestVariable&) = delete;
  TestVariable& operator=(const TestVariable&) = delete;
  ~TestVariable() override { orvio::FreeBuffers(*this); }

  using ORVBlock::SetH5Reader;
  using ORVVariable::AppendBlockSchema;

  /// Reads the header of the first variable of a file.
  int ReadFirstHeader(ForgedFile& file) { return ReadBlockAt(file.path().c_str(), 0, 0, ORV_READ_HEADER); }
  /// Reads header and data, with tables for all of it.
  int ReadFirst(ForgedFile& file) {
    EXPECT_EQ(ReadFirstHeader(file), 0);
    EXPECT_TRUE(orvio::AllocateBuffers(*this));
    return ReadBlockAt(file.path().c_str(), 0, 0, ORV_READ_DATA);
  }
};

inline void SetText(char (&field)[257], const char* text) { std::snprintf(field, sizeof field, "%s", text); }

/// Another writer version for the life of the scope.
class WriterVersion {
 public:
  explicit WriterVersion(int version) : before_(ORVSetCurrentWriterVersion(version)) {}
  WriterVersion(const WriterVersion&) = delete;
  WriterVersion& operator=(const WriterVersion&) = delete;
  ~WriterVersion() { ORVSetCurrentWriterVersion(before_); }

 private:
  int before_;
};

}  // namespace orv_test
