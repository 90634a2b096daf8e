// What a result file holds. The filer knows the results of the constant section, of the multi-state section and of the
// first state from its start-up, and is asked to learn those of the later states.

#include "reading/file_model.h"

#include <algorithm>
#include <filesystem>

#include "reading/result_file.h"
#include "reading/units.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr const char* kShapes[] = {"scalar", "vector", "tensor", "plane tensor"};

/// The walk reaches its collector through this: its callback gets nothing but the block.
std::vector<ORVEleConnectivity>*& Target() {
  static std::vector<ORVEleConnectivity>* target = nullptr;
  return target;
}

_ORVAction CollectHeader(int status, int stage, void* /*where*/, void* block) {
  if (status == 0 && stage == ORV_READ_HEADER) {
    Target()->push_back(*static_cast<ORVEleConnectivity*>(static_cast<ORVBlock*>(block)));
  }
  return ORV_ACTION_CONTINUE;
}

std::string ShapeOf(ORVVariable& variable) {
  _ORVVarType type = ORV_VARTYPE_SCALAR;
  _ORVVarClassType variable_class = ORV_VARCLASS_UNKNOWN;
  int count = 0, offset = 0;
  return variable.GetVariableInfo(type, variable_class, count, offset) == 0 ? kShapes[type] : "unknown";
}

/// Files up to version 1.2 have a field per name, later ones pack the labels.
std::string LabelOf(const ORVVariable& variable, std::int64_t i) {
  if (variable.m_subslen < 1) {
    return variable.m_pCname ? TextOf(variable.m_pCname + static_cast<std::size_t>(i) * kFieldWidth) : "";
  }
  if (!variable.m_pSubscr || !variable.m_pSubscnt || !variable.m_pSubsoffs) return {};
  const std::int64_t offset = variable.m_pSubsoffs[i], length = variable.m_pSubscnt[i];
  if (offset < 0 || length < 0 || offset + length > variable.m_subslen) return {};
  return TextOf(variable.m_pSubscr + offset, static_cast<std::size_t>(length));
}

/// Whether a variable only names a column of the state index. Shared variables stand twice in a filer's list.
bool IsShown(ResultFile& file, const ORVVariable& variable, const std::vector<VariableInfo>& shown) {
  const bool is_twin = std::ranges::any_of(shown, [&](const VariableInfo& other) {
    return SameWord(other.name, TextOf(variable.m_varnam)) && SameWord(other.key, TextOf(variable.m_varkey));
  });
  if (is_twin) return false;
  const ORVSimulationType* types = file.filer().GetIndexTypes();
  const ORVVariableGrp* group = types ? file.filer().GetVariableGroup(types->m_etypvar) : nullptr;
  if (!group || !variable.m_extVars.empty()) return true;
  return std::ranges::find(group->m_variables, &variable) == group->m_variables.end();
}

std::vector<ElementInfo> ReadElements(const std::string& path) {
  std::vector<ElementInfo> elements;
  for (const ORVEleConnectivity& block : ReadElementHeaders(path)) {
    elements.push_back({TextOf(block.m_etypelem), TextOf(block.m_etyppart), TextOf(block.m_etypnode), block.m_nele,
                        block.m_npele, block.m_ndim});
  }
  return elements;
}

long long BytesOf(_ORVDataType type) { return type == ORV_DOUBLE || type == ORV_LONG ? 8 : 4; }

