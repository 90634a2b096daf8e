#pragma once

// Whole blocks in forged files, in either layout.

#include <string>
#include <vector>

#include "support/forged_file.h"

namespace orv_test {

struct ForgedVariable {
  std::string name;
  std::string key = {};         ///< single layout only
  std::string class_word = {};  ///< likewise
  int ncoo = 1;
  int rank = 0;
  int tensor = 0;                        ///< single layout only
  std::vector<std::string> labels = {};  ///< of the components; names of the components in the split layout
};

/// Units of a variable's components: base units and derived ones. Empty tables are not written.
struct ForgedUnits {
  std::vector<int> mbunit = {};
  std::vector<int> ubid = {};
  std::vector<float> ubexp = {};
  std::vector<int> mdunit = {};
  std::vector<int> udid = {};
  std::vector<float> udexp = {};
};

struct ForgedGroupEntry {
  std::string key;
  int count;
  int offset;
};

struct ForgedValues {
  int kind = 1000;  ///< block key
  std::string etyp = "NODE";
  std::string variable = {};
  int nent = 0;
  int ncoo = 1;
  int numl = 0;    ///< element kinds
  int nstate = 0;  ///< multi-state kinds
  int zoneid = 0;
  std::string series = {};          ///< a group of its own below the section
  std::vector<float> values = {};   ///< `res`, in the shape of the kind; none is written when empty
  std::vector<int> ids = {};        ///< `entid` or `idele`
  std::vector<float> index = {};    ///< `indexval`, nindex, or nstate x nindex
  std::vector<hsize_t> shape = {};  ///< of `res`, where it shall not be that of the kind
  std::string group_name = {};      ///< of the block's own group, below that of the variable
};

/// A file of version 2.2 (single layout) or 1.1 (split layout) that blocks are added to.
class ForgedModel {
 public:
  enum Layout { kSingle, kSplit };

  explicit ForgedModel(Layout layout = kSingle);

  ForgedModel& variable(const ForgedVariable& variable);
  /// `variable` is its key, or its name where it has none.
  ForgedModel& units(const std::string& variable, const ForgedUnits& units);
  ForgedModel& group(const std::string& name, int ncoo, const std::vector<ForgedGroupEntry>& entries);
  /// Index types: their names in the split layout; the name of a group of variables in the single one.
  ForgedModel& index_types(const std::vector<std::string>& names);
  ForgedModel& index_types_of_group(const std::string& group, int nindex);
  /// A unit system of two base units, mm (id 1) and s (id 2), and one derived unit, mm/s (id 11).
  ForgedModel& system();
  ForgedModel& in_constant(const ForgedValues& result) { return Add("/post/constant", result); }
  ForgedModel& in_state(int state, const ForgedValues& result);
  ForgedModel& in_multistate(const ForgedValues& result) { return Add("/post/multistate", result); }
  /// A properties block with ids alone; below a group of its own in a section or state.
  ForgedModel& properties(const std::string& section, const std::string& etyp, const std::string& name, int nent);

  ForgedFile& file() { return file_; }
  std::string path() { return file_.path(); }
  static std::string StateGroup(int state);

  /// Group of a part of a block: `part` is "header", "data" or "index".
  std::string Part(const std::string& block, const char* part) const;

 private:
  ForgedModel& Add(const std::string& section, const ForgedValues& result);

  Layout layout_;
  ForgedFile file_;
};

}  // namespace orv_test
