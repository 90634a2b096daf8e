// The tables of measures that a host can compute, and the handler for one family of solvers. That handles are made of
// them is in association_test.

#include "variable/computed_measures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "filer/container.h"
#include "orvio/orv_filer.h"
#include "support/orv_test.h"
#include "variable/forged_variable.h"

namespace {

using orv_test::SetText;
using Entry = std::tuple<int, int, std::string>;
using testing::ElementsAre;

class ComputedMeasures : public orv_test::OrvTest {};

std::vector<Entry> EntriesOf(const ORVExtVarType* row) {
  std::vector<Entry> entries;
  for (int i = 0; row && i < row->m_count; ++i) {
    const ORVExtVarEntry& entry = row->m_pEntries[i];
    entries.emplace_back(entry.m_computeType, entry.m_minComponents, entry.m_name);
  }
  return entries;
}

TEST_F(ComputedMeasures, OfAScalarAreNone) {
  EXPECT_EQ(orvio::FindBuiltInMeasures(ORV_VARTYPE_SCALAR, ORV_VARCLASS_UNKNOWN), nullptr);
  EXPECT_EQ(orvio::FindBuiltInMeasures(ORV_VARTYPE_SCALAR, ORV_VARCLASS_STRESS), nullptr);
}

TEST_F(ComputedMeasures, OfAVectorAreItsMagnitude) {
  for (const auto var_class : {ORV_VARCLASS_UNKNOWN, ORV_VARCLASS_LENGTH, ORV_VARCLASS_STRESS}) {
    EXPECT_THAT(EntriesOf(orvio::FindBuiltInMeasures(ORV_VARTYPE_VECTOR, var_class)),
                ElementsAre(Entry(50, 3, "Magnitude")));
  }
}

TEST_F(ComputedMeasures, OfAStrainAreNineInTheirOrder) {
  EXPECT_THAT(EntriesOf(orvio::FindBuiltInMeasures(ORV_VARTYPE_TENSOR, ORV_VARCLASS_STRAIN)),
              ElementsAre(Entry(56, 6, "Von Mises"), Entry(60, 6, "Tresca"), Entry(64, 6, "Pressure"),
                          Entry(63, 6, "Mean"), Entry(57, 6, "First Princ."), Entry(58, 6, "Second Princ."),
                          Entry(59, 6, "Third Princ."), Entry(65, 6, "Determinant"), Entry(66, 6, "Equivalent")));
}

TEST_F(ComputedMeasures, OfAStressAreThoseOfATensorWithoutTheEquivalent) {
  EXPECT_THAT(EntriesOf(orvio::FindBuiltInMeasures(ORV_VARTYPE_TENSOR, ORV_VARCLASS_STRESS)),
              ElementsAre(Entry(56, 6, "Von Mises"), Entry(60, 6, "Tresca"), Entry(64, 6, "Pressure"),
                          Entry(63, 6, "Mean"), Entry(57, 6, "First Princ."), Entry(58, 6, "Second Princ."),
                          Entry(59, 6, "Third Princ."), Entry(65, 6, "Determinant")));
}

TEST_F(ComputedMeasures, OfAPlaneTensorAreItsTwoPrincipalValues) {
  for (const auto var_class : {ORV_VARCLASS_UNKNOWN, ORV_VARCLASS_STRESS}) {
    EXPECT_THAT(EntriesOf(orvio::FindBuiltInMeasures(ORV_VARTYPE_PLANE_TENSOR, var_class)),
                ElementsAre(Entry(52, 3, "First Princ."), Entry(53, 3, "Second Princ.")));
  }
}

// ---- The handler of ORVSetCMXStressComputedType

/// A filer whose container a test can look into.
class OpenFiler : public ORVFiler {
 public:
  using ORVFiler::ORVFiler;
  ORVContainer& data() { return *m_pData; }
};

ORVVariable Keyed(int ncoo, int rank, int tensor, const char* class_word) {
  ORVVariable variable;
  SetText(variable.m_varnam, "V");
  SetText(variable.m_varkey, "K");
  SetText(variable.m_varclass, class_word);
  variable.m_ncoo = ncoo;
  variable.SetOriginalCount(static_cast<std::uint64_t>(ncoo));
  variable.m_rank = rank;
  variable.m_tensor = tensor;
  return variable;
}

class CmxMeasures : public ComputedMeasures {
 protected:
  CmxMeasures() { ORVSetCMXStressComputedType(&filer_); }

  std::vector<Entry> Of(ORVVariable variable) {
    _ORVVarType shape = ORV_VARTYPE_SCALAR;
    _ORVVarClassType var_class = ORV_VARCLASS_UNKNOWN;
    int count = 0, offset = 0;
    EXPECT_EQ(variable.GetVariableInfo(shape, var_class, count, offset), 0);
    return EntriesOf(orvio::GetExtendedInfo(filer_, filer_.data(), nullptr, variable, shape, var_class));
  }

  OpenFiler filer_{"a.orv"};
};

TEST_F(CmxMeasures, OfATensorOfAnyClassAreSixInAnOrderOfTheirOwn) {
  for (const char* class_word : {"", "CLASS_STRESS", "CLASS_STRAIN"}) {
    EXPECT_THAT(Of(Keyed(6, 2, 1, class_word)),
                ElementsAre(Entry(57, 6, "First Princ."), Entry(58, 6, "Second Princ."), Entry(59, 6, "Third Princ."),
                            Entry(56, 6, "Von Mises"), Entry(63, 6, "Mean"), Entry(60, 6, "Tresca")));
  }
}

TEST_F(CmxMeasures, OfThreeComponentsAreTheBuiltInOnes) {
  EXPECT_THAT(Of(Keyed(3, 1, 1, "")), ElementsAre(Entry(50, 3, "Magnitude")));
  EXPECT_THAT(Of(Keyed(3, 2, 1, "")), ElementsAre(Entry(52, 3, "First Princ."), Entry(53, 3, "Second Princ.")));
}

TEST_F(CmxMeasures, OfScalarsAndOfNoVariableAreNone) {
  EXPECT_THAT(Of(Keyed(6, 2, 0, "")), testing::IsEmpty());
  ORVFilerExtendComputedTypeCallBackData nothing = {&filer_, 1, nullptr, nullptr};
  EXPECT_EQ(filer_.data().computed_types(nullptr, nothing), nullptr);
}

TEST_F(CmxMeasures, ClearTheClientOfTheFormerHandler) {
  int client = 0;
  EXPECT_EQ(filer_.SetFilerCallBackClient(&client), nullptr);
  ORVSetCMXStressComputedType(&filer_);
  EXPECT_EQ(filer_.SetFilerCallBackClient(nullptr), nullptr);
}

TEST_F(CmxMeasures, OfNoFilerDoNothing) { ORVSetCMXStressComputedType(nullptr); }

}  // namespace