/// Bytes of the values and the id of one entity.
long long BytesPerEntity(ResultFile& file, ORVResult& block, int state) {
  std::vector<std::string> names;
  (void)block.GetDatasetNames(ORV_READ_DATA, names);  // always 0
  std::vector<_ORVDataType> types;
  (void)block.ReadDatasetFileDataType(file.path().c_str(), state, {names.back()}, types);  // the types tell
  const bool has_ids = !types.empty() && types.front() != ORV_UNKNOWN_TYPE;
  const long long layers = block.IsElementResult() ? std::max<long long>(block.m_numl, 1) : 1;
  const double values =
      static_cast<double>(block.m_ncoo) * static_cast<double>(layers) * (block.IsComplexBlk() ? 2 : 1);
  constexpr double kMost = 1e9;  // the header of a damaged file may say anything
  const auto bytes = static_cast<long long>(std::clamp(values, 0.0, kMost)) *
                     BytesOf(file.IsDouble(block, state) ? ORV_DOUBLE : ORV_FLOAT);
  return bytes + (has_ids ? BytesOf(types.front()) : 0);
}

/// The first state gives the counts to begin with. Changes are of some entities alone: they do not count.
void AddCounts(const std::vector<long long>& counts, ResultInfo& info) {
  info.count_min = info.count_max = counts.front();
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (std::ranges::binary_search(info.incremental_states, info.states[i])) continue;
    info.count_min = std::min(info.count_min, counts[i]);
    info.count_max = std::max(info.count_max, counts[i]);
  }
}

/// A state that holds changes would be as large as the last full one before it.
void AddSizes(ResultFile& file, ORVResult& block, const std::vector<long long>& counts, ResultInfo& info) {
  if (info.incremental_states.empty()) return;
  const auto bytes = static_cast<double>(BytesPerEntity(file, block, info.states.front()));
  double stored = 0, full = 0, last_full = 0;
  for (std::size_t i = 0; i < info.states.size(); ++i) {
    const bool is_full = !std::ranges::binary_search(info.incremental_states, info.states[i]);
    const auto count = static_cast<double>(counts[i]);
    if (is_full) last_full = count;
    stored += bytes * count;
    full += bytes * std::max(count, last_full);
  }
  info.stored_bytes = stored;
  info.full_bytes = full;
}

ResultInfo Describe(ResultFile& file, ORVResult& block) {
  ResultInfo info;
  info.section = block.IsMultistateBlk() ? "multi-state" : block.IsConstantBlk() ? "constant" : "state";
  info.entity = TextOf(block.m_etyp);
  info.variable = TextOf(block.m_etypvar);
  info.is_element = block.IsElementResult();
  info.is_complex = block.IsComplexBlk();
  info.components = block.m_ncoo;
  info.layers = block.m_numl;
  info.count_min = info.count_max = block.m_nent;
  if (info.section == "state") {
    std::vector<long long> counts;
    for (int state = 1; state <= file.states(); ++state) {
      const long long count = file.CountAt(block, state);
      if (count < 1) continue;
      info.states.push_back(state);
      counts.push_back(count);
      if (file.IsIncremental(block, state)) info.incremental_states.push_back(state);
    }
    if (!counts.empty()) AddCounts(counts, info);
    AddSizes(file, block, counts, info);
  }
  info.value_type = file.IsDouble(block, info.states.empty() ? 0 : info.states.front()) ? "double" : "float";
  return info;
}

/// One entry for blocks that only differ in where they stand.
void Add(FileModel& model, ResultInfo info) {
  const auto known = std::ranges::find_if(model.results, [&](const ResultInfo& other) {
    return other.section == info.section && other.entity == info.entity && other.variable == info.variable &&
           other.is_complex == info.is_complex && other.is_element == info.is_element &&
           other.components == info.components && other.layers == info.layers;
  });
  if (known == model.results.end()) return model.results.push_back(std::move(info));
  known->count_min = std::min(known->count_min, info.count_min);
  known->count_max = std::max(known->count_max, info.count_max);
  for (const int state : info.states) {
    if (std::ranges::find(known->states, state) == known->states.end()) known->states.push_back(state);
  }
  std::ranges::sort(known->states);
  known->incremental_states.insert(known->incremental_states.end(), info.incremental_states.begin(),
                                   info.incremental_states.end());
  std::ranges::sort(known->incremental_states);
  known->incremental_states.erase(std::unique(known->incremental_states.begin(), known->incremental_states.end()),
                                  known->incremental_states.end());
  known->stored_bytes += info.stored_bytes;
  known->full_bytes += info.full_bytes;
}

