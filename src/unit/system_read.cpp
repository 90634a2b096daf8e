// The arrays of the unit system block. Three allocations hold two of them each:
//
//     m_pUbnam, m_pUbtyp       texts of 256 bytes, nbunit each
//     m_pUbcon, m_pUbshift     floats, nbunit each
//     m_pUdid, m_pNdbunit      ints, ndunit each
//
// All are zeroed: what a file does not store is then an empty text, no shift and a derived unit of no base units.

#include "unit/system_read.h"

#include <cstdlib>

#include "h5/disk_names.h"
#include "h5/status.h"
#include "orvio/orv_system.h"

namespace orvio {
namespace {

constexpr std::int64_t kMostBytes = std::int64_t{64} << 20;  // of one array; no unit system comes near

/// Makes arrays until one cannot be had.
class ArrayMaker {
 public:
  /// Null for a count of 0.
  template <class T>
  T* Make(std::int64_t count) {
    if (!ok_ || count == 0) return nullptr;
    void* array = count <= kMostBytes / static_cast<std::int64_t>(sizeof(T))
                      ? std::calloc(static_cast<std::size_t>(count), sizeof(T))
                      : nullptr;
    ok_ = array != nullptr;
    return static_cast<T*>(array);
  }
  bool ok() const { return ok_; }

 private:
  bool ok_ = true;
};

/// Within these bounds no product of the two counts and an element size overflows.
bool IsPossible(std::int64_t count) { return count >= 0 && count <= kMostBytes; }

void Forget(ORVSystem& system) {
  system.m_pUbid = system.m_pUdid = system.m_pNdbunit = system.m_pUdbid = nullptr;
  system.m_pUbtyp = system.m_pUbnam = system.m_pUdnam = nullptr;
  system.m_pUbshift = system.m_pUbcon = system.m_pUdscal = system.m_pUdbexp = nullptr;
}

}  // namespace

bool AllocateBuffers(ORVSystem& system) {
  Forget(system);
  const std::int64_t base = system.m_nbunit, derived = system.m_ndunit;
  if (!IsPossible(base) || !IsPossible(derived)) return false;
  constexpr auto kWidth = static_cast<std::int64_t>(disk::kTextWidth);
  ArrayMaker maker;
  system.m_pUbid = maker.Make<int>(base);
  system.m_pUbnam = maker.Make<char>(2 * base * kWidth);
  system.m_pUbcon = maker.Make<float>(2 * base);
  system.m_pUdid = maker.Make<int>(2 * derived);
  system.m_pUdnam = maker.Make<char>(derived * kWidth);
  system.m_pUdscal = maker.Make<float>(derived);
  system.m_pUdbid = maker.Make<int>(derived * base);
  system.m_pUdbexp = maker.Make<float>(derived * base);
  if (!maker.ok()) {
    FreeBuffers(system);
    return false;
  }
  if (system.m_pUbnam) system.m_pUbtyp = system.m_pUbnam + base * kWidth;
  if (system.m_pUbcon) system.m_pUbshift = system.m_pUbcon + base;
  if (system.m_pUdid) system.m_pNdbunit = system.m_pUdid + derived;
  return true;
}

void FreeBuffers(ORVSystem& system) {
  std::free(system.m_pUbid);
  std::free(system.m_pUbnam);
  std::free(system.m_pUbcon);
  std::free(system.m_pUdid);
  std::free(system.m_pUdnam);
  std::free(system.m_pUdscal);
  std::free(system.m_pUdbid);
  std::free(system.m_pUdbexp);
  Forget(system);
}

int ReadSystem(const char* file, ORVSystem& system) {
  int status = system.ReadBlock(file, 0, ORV_READ_HEADER);
  if (status != kOk) return status;
  if (!AllocateBuffers(system)) return kFail;
  status = system.ReadBlock(file, 0, ORV_READ_DATA);
  if (status != kOk) FreeBuffers(system);
  return status;
}

std::optional<std::int64_t> EntriesOfDerivedUnits(const ORVSystem& system) {
  std::int64_t sum = 0;
  if (system.m_ndunit > 0 && !system.m_pNdbunit) return std::nullopt;
  for (std::int64_t i = 0; i < system.m_ndunit; ++i) {
    if (system.m_pNdbunit[i] < 0) return std::nullopt;
    sum += system.m_pNdbunit[i];
  }
  return sum;
}

}  // namespace orvio
