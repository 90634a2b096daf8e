#include <orvio/orvio.h>
#include <cstdio>
#include <vector>

int main(int, char** argv) {
  ORVFiler filer(argv[1]);
  ORVResult result(ORV_RESULT_ENTITY);
  result.SetEntityAndVarName("NODE", "Translational_Displacement");
  if (filer.ReadBlock(&result, 51, ORV_READ_HEADER) != 0) return 1;  // state 51: how many nodes?
  std::vector<float> xyz(result.m_nent * 3);
  result.m_res = xyz.data();
  if (filer.ReadBlock(&result, 51, ORV_READ_DATA) != 0) return 1;  // the values, into our buffer
  for (size_t i = 0; i < xyz.size(); i += 3) std::printf("%g %g %g\n", xyz[i], xyz[i + 1], xyz[i + 2]);
}
