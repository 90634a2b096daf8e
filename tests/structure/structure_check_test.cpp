// What the structure check accepts.

#include "structure/structure_check.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/forged_file.h"
#include "support/orv_test.h"
#include "support/raw_file.h"

namespace {

using namespace orv_test;
using orvio::structure::ByteSource;

class StructureCheck : public OrvTest {};

/// Bytes held by the test.
class HeldBytes : public ByteSource {
 public:
  explicit HeldBytes(std::string bytes) : bytes_(std::move(bytes)) {}
  std::uint64_t Size() const override { return bytes_.size(); }
  bool Read(std::uint64_t offset, void* buffer, std::size_t count) override {
    if (offset > bytes_.size() || count > bytes_.size() - offset) return false;
    std::memcpy(buffer, bytes_.data() + offset, count);
    return true;
  }

 private:
  std::string bytes_;
};

TEST_F(StructureCheck, AcceptsAFileWithGroupsAttributesAndDatasets) {
  ForgedFile file;
  file.at("/post/constant/b").integer("block", 500).text("etyp", "NODE").dataset<float>("res", {2}, {1, 2});
  HeldBytes bytes(BytesOf(file.path()));
  EXPECT_FALSE(orvio::structure::CheckStructure(bytes));
}

}  // namespace
