// The walk over the connectivities of a state for their types. Families of element types are looked for in
// generic_types_scan.cpp.

#include "entity/connectivity_types.h"

#include <utility>

#include "h5/entry.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_ele_connectivity.h"

namespace orvio {
namespace {

/// The scratch block of the walk, and what it has found.
class TypeScan : public ORVEleConnectivity {
 public:
  ConnectivityTypes found;
  bool out_of_memory = false;

  /// The walk runs inside HDF5's iteration: no exception may leave.
  static _ORVAction Take(int status, int /*stage*/, void* /*name*/, void* block) {
    auto& scan = *static_cast<TypeScan*>(static_cast<ORVBlock*>(block));
    if (status != kOk || scan.m_nele == 0 || scan.m_npele == 0) return ORV_ACTION_SKIP;
    scan.out_of_memory = !h5::Entry(false, [&] {
      scan.found.types.emplace_back(Content(scan.m_etyp));
      scan.found.element_types.emplace_back(Content(scan.m_etypelem));
      return true;
    });
    return scan.out_of_memory ? ORV_ACTION_STOP : ORV_ACTION_CONTINUE;
  }
};

}  // namespace

ConnectivityTypes ReadConnectivityTypes(const char* file, int state) {
  TypeScan scan;
  (void)scan.IterateBlock(file, state, ORV_READ_HEADER, TypeScan::Take);  // what is not there has no types
  return scan.out_of_memory ? ConnectivityTypes() : std::move(scan.found);
}

}  // namespace orvio
