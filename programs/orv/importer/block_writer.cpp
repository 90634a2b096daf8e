// Filling of the library's blocks.

#include "importer/block_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

#include "trouble.h"

namespace orvio::program {
namespace {

constexpr std::size_t kNameWidth = 256;
constexpr const char* kAdvice = "check the free space and your permissions in its folder";

void Assign(char (&field)[kNameWidth + 1], const std::string& text) {
  const std::size_t length = std::min(text.size(), kNameWidth);
  std::copy_n(text.data(), length, field);
  std::fill(field + length, field + sizeof field, '\0');
}

/// The labels of a variable in the two forms that format versions store.
struct Labels {
  explicit Labels(const std::vector<std::string>& components) : fields(components.size() * kNameWidth, ' ') {
    for (std::size_t i = 0; i < components.size(); ++i) {
      const std::string label = components[i].substr(0, kNameWidth);
      std::ranges::copy(label, fields.begin() + static_cast<std::ptrdiff_t>(i * kNameWidth));
      offsets.push_back(static_cast<int>(packed.size()));
      lengths.push_back(static_cast<int>(label.size()));
      ids.push_back(static_cast<int>(i + 1));
      packed += label;
    }
  }

  std::vector<char> fields;  ///< 256 bytes each, blank padded
  std::string packed;        ///< one behind the other
  std::vector<int> lengths, offsets, ids;
};

}  // namespace

BlockWriter::BlockWriter(const std::string& path, std::string shown_as, _ORVVersion version)
    : filer_(path.c_str()), shown_as_(std::move(shown_as)) {
  const int status = filer_.InitForWriting(path.c_str(), version, ORV_FILE_CREATE, false);
  if (status != 0) throw Trouble(shown_as_, fmt::format("cannot be created: {}", ORVGetStatusText(status)), kAdvice);
}

void BlockWriter::Write(ORVBlock& block, int state, int what, const std::string& described_as) {
  if (filer_.WriteBlock(&block, state, what) == 0) return;
  throw Trouble(shown_as_, fmt::format("{} could not be written: {}", described_as, LibraryText("writing failed")),
                kAdvice);
}

void BlockWriter::WriteVariable(const Quantity& quantity) {
  Labels labels(quantity.components);
  std::vector<int> no_units(quantity.components.size(), 0);
  ORVVariable variable;
  Assign(variable.m_varnam, quantity.name);
  Assign(variable.m_varkey, quantity.name);
  Assign(variable.m_varclass, quantity.class_word);
  variable.m_ncoo = static_cast<std::int64_t>(quantity.components.size());
  variable.SetOriginalCount(quantity.components.size());
  variable.m_rank = quantity.tensor_rank;
  variable.m_ndim = quantity.tensor_rank > 0 ? 3 : 0;
  variable.m_tensor = quantity.tensor_rank > 0 ? 1 : 0;
  variable.m_pMbunit = no_units.data();
  variable.m_pMdunit = no_units.data();
  variable.m_pCname = labels.fields.data();
  variable.m_pCid = labels.ids.data();
  variable.m_subslen = static_cast<std::int64_t>(labels.packed.size());
  variable.m_pSubscr = labels.packed.data();
  variable.m_pSubscnt = labels.lengths.data();
  variable.m_pSubsoffs = labels.offsets.data();
  Write(variable, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA, "variable " + quantity.name);
}

void BlockWriter::WriteElements(ElementGroup& group) {
  ORVEleConnectivity block;
  Assign(block.m_etypelem, group.type_name);
  Assign(block.m_etyppart, "PART");
  Assign(block.m_etypnode, "NODE");
  block.m_nele = static_cast<std::int64_t>(group.ids.size());
  block.m_npele = group.nodes_per_element;
  block.m_ndim = group.dimension;
  block.m_idele = group.ids.data();
  block.m_pid = group.parts.data();
  block.m_ic = group.nodes.data();
  Write(block, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA, group.type_name + " elements");
}

namespace {

ORVResult MakeResult(const Quantity& quantity, const NodalValues& values) {
  ORVResult result(values.is_complex ? ORV_RESULT_ENTITY_COMPLEX : ORV_RESULT_ENTITY);
  result.SetEntityAndVarName("NODE", quantity.name);
  result.m_nent = static_cast<std::int64_t>(values.ids->size());
  result.m_ncoo = static_cast<std::int64_t>(quantity.components.size());
  result.m_readIds = 1;
  result.m_entid = values.ids->data();
  result.m_res = values.values;
  result.m_resType = values.type;
  return result;
}

}  // namespace

void BlockWriter::WriteConstant(const Quantity& quantity, const NodalValues& values) {
  ORVResult result = MakeResult(quantity, values);
  Write(result, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA, quantity.name);
}

void BlockWriter::WriteInState(const StateIndex& index, const Quantity& quantity, const NodalValues& values) {
  // Both columns are told apart by their place; the identifier of a row is the state.
  int identifiers[] = {index.state, index.state};
  double row[] = {index.value, static_cast<double>(index.step)};
  ORVResult result = MakeResult(quantity, values);
  result.m_nindex = std::size(row);
  result.m_indexident = identifiers;
  result.m_indexval = row;
  result.m_indexvalType = ORV_DOUBLE;
  Write(result, index.state, ORV_WRITE_HEADER | ORV_WRITE_DATA | ORV_WRITE_INDEX,
        fmt::format("{} of state {}", quantity.name, index.state));
}

}  // namespace orvio::program