std::string TextOrNothing(const char* text) { return text ? TextOf(text) : ""; }

/// What the library has found when it looked at the structure of a file, e.g. "is damaged: object header has an unknown
/// version, at byte 800". Empty for what is no HDF5 file at all.
std::string DamageFound() {
  const std::string text = LibraryText("");
  const std::size_t at = text.find("is damaged: ");
  const bool is_hdf5 = text.find("no HDF5 signature") == std::string::npos;
  return at != std::string::npos && is_hdf5 ? text.substr(at) : std::string();
}

}  // namespace

int CheckResultFile(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code error;
  if (!fs::exists(path, error)) throw Trouble(path, "does not exist", "check the name");
  if (!fs::is_regular_file(path, error)) throw Trouble(path, "is not a file", "give the name of a result file");
  int states = 0;
  if (ReadNumState(path.c_str(), &states) != 0) {
    const std::string damage = DamageFound();
    if (!damage.empty()) throw Trouble(path, damage, "get the file again from where it came from");
    throw Trouble(path, "is not an HDF5 file, or a damaged one, or may not be read",
                  "give a result file; orv import makes one");
  }
  ORVFiler filer(path.c_str());
  if (!filer.HasRootGroup("post")) {
    throw Trouble(path, "is an HDF5 file without result data (no group /post)", "give a result file");
  }
  return states;
}

std::vector<ORVEleConnectivity> ReadElementHeaders(const std::string& path, int state) {
  std::vector<ORVEleConnectivity> blocks;
  Target() = &blocks;
  ORVEleConnectivity probe;
  (void)probe.IterateBlock(path.c_str(), state, ORV_READ_HEADER, CollectHeader);  // none: none
  Target() = nullptr;
  return blocks;
}

VariableInfo DescribeVariable(ORVFiler& filer, ORVVariable& variable) {
  VariableInfo info{
      TextOf(variable.m_varnam), TextOf(variable.m_varkey), TextOf(variable.m_varclass), ShapeOf(variable), {}, {}, {}};
  for (std::int64_t i = 0; i < variable.m_ncoo; ++i) info.components.push_back(LabelOf(variable, i));
  for (int i = 0; i < variable.m_ncoo; ++i) info.units.push_back(UnitOf(filer, variable, i));
  for (const ORVExtVar* handle : variable.m_extVars) {
    if (handle->GeIndex() == -1) info.computed.push_back(handle->GetName());
  }
  return info;
}

std::vector<VariableInfo> ListVariables(ResultFile& file) {
  std::vector<VariableInfo> variables;
  for (ORVVariable* variable : file.filer().GetVariables()) {
    if (IsShown(file, *variable, variables)) variables.push_back(DescribeVariable(file.filer(), *variable));
  }
  return variables;
}

FileModel ReadFileModel(const std::string& path) {
  ResultFile file(path);
  file.LearnLaterResults(0);
  ORVFiler& filer = file.filer();
  FileModel model;
  model.path = path;
  if (const ORVFileVersion* version = filer.GetFileVersion()) model.version = *version;
  model.title = TextOrNothing(filer.GetTitle());
  model.solver = TextOrNothing(filer.GetSolverName());
  if (filer.GetSystem()) model.unit_system = TextOf(filer.GetSystem()->m_sys);
  model.index_names = file.IndexNames();
  model.index_units = file.IndexUnits();
  model.variables = ListVariables(file);
  model.elements = ReadElements(path);
  for (const int list : {1, 0}) {
    for (ORVResult* block : filer.GetResultList(list)) Add(model, Describe(file, *block));
  }
  for (int state = 1; state <= file.states(); ++state) model.states.push_back({state, file.IndexOf(state)});
  return model;
}

}  // namespace orvio::program
