// Filling of the blocks that hold the model and its results.

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "importer/block_writer.h"
#include "importer/text_fields.h"

namespace orvio::program {
namespace {

constexpr char kPartType[] = "PART";

}  // namespace

void BlockWriter::WriteElements(ElementGroup& group) {
  ORVEleConnectivity block;
  Assign(block.m_etyp, group.generic_name);
  Assign(block.m_etypelem, group.type_name);
  Assign(block.m_etyppart, kPartType);
  Assign(block.m_etypnode, kNodeType);
  block.m_nele = static_cast<std::int64_t>(group.ids.size());
  block.m_npele = group.nodes_per_element;
  block.m_ndim = group.dimension;
  block.m_idele = group.ids.data();
  block.m_pid = group.parts.data();
  block.m_ic = group.nodes.data();
  Write(block, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA, group.type_name + " elements");
}

namespace {

/// Titles in slots as wide as the longest of them. Files up to version 1.2 have slots of 256 bytes.
struct Titles {
  /// No titles are blank ones.
  Titles(const std::vector<std::string>& titles, std::size_t count, bool full_width) {
    std::size_t longest = 1;
    for (const std::string& title : titles) longest = std::max(longest, title.size());
    width = full_width ? kNameWidth : longest;
    slots.assign(count * width, ' ');
    for (std::size_t i = 0; i < titles.size(); ++i) {
      std::ranges::copy(titles[i].substr(0, width), slots.begin() + static_cast<std::ptrdiff_t>(i * width));
    }
  }

