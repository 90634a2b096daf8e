// Reading of headers. Walks hand over one scratch block again and again; what shall stay is copied in their callback.

#include "reading/file_model.h"

#include <algorithm>
#include <filesystem>

#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr std::size_t kNameWidth = 256;
constexpr std::int64_t kMaxComponents = 1'000'000;
constexpr std::int64_t kMaxLabelBytes = 16'000'000;

/// A walk reaches its collector through this: its callback gets nothing but the block.
template <class T>
std::vector<T>*& Target() {
  static std::vector<T>* target = nullptr;
  return target;
}

template <class T>
class Collecting {
 public:
  explicit Collecting(std::vector<T>& target) { Target<T>() = &target; }
  ~Collecting() { Target<T>() = nullptr; }
  Collecting(const Collecting&) = delete;
  Collecting& operator=(const Collecting&) = delete;
};

template <class Block>
_ORVAction CollectHeader(int status, int stage, void* /*where*/, void* block) {
  if (status == 0 && stage == ORV_READ_HEADER) {
    Target<Block>()->push_back(*static_cast<Block*>(static_cast<ORVBlock*>(block)));
  }
  return ORV_ACTION_CONTINUE;
}

/// A variable with room for its labels, which the library does not own.
class VariableReader : public ORVVariable {
 public:
  /// Makes room after the header; false for counts that no variable has.
  bool MakeRoom() {
    if (m_ncoo < 1 || m_ncoo > kMaxComponents || m_subslen < 0 || m_subslen > kMaxLabelBytes) return false;
    const auto count = static_cast<std::size_t>(m_ncoo);
    names_.assign(count * kNameWidth + 1, '\0');
    numbers_.assign(count * 5, 0);
    packed_.assign(static_cast<std::size_t>(m_subslen) + 1, '\0');
    m_pCname = names_.data();
    m_pCid = numbers_.data();
    m_pMbunit = numbers_.data() + count;
    m_pMdunit = numbers_.data() + 2 * count;
    m_pSubscnt = numbers_.data() + 3 * count;
    m_pSubsoffs = numbers_.data() + 4 * count;
    m_pSubscr = packed_.data();
    return true;
  }

  VariableInfo Info() {
    VariableInfo info{TextOf(m_varnam), TextOf(m_varkey), TextOf(m_varclass), Shape(), {}};
    for (std::size_t i = 0; i < static_cast<std::size_t>(m_ncoo); ++i) info.components.push_back(Label(i));
    return info;
  }

 private:
  std::string Shape() {
    _ORVVarType type = ORV_VARTYPE_SCALAR;
    _ORVVarClassType variable_class = ORV_VARCLASS_UNKNOWN;
    int count = 0, offset = 0;
    if (GetVariableInfo(type, variable_class, count, offset) != 0) return "unknown";
    constexpr const char* kShapes[] = {"scalar", "vector", "tensor", "plane tensor"};
    return kShapes[type];
  }

  /// Files up to version 1.2 have a field per name, later ones pack the labels.
  std::string Label(std::size_t i) const {
    if (m_subslen == 0) return TextOf(m_pCname + i * kNameWidth);
    const std::int64_t offset = m_pSubsoffs[i], length = m_pSubscnt[i];
    if (offset < 0 || length < 0 || offset + length > m_subslen) return {};
    return TextOf(m_pSubscr + offset, static_cast<std::size_t>(length));
  }

  std::vector<char> names_, packed_;
  std::vector<int> numbers_;
};

_ORVAction CollectVariable(int status, int stage, void* /*where*/, void* block) {
  auto* variable = static_cast<VariableReader*>(static_cast<ORVBlock*>(block));
  if (stage == ORV_READ_HEADER) {
    return status == 0 && variable->MakeRoom() ? ORV_ACTION_CONTINUE : ORV_ACTION_SKIP;
  }
  if (status == 0) Target<VariableInfo>()->push_back(variable->Info());
  variable->ReSetBlock(1 | 2);
  return ORV_ACTION_CONTINUE;
}

std::vector<ElementInfo> ReadElements(const std::string& path) {
  std::vector<ElementInfo> elements;
  for (const ORVEleConnectivity& block : ReadElementHeaders(path)) {
    elements.push_back({TextOf(block.m_etypelem), TextOf(block.m_etyppart), TextOf(block.m_etypnode), block.m_nele,
                        block.m_npele, block.m_ndim});
  }
  return elements;
}

/// The index row of a block, empty when it has none that can be read.
std::vector<double> ReadIndexRow(const std::string& path, ORVResult block) {
  constexpr std::int64_t kMaxColumns = 1000;
  if (block.m_nindex < 1 || block.m_nindex > kMaxColumns) return {};
  std::vector<double> values(static_cast<std::size_t>(block.m_nindex));
  std::vector<std::int64_t> identifiers(values.size());
  block.m_indexval = values.data();
  block.m_indexvalType = ORV_DOUBLE;
  block.m_indexident = identifiers.data();
  block.m_indexidentType = ORV_LONG;
  const bool read = block.ReadBlockByBlockPath(path.c_str(), ORV_READ_INDEX) == 0;
  return read ? values : std::vector<double>();
}

