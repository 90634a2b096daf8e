#pragma once

// Unit systems in forged files, and what their tests share.

#include <cstring>
#include <string>
#include <vector>

#include "orvio/orv_system.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "unit/system_read.h"

namespace orv_test {

enum class Layout { kSplit, kSingle };

inline std::string NameOfLayout(const testing::TestParamInfo<Layout>& info) {
  return info.param == Layout::kSplit ? "Split" : "Single";
}

inline std::string SystemPart(Layout layout, const char* split) {
  return std::string("/post/constant/system/") + (layout == Layout::kSplit ? split : "orvblock");
}

/// A file with two base units, mm (1) and s (2), and two derived ones, mm/s (11) and mm*mm (12). at() is the header.
inline ForgedFile ForgeSystem(Layout layout = Layout::kSingle) {
  ForgedFile file("system");
  file.at(SystemPart(layout, "data")).dataset<std::int32_t>("ubid", {2}, {1, 2});
  file.texts("ubtyp", 256, {2}, {"Length", "TIME"}).texts("ubnam", 256, {2}, {"mm", "s"});
  file.dataset<float>("ubcon", {2}, {0.001F, 1}).dataset<float>("ubshift", {2}, {0.5F, -1});
  file.dataset<std::int32_t>("udid", {2}, {11, 12}).texts("udnam", 256, {2}, {"mm/s", "mm*mm"});
  file.dataset<float>("udscal", {2}, {3, 4}).dataset<std::int32_t>("ndbunit", {2}, {2, 1});
  file.dataset<std::int32_t>("udbid", {3}, {1, 2, 1}).dataset<float>("udbexp", {3}, {1, -1, 2});
  file.at(SystemPart(layout, "header")).integer("block", 10).text("blocktype", "system");
  file.text("title", "A plate").text("sys", "mm-t-s").text("solver_name", "forge").text("solver_vers", "1.2");
  file.text("cdate", "21/11/26", 8).text("ctime", "06:21:25", 8).text("mdate", "22/11/26", 8);
  file.text("mtime", "07", 8).integer("nbunit", 2).integer("ndunit", 2).integer("cversion", 5);
  return file;
}

/// A block whose arrays come from AllocateBuffers.
struct TestSystem : ORVSystem {
  TestSystem() = default;
  TestSystem(const TestSystem&) = delete;
  TestSystem& operator=(const TestSystem&) = delete;
  ~TestSystem() override { orvio::FreeBuffers(*this); }

  using ORVSystem::AppendBlockSchema;

  int Header(ForgedFile& file) { return ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER); }
  int Read(ForgedFile& file) { return orvio::ReadSystem(file.path().c_str(), *this); }
};

template <class T>
std::vector<T> Values(const T* from, std::size_t count) {
  return {from, from + count};
}

}  // namespace orv_test
