// The search for element types in the connectivities of a file: the families that they belong to, and those that the
// table of entity types lacks.

#include <memory>
#include <set>
#include <string>
#include <utility>

#include "block/reader_lease.h"
#include "block/states.h"
#include "block/walk.h"
#include "entity/entity_type_names.h"
#include "entity/generic_types.h"
#include "filer/container.h"
#include "h5/disk_names.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_ele_connectivity.h"

namespace orvio {
namespace {

/// A generic name and an element type under it.
using NamePair = std::pair<std::string, std::string>;

/// The scratch block of a walk, and where its names go.
class ConnectivityScan : public ORVEleConnectivity {
 public:
  explicit ConnectivityScan(std::vector<NamePair>& found) : found_(found) {}

  void Run(hid_t group) { WalkGroup(*this, group, Take, ORV_READ_HEADER); }

 private:
  static _ORVAction Take(int status, int /*stage*/, void* /*name*/, void* block) {
    auto& scan = *static_cast<ConnectivityScan*>(static_cast<ORVBlock*>(block));
    if (status != kOk || scan.m_nele == 0 || scan.m_npele == 0) return ORV_ACTION_SKIP;
    scan.Note({std::string(Content(scan.m_etyp)), std::string(Content(scan.m_etypelem))});
    return ORV_ACTION_CONTINUE;
  }

  /// Once: links can lead a walk to the same block a thousand times.
  void Note(NamePair pair) {
    if (pair.first.empty() || pair.second.empty() || !seen_.insert(pair).second) return;
    found_.push_back(std::move(pair));
  }

  std::vector<NamePair>& found_;
  std::set<NamePair> seen_;
};

/// The connectivities of one place.
void ScanPlace(ConnectivityScan& scan, int state) {
  const h5::Group group(ORVBlockPathResolver(&scan).OpenTypeGroup(state));
  if (group) scan.Run(group.get());
}

/// QUIRK: of n states the numbers 0 to n - 1 are scanned after the constant section, which is number 0 itself: that
/// section is read twice and the last state not at all. Hosts that number their entity types by this list would get
/// other numbers for old files otherwise. Pinned by GenericTypes.OfAllStatesLeaveTheLastStateOut.
void ScanAllStates(ConnectivityScan& scan, IOH5Reader& reader) {
  ScanPlace(scan, 0);
  const std::vector<std::string> states = StateNames(reader);
  if (!states.empty()) ScanPlace(scan, 0);
  for (std::size_t i = 0; i + 1 < states.size(); ++i) {
    const std::string path = StatePath(states[i]) + "/" + disk::connectivities;
    const h5::Group group = states[i].empty() ? h5::Group() : h5::OpenGroup(reader.GetFileId(), path.c_str());
    if (group) scan.Run(group.get());
  }
}

std::vector<NamePair> ReadNamePairs(const char* file, int state) {
  std::vector<NamePair> found;
  ConnectivityScan scan(found);
  const ReaderLease reader(scan, file);
  if (!reader) return found;
  if (state == kAllStates) {
    ScanAllStates(scan, *reader);
  } else {
    ScanPlace(scan, state);
  }
  return found;
}

void AppendBaseName(ORVGenericEntityNameMap& generic, std::string_view name) {
  for (const char* base : generic.m_baseNames) {
    if (EqualIgnoringCase(base, name)) return;
  }
  CArray<char> copy = CopyOfText(name);
  if (!copy) return;
  generic.m_baseNames.push_back(copy.get());
  copy.release();  // NOLINT(bugprone-unused-return-value): the list has it now
}

ORVGenericEntityNameMap& GenericTypeOf(ORVContainer& data, const std::string& name) {
  ORVGenericEntityNameMap* known = FindGenericType(data, name);
  if (known) return *known;
  auto made = std::make_unique<ORVGenericEntityNameMap>();
  made->m_genericName = name;
  data.m_genericTypes.push_back(made.get());
  return *made.release();
}

}  // namespace

void UpdateGenericTypes(ORVContainer& data, int state) {
  for (const auto& [generic, element] : ReadNamePairs(data.path.c_str(), state)) {
    AppendBaseName(GenericTypeOf(data, generic), element);
  }
}

std::vector<EntityTypeRow> FindUnknownElementTypes(const char* file, int state) {
  constexpr std::size_t kShortestName = 2;
  std::vector<EntityTypeRow> unknown;
  for (int number = 0;; ++number) {
    ORVEleConnectivity block;
    if (block.ReadBlockAt(file, state, number, ORV_READ_HEADER) != kOk) return unknown;
    const std::string_view name = Content(block.m_etypelem);
    if (block.m_nele == 0 || name.size() < kShortestName || FindEntityType(name)) continue;
    EntityTypeRow row = NewEntityTypeRow(EntityTypeOfShape(block.m_ndim, block.m_npele), 0, name);
    if (!row) return unknown;
    unknown.push_back(std::move(row));
  }
}

}  // namespace orvio
