// A solver writes a small model with two states, and a post-processor reads it: through the shared library as a host
// links it, in every version of the format. What lies in the file is looked at in the tests of the blocks.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orvio/orvio.h"
#include "support/orv_test.h"

namespace {

class Journey : public orv_test::OrvTest, public ::testing::WithParamInterface<_ORVVersion> {
 protected:
  Journey() { MaySilenceHdf5(); }

  std::string WriteModel();
};

void Name(char (&field)[257], const char* name) { (void)std::snprintf(field, sizeof field, "%s", name); }

int WriteVelocityVariable(ORVFiler& filer) {
  int no_units[3] = {0, 0, 0};
  int ids[3] = {1, 2, 3};
  std::string names(3 * 256, ' ');
  names[0] = 'X';
  names[256] = 'Y';
  names[512] = 'Z';
  char labels[] = "XYZ";
  int lengths[3] = {1, 1, 1};
  int offsets[3] = {0, 1, 2};
  ORVVariable velocity;
  Name(velocity.m_varnam, "Velocity");
  Name(velocity.m_varkey, "Velocity");
  velocity.m_ncoo = 3;
  velocity.m_rank = 1;
  velocity.m_ndim = 3;
  velocity.m_tensor = 1;
  velocity.m_pMbunit = velocity.m_pMdunit = no_units;
  velocity.m_pCid = ids;
  velocity.m_pCname = names.data();
  velocity.m_subslen = 3;
  velocity.m_pSubscr = labels;
  velocity.m_pSubscnt = lengths;
  velocity.m_pSubsoffs = offsets;
  return filer.WriteBlock(&velocity, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA);
}

int WriteShells(ORVFiler& filer) {
  int ids[2] = {10, 11};
  int parts[2] = {7, 7};
  int nodes[8] = {1, 2, 3, 4, 3, 4, 5, 6};
  ORVEleConnectivity shells;
  Name(shells.m_etypelem, "QUAD4");
  Name(shells.m_etyppart, "PART");
  Name(shells.m_etypnode, "NODE");
  shells.m_nele = 2;
  shells.m_npele = 4;
  shells.m_ndim = 2;
  shells.m_idele = ids;
  shells.m_pid = parts;
  shells.m_ic = nodes;
  return filer.WriteBlock(&shells, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA);
}

int WriteVelocities(ORVFiler& filer, int state) {
  int ids[2] = {5, 9};
  float values[6];
  for (int i = 0; i < 6; ++i) values[i] = static_cast<float>(state * 100 + i) + 0.25F;
  int index_ids[1] = {state};
  double times[1] = {state * 0.5};
  ORVResult velocity(ORV_RESULT_ENTITY);
  velocity.SetEntityAndVarName("NODE", "Velocity");
  velocity.m_nent = 2;
  velocity.m_ncoo = 3;
  velocity.m_nindex = 1;
  velocity.m_readIds = 1;
  velocity.m_entid = ids;
  velocity.m_res = values;
  velocity.m_indexident = index_ids;
  velocity.m_indexval = times;
  velocity.m_indexvalType = ORV_DOUBLE;
  return filer.WriteBlock(&velocity, state, ORV_WRITE_HEADER | ORV_WRITE_DATA | ORV_WRITE_INDEX);
}

std::string Journey::WriteModel() {
  const std::string path = TempPath("model.orv");
  ORVFiler filer(path.c_str());
  EXPECT_EQ(filer.InitForWriting(path.c_str(), GetParam(), ORV_FILE_CREATE, false), 0);
  EXPECT_EQ(WriteVelocityVariable(filer), 0);
  EXPECT_EQ(WriteShells(filer), 0);
  EXPECT_EQ(WriteVelocities(filer, 1), 0);
  EXPECT_EQ(WriteVelocities(filer, 2), 0);
  return path;
}

TEST_P(Journey, ValuesOfAStateComeBackWithIdsAndTime) {
  ORVFiler filer(WriteModel().c_str());
  ORVResult velocity(ORV_RESULT_ENTITY);
  velocity.SetEntityAndVarName("NODE", "Velocity");
  ASSERT_EQ(filer.ReadBlock(&velocity, 2, ORV_READ_HEADER), 0);
  ASSERT_EQ(velocity.m_nent, 2);
  ASSERT_EQ(velocity.m_ncoo, 3);
  ASSERT_EQ(velocity.m_nindex, 1);
  std::vector<float> values(6);
  std::vector<int> ids(2);
  double time = 0;
  int state = 0;
  velocity.m_res = values.data();
  velocity.m_entid = ids.data();
  velocity.m_readIds = 1;
  velocity.m_indexval = &time;
  velocity.m_indexvalType = ORV_DOUBLE;
  velocity.m_indexident = &state;
  EXPECT_EQ(filer.ReadBlock(&velocity, 2, ORV_READ_DATA | ORV_READ_INDEX), 0);
  EXPECT_EQ(values, (std::vector<float>{200.25F, 201.25F, 202.25F, 203.25F, 204.25F, 205.25F}));
  EXPECT_EQ(ids, (std::vector<int>{5, 9}));
  EXPECT_EQ(time, 1.0);
  EXPECT_EQ(state, 2);
}

TEST_P(Journey, OneComponentOfAStateComesBackAlone) {
  const std::string path = WriteModel();
  ORVResult velocity(ORV_RESULT_ENTITY);
  velocity.SetEntityAndVarName("NODE", "Velocity");
  ASSERT_EQ(velocity.ReadBlock(path.c_str(), 1, ORV_READ_HEADER), 0);
  int rank = 0;
  std::uint64_t start[8] = {};
  std::uint64_t count[8] = {};
  (void)velocity.GetComponentSelection(1, &rank, start, count, ORV_ALL_LAYERS, ORV_ALL_ENTITIES);
  ASSERT_EQ(velocity.GetTotalCount(rank, count), 2);
  std::vector<float> values(2);
  velocity.m_res = values.data();
  EXPECT_EQ(velocity.ReadSelectiveAttribute(path.c_str(), 1, ORV_READ_DATA, ORV_ATT_RES, rank, start, count, nullptr,
                                            nullptr, false),
            0);
  EXPECT_EQ(values, (std::vector<float>{101.25F, 104.25F}));
}

TEST_P(Journey, TheMeshComesBack) {
  ORVFiler filer(WriteModel().c_str());
  ORVEleConnectivity shells;
  Name(shells.m_etypelem, "QUAD4");
  ASSERT_EQ(filer.ReadBlock(&shells, 0, ORV_READ_HEADER), 0);
  ASSERT_EQ(shells.m_nele, 2);
  ASSERT_EQ(shells.m_npele, 4);
  EXPECT_EQ(shells.m_ndim, 2);
  std::vector<int> ids(2), parts(2), nodes(8);
  shells.m_idele = ids.data();
  shells.m_pid = parts.data();
  shells.m_ic = nodes.data();
  EXPECT_EQ(filer.ReadBlock(&shells, 0, ORV_READ_DATA), 0);
  EXPECT_EQ(ids, (std::vector<int>{10, 11}));
  EXPECT_EQ(parts, (std::vector<int>{7, 7}));
  EXPECT_EQ(nodes, (std::vector<int>{1, 2, 3, 4, 3, 4, 5, 6}));
}

TEST_P(Journey, StatesAreCounted) {
  int states = 0;
  EXPECT_EQ(ReadNumState(WriteModel().c_str(), &states), 0);
  EXPECT_EQ(states, 2);
}

INSTANTIATE_TEST_SUITE_P(EveryVersion, Journey,
                         ::testing::Values(ORV_VERSION_1_0, ORV_VERSION_1_1, ORV_VERSION_1_2, ORV_VERSION_2_0,
                                           ORV_VERSION_2_1, ORV_VERSION_2_2));

}  // namespace
