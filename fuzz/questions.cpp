// Questions to a filer.

#include <algorithm>
#include <string>
#include <vector>

#include "orvio/orvio.h"
#include "reading.h"

namespace orvio::fuzz {
namespace {

constexpr int kSingle = 1, kMulti = 2;

void AskFile(OpenFiler& open) {
  ORVFiler& filer = open.filer;
  (void)filer.GetFileVersion();
  (void)filer.GetTitle();
  (void)filer.GetSolverName();
  (void)filer.GetSolverVersion();
  (void)filer.GetAvailableDataset();
  for (const char* name : {"post", "CATCSM", "nowhere"}) (void)filer.HasRootGroup(name);
  (void)filer.ReadSystemBlock();
  std::vector<ORVUnit*> base, derived;
  filer.GetUnitList(base, derived);
  (void)filer.IsAllResultBlockConstant();
  (void)filer.IsLoadCaseSeriesMultiustateData();
  (void)filer.IsOnlyStaticCoordinate();
  (void)filer.HasDoublePrecisionNodeCoordinates();
  (void)filer.HasIncremetalData();
  (void)filer.IsComposite();
  (void)filer.IsModularData();
  (void)filer.IsCATCSMOutput();
  (void)filer.HasFPM();
  for (const int flags : {kSingle, kMulti, 3}) {
    (void)filer.IsComplexData(flags);
    (void)filer.IsAnyDoublePrecisionResult(flags, 1);
  }
  for (const int filter : {1, 2, 6}) (void)filer.IsAnyResultDatasetHasH5Filter(filter);
}

void AskVariable(ORVFiler& filer, ORVVariable& variable) {
  std::string key;
  (void)variable.GetVariableKey(key, true);
  (void)variable.GetVariableKeyPrefix(key);
  variable.GetVariableName(key);
  (void)variable.HasUnits();
  (void)variable.IsVariableAvailable(variable.m_varnam);
  _ORVVarType type{};
  _ORVVarClassType kind{};
  int count = 0, offset = 0;
  (void)variable.GetVariableInfo(type, kind, count, offset);
  (void)filer.GetVariable(variable.m_varnam);
  std::vector<const char*> names = {variable.m_varnam, variable.m_varkey};
  std::vector<ORVVariable*> found;
  for (const bool by_key : {false, true}) (void)filer.GetVariableBlocks(names, found, by_key);
  std::vector<int> eids, types;
  variable.GetExtVarTypesOrCompTypes(eids, types);
  for (int i = 0; i < std::min(count, 8); ++i) {
    ORVVariableUnit unit;
    filer.GetComponentUnit(&variable, i, unit);
    std::string report;
    unit.GetDebugInf(report, true);
    double scale = 0, shift = 0;
    (void)unit.GetSIConversionFactors(scale, shift);
  }
}

void AskGroup(ORVFiler& filer, ORVVariableGrp& group) {
  (void)filer.GetVariableGroup(group.m_grpName);
  std::vector<std::string> names;
  group.GetVariableNames(names);
  (void)group.GetNumOrgCmpCnt();
  for (int i = -1; i < static_cast<int>(std::min<std::int64_t>(group.m_nvar, 8)); ++i) {
    _ORVVarType type{};
    _ORVVarClassType kind{};
    int count = 0, offset = 0;
    (void)group.GetVariableInfo(type, kind, count, offset, i);
  }
  for (ORVVariable* variable : group.GetVariables()) {
    int index = 0, count = 0, offset = 0;
    (void)group.IsVariableKeyAvailable(variable->m_varkey, index);
    (void)group.GetVariableInfoFromKeyOrVar(variable->m_varkey, count, offset);
    (void)group.GetVariableFromVarName(variable->m_varnam);
  }
}

void AskHandles(ORVFiler& filer) {
  std::size_t left = 64;
  for (ORVExtVar* handle : filer.GetExtVariables()) {
    if (left-- == 0) return;
    (void)filer.GetExtVariable(handle->GetName().c_str());
    (void)filer.GetExtVariable(handle->GetIID(), true);
    (void)filer.GetVariableFrmID(handle->GetIID(), true);
    std::vector<int> inputs;
    handle->GetDependentEID(inputs);
    ORVVariableUnit unit;
    filer.GetComponentUnit(handle->GetIID(), unit, false);
  }
}

void AskResult(ORVFiler& filer, ORVResult& result, int flags) {
  std::vector<ORVResult*> found;
  std::vector<const char*> types = {result.m_etyp}, names = {result.m_etypvar};
  filer.GetResultBlks(names, found, -1, flags, false);
  filer.GetResultBlks(names, found, static_cast<int>(result.GetKey()), flags, true);
  filer.GetResultBlksByName(types, names, found, -1, flags);
  filer.GetResultBlksFrmResBlk(result, found, true);
  filer.GetResultBlksFrmResBlkGivenZoneId(result, found, static_cast<int>(result.m_zoneid), false);
  std::string series = result.m_series;
  std::vector<ORVResult*> same;
  filer.GetBlocksGivenSeriesName(series, found, same);
  filer.GetBlocksGivenLoadCase(1, found, same);
  std::vector<ORVResult*> below;
  std::string path = result.GetBlkPath();
  filer.GetResultBlkFromPath(path, below);
  filer.ClearResultBlk(below);
  int dims[5] = {};
  (void)result.GetResDataSetDimension(dims);
  (void)result.GetElementType();
  (void)result.HasIntegrationPoint(dims);
  (void)result.GetBlockComponentType(0);
  (void)result.GetVariableType();
  char item[1024] = {};
  (void)result.GetAttributePath(ORV_READ_DATA, ORV_ATT_RES, 1, item, ORV_VERSION_2_2);
  std::string tail;
  (void)result.GetRelativePathFromResultGroup(tail);
}

void AskLists(OpenFiler& open, Tally& tally) {
  ORVFiler& filer = open.filer;
  std::vector<ORVResult*> results;
  for (const int flags : {kSingle, kMulti}) {
    std::vector<ORVResult*> all = filer.GetResultList(flags == kMulti ? 0 : 1);
    tally.results += all.size();
    for (std::size_t i = 0; i < std::min<std::size_t>(all.size(), 24); ++i) AskResult(filer, *all[i], flags);
    filer.GetResultBlks(results, -1, flags);
  }
  std::vector<ORVResult*> nodes, moving, series;
  filer.GetNodeCoordinateBlocks(nodes);
  filer.GetNodeDisplacementBlocks(moving, true);
  filer.GetUniqueSeriesMultistateBlocks(series);
  filer.UpdateEntityType(results);
  filer.UpdateFrameEntity();
  (void)filer.IsResultValueInDoublePrecision(results, 1);
  int zones = 0, largest = 0;
  zones = filer.GetZoneId(largest);
  (void)zones;
}

template <class Index>
void AskIndex(Index* index, Tally& tally) {
  if (!index || !index->GetIndexVals() || !index->GetIndexIds()) return;
  const auto columns = static_cast<int>(std::min<std::int64_t>(index->GetNumIndex(), 64));
  hid_t row = -1;
  (void)index->FindIndexValLocation(columns, index->GetIndexVals(), index->GetIndexIds(), row);
  tally.values += static_cast<std::uint64_t>(index->GetNumState() * index->GetNumIndex());
}

void AskIndexes(ORVFiler& filer, Tally& tally) {
  AskIndex(filer.GetStateIndexDP(false), tally);
  AskIndex(filer.GetMultiStateIndex(false), tally);
  ORVIndexBase<int, float>* index = filer.GetStateIndex(false);
  AskIndex(index, tally);
  for (const char* name : {"TIME", "FREQUENCY", "LOAD CASE"}) {
    int column = -1;
    (void)filer.IsIndexExist(name, column);
    std::vector<int> ids;
    std::vector<float> values;
    (void)filer.GetIndexValues(index, std::max(column, 0), ids, values);
    (void)filer.GetIndexValues(index, std::max(column, 0), values);
  }
}

void AskEntities(OpenFiler& open, Tally& tally) {
  ORVFiler& filer = open.filer;
  for (int state = 0; state <= open.states; ++state) {
    std::vector<std::string> types, elements;
    (void)filer.GetEntityTypesHavingConnectivity(state, types, elements);
    filer.UpdateGenericTypes(state);
    int *ids = nullptr, *second = nullptr;
    tally.values += static_cast<std::uint64_t>(std::max(0, filer.GetNodeCoordinateIds(&ids, state, &second)));
    const Owned<int> owner(ids);
    std::vector<ORVResult*> results = filer.GetResultList(1);
    (void)filer.GetEntityCount(results, state);
    int* frames = nullptr;
    (void)filer.GetResultFrameIds(results, state, &frames);
    const Owned<int> frame_owner(frames);
  }
  (void)filer.CheckCreateGenericEntityTypes(5000, 5100, 1);
  (void)filer.GetMaxFluidParticleCount();
  (void)filer.GetFluidParticleCountFromConstant();
  (void)filer.IsAdaptive(true);
  std::string fathers = "NODE_FATHERS";
  bool has_collectors = false;
  (void)filer.IsAdaptiveCollectorEntity(fathers, has_collectors);
  std::vector<ORVResult*> results = filer.GetResultList(1);
  (void)filer.GetMaxEntityCountOverStates(results);
}

}  // namespace

OpenFiler::OpenFiler(const char* file) : path(file), filer(file) {
  constexpr int kStates = 3;
  (void)ReadNumState(path, &states);
  states = std::min(states, kStates);
  filer.SetConfig(ORV_CONFIG_ASSIGN_UNITS);
  (void)filer.InitReader(next_id);  // a file without results still has a model
}

void AskQuestions(OpenFiler& open, Tally& tally) {
  ORVFiler& filer = open.filer;
  AskFile(open);
  for (ORVVariable* variable : filer.GetVariables()) AskVariable(filer, *variable);
  for (ORVVariableGrp* group : filer.GetVariableGroups()) AskGroup(filer, *group);
  AskLists(open, tally);
  int added = 0;
  (void)filer.UpdateContainer(0, added, -1, 0);
  AskHandles(filer);
  AskIndexes(filer, tally);
  AskEntities(open, tally);
}

}  // namespace orvio::fuzz
