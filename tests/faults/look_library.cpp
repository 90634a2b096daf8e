// What a post-processor sees.

#include "faults/look.h"
#include "orvio/orvio.h"

namespace orvio::faults {
namespace {

template <std::size_t N>
void Name(char (&field)[N], const char* name) {
  (void)std::snprintf(field, N, "%s", name);
}

bool IsMeshRight(ORVFiler& filer) {
  ORVEleConnectivity mesh;
  Name(mesh.m_etypelem, kQuadType);
  if (filer.ReadBlock(&mesh, 0, ORV_READ_HEADER) != 0 || mesh.m_nele != kQuads || mesh.m_npele != 4) return false;
  std::vector<int> ids(kQuads), parts(kQuads), nodes(std::size_t{4} * kQuads);
  mesh.m_idele = ids.data();
  mesh.m_pid = parts.data();
  mesh.m_ic = nodes.data();
  return filer.ReadBlock(&mesh, 0, ORV_READ_DATA) == 0 && nodes == QuadNodes();
}

bool AreVariablesRight(ORVFiler& filer) {
  for (const BlockRow& row : kBlocks) {
    const ORVVariable* variable = filer.GetVariable(row.variable);
    if (!variable || variable->m_ncoo != row.components) return false;
  }
  return filer.GetVariables().size() == kBlocks.size();
}

/// Buffers for what a block holds, and whether that is right.
class BlockValues {
 public:
  /// Takes the counts of a header that was read. False when they are not those of the model.
  bool Take(ORVResult& result, int block) {
    const int components = kBlocks[static_cast<std::size_t>(block)].components;
    if (result.m_nent != kNodes || result.m_ncoo != components || result.m_nindex != 1) return false;
    values_.assign(static_cast<std::size_t>(kNodes) * static_cast<std::size_t>(components), -1.0F);
    ids_.assign(kNodes, -1);
    time_ = -1;
    ident_ = -1;
    result.m_res = values_.data();
    result.m_entid = ids_.data();
    result.m_readIds = 1;
    result.m_indexval = &time_;
    result.m_indexident = &ident_;
    return true;
  }
  bool AreRight(int block, Generation generation, int state) const {
    return values_ == ValuesOf(block, generation, state) && ids_ == NodeIds() && time_ == TimeOf(state) &&
           ident_ == IdentOf(state);
  }

 private:
  std::vector<float> values_;
  std::vector<int> ids_;
  float time_ = -1;
  int ident_ = -1;
};

/// As a host reads a block by name.
Piece LookAtBlock(ORVFiler& filer, int block, Generation generation, int state) {
  ORVResult result(ORV_RESULT_ENTITY);
  result.SetEntityAndVarName(kNodeType, kBlocks[static_cast<std::size_t>(block)].variable);
  if (filer.ReadBlock(&result, state, ORV_READ_HEADER) != 0) return Piece::kAbsent;
  BlockValues values;
  if (!values.Take(result, block)) return Piece::kTorn;
  if (filer.ReadBlock(&result, state, ORV_READ_DATA | ORV_READ_INDEX) != 0) return Piece::kTorn;
  return values.AreRight(block, generation, state) ? Piece::kWhole : Piece::kTorn;
}

/// Walks over all blocks of the states that were there before: they must come in their order, each of them right. The
/// callback of a walk is told no object of ours.
class EarlierStates {
 public:
  /// The states that are right, up to the first that is not.
  static int CountRight(const std::string& path, int states) {
    EarlierStates walk;
    the_walk = &walk;
    ORVResult scratch(ORV_RESULT_ENTITY);
    if (states > 0) (void)scratch.IterateBlockOver(path.c_str(), kStages, &OnStage, 1, states, 1, nullptr, 0);
    the_walk = nullptr;
    return walk.passed_ / kBlockCount;
  }

 private:
  static constexpr int kStages = ORV_READ_HEADER | ORV_READ_DATA | ORV_READ_INDEX;

  static _ORVAction OnStage(int status, int stage, void*, void* block) {
    const bool right = status == 0 && the_walk->IsRight(stage, *static_cast<ORVResult*>(block));
    return right ? ORV_ACTION_CONTINUE : ORV_ACTION_STOP;
  }

  bool IsRight(int stage, ORVResult& result) {
    const int state = passed_ / kBlockCount + 1, block = passed_ % kBlockCount;
    if (stage == ORV_READ_HEADER) {
      const BlockRow& row = kBlocks[static_cast<std::size_t>(block)];
      return std::string(result.m_etypvar) == row.variable && values_.Take(result, block);
    }
    if (stage != ORV_READ_INDEX) return true;
    const bool right = values_.AreRight(block, 0, state);
    passed_ += right ? 1 : 0;
    return right;
  }

  static inline EarlierStates* the_walk = nullptr;
  BlockValues values_;
  int passed_ = 0;  ///< blocks
};

/// The table of states that a host shows: as many as there are, each with its time.
bool IsIndexRight(ORVFiler& filer, int states) {
  const auto* index = filer.GetStateIndex(false);
  if (!index || index->GetNumState() != states) return false;
  for (int i = 0; i < states; ++i) {
    if (index->GetIndexVals()[i] != TimeOf(i + 1) || index->GetIndexIds()[i] != IdentOf(i + 1)) return false;
  }
  return true;
}

}  // namespace

void LookWithLibrary(const std::string& path, const Expected& expected, Seen& seen) {
  int states = 0;
  if (ReadNumState(path.c_str(), &states) != 0) return;
  seen.opened = true;
  ORVFiler filer(path.c_str());
  int next_id = 1;
  seen.model = filer.InitReader(next_id) == 0 && AreVariablesRight(filer) && IsMeshRight(filer);
  seen.right = EarlierStates::CountRight(path, expected.states);
  if (states > expected.states + expected.new_states) seen.ghost = true;
  for (int i = 0; i < expected.new_states; ++i) {
    const auto at = static_cast<std::size_t>(i);
    const int state = expected.states + 1 + i;
    bool any = false;
    for (int block = 0; state <= states && block < kBlockCount; ++block) {
      Piece& piece = seen.pieces[at][static_cast<std::size_t>(block)];
      piece = LookAtBlock(filer, block, expected.generations[at], state);
      any = any || piece != Piece::kAbsent;
    }
    if (state <= states && !any) seen.ghost = true;
  }
  if (seen.right == expected.states && !seen.ghost && states > 0 && !IsIndexRight(filer, states)) seen.ghost = true;
  seen.ended = true;
}

}  // namespace orvio::faults
