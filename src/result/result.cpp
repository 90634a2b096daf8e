// Construction and identity of a result block: its kind, its names, its accessors. The header is in result_header.cpp,
// the place in a file in result_paths.cpp.

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "block/block_keys.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "result/result_kinds.h"

using namespace orvio;

namespace {

constexpr int kNoBlockType = static_cast<int>(kNoKey);
constexpr auto kNoEntityType = static_cast<_ORVEntityType>(-1);

}  // namespace

ORVResult::ORVResult() : ORVResult(kNoBlockType) {}

ORVResult::ORVResult(int blockType)
    : m_etyp{},
      m_nent(0),
      m_etypvar{},
      m_etypzone{},
      m_ncoo(0),
      m_fswitch(0),
      m_dmpswitch(0),
      m_etypframe{},
      m_nstate(0),
      m_numl(0),
      m_zoneid(0),
      m_ndim(0),
      m_nindex(0),
      m_series{},
      m_entidType(ORV_INT),
      m_resType(ORV_FLOAT),
      m_fidType(ORV_INT),
      m_entid(nullptr),
      m_res(nullptr),
      m_fid(nullptr),
      m_fidglob(0),
      m_elocType(ORV_FLOAT),
      m_eloc(nullptr),
      m_indexidentType(ORV_INT),
      m_indexvalType(ORV_FLOAT),
      m_indexident(nullptr),
      m_indexval(nullptr),
      m_subBlockName{},
      m_entityType(kNoEntityType),
      m_baseEntityType(-1),
      m_readIds(0),
      m_constantBlk(0),
      m_spare0(0),
      m_variable(nullptr),
      m_variableGrp(nullptr),
      m_complexOutput(0),
      m_spare1(-1),
      m_spare2(0),
      m_fetchSkip(1),
      m_linkCallBack(nullptr),
      m_location(ORV_RESULT_LOCATION_DEFAULT) {
  m_BlkKey = blockType;
}

ORVResult::~ORVResult() = default;

int ORVResult::SetBlockType(int blockType) {
  const auto before = static_cast<int>(m_BlkKey);  // the low 32 bits: a file may hold more
  m_BlkKey = blockType;
  return before;
}

bool ORVResult::IsEntityResult() const {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  return kind && kind->IsEntity();
}

bool ORVResult::IsElementResult() const {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  return kind && kind->IsElement();
}

bool ORVResult::IsSinglestateBlk() const {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  return kind && kind->IsSinglestate();
}

bool ORVResult::IsMultistateBlk() const {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  return kind && kind->IsMultistate();
}

bool ORVResult::IsComplexBlk() const {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  return kind && kind->IsComplex();
}

void ORVResult::SetEntityAndVarName(const std::string& type, const std::string& variable) {
  const auto differs = [](const Text& name, const std::string& other) {
    return Content(name) != Content(other.c_str());
  };
  const bool had_names = *m_etyp || *m_etypvar;
  const bool renamed = had_names && (differs(m_etyp, type) || differs(m_etypvar, variable));
  // By the path the block of the old names would answer wherever that of the new ones is missing.
  if (renamed && GetBlkVersion() == ORV_BLK_VERSION_SPLIT) m_BlkPath.clear();
  Assign(m_etyp, type);
  Assign(m_etypvar, variable);
}

std::string ORVResult::GetElementType() {
  return h5::Entry(std::string(), [&] { return std::string(Content(m_etyp)); });
}

int ORVResult::GetFrameSwitch(int& frameId, std::string& frameType) {
  frameId = static_cast<int>(m_fidglob);
  h5::EntryVoid([&] { frameType = Content(m_etypframe); });
  return static_cast<int>(m_fswitch);
}

bool ORVResult::HasSeriesName(const char* name) {
  const std::string_view series = Content(m_series);
  return name && !series.empty() && EqualIgnoringCase(series, name);
}

bool ORVResult::IsLoadCaseSeriesName(int& loadCase) {
  loadCase = 0;
  m_series[disk::kTextWidth] = '\0';  // a host may have filled the field to the brim
  const std::string_view series = Content(m_series);
  constexpr std::string_view kWord = disk::LOADCASE_;
  if (series.find(kWord) == std::string_view::npos) return false;
  // QUIRK: the number starts at the tenth character even where the word stands further back, so "xLOADCASE_12" has
  // the number 0. Hosts order their load cases by these numbers. Pinned by
  // ResultIdentity.TakesTheLoadCaseNumberFromTheTenthCharacter.
  const long number = std::strtol(m_series + kWord.size(), nullptr, 10);
  loadCase = static_cast<int>(std::clamp<long>(number, INT_MIN, INT_MAX));
  return true;
}

int ORVResult::GetRelativePathFromResultGroup(std::string& path) {
  const _OH5BlockKeyMap* key = FindBlockKey(m_BlkKey);
  if (!key || m_BlkPath.empty()) return kFail;
  const std::size_t found = m_BlkPath.find(key->name);
  if (found == std::string::npos) return kFail;
  return h5::Entry(kFail, [&] {
    path = m_BlkPath.substr(found);
    return kOk;
  });
}
