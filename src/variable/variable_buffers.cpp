// The tables of a variable: allocation, release, copies. Two of them are slabs that hold several tables each:
//
//     ints, 16 a component     m_pMbunit (1), m_pMdunit (1), m_pUbid (7), m_pUdid (7)
//     floats, 14 a component   m_pUbexp (7), m_pUdexp (7)
//
// and one allocation holds m_pSubscnt and m_pSubsoffs.

#include "variable/variable_buffers.h"

#include <algorithm>
#include <climits>

#include "filer/process_state.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "variable/variable_tables.h"

namespace orvio {
namespace {

constexpr std::uint64_t kIntsPerComponent = 2 + 2 * kUnitsPerComponent;
constexpr std::uint64_t kFloatsPerComponent = 2 * kUnitsPerComponent;

/// Makes the tables. After the first that cannot be had it makes no more.
class TableMaker {
 public:
  TableMaker(const StoredExtents& stored, AllocateZeroed allocate) : stored_(stored), allocate_(allocate) {}

  /// A table of `count` cells that holds up to `entries` things, of which the file vouches for `stored`. `text` is
  /// told when there is no memory for it.
  template <class T>
  T* Make(std::uint64_t count, std::uint64_t entries, std::uint64_t stored, const char* text = nullptr) {
    if (!ok_ || count == 0) return nullptr;
    const bool refused = entries > stored && count > h5::kUnbackedBytes / sizeof(T);
    void* table = refused ? nullptr : allocate_(count, sizeof(T));
    ok_ = table != nullptr;
    if (!ok_ && text) SetLastError("%s", text);
    return static_cast<T*>(table);
  }
  template <class T>
  T* ForComponents(std::uint64_t components, std::uint64_t cells, const char* text = nullptr) {
    return Make<T>(components * cells, components, stored_.components, text);
  }
  bool ok() const { return ok_; }

