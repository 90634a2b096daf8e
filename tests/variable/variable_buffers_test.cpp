// The tables of variables: their places and sizes, copies of them, and counts that no memory is given for.

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "orvio/orv_ext_var.h"
#include "variable/forged_variable.h"
#include "variable/variable_buffers.h"

namespace {

using orv_test::SetText;
using orv_test::TestVariable;
using orvio::AllocateBuffers;

class VariableBuffers : public orv_test::OrvTest {};
class VariableCopy : public orv_test::OrvTest {};

/// Gives memory to one size of element only. A test sets what is refused.
struct Refusal {
  std::size_t count;
  std::size_t size;
};
Refusal refused = {0, 0};

void* AllocateButRefused(std::size_t count, std::size_t size) {
  return count == refused.count && size == refused.size ? nullptr : std::calloc(count, size);
}

void GiveCounts(ORVVariable& variable, std::int64_t components) {
  variable.m_ncoo = components;
  variable.m_rank = 1;
  variable.m_ndim = 2;
}

TEST_F(VariableBuffers, StandInTwoSlabsAndAreZero) {
  TestVariable variable;
  GiveCounts(variable, 3);
  variable.m_subslen = 4;
  variable.m_lvmap = 1;
  ASSERT_TRUE(AllocateBuffers(variable));
  EXPECT_EQ(variable.m_pMdunit, variable.m_pMbunit + 3);
  EXPECT_EQ(variable.m_pUbid, variable.m_pMbunit + 6);
  EXPECT_EQ(variable.m_pUdid, variable.m_pMbunit + 27);
  EXPECT_EQ(variable.m_pUdexp, variable.m_pUbexp + 21);
  EXPECT_EQ(variable.m_pSubsoffs, variable.m_pSubscnt + 3);
  for (int i = 0; i < 48; ++i) EXPECT_EQ(variable.m_pMbunit[i], 0);
  for (int i = 0; i < 42; ++i) EXPECT_EQ(variable.m_pUbexp[i], 0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(variable.m_pCid[i], 0);
  for (int i = 0; i < 3 * 256 + 1; ++i) EXPECT_EQ(variable.m_pCname[i], 0);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(variable.m_pSubscr[i], 0);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(variable.m_pSubscnt[i], 0);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(variable.m_pVmap[i], 0);
}

TEST_F(VariableBuffers, WithoutLabelsAndMapHasNeither) {
  TestVariable variable;
  GiveCounts(variable, 3);
  ASSERT_TRUE(AllocateBuffers(variable));
  EXPECT_EQ(variable.m_pSubscr, nullptr);
  EXPECT_EQ(variable.m_pSubscnt, nullptr);
  EXPECT_EQ(variable.m_pVmap, nullptr);
}

TEST_F(VariableBuffers, OfRankZeroHasAMapOfOneValueAComponent) {
  TestVariable variable;
  GiveCounts(variable, 3);
  variable.m_rank = variable.m_ndim = 0;
  variable.m_lvmap = 1;
  ASSERT_TRUE(AllocateBuffers(variable));
  ASSERT_NE(variable.m_pVmap, nullptr);
  EXPECT_EQ(variable.m_pVmap[2], 0);
}

TEST_F(VariableBuffers, AreIntsWhateverTypeOfIdsWasProbed) {
  TestVariable variable;
  GiveCounts(variable, 1);
  variable.m_cidType = ORV_LONG;
  ASSERT_TRUE(AllocateBuffers(variable));
  EXPECT_EQ(variable.m_cidType, ORV_INT);
}

TEST_F(VariableBuffers, AreRefusedForCountsThatNoFileStandsBehind) {
  for (const std::int64_t count : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{262144}, std::int64_t{INT_MAX},
                                   std::int64_t{INT_MAX} + 1, INT64_MAX, INT64_MIN}) {
    TestVariable variable;
    GiveCounts(variable, count);
    EXPECT_FALSE(AllocateBuffers(variable)) << count;
    EXPECT_EQ(variable.m_pMbunit, nullptr);
    EXPECT_EQ(variable.m_pUbexp, nullptr);
    EXPECT_EQ(variable.m_pCid, nullptr);
    EXPECT_EQ(variable.m_pCname, nullptr);
  }
}

TEST_F(VariableBuffers, UpToSixtyFourMebibytesNeedNoFile) {
  TestVariable variable;
  GiveCounts(variable, 262143);
  EXPECT_TRUE(AllocateBuffers(variable));
}

TEST_F(VariableBuffers, OfASmallVariableAreMadeWithoutALookAtWhatIsStored) {
  ORVVariable variable;
  GiveCounts(variable, 64);
  variable.m_subslen = 4096;
  variable.m_lvmap = 1;
  variable.m_ndim = 16;
  EXPECT_FALSE(orvio::NeedsStoredExtents(variable));
  for (std::int64_t ORVVariable::*count : {&ORVVariable::m_ncoo, &ORVVariable::m_subslen, &ORVVariable::m_ndim}) {
    ORVVariable larger = variable;
    ++(larger.*count);
    EXPECT_TRUE(orvio::NeedsStoredExtents(larger));
  }
}

TEST_F(VariableBuffers, OfAllVariablesOnTrustAreThoseThatOneMayHave) {
  orvio::TakenOnTrust trust;
  EXPECT_TRUE(trust.Take({200000, 40 << 20, 10 << 20}, {}));
  EXPECT_FALSE(trust.Take({62144, 0, 0}, {}));
  EXPECT_FALSE(trust.Take({0, (24 << 20) + 1, 0}, {}));
  EXPECT_FALSE(trust.Take({0, 0, (6 << 20) + 1}, {}));
  EXPECT_FALSE(trust.Take({INT64_MAX, INT64_MAX, 0}, {}));
  EXPECT_TRUE(trust.Take({1 << 30, 1 << 30, 1 << 30}, {1 << 30, 1 << 30, 1 << 30}));  // the file has all of it
  EXPECT_TRUE(trust.Take({1000, 0, 0}, {2000, 0, 0}));
  EXPECT_TRUE(trust.Take({62143, 24 << 20, 6 << 20}, {}));
  EXPECT_FALSE(trust.Take({1, 0, 0}, {}));
}

TEST_F(VariableBuffers, OfMoreAreGivenWhereTheFileStandsBehindThem) {
  TestVariable variable;
  GiveCounts(variable, 262144);
  EXPECT_TRUE(orvio::NeedsStoredExtents(variable));
  EXPECT_FALSE(AllocateBuffers(variable, {262143, 0, 0}));
  EXPECT_TRUE(AllocateBuffers(variable, {262144, 0, 0}));
}

TEST_F(VariableBuffers, OfManyLabelsAreGivenWhereTheFileStandsBehindThem) {
  TestVariable variable;
  GiveCounts(variable, 1);
  variable.m_subslen = (64 << 20) + 1;
  EXPECT_TRUE(orvio::NeedsStoredExtents(variable));
  EXPECT_FALSE(AllocateBuffers(variable));
  EXPECT_FALSE(AllocateBuffers(variable, {1, 64 << 20, 0}));
  EXPECT_TRUE(AllocateBuffers(variable, {1, (64 << 20) + 1, 0}));
  orvio::FreeBuffers(variable);
  variable.m_subslen = INT64_MAX;
  EXPECT_FALSE(AllocateBuffers(variable));
}

TEST_F(VariableBuffers, OfALargeMapAreGivenWhereTheFileStandsBehindThem) {
  TestVariable variable;
  GiveCounts(variable, 1);
  variable.m_lvmap = 1;
  variable.m_ndim = (16 << 20) + 1;
  EXPECT_TRUE(orvio::NeedsStoredExtents(variable));
  EXPECT_FALSE(AllocateBuffers(variable));
  EXPECT_TRUE(AllocateBuffers(variable, {0, 0, (16 << 20) + 1}));
}

TEST_F(VariableBuffers, WithoutMemoryForUnitsTellSoAndGiveNone) {
  TestVariable variable;
  GiveCounts(variable, 3);
  refused = {48, sizeof(int)};
  EXPECT_FALSE(AllocateBuffers(variable, {}, AllocateButRefused));
  EXPECT_STREQ(ORVGetLastErrorText(), "Low on memory. :: variable \"Unit parameter\" ignored");
  EXPECT_EQ(variable.m_pMbunit, nullptr);
  EXPECT_EQ(variable.m_pUbexp, nullptr);
  EXPECT_EQ(variable.m_pCname, nullptr);
}

TEST_F(VariableBuffers, WithoutMemoryForExponentsTellSoAndGiveNone) {
  TestVariable variable;
  GiveCounts(variable, 3);
  refused = {42, sizeof(float)};
  EXPECT_FALSE(AllocateBuffers(variable, {}, AllocateButRefused));
  EXPECT_STREQ(ORVGetLastErrorText(), "Low on memory. :: variable \"base Unit exponent\" ignored");
  EXPECT_EQ(variable.m_pMbunit, nullptr);
  EXPECT_EQ(variable.m_pUbid, nullptr);
  EXPECT_EQ(variable.m_pCname, nullptr);
}

TEST_F(VariableBuffers, WithoutMemoryForAnythingElseGiveNone) {
  for (const Refusal& which : {Refusal{3, 4}, Refusal{769, 1}, Refusal{5, 1}, Refusal{6, 4}}) {
    TestVariable variable;
    GiveCounts(variable, 3);
    variable.m_subslen = 5;
    variable.m_lvmap = 1;
    refused = which;
    EXPECT_FALSE(AllocateBuffers(variable, {}, AllocateButRefused)) << which.count;
    EXPECT_EQ(variable.m_pCid, nullptr);
    EXPECT_EQ(variable.m_pSubscr, nullptr);
    EXPECT_EQ(variable.m_pVmap, nullptr);
  }
}

TEST_F(VariableBuffers, AreForgottenWhenTheyAreFreed) {
  ORVVariable variable;
  GiveCounts(variable, 3);
  variable.m_subslen = 5;
  variable.m_lvmap = 1;
  ASSERT_TRUE(AllocateBuffers(variable));
  orvio::FreeBuffers(variable);
  EXPECT_EQ(variable.m_pMbunit, nullptr);
  EXPECT_EQ(variable.m_pSubsoffs, nullptr);
  EXPECT_EQ(variable.m_pVmap, nullptr);
  orvio::FreeBuffers(variable);
}

// ---- Copies

/// A variable of two components with all its tables filled.
void Fill(TestVariable& variable) {
  GiveCounts(variable, 2);
  variable.m_subslen = 3;
  variable.m_lvmap = 1;
  ASSERT_TRUE(AllocateBuffers(variable));
  const int counts[4] = {2, 1, 0, 1};
  std::copy_n(counts, 4, variable.m_pMbunit);
  for (int i = 0; i < 14; ++i) {
    variable.m_pUbid[i] = 10 + i;
    variable.m_pUdid[i] = 30 + i;
    variable.m_pUbexp[i] = static_cast<float>(i + 1);
    variable.m_pUdexp[i] = static_cast<float>(i + 20);
  }
  for (int i = 0; i < 4; ++i) variable.m_pSubscnt[i] = i + 1;
  for (int i = 0; i < 4; ++i) variable.m_pVmap[i] = static_cast<float>(i + 1);
  std::copy_n("abc", 3, variable.m_pSubscr);
  variable.m_pCid[0] = 5;
  variable.m_pCname[0] = 'n';
}

TEST_F(VariableCopy, TakesTheTablesButNotTheComponentNamesAndIds) {
  TestVariable source, dest;
  Fill(source);
  Fill(dest);
  std::memset(dest.m_pMbunit, 0, 32 * sizeof(int));
  std::memset(dest.m_pUbexp, 0, 28 * sizeof(float));
  std::memset(dest.m_pSubscr, 0, 3);
  std::memset(dest.m_pSubscnt, 0, 4 * sizeof(int));
  std::memset(dest.m_pVmap, 0, 4 * sizeof(float));
  dest.m_pCid[0] = 0;
  dest.m_pCname[0] = '\0';
  source.CopyDataPart(&dest);
  EXPECT_EQ(dest.m_pMbunit[0], 2);
  EXPECT_EQ(dest.m_pMdunit[1], 1);
  EXPECT_EQ(dest.m_pUbid[2], 12);
  EXPECT_EQ(dest.m_pUbid[3], 0);  // only what the counts describe
  EXPECT_EQ(dest.m_pUbexp[2], 3.0F);
  EXPECT_EQ(dest.m_pUbexp[3], 0.0F);
  EXPECT_EQ(dest.m_pUdid[0], 30);
  EXPECT_EQ(dest.m_pUdid[1], 0);
  EXPECT_EQ(dest.m_pUdexp[0], 20.0F);
  EXPECT_EQ(std::string(dest.m_pSubscr, 3), "abc");
  EXPECT_EQ(dest.m_pSubscnt[1], 2);
  EXPECT_EQ(dest.m_pSubsoffs[1], 4);
  EXPECT_EQ(dest.m_pVmap[3], 4.0F);
  EXPECT_EQ(dest.m_pCid[0], 0);
  EXPECT_EQ(dest.m_pCname[0], '\0');
}

TEST_F(VariableCopy, OntoAnotherCountNullOrItselfDoesNothing) {
  TestVariable source, dest;
  Fill(source);
  GiveCounts(dest, 3);
  ASSERT_TRUE(AllocateBuffers(dest));
  source.CopyDataPart(&dest);
  EXPECT_EQ(dest.m_pMbunit[0], 0);
  source.CopyDataPart(nullptr);
  source.CopyDataPart(&source);
  ORVVariable empty, other;
  empty.CopyDataPart(&other);
}

TEST_F(VariableCopy, PassesOverTablesThatOneSideLacks) {
  TestVariable source;
  Fill(source);
  ORVVariable dest;
  GiveCounts(dest, 2);
  dest.m_subslen = 3;
  dest.m_lvmap = 1;
  int ids[14] = {};
  dest.m_pUbid = ids;
  source.CopyDataPart(&dest);
  EXPECT_EQ(ids[0], 0);  // without the counts nothing says how many
  dest.CopyDataPart(&source);
  EXPECT_EQ(source.m_pMbunit[0], 2);
}

TEST_F(VariableCopy, PassesOverLabelsOfAnotherLength) {
  TestVariable source, dest;
  Fill(source);
  GiveCounts(dest, 2);
  dest.m_subslen = 2;
  ASSERT_TRUE(AllocateBuffers(dest));
  source.CopyDataPart(&dest);
  EXPECT_EQ(dest.m_pSubscr[0], '\0');
  EXPECT_EQ(dest.m_pSubscnt[0], 0);
  EXPECT_EQ(dest.m_pMbunit[0], 2);
}

TEST_F(VariableCopy, TakesPlacesOfLabelsWhereBothSidesHaveNoneOfTheirBytes) {
  ORVVariable source, dest;
  int from[4] = {1, 2, 3, 4}, to[4] = {};
  for (const std::int64_t length : {0, -3}) {
    std::fill_n(to, 4, 0);
    GiveCounts(source, 2);
    GiveCounts(dest, 2);
    source.m_subslen = dest.m_subslen = length;
    source.m_pSubscnt = from;
    source.m_pSubsoffs = from + 2;
    dest.m_pSubscnt = to;
    dest.m_pSubsoffs = to + 2;
    source.CopyDataPart(&dest);
    EXPECT_EQ(to[1], 2) << length;
    EXPECT_EQ(to[3], 4) << length;
  }
}

TEST_F(VariableCopy, PassesOverAMapThatIsNotFlaggedOrDoesNotFit) {
  TestVariable source, dest;
  Fill(source);
  Fill(dest);
  dest.m_pVmap[0] = 77;
  source.m_lvmap = 0;
  source.CopyDataPart(&dest);
  EXPECT_EQ(dest.m_pVmap[0], 77.0F);
  source.m_lvmap = 1;
  dest.m_lvmap = 0;  // only the flag of the source counts
  source.CopyDataPart(&dest);
  EXPECT_EQ(dest.m_pVmap[0], 1.0F);
  dest.m_pVmap[0] = 77;
  dest.m_ndim = 1;
  source.CopyDataPart(&dest);
  EXPECT_EQ(dest.m_pVmap[0], 77.0F);
}

TEST_F(VariableCopy, OfMoreUnitsThanTheTablesHoldCopiesTheCountsOnly) {
  TestVariable source, dest;
  Fill(source);
  Fill(dest);
  source.m_pMbunit[0] = 1000;
  dest.m_pUbid[0] = 77;
  source.CopyDataPart(&dest);
  EXPECT_EQ(dest.m_pMbunit[0], 1000);
  EXPECT_EQ(dest.m_pUbid[0], 77);
}

TEST_F(VariableCopy, AsACloneHasTablesOfItsOwnAndNoHandles) {
  TestVariable source;
  Fill(source);
  ORVExtVar handle;
  source.AppendExtVar(&handle);
  SetText(source.m_varnam, "name");
  const auto clone = orvio::CloneVariable(source);
  ASSERT_NE(clone, nullptr);
  EXPECT_STREQ(clone->m_varnam, "name");
  EXPECT_TRUE(clone->m_extVars.empty());
  EXPECT_TRUE(clone->m_units.empty());
  EXPECT_NE(clone->m_pMbunit, source.m_pMbunit);
  EXPECT_EQ(clone->m_pMbunit[0], 2);
  EXPECT_EQ(clone->m_pUbid[0], 10);
  EXPECT_EQ(clone->m_pVmap[3], 4.0F);
  EXPECT_EQ(clone->m_pCid[0], 0);
  EXPECT_EQ(clone->m_pCname[0], '\0');
  EXPECT_EQ(source.m_extVars.size(), 1U);
  orvio::FreeBuffers(*clone);
}

TEST_F(VariableCopy, OfAVariableWithoutComponentsIsNoClone) {
  const ORVVariable source;
  EXPECT_EQ(orvio::CloneVariable(source), nullptr);
}

}  // namespace