  std::size_t width = 0;
  std::vector<char> slots;
};

}  // namespace

void BlockWriter::WriteParts(PartTable& parts) {
  Titles titles(parts.titles, parts.ids.size(), !HasGroups());
  ORVPart block;
  Assign(block.m_etyppart, kPartType);
  block.m_npart = static_cast<std::int64_t>(parts.ids.size());
  block.m_length = static_cast<int>(titles.width);
  block.m_pid = parts.ids.data();
  block.m_title = titles.slots.data();
  if (!parts.materials.empty()) block.m_mid = parts.materials.data();
  Write(block, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA, "the parts");
}

void BlockWriter::WriteAttributes(AttributeTable& attributes) {
  Titles titles(attributes.titles, attributes.ids.size(), !HasGroups());
  ORVEntAttribute block;
  Assign(block.m_etyp, attributes.entity_type);
  block.m_nent = static_cast<std::int64_t>(attributes.ids.size());
  block.m_nuid = attributes.columns;
  block.m_entid = attributes.ids.data();
  block.m_uid = attributes.integers.data();
  block.m_length = attributes.titles.empty() ? 0 : static_cast<int>(titles.width);
  block.m_title = titles.slots.data();
  Write(block, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA, "attributes of " + attributes.entity_type);
}

void BlockWriter::WriteIdentifiers(const std::string& entity_type, std::vector<int>& ids) {
  if (version_ < ORV_VERSION_2_1) return;
  ORVIdentifiers block;
  Assign(block.m_etyp, entity_type);
  block.m_nent = static_cast<std::int64_t>(ids.size());
  block.m_entid = ids.data();
  block.m_length = 0;  // without titles
  Write(block, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA, "identifiers of " + entity_type);
}

void BlockWriter::WriteSets(SetTable& sets) {
  std::vector<char> types = Fields(sets.types);
  ORVCollector block;
  Assign(block.m_etypcoll, sets.name);
  block.m_ncoll = static_cast<std::int64_t>(sets.ids.size());
  block.m_ntyp = static_cast<std::int64_t>(sets.types.size());
  block.m_nenttot = static_cast<std::int64_t>(sets.members.size());
  block.m_idcoll = sets.ids.data();
  block.m_etyp = types.data();
  block.m_nent = sets.counts.data();
  block.m_entid = sets.members.data();
  Write(block, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA, "the sets " + sets.name);
}

namespace {

/// A result that may hold changes alone.
class ResultBlock : public ORVResult {
 public:
  using ORVResult::ORVResult;
  void SetExtent(Extent extent) { m_nIncremental = extent == Extent::kChanges ? 1 : 0; }
};

/// What results of nodes and of elements have in common. A zone is part of the name by which the block is found: the same
/// quantity may stand at the nodes of many.
template <class Target>
ResultBlock MakeResult(int key, const std::string& type, const Quantity& quantity, const Target& values) {
  ResultBlock result(key);
  result.SetEntityAndVarName(type, quantity.name);
  Assign(result.m_etypzone, values.zone);
  Assign(result.m_subBlockName, values.zone);
  result.m_zoneid = values.zone_id;
  result.m_nent = static_cast<std::int64_t>(values.ids->size());
  result.m_ncoo = static_cast<std::int64_t>(quantity.components.size());
  result.m_readIds = 1;
  result.m_entid = values.ids->data();
  result.m_res = values.values;
  result.m_resType = values.type;
  return result;
}

ResultBlock MakeResult(const Quantity& quantity, const EntityValues& values) {
  return MakeResult(values.is_complex ? ORV_RESULT_ENTITY_COMPLEX : ORV_RESULT_ENTITY, values.entity_type, quantity,
                    values);
}

/// The places of the points are the solver's matter: none are stored.
ResultBlock MakeResult(const Quantity& quantity, const ElementValues& values) {
  ResultBlock result = MakeResult(ORV_RESULT_ELEMENT, values.element_type, quantity, values);
  result.m_numl = values.layers;
  return result;
}

}  // namespace

void BlockWriter::WriteConstant(const Quantity& quantity, const EntityValues& values) {
  ORVResult result = MakeResult(quantity, values);
  Write(result, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA, quantity.name);
}

void BlockWriter::BeginState(int state) {
  if (state_ == state) return;
  if (filer_.BeginState(state) != 0) FailState(state);
  state_ = state;
}

void BlockWriter::EndState() {
  const int state = std::exchange(state_, 0);
  if (state != 0 && filer_.EndState() != 0) FailState(state);
}

void BlockWriter::WriteInState(const StateIndex& index, ORVResult& result, const std::string& described_as) {
  BeginState(index.state);
  // The columns are told apart by their place; the identifier of a row is the state.
  int identifiers[] = {index.state, index.state};
  double row[] = {index.value, static_cast<double>(index.step)};
  result.m_nindex = static_cast<std::int64_t>(IndexColumns());
  result.m_indexident = identifiers;
  result.m_indexval = row;
  result.m_indexvalType = ORV_DOUBLE;
  Write(result, index.state, ORV_WRITE_HEADER | ORV_WRITE_DATA | ORV_WRITE_INDEX,
        fmt::format("{} of state {}", described_as, index.state));
}

void BlockWriter::WriteInState(const StateIndex& index, const Quantity& quantity, const EntityValues& values,
                               Extent extent) {
  ResultBlock result = MakeResult(quantity, values);
  result.SetExtent(extent);
  WriteInState(index, result, quantity.name);
}

void BlockWriter::WriteInState(const StateIndex& index, const Quantity& quantity, const ElementValues& values,
                               Extent extent) {
  ResultBlock result = MakeResult(quantity, values);
  result.SetExtent(extent);
  WriteInState(index, result, quantity.name + " of " + values.element_type);
}

void BlockWriter::WriteOverStates(const std::vector<StateIndex>& states, const Quantity& quantity,
                                  const EntityValues& values) {
  std::vector<int> identifiers;
  std::vector<double> rows;
  for (const StateIndex& index : states) {
    identifiers.insert(identifiers.end(), IndexColumns(), index.state);
    rows.push_back(index.value);
    if (has_steps_) rows.push_back(index.step);
  }
  ResultBlock result = MakeResult(quantity, values);
  result.SetBlockType(values.is_complex ? ORV_RESULT_MULTI_ENTITY_COMPLEX : ORV_RESULT_MULTI_ENTITY);
  result.m_nstate = static_cast<std::int64_t>(states.size());
  result.m_nindex = static_cast<std::int64_t>(IndexColumns());
  result.m_indexident = identifiers.data();
  result.m_indexval = rows.data();
  result.m_indexvalType = ORV_DOUBLE;
  Write(result, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA | ORV_WRITE_INDEX, quantity.name + " over all states");
}

}  // namespace orvio::program
