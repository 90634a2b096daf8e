#pragma once

// A small block for tests of what a filer writes.

#include "orvio/orv_filer.h"
#include "orvio/orv_result.h"

namespace orv_test {

/// Two nodes with one value each; 0 when they are written.
inline int WriteTwoNodes(ORVFiler& filer, ORVResult& result, const char* variable, int state, float value) {
  int ids[] = {5, 9};
  float values[] = {value, value};
  result.SetEntityAndVarName("NODE", variable);
  result.m_nent = 2;
  result.m_ncoo = 1;
  result.m_readIds = 1;
  result.m_entid = ids;
  result.m_res = values;
  const int status = filer.WriteBlock(&result, state, ORV_WRITE_HEADER | ORV_WRITE_DATA);
  result.m_entid = nullptr;
  result.m_res = nullptr;
  return status;
}

}  // namespace orv_test
