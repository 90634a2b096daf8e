// Writes a small model with the classes: a plate of two shells with node coordinates, and stresses at two times.
//
//   write_model_classes OUT.orv

#include <orvio/orvio.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

/// A quantity with its components. Files of version 2 find results by groups of variables, so it gets a group, too.
int WriteVariable(ORVFiler& filer, const char* name, const char* class_word, int rank,
                  const std::vector<std::string>& labels) {
  const int components = static_cast<int>(labels.size());
  std::vector<int> lengths, offsets, no_units(labels.size());
  std::string packed;
  for (const std::string& label : labels) {
    offsets.push_back(static_cast<int>(packed.size()));
    lengths.push_back(static_cast<int>(label.size()));
    packed += label;
  }

  ORVVariable variable;
  std::strcpy(variable.m_varnam, name);
  std::strcpy(variable.m_varkey, name);
  std::strcpy(variable.m_varclass, class_word);
  variable.m_ncoo = components;
  variable.m_rank = rank;  // 0 scalars, 1 vector, 2 tensor
  variable.m_ndim = 3;
  variable.m_tensor = rank > 0;
  variable.m_pMbunit = variable.m_pMdunit = no_units.data();
  variable.m_subslen = static_cast<long>(packed.size());
  variable.m_pSubscr = packed.data();
  variable.m_pSubscnt = lengths.data();
  variable.m_pSubsoffs = offsets.data();

  int count = components, offset = 0;
  std::string key = name;
  key.resize(256, ' ');
  ORVVariableGrp group;
  std::strcpy(group.m_grpName, name);
  group.m_nvar = 1;
  group.m_ncoo = components;
  group.m_pCnt = &count;
  group.m_pOffs = &offset;
  group.m_pKeys = key.data();
  const int what = ORV_WRITE_HEADER | ORV_WRITE_DATA;
  return filer.WriteBlock(&variable, 0, what) + filer.WriteBlock(&group, 0, what);
}

/// What the one index value of a state means: the variables of the group "TIME" name the columns.
int WriteIndexTypes(ORVFiler& filer) {
  ORVSimulationType types;
  types.m_nindex = 1;
  std::strcpy(types.m_etypvar, "TIME");
  return filer.WriteBlock(&types, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA);
}

int WriteElements(ORVFiler& filer) {
  std::vector<int> ids = {11, 12}, parts = {1, 1};
  std::vector<int> nodes = {1, 2, 5, 4, 2, 3, 6, 5};  // four for each element
  ORVEleConnectivity shells;
  std::strcpy(shells.m_etypelem, "QUAD4");
  std::strcpy(shells.m_etyppart, "PART");
  std::strcpy(shells.m_etypnode, "NODE");
  shells.m_nele = 2;
  shells.m_npele = 4;
  shells.m_ndim = 2;
  shells.m_idele = ids.data();
  shells.m_pid = parts.data();
  shells.m_ic = nodes.data();
  return filer.WriteBlock(&shells, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA);
}

/// Values of a variable: in a state with its time, or in the constant section (state 0).
int WriteResult(ORVFiler& filer, ORVResult& result, int state, float time, std::vector<int>& ids,
                std::vector<float>& values) {
  int identifier = state;
  result.m_nent = static_cast<long>(ids.size());
  result.m_entid = ids.data();
  result.m_readIds = 1;  // write the ids beside the values
  result.m_res = values.data();
  result.m_nindex = state > 0 ? 1 : 0;
  result.m_indexident = &identifier;
  result.m_indexval = &time;
  const int index = state > 0 ? ORV_WRITE_INDEX : 0;
  return filer.WriteBlock(&result, state, ORV_WRITE_HEADER | ORV_WRITE_DATA | index);
}

int WriteCoordinates(ORVFiler& filer) {
  std::vector<int> nodes = {1, 2, 3, 4, 5, 6};
  std::vector<float> xyz = {0, 0, 0, 1, 0, 0, 2, 0, 0, 0, 1, 0, 1, 1, 0, 2, 1, 0};
  ORVResult result(ORV_RESULT_ENTITY);
  result.SetEntityAndVarName("NODE", "COORDINATE");
  result.m_ncoo = 3;
  return WriteResult(filer, result, 0, 0, nodes, xyz);
}

/// Six components in each of two layers of every shell.
int WriteStress(ORVFiler& filer, int state, float time) {
  std::vector<int> shells = {11, 12};
  std::vector<float> stress(2 * 2 * 6);
  for (std::size_t i = 0; i < stress.size(); ++i) stress[i] = static_cast<float>(state * 100 + static_cast<int>(i));
  ORVResult result(ORV_RESULT_ELEMENT);
  result.SetEntityAndVarName("QUAD4", "STRESS");
  result.m_ncoo = 6;
  result.m_numl = 2;
  return WriteResult(filer, result, state, time, shells, stress);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "write_model_classes OUT.orv\n");
    return 2;
  }
  ORVFiler filer(argv[1]);
  int failed = filer.InitForWriting(argv[1], ORV_VERSION_2_2, ORV_FILE_CREATE, false);
  failed += WriteVariable(filer, "TIME", "", 0, {"t"});
  failed += WriteVariable(filer, "COORDINATE", "CLASS_LENGTH", 1, {"X", "Y", "Z"});
  failed += WriteVariable(filer, "STRESS", "CLASS_STRESS", 2, {"SXX", "SYY", "SZZ", "SXY", "SYZ", "SZX"});
  failed += WriteIndexTypes(filer);
  failed += WriteElements(filer);
  failed += WriteCoordinates(filer);
  failed += WriteStress(filer, 1, 0.5F);
  failed += WriteStress(filer, 2, 1.0F);
  if (failed != 0) std::fprintf(stderr, "write_model_classes: %s: %s\n", argv[1], ORVGetLastErrorText());
  return failed == 0 ? 0 : 1;
}