 private:
  const StoredExtents& stored_;
  AllocateZeroed allocate_;
  bool ok_ = true;
};

constexpr char kNoUnits[] = "Low on memory. :: variable \"Unit parameter\" ignored";
constexpr char kNoExponents[] = "Low on memory. :: variable \"base Unit exponent\" ignored";

void MakeTables(ORVVariable& variable, const StoredExtents& stored, TableMaker& make) {
  const std::uint64_t components = ComponentsOf(variable);
  const std::uint64_t labels = LabelBytesOf(variable);
  const auto map = MapShapeOf(variable);
  variable.m_pMbunit = make.ForComponents<int>(components, kIntsPerComponent, kNoUnits);
  variable.m_pUbexp = make.ForComponents<float>(components, kFloatsPerComponent, kNoExponents);
  variable.m_pCid = make.ForComponents<int>(components, 1);
  // The byte behind the last name ends it where a reader takes the names for one text.
  variable.m_pCname = make.Make<char>(components * disk::kTextWidth + 1, components, stored.components);
  if (labels > 0) {
    variable.m_pSubscr = make.Make<char>(labels, labels, stored.label_bytes);
    variable.m_pSubscnt = make.ForComponents<int>(components, 2);
  }
  if (map) variable.m_pVmap = make.Make<float>(map->count, map->count, stored.map_values);
}

/// Points the tables inside the slabs to their places.
void DivideSlabs(ORVVariable& variable) {
  const std::uint64_t components = ComponentsOf(variable);
  variable.m_pMdunit = variable.m_pMbunit + components;
  variable.m_pUbid = variable.m_pMbunit + 2 * components;
  variable.m_pUdid = variable.m_pMbunit + (2 + kUnitsPerComponent) * components;
  variable.m_pUdexp = variable.m_pUbexp + kUnitsPerComponent * components;
  if (variable.m_pSubscnt) variable.m_pSubsoffs = variable.m_pSubscnt + components;
}

template <class T>
void CopyWhereBothHave(const T* from, T* to, std::uint64_t count) {
  if (from && to) std::copy_n(from, count, to);
}

/// Entries that the counts of one kind of units describe, 0 for more than a table has room for.
std::uint64_t CopiedUnits(const int* from, const int* to, std::uint64_t components) {
  if (!from || !to) return 0;
  const std::uint64_t sum = SumOfCounts(from, components);
  return sum <= kUnitsPerComponent * components ? sum : 0;
}

void CopyUnits(const ORVVariable& from, ORVVariable& to) {
  const std::uint64_t components = ComponentsOf(from);
  CopyWhereBothHave(from.m_pMbunit, to.m_pMbunit, components);
  CopyWhereBothHave(from.m_pMdunit, to.m_pMdunit, components);
  const std::uint64_t base = CopiedUnits(from.m_pMbunit, to.m_pMbunit, components);
  CopyWhereBothHave(from.m_pUbid, to.m_pUbid, base);
  CopyWhereBothHave(from.m_pUbexp, to.m_pUbexp, base);
  const std::uint64_t derived = CopiedUnits(from.m_pMdunit, to.m_pMdunit, components);
  CopyWhereBothHave(from.m_pUdid, to.m_pUdid, derived);
  CopyWhereBothHave(from.m_pUdexp, to.m_pUdexp, derived);
}

/// Counts up to which the file is not asked.
constexpr StoredExtents kSmall = {64, 4096, 1024};

/// Counts of one table of 64 MiB.
constexpr StoredExtents kMostOnTrust = {(h5::kUnbackedBytes - 1) / disk::kTextWidth, h5::kUnbackedBytes,
                                        h5::kUnbackedBytes / sizeof(float)};

bool IsWithin(const StoredExtents& counts, const StoredExtents& most) {
  return counts.components <= most.components && counts.label_bytes <= most.label_bytes &&
         counts.map_values <= most.map_values;
}

std::uint64_t Beyond(std::uint64_t wanted, std::uint64_t stored) { return wanted > stored ? wanted - stored : 0; }

}  // namespace

StoredExtents CountsOf(const ORVVariable& variable) {
  const auto map = MapShapeOf(variable);
  return {ComponentsOf(variable), LabelBytesOf(variable), map ? map->count : 0};
}

bool NeedsStoredExtents(const ORVVariable& variable) { return !IsWithin(CountsOf(variable), kSmall); }

bool TakenOnTrust::Take(const StoredExtents& wanted, const StoredExtents& stored) {
  // No sum wraps: a count is below 2^63, and what was taken before is far below.
  const StoredExtents taken = {taken_.components + Beyond(wanted.components, stored.components),
                               taken_.label_bytes + Beyond(wanted.label_bytes, stored.label_bytes),
                               taken_.map_values + Beyond(wanted.map_values, stored.map_values)};
  if (!IsWithin(taken, kMostOnTrust)) return false;
  taken_ = taken;
  return true;
}

bool AllocateBuffers(ORVVariable& variable, const StoredExtents& stored, AllocateZeroed allocate) {
  variable.ReSetBlock(ORV_READ_DATA);
  if (variable.m_ncoo < 1 || variable.m_ncoo > INT_MAX) return false;
  TableMaker make(stored, allocate);
  MakeTables(variable, stored, make);
  if (!make.ok()) {
    FreeBuffers(variable);
    return false;
  }
  DivideSlabs(variable);
  return true;
}

void FreeBuffers(ORVVariable& variable) {
  std::free(variable.m_pMbunit);
  std::free(variable.m_pUbexp);
  std::free(variable.m_pCid);
  std::free(variable.m_pCname);
  std::free(variable.m_pSubscr);
  std::free(variable.m_pSubscnt);
  std::free(variable.m_pVmap);
  variable.ReSetBlock(ORV_READ_DATA);
}

std::unique_ptr<ORVVariable> CloneVariable(const ORVVariable& source) {
  return h5::Entry(std::unique_ptr<ORVVariable>(), [&] {
    auto clone = std::make_unique<ORVVariable>(source);
    clone->m_units.clear();  // they are the source's; nothing may come between the copy and this line
    clone->m_extVars.clear();
    clone->ReSetBlock(ORV_READ_DATA);
    // What the source holds was admitted when it was read.
    if (!AllocateBuffers(*clone, CountsOf(source))) return std::unique_ptr<ORVVariable>();
    const_cast<ORVVariable&>(source).CopyDataPart(clone.get());  // the fixed signature is not const; nothing changes
    return clone;
  });
}

}  // namespace orvio

using namespace orvio;  // the exported function below works on tables that others have made, too

void ORVVariable::CopyDataPart(ORVVariable* dest) {
  if (!dest || dest == this || m_ncoo <= 0 || m_ncoo != dest->m_ncoo) return;
  const std::uint64_t components = ComponentsOf(*this);
  const auto map = MapShapeOf(*this), room = PossibleMapShapeOf(*dest);
  if (map && room && map->count <= room->count) CopyWhereBothHave(m_pVmap, dest->m_pVmap, map->count);
  if (m_subslen == dest->m_subslen) {
    CopyWhereBothHave(m_pSubscnt, dest->m_pSubscnt, components);
    CopyWhereBothHave(m_pSubsoffs, dest->m_pSubsoffs, components);
    CopyWhereBothHave(m_pSubscr, dest->m_pSubscr, LabelBytesOf(*this));
  }
  CopyUnits(*this, *dest);
}
