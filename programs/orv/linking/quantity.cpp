#include "linking/quantity.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <numeric>
#include <string_view>

#include "linking/topology.h"
#include "reading/file_model.h"
#include "reading/words.h"

namespace orvio::program {
namespace {

constexpr std::size_t kTensorComponents = 6;
constexpr std::string_view kAxes[kTensorComponents] = {"XX", "YY", "ZZ", "XY", "YZ", "XZ"};

char AxisOf(char letter) {
  switch (std::toupper(static_cast<unsigned char>(letter))) {
    case 'X':
    case '1':
      return 'X';
    case 'Y':
    case '2':
      return 'Y';
    case 'Z':
    case '3':
      return 'Z';
    default:
      return '?';
  }
}

/// The two axes at the end of a label, the smaller one first.
std::string AxesOf(const std::string& label) {
  if (label.size() < 2) return {};
  std::string axes = {AxisOf(label[label.size() - 2]), AxisOf(label.back())};
  std::ranges::sort(axes);
  return axes;
}

/// A variable and its place in a block.
struct Member {
  std::string name;
  ORVVariable* variable = nullptr;
  hsize_t first = 0, count = 0;
};

std::vector<Member> MembersOf(const ORVResult& block) {
  const auto all = static_cast<hsize_t>(std::max<std::int64_t>(block.m_ncoo, 0));
  ORVVariableGrp* group = block.m_variableGrp;
  std::vector<Member> members;
  if (group && group->m_variables.size() > 1) {
    for (ORVVariable* variable : group->m_variables) {
      _ORVVarType type = ORV_VARTYPE_SCALAR;
      _ORVVarClassType variable_class = ORV_VARCLASS_UNKNOWN;
      int count = 0, offset = -1;
      const int status = group->GetVariableInfo(variable->m_varnam, type, variable_class, count, offset);
      const bool is_there = status == 0 && count >= 1 && offset >= 0;
      if (!is_there || static_cast<hsize_t>(offset) + static_cast<hsize_t>(count) > all) continue;
      members.push_back(
          {TextOf(variable->m_varnam), variable, static_cast<hsize_t>(offset), static_cast<hsize_t>(count)});
    }
    return members;
  }
  ORVVariable* variable = group && !group->m_variables.empty() ? group->m_variables.front() : block.m_variable;
  return {{TextOf(block.m_etypvar), variable, 0, all}};
}

class QuantityFinder {
 public:
  QuantityFinder(ResultFile& file, const Mesh& mesh, LinkReport& report) : file_(file), mesh_(mesh), report_(report) {}

  std::vector<LinkedQuantity> Find() {
    for (const int list : {1, 0}) {
      for (ORVResult* block : file_.filer().GetResultList(list)) Add(*block);
    }
    std::erase_if(quantities_,
                  [&](const LinkedQuantity& quantity) { return quantity.is_over_states && IsByState(quantity); });
    return std::move(quantities_);
  }

 private:
  void Add(ORVResult& block) {
    if (IsCoordinates(block, mesh_.node_type)) return;
    const std::string entity = TextOf(block.m_etyp), what = TextOf(block.m_etypvar) + " of " + entity;
    const bool is_on_points = block.IsEntityResult() && SameWord(entity, mesh_.node_type);
    if (!is_on_points && !HasCells(entity)) {
      return Note(report_.left_out, {what, "it is neither of the points nor of the cells"});
    }
    constexpr std::int64_t kMostComponents = 10000;
    if (block.m_ncoo < 1 || block.m_ncoo > kMostComponents) {
      return Note(report_.left_out, {what, fmt::format("it has {} components", block.m_ncoo)});
    }
    for (const Member& member : MembersOf(block)) Add(block, member, is_on_points);
  }

  bool HasCells(const std::string& entity) const {
    return std::ranges::any_of(mesh_.topologies, [&](const Topology& topology) {
      return std::ranges::any_of(topology.blocks, [&](const CellBlock& cells) {
        return SameWord(cells.type, entity) || SameWord(cells.generic_type, entity);
      });
    });
  }

  void Add(ORVResult& block, const Member& member, bool is_on_points) {
    LinkedQuantity wanted{member.name, is_on_points, block.IsComplexBlk(), block.IsMultistateBlk(), member.first, {},
                          {}};
    wanted.columns.resize(static_cast<std::size_t>(member.count));
    const auto known =
        std::ranges::find_if(quantities_, [&](const LinkedQuantity& other) { return IsSame(other, wanted); });
    if (known != quantities_.end()) return known->blocks.push_back(&block);
    std::iota(wanted.columns.begin(), wanted.columns.end(), member.first);
    if (member.variable && member.count == kTensorComponents) Arrange(member, wanted);
    wanted.blocks = {&block};
    quantities_.push_back(std::move(wanted));
  }

  static bool IsSame(const LinkedQuantity& a, const LinkedQuantity& b) {
    return SameWord(a.name, b.name) && a.is_on_points == b.is_on_points && a.is_complex == b.is_complex &&
           a.is_over_states == b.is_over_states && a.first_column == b.first_column &&
           a.columns.size() == b.columns.size();
  }

  void Arrange(const Member& member, LinkedQuantity& quantity) {
    const VariableInfo info = DescribeVariable(file_.filer(), *member.variable);
    const std::vector<hsize_t> order = TensorOrder(info.components);
    if (order.empty() && info.shape == "tensor") {
      Note(report_.notes,
           fmt::format("{}: its labels do not tell the order of components, which VTK takes for XX YY ZZ XY "
                       "YZ XZ",
                       quantity.name));
    }
    for (std::size_t i = 0; i < order.size(); ++i) quantity.columns[i] = member.first + order[i];
  }

  /// Whether the states have it one by one, too.
  bool IsByState(const LinkedQuantity& over) {
    const bool found = std::ranges::any_of(quantities_, [&](const LinkedQuantity& other) {
      return !other.is_over_states && SameWord(other.name, over.name) && other.is_on_points == over.is_on_points &&
             other.is_complex == over.is_complex;
    });
    if (found) Note(report_.left_out, {over.name + " over all states", "the states hold it one by one"});
    return found;
  }

  ResultFile& file_;
  const Mesh& mesh_;
  LinkReport& report_;
  std::vector<LinkedQuantity> quantities_;
};

}  // namespace

std::vector<hsize_t> TensorOrder(const std::vector<std::string>& labels) {
  std::vector<hsize_t> order;
  if (labels.size() != kTensorComponents) return order;
  for (const std::string_view axes : kAxes) {
    const auto found = std::ranges::find_if(labels, [&](const std::string& label) { return AxesOf(label) == axes; });
    if (found == labels.end()) return {};
    order.push_back(static_cast<hsize_t>(found - labels.begin()));
  }
  return order;
}

std::vector<LinkedQuantity> FindQuantities(ResultFile& file, const Mesh& mesh, LinkReport& report) {
  return QuantityFinder(file, mesh, report).Find();
}

}  // namespace orvio::program
