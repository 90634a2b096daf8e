#pragma once

// Files with several result blocks, in either layout, and the blocks to read them with.

#include <string>
#include <vector>

#include "orvio/orv_result.h"
#include "result/forged_result.h"
#include "support/forged_file.h"

namespace orv_test {

inline constexpr char kConstant[] = "/post/constant";
inline constexpr char kMultistate[] = "/post/multistate";
inline constexpr char kState1[] = "/post/singlestate/state000000000001";
inline constexpr char kState2[] = "/post/singlestate/state000000000002";

/// What stands in a file for one block. `T` is that of its values.
template <class T = float>
struct StoredBlock {
  int kind = 1000;
  std::string etyp = "Node";
  std::string variable = "SPEED";
  int nent = 0;
  std::vector<hsize_t> shape = {};  ///< of the values
  std::vector<T> values = {};
  std::vector<int> ids = {};
};

class BlockFile {
 public:
  explicit BlockFile(Layout layout) : layout_(layout) {}

  /// Group of a part of a block.
  std::string Part(const char* section, int kind, const std::string& etyp, const std::string& variable,
                   const char* part) const {
    const char* group = kind >= 1100 ? "elementresults" : kind >= 1050 ? "multientityresults" : "entityresults";
    return std::string(section) + "/" + group + "/" + etyp + "/" + variable + "/" +
           (layout_ == Layout::kSplit ? part : "orvblock");
  }

  template <class T = float>
  BlockFile& Add(const char* section, const StoredBlock<T>& block) {
    const bool element = block.kind >= 1100;
    file_.at(Part(section, block.kind, block.etyp, block.variable, "data"));
    if (!block.values.empty()) file_.dataset<T>("res", block.shape, block.values);
    if (!block.ids.empty()) file_.dataset<int>(element ? "idele" : "entid", {block.ids.size()}, block.ids);
    file_.at(Part(section, block.kind, block.etyp, block.variable, "header"));
    file_.integer("block", block.kind).integer(element ? "nele" : "nent", block.nent);
    return *this;
  }

  ForgedFile& file() { return file_; }
  std::string path() { return file_.path(); }

 private:
  Layout layout_;
  ForgedFile file_{"blocks"};
};

/// A block as a list holds it: with the counts of its header, bound to a variable.
inline ORVResult ListedBlock(int kind, const char* etyp, const char* variable, int nent, int ncoo,
                             ORVVariable* definition) {
  ORVResult block(kind);
  block.SetEntityAndVarName(etyp, variable);
  block.m_nent = nent;
  block.m_ncoo = ncoo;
  block.m_variable = definition;
  return block;
}

}  // namespace orv_test
