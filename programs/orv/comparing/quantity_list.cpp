// The result blocks of a filer by what they are values of. Where a block lies plays no part.

#include "comparing/quantity_list.h"

#include <fmt/format.h>

#include <algorithm>

#include "reading/quantity_search.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

QuantityName NameOf(const ORVResult& block) {
  constexpr const char* kOnlySeries = "TIMESERIES1";  // what writers store where there are no series
  QuantityName name;
  name.section = block.IsMultistateBlk() ? "multi-state" : block.IsConstantBlk() ? "constant" : "state";
  name.variable = TextOf(block.m_etypvar);
  name.entity = TextOf(block.m_etyp);
  name.zone = ZoneOf(block);
  name.zone_id = block.m_zoneid;
  if (block.IsMultistateBlk()) name.series = TextOf(block.m_series);
  if (SameWord(name.series, kOnlySeries)) name.series.clear();
  name.is_element = block.IsElementResult();
  name.is_complex = block.IsComplexBlk();
  return name;
}

std::vector<std::string> NamesOf(ORVFiler& filer, int iid, const std::string& result) {
  std::vector<std::string> names;
  if (const ORVExtVar* handle = filer.GetExtVariable(iid, true)) names.emplace_back(handle->GetName());
  if (const ORVVariable* variable = filer.GetVariableFrmID(iid, true)) {
    names.push_back(TextOf(variable->m_varnam));
    names.push_back(TextOf(variable->m_varkey));
  }
  names.push_back(result);
  std::erase(names, "");
  return names;
}

std::vector<Component> ComponentsOf(ResultFile& file, ORVResult& block) {
  ValueRequest request;
  request.variable = TextOf(block.m_etypvar);
  FoundQuantity found;
  found.blocks = {&block};
  std::vector<Component> components;
  for (const ComponentColumn& column : ColumnsOf(file, request, found, block)) {
    components.push_back({column.label, column.iid, NamesOf(file.filer(), column.iid, request.variable)});
  }
  return components;
}

void Add(ResultFile& file, ORVResult& block, std::vector<ComparedQuantity>& quantities) {
  QuantityName name = NameOf(block);
  const auto same = [&](const ComparedQuantity& other) { return IsSameQuantity(other.name, name); };
  for (auto known = std::ranges::find_if(quantities, same); known != quantities.end();
       known = std::ranges::find_if(quantities, same)) {
    if (!known->IsOverStates()) return known->blocks.push_back(&block);
    ++name.number;  // each has states of its own
  }
  quantities.push_back({std::move(name), {&block}, ComponentsOf(file, block)});
}

}  // namespace

bool IsSameQuantity(const QuantityName& a, const QuantityName& b) {
  return a.section == b.section && SameWord(a.variable, b.variable) && SameWord(a.entity, b.entity) &&
         SameWord(a.zone, b.zone) && a.zone_id == b.zone_id && SameWord(a.series, b.series) && a.number == b.number &&
         a.is_element == b.is_element && a.is_complex == b.is_complex;
}

std::vector<ComparedQuantity> ListQuantities(ResultFile& file) {
  std::vector<ComparedQuantity> quantities;
  for (const int list : {1, 0}) {
    const std::vector<ORVResult*> blocks = file.filer().GetResultList(list);
    for (ORVResult* block : blocks) Add(file, *block, quantities);
  }
  return quantities;
}

void KeepWanted(const ResultFile& file, const DiffOptions& options, std::vector<ComparedQuantity>& quantities) {
  std::vector<ComparedQuantity> kept;
  for (ComparedQuantity& quantity : quantities) {
    const bool is_defined = !quantity.components.empty();
    if (!options.WantsEntity(quantity.name.entity)) continue;
    if (!is_defined && !options.WantsNames({quantity.name.variable})) continue;
    if (!is_defined) {
      throw Trouble(file.path(),
                    fmt::format("the values of \"{}\" are not defined: the file has no variable of that name",
                                quantity.name.variable),
                    "leave them out with --ignore, or write the file again with its variables");
    }
    std::erase_if(quantity.components, [&](const Component& one) { return !options.WantsNames(one.names); });
    if (!quantity.components.empty()) kept.push_back(std::move(quantity));
  }
  quantities = std::move(kept);
}

}  // namespace orvio::program
