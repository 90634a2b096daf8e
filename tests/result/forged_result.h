#pragma once

// What the tests of result blocks share: blocks forged in both layouts, and blocks to read and write them with.

#include <gtest/gtest.h>

#include <string>

#include "orvio/orv_result.h"
#include "support/forged_file.h"
#include "support/orv_test.h"

namespace orv_test {

/// How the parts of a forged block lie in its group.
enum class Layout { kSplit, kSingle };

inline std::string NameOfLayout(const ::testing::TestParamInfo<Layout>& info) {
  return info.param == Layout::kSplit ? "split" : "single";
}

inline constexpr char kNodePath[] = "/post/singlestate/state000000000001/entityresults/Node/VELOCITY";
inline constexpr char kShellPath[] = "/post/singlestate/state000000000001/elementresults/SHELL/STRESS";
inline constexpr char kMultiNodePath[] = "/post/multistate/multientityresults/Node/VELOCITY";
inline constexpr char kMultiShellPath[] = "/post/multistate/elementresults/SHELL/STRESS";

/// A file with one result block. The calls choose one of its parts, to be filled.
class ForgedResult {
 public:
  ForgedResult(Layout layout, std::string block) : layout_(layout), block_(std::move(block)) {
    header();
    data();
    index();
  }

  ForgedFile& header() { return At("header"); }
  ForgedFile& data() { return At("data"); }
  ForgedFile& index() { return At("index"); }
  std::string path() { return file_.path(); }

 private:
  ForgedFile& At(const char* part) { return file_.at(block_ + "/" + (layout_ == Layout::kSplit ? part : "orvblock")); }

  Layout layout_;
  std::string block_;
  ForgedFile file_{"result"};
};

/// A block that finds itself by its names.
inline ORVResult NodeBlock(int kind) {
  ORVResult block(kind);
  block.SetEntityAndVarName("Node", "VELOCITY");
  return block;
}

inline ORVResult ShellBlock(int kind) {
  ORVResult block(kind);
  block.SetEntityAndVarName("SHELL", "STRESS");
  return block;
}

}  // namespace orv_test