const char* TypeName(_ORVDataType type) {
  switch (type) {
    case ORV_FLOAT:
      return "float";
    case ORV_DOUBLE:
      return "double";
    default:
      return "unknown";
  }
}

/// Puts the blocks of one place into the list, one entry for a variable and entity type over all states.
void Merge(FileModel& model, const std::vector<ORVResult>& blocks, const char* section, int state) {
  for (const ORVResult& block : blocks) {
    ResultInfo info;
    info.section = section;
    info.entity = TextOf(block.m_etyp);
    info.variable = TextOf(block.m_etypvar);
    info.is_element = block.IsElementResult();
    info.is_complex = block.IsComplexBlk();
    info.components = block.m_ncoo;
    info.layers = block.m_numl;
    auto known = std::ranges::find_if(model.results, [&](const ResultInfo& other) {
      return other.section == info.section && other.entity == info.entity && other.variable == info.variable &&
             other.is_complex == info.is_complex && other.is_element == info.is_element &&
             other.components == info.components && other.layers == info.layers;
    });
    if (known == model.results.end()) {
      info.value_type = TypeName(ValueType(model.path, block));
      info.count_min = info.count_max = block.m_nent;
      model.results.push_back(info);
      known = model.results.end() - 1;
    }
    known->count_min = std::min<long long>(known->count_min, block.m_nent);
    known->count_max = std::max<long long>(known->count_max, block.m_nent);
    if (state > 0) known->states.push_back(state);
  }
}

}  // namespace

int CheckResultFile(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code error;
  if (!fs::exists(path, error)) throw Trouble(path, "does not exist", "check the name");
  if (!fs::is_regular_file(path, error)) throw Trouble(path, "is not a file", "give the name of a result file");
  int states = 0;
  if (ReadNumState(path.c_str(), &states) != 0) {
    throw Trouble(path, "is not an HDF5 file, or a damaged one, or may not be read",
                  "give a result file; orv import makes one");
  }
  ORVFiler filer(path.c_str());
  if (!filer.HasRootGroup("post")) {
    throw Trouble(path, "is an HDF5 file without result data (no group /post)", "give a result file");
  }
  return states;
}

std::vector<VariableInfo> ReadVariables(const std::string& path) {
  std::vector<VariableInfo> variables;
  const Collecting<VariableInfo> collecting(variables);
  VariableReader probe;
  (void)probe.IterateBlock(path.c_str(), 0, ORV_READ_HEADER | ORV_READ_DATA, CollectVariable);  // none: none
  return variables;
}

std::vector<ORVResult> ReadResultHeaders(const std::string& path, int state) {
  std::vector<ORVResult> blocks;
  const Collecting<ORVResult> collecting(blocks);
  const std::vector<int> kinds =
      state < 0 ? std::vector<int>{ORV_RESULT_MULTI_ENTITY} : std::vector<int>{ORV_RESULT_ENTITY, ORV_RESULT_ELEMENT};
  for (const int kind : kinds) {
    ORVResult probe(kind);
    (void)probe.DiscoverBlock(path.c_str(), state, ORV_READ_HEADER, CollectHeader<ORVResult>);  // none: none
  }
  return blocks;
}

std::vector<ORVEleConnectivity> ReadElementHeaders(const std::string& path) {
  std::vector<ORVEleConnectivity> blocks;
  const Collecting<ORVEleConnectivity> collecting(blocks);
  ORVEleConnectivity probe;
  (void)probe.IterateBlock(path.c_str(), 0, ORV_READ_HEADER, CollectHeader<ORVEleConnectivity>);  // none: none
  return blocks;
}

_ORVDataType ValueType(const std::string& path, const ORVResult& result) {
  ORVResult block = result;
  // The block asks the file for the types alone; values are not read.
  if (block.ReadBlockByBlockPath(path.c_str(), ORV_READ_DATA_INFO) != 0) return ORV_UNKNOWN_TYPE;
  return block.m_resType;
}

FileModel ReadFileModel(const std::string& path) {
  FileModel model;
  model.path = path;
  const int states = CheckResultFile(path);
  ORVFiler filer(path.c_str());
  if (const ORVFileVersion* version = filer.GetFileVersion()) model.version = *version;
  model.variables = ReadVariables(path);
  model.elements = ReadElements(path);
  Merge(model, ReadResultHeaders(path, 0), "constant", 0);
  Merge(model, ReadResultHeaders(path, -1), "multi-state", 0);
  for (int state = 1; state <= states; ++state) {
    const std::vector<ORVResult> blocks = ReadResultHeaders(path, state);
    Merge(model, blocks, "state", state);
    model.states.push_back({state, blocks.empty() ? std::vector<double>() : ReadIndexRow(path, blocks.front())});
  }
  return model;
}

}  // namespace orvio::program
