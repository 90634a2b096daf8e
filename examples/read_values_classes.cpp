// Prints a stress component of the last state, with the classes alone.
//
//   read_values_classes FILE.orv

#include <orvio/orvio.h>
#include <cstdio>
#include <vector>

int main(int, char** argv) {
  ORVFiler filer(argv[1]);
  int next_id = 1;
  if (filer.InitReader(next_id) != 0) return 1;  // reads headers and gives every component a handle
  const ORVExtVar* handle = filer.GetExtVariable("STRESS_SXX");
  if (!handle) return 1;
  std::vector<int> any_type;
  std::vector<const char*> names = {"STRESS_SXX"};
  std::vector<ORVResult*> blocks;
  filer.GetResultBlksFrmCmp(any_type, names, blocks, -1, 1);  // where it is stored
  ORVResultValuesBase<float, int> stress;
  ReadNumState(argv[1], &stress.m_state);  // the last state
  stress.m_wantIds = 1;
  if (filer.GetValues(stress, blocks, handle->GetIID(), -1, nullptr) != 0) return 1;
  for (int i = 0; i < stress.m_idCount; ++i) std::printf("%d %g\n", stress.m_ids[i], stress.m_values[i]);
  stress.DeleteAllocation(true);
}
