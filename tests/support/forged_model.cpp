#include "support/forged_model.h"

#include <cstdio>
#include <map>

namespace orv_test {
namespace {

constexpr hsize_t kTextWidth = 256;

struct KindRow {
  const char* type_group;
  bool element, multi, complex;
};

/// The kinds of results as files have them.
const KindRow& RowOf(int kind) {
  static const std::map<int, KindRow> rows = {
      {1000, {"entityresults", false, false, false}},     {1001, {"entityresults", false, false, true}},
      {1050, {"multientityresults", false, true, false}}, {1051, {"multientityresults", false, true, true}},
      {1100, {"elementresults", true, false, false}},     {1101, {"elementresults", true, false, true}},
      {1150, {"elementresults", true, true, false}},      {1151, {"elementresults", true, true, true}},
  };
  return rows.at(kind);
}

std::vector<hsize_t> ShapeOf(const ForgedValues& result) {
  if (!result.shape.empty()) return result.shape;
  const KindRow& row = RowOf(result.kind);
  std::vector<hsize_t> shape;
  if (row.multi) shape.push_back(static_cast<hsize_t>(result.nstate));
  shape.push_back(static_cast<hsize_t>(result.nent));
  if (row.element) shape.push_back(static_cast<hsize_t>(result.numl));
  shape.push_back(static_cast<hsize_t>(result.ncoo));
  if (row.complex) shape.push_back(2);
  return shape;
}

}  // namespace

ForgedModel::ForgedModel(Layout layout) : layout_(layout), file_("model") {
  if (layout == kSingle) {
    file_.header(2, 2, 0);
  } else {
    file_.header(1, 1, 0);
  }
}

std::string ForgedModel::StateGroup(int state) {
  char name[64];
  (void)std::snprintf(name, sizeof name, "/post/singlestate/state%012d", state);
  return name;
}

std::string ForgedModel::Part(const std::string& block, const char* part) const {
  return block + "/" + (layout_ == kSingle ? "orvblock" : part);
}

ForgedModel& ForgedModel::variable(const ForgedVariable& variable) {
  const auto ncoo = static_cast<hsize_t>(variable.ncoo);
  if (layout_ == kSplit) {
    const std::string block = "/post/constant/variables/" + variable.name;
    std::vector<std::string> names = variable.labels;
    names.resize(ncoo);
    file_.at(Part(block, "data")).texts("cname", kTextWidth, {ncoo}, names);
    file_.dataset<std::int32_t>("cid", {ncoo}, std::vector<std::int32_t>(ncoo, 1));
    file_.at(Part(block, "header")).integer("block", 30).text("etypvar", variable.name);
    file_.integer("ncoo", variable.ncoo).integer("rank", variable.rank).integer("ndim", 3);
    return *this;
  }
  file_.at(Part("/post/constant/variable/" + (variable.key.empty() ? variable.name : variable.key), "header"));
  file_.integer("block", 30).text("varnam", variable.name).integer("ncoo", variable.ncoo);
  file_.integer("rank", variable.rank).integer("ndim", 3).integer32("tensor", variable.tensor);
  file_.text("varkey", variable.key).text("varclass", variable.class_word);
  if (variable.labels.empty()) return *this;
  std::vector<int> lengths, offsets;
  std::vector<std::string> letters;
  for (const std::string& label : variable.labels) {
    offsets.push_back(static_cast<int>(letters.size()));
    lengths.push_back(static_cast<int>(label.size()));
    for (const char letter : label) letters.emplace_back(1, letter);
  }
  file_.integer32("subslen", static_cast<int>(letters.size())).texts("subscr", 1, {letters.size()}, letters);
  file_.dataset<std::int32_t>("subscnt", {ncoo}, lengths).dataset<std::int32_t>("subsoffs", {ncoo}, offsets);
  return *this;
}

ForgedModel& ForgedModel::units(const std::string& variable, const ForgedUnits& units) {
  file_.at(Part((layout_ == kSingle ? "/post/constant/variable/" : "/post/constant/variables/") + variable, "data"));
  const auto put = [&](const char* name, const auto& values) {
    if (!values.empty()) file_.dataset(name, {values.size()}, values);
  };
  put("mbunit", units.mbunit);
  put("ubid", units.ubid);
  put("ubexp", units.ubexp);
  put("mdunit", units.mdunit);
  put("udid", units.udid);
  put("udexp", units.udexp);
  return *this;
}

ForgedModel& ForgedModel::group(const std::string& name, int ncoo, const std::vector<ForgedGroupEntry>& entries) {
  const auto nvar = static_cast<hsize_t>(entries.size());
  std::vector<int> counts, offsets;
  std::vector<std::string> keys;
  for (const ForgedGroupEntry& entry : entries) {
    keys.push_back(entry.key);
    counts.push_back(entry.count);
    offsets.push_back(entry.offset);
  }
  const std::string block = "/post/constant/variablegroup/" + name;
  file_.at(Part(block, "data")).dataset<std::int32_t>("cnt", {nvar}, counts);
  file_.dataset<std::int32_t>("offs", {nvar}, offsets).texts("varkey", kTextWidth, {nvar}, keys);
  file_.at(Part(block, "header")).integer("block", 32).text("etypvar", name).integer("ncoo", ncoo);
  file_.integer("nvar", static_cast<std::int64_t>(nvar));
  return *this;
}

ForgedModel& ForgedModel::index_types(const std::vector<std::string>& names) {
  const std::string block = "/post/constant/indices";
  file_.at(Part(block, "data")).texts("etypindex", kTextWidth, {names.size()}, names);
  file_.at(Part(block, "header")).integer("block", 20).integer("nindex", static_cast<std::int64_t>(names.size()));
  return *this;
}

ForgedModel& ForgedModel::index_types_of_group(const std::string& group, int nindex) {
  file_.at(Part("/post/constant/indices", "header")).integer("block", 20).integer("nindex", nindex);
  file_.text("etypvar", group);
  return *this;
}

ForgedModel& ForgedModel::system() {
  const std::string block = "/post/constant/system";
  file_.at(Part(block, "data")).dataset<std::int32_t>("ubid", {2}, {1, 2});
  file_.texts("ubtyp", kTextWidth, {2}, {"Length", "Time"}).texts("ubnam", kTextWidth, {2}, {"mm", "s"});
  file_.dataset<float>("ubcon", {2}, {0.001F, 1}).dataset<float>("ubshift", {2}, {0, 0});
  file_.dataset<std::int32_t>("udid", {1}, {11}).texts("udnam", kTextWidth, {1}, {"mm/s"});
  file_.dataset<float>("udscal", {1}, {1}).dataset<std::int32_t>("ndbunit", {1}, {2});
  file_.dataset<std::int32_t>("udbid", {2}, {1, 2}).dataset<float>("udbexp", {2}, {1, -1});
  file_.at(Part(block, "header")).integer("block", 10).text("title", "A plate").text("sys", "mm-t-s");
  file_.text("solver_name", "forge").text("solver_vers", "1.2");
  for (const char* date : {"cdate", "ctime", "mdate", "mtime"}) file_.text(date, "20261121", 8);
  file_.integer("nbunit", 2).integer("ndunit", 1);
  return *this;
}

ForgedModel& ForgedModel::in_state(int state, const ForgedValues& result) { return Add(StateGroup(state), result); }

ForgedModel& ForgedModel::properties(const std::string& section, const std::string& etyp, const std::string& name,
                                     int nent) {
  file_.at(Part(section + "/properties/" + etyp + "/" + name, "header")).integer("block", 500);
  file_.text("etypprop", name).text("etyp", etyp).integer("nent", nent);
  for (const char* count : {"length", "nbfloat", "nbid", "nbint", "nbstring"}) file_.integer32(count, 0);
  return *this;
}

ForgedModel& ForgedModel::Add(const std::string& section, const ForgedValues& result) {
  const KindRow& row = RowOf(result.kind);
  std::string block = section;
  if (!result.series.empty()) block += "/" + result.series;
  block += std::string("/") + row.type_group + "/" + result.etyp + "/" + result.variable;
  if (!result.group_name.empty()) block += "/" + result.group_name;
  // A block is found by its "data"; the index only where it has values.
  file_.at(Part(block, "data"));
  if (!result.values.empty()) file_.dataset<float>("res", ShapeOf(result), result.values);
  if (!result.ids.empty()) {
    file_.dataset<std::int32_t>(row.element ? "idele" : "entid", {result.ids.size()}, result.ids);
  }
  const hsize_t rows = row.multi ? static_cast<hsize_t>(result.nstate) : 1;
  const hsize_t columns = rows > 0 ? result.index.size() / rows : 0;
  if (!result.index.empty()) {
    const std::vector<hsize_t> shape = row.multi ? std::vector<hsize_t>{rows, columns} : std::vector<hsize_t>{columns};
    file_.at(Part(block, "index")).dataset<float>("indexval", shape, result.index);
    file_.dataset<std::int32_t>("indexident", shape, std::vector<std::int32_t>(result.index.size(), 7));
  }
  file_.at(Part(block, "header")).integer("block", result.kind).text("etypvar", result.variable);
  file_.text(row.element ? "etypelem" : "etyp", result.etyp).integer(row.element ? "nele" : "nent", result.nent);
  file_.integer("ncoo", result.ncoo).integer("fswitch", 0).integer("zoneid", result.zoneid);
  file_.integer("nindex", static_cast<std::int64_t>(columns));
  if (row.element) file_.integer("numl", result.numl).integer("ndim", 0);
  if (row.multi) file_.integer("nstate", result.nstate);
  if (!result.series.empty()) file_.text("series", result.series);
  return *this;
}

}  // namespace orv_test
