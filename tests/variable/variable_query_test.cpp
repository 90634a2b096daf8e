// What a variable answers about itself, without a file. Its handles are in variable_handles_test.

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "orvio/orv_ext_var.h"
#include "orvio/orv_unit.h"
#include "variable/forged_variable.h"
#include "variable/variable_type.h"

namespace {

using orv_test::SetText;

class Variable : public orv_test::OrvTest {};
class VariableInfo : public orv_test::OrvTest {};
class VariableType : public orv_test::OrvTest {};

struct Info {
  int status = -7;
  _ORVVarType type = _ORVVarType(-7);
  _ORVVarClassType variable_class = _ORVVarClassType(-7);
  int count = -7;
  int offset = -7;
};

Info InfoOf(ORVVariable& variable) {
  Info info;
  info.status = variable.GetVariableInfo(info.type, info.variable_class, info.count, info.offset);
  return info;
}

TEST_F(Variable, StartsEmpty) {
  const ORVVariable variable;
  EXPECT_EQ(variable.GetKey(), 30);
  EXPECT_STREQ(variable.m_varnam, "");
  EXPECT_STREQ(variable.m_varkey, "");
  EXPECT_EQ(variable.m_ncoo, 0);
  EXPECT_EQ(variable.m_lenb, 0);
  EXPECT_EQ(variable.m_lend, 0);
  EXPECT_EQ(variable.GetOriginalCount(), 0U);
  EXPECT_EQ(variable.m_mbunitType, ORV_INT);
  EXPECT_EQ(variable.m_mdunitType, ORV_INT);
  EXPECT_EQ(variable.m_ubidType, ORV_INT);
  EXPECT_EQ(variable.m_ubexpType, ORV_FLOAT);
  EXPECT_EQ(variable.m_udidType, ORV_INT);
  EXPECT_EQ(variable.m_udexpType, ORV_FLOAT);
  EXPECT_EQ(variable.m_cidType, ORV_INT);
  EXPECT_EQ(variable.m_pMbunit, nullptr);
  EXPECT_EQ(variable.m_pVmap, nullptr);
  EXPECT_EQ(variable.m_pCompEid, nullptr);
  EXPECT_EQ(variable.m_pCompType, nullptr);
  EXPECT_EQ(variable.m_ppOrgUnitStr, nullptr);
  EXPECT_EQ(variable.m_unitFlag, 1);
  EXPECT_TRUE(variable.m_extVars.empty());
}

TEST_F(Variable, ACopySharesArraysAndHandles) {
  ORVVariable variable;
  int cid[1] = {5};
  ORVExtVar handle;
  SetText(variable.m_varnam, "name");
  variable.m_pCid = cid;
  variable.AppendExtVar(&handle);
  const ORVVariable copy(variable);
  EXPECT_STREQ(copy.m_varnam, "name");
  EXPECT_EQ(copy.m_pCid, cid);
  EXPECT_EQ(copy.m_extVars, std::vector<ORVExtVar*>{&handle});
  ORVVariable assigned;
  assigned = variable;
  EXPECT_EQ(assigned.m_pCid, cid);
  EXPECT_EQ(assigned.GetNumExtVar(), 1U);
}

TEST_F(Variable, ACopySharesUnitObjects) {
  ORVVariable variable;
  variable.m_units.push_back(new ORVUnit);
  ORVVariable copy(variable), assigned;
  assigned = variable;
  EXPECT_EQ(copy.m_units, variable.m_units);
  EXPECT_EQ(assigned.m_units, variable.m_units);
  copy.m_units.clear();  // one of them deletes the unit
  assigned.m_units.clear();
}

TEST_F(Variable, DeletesItsUnitObjectsWithIt) {
  struct Told : ORVUnit {
    explicit Told(int& deaths) : deaths_(deaths) {}
    ~Told() override { ++deaths_; }
    int& deaths_;
  };
  int deaths = 0;
  {
    ORVVariable variable;
    variable.m_units.push_back(new Told(deaths));
    variable.m_units.push_back(new Told(deaths));
  }
  EXPECT_EQ(deaths, 2);
}

TEST_F(Variable, ResetForgetsHeaderOrDataAsAsked) {
  int numbers[4] = {};
  char text[4] = {};
  float floats[4] = {};
  ORVVariable variable;
  const auto fill = [&] {
    SetText(variable.m_varnam, "n");
    SetText(variable.m_varkey, "k");
    SetText(variable.m_varclass, "c");
    SetText(variable.m_type, "t");
    variable.m_ncoo = variable.m_rank = variable.m_ndim = variable.m_idtrans = 1;
    variable.m_subslen = variable.m_lvmap = variable.m_tensor = variable.m_lenb = variable.m_lend = 1;
    variable.SetOriginalCount(1);
    variable.m_cidType = variable.m_ubidType = ORV_LONG;
    variable.m_ubexpType = ORV_DOUBLE;
    variable.m_pCid = variable.m_pSubscnt = variable.m_pCompEid = variable.m_pCompType = variable.m_pMbunit = numbers;
    variable.m_pCname = variable.m_pSubscr = text;
    variable.m_pVmap = variable.m_pUdexp = floats;
  };
  fill();
  variable.ReSetBlock(0);
  EXPECT_STREQ(variable.m_varnam, "n");
  EXPECT_EQ(variable.m_pCid, numbers);
  variable.ReSetBlock(ORV_READ_HEADER);
  EXPECT_STREQ(variable.m_varnam, "");
  EXPECT_STREQ(variable.m_varkey, "");
  EXPECT_STREQ(variable.m_varclass, "");
  EXPECT_STREQ(variable.m_type, "");
  EXPECT_EQ(variable.m_ncoo + variable.m_rank + variable.m_ndim + variable.m_idtrans, 0);
  EXPECT_EQ(variable.m_subslen + variable.m_lvmap + variable.m_tensor, 0);
  EXPECT_EQ(variable.m_lenb, 1);
  EXPECT_EQ(variable.GetOriginalCount(), 0U);
  EXPECT_EQ(variable.m_pCid, numbers);
  EXPECT_EQ(variable.m_cidType, ORV_LONG);
  fill();
  variable.ReSetBlock(ORV_READ_DATA);
  EXPECT_STREQ(variable.m_varnam, "n");
  EXPECT_EQ(variable.m_cidType, ORV_INT);
  EXPECT_EQ(variable.m_ubidType, ORV_INT);
  EXPECT_EQ(variable.m_ubexpType, ORV_FLOAT);
  EXPECT_EQ(variable.m_pCid, nullptr);
  EXPECT_EQ(variable.m_pMbunit, nullptr);
  EXPECT_EQ(variable.m_pCname, nullptr);
  EXPECT_EQ(variable.m_pSubscr, nullptr);
  EXPECT_EQ(variable.m_pSubscnt, nullptr);
  EXPECT_EQ(variable.m_pVmap, nullptr);
  EXPECT_EQ(variable.m_pUdexp, nullptr);
  EXPECT_EQ(variable.m_pCompEid, numbers);
  EXPECT_EQ(variable.m_pCompType, numbers);
}

TEST_F(Variable, ResetOfTheDataForgetsEveryTableButThoseOfAHost) {
  int numbers[1] = {};
  char text[1] = {};
  char* texts[1] = {};
  float floats[1] = {};
  ORVVariable variable;
  int** const integer_tables[] = {&variable.m_pMbunit, &variable.m_pMdunit,  &variable.m_pUbid,    &variable.m_pUdid,
                                  &variable.m_pCid,    &variable.m_pSubscnt, &variable.m_pSubsoffs};
  float** const float_tables[] = {&variable.m_pUbexp, &variable.m_pUdexp, &variable.m_pVmap};
  char** const text_tables[] = {&variable.m_pCname, &variable.m_pSubscr};
  for (int** table : integer_tables) *table = numbers;
  for (float** table : float_tables) *table = floats;
  for (char** table : text_tables) *table = text;
  variable.m_ppOrgUnitStr = texts;
  variable.ReSetBlock(ORV_READ_DATA);
  for (int** table : integer_tables) EXPECT_EQ(*table, nullptr);
  for (float** table : float_tables) EXPECT_EQ(*table, nullptr);
  for (char** table : text_tables) EXPECT_EQ(*table, nullptr);
  EXPECT_EQ(variable.m_ppOrgUnitStr, texts);
}

TEST_F(Variable, ResetOfTheDataRestoresEveryElementType) {
  ORVVariable variable;
  for (_ORVDataType* type : {&variable.m_mbunitType, &variable.m_mdunitType, &variable.m_ubidType,
                             &variable.m_ubexpType, &variable.m_udidType, &variable.m_udexpType, &variable.m_cidType}) {
    *type = ORV_CHAR;
  }
  variable.ReSetBlock(ORV_READ_DATA);
  EXPECT_EQ(variable.m_mbunitType, ORV_INT);
  EXPECT_EQ(variable.m_mdunitType, ORV_INT);
  EXPECT_EQ(variable.m_ubidType, ORV_INT);
  EXPECT_EQ(variable.m_ubexpType, ORV_FLOAT);
  EXPECT_EQ(variable.m_udidType, ORV_INT);
  EXPECT_EQ(variable.m_udexpType, ORV_FLOAT);
  EXPECT_EQ(variable.m_cidType, ORV_INT);
}

TEST_F(Variable, IsKnownByItsKeyAndElseByItsName) {
  ORVVariable variable;
  SetText(variable.m_varnam, "Name");
  std::string text = "before";
  EXPECT_EQ(variable.GetVariableKey(text, false), 1);
  EXPECT_EQ(text, "");
  EXPECT_EQ(variable.GetVariableKey(text, true), 0);
  EXPECT_EQ(text, "Name");
  EXPECT_TRUE(variable.IsVariableKeyAvailable("NAME", true));
  EXPECT_FALSE(variable.IsVariableKeyAvailable("NAME", false));
  SetText(variable.m_varkey, "Key");
  EXPECT_EQ(variable.GetVariableKey(text, false), 0);
  EXPECT_EQ(text, "Key");
  EXPECT_TRUE(variable.IsVariableKeyAvailable("kEY", true));
  EXPECT_TRUE(variable.IsVariableKeyAvailable("kEY", false));
  EXPECT_FALSE(variable.IsVariableKeyAvailable("NAME", true));
  EXPECT_FALSE(variable.IsVariableKeyAvailable("Key2", true));
  EXPECT_FALSE(variable.IsVariableKeyAvailable(nullptr, true));
  EXPECT_TRUE(variable.IsVariableAvailable("name"));
  EXPECT_FALSE(variable.IsVariableAvailable("Key"));
  EXPECT_FALSE(variable.IsVariableAvailable(nullptr));
  variable.GetVariableName(text);
  EXPECT_EQ(text, "Name");
}

TEST_F(Variable, ComparesAFieldWithoutATerminatorByItsWidth) {
  ORVVariable variable;
  std::memset(variable.m_varnam, 'x', sizeof variable.m_varnam);
  std::string name;
  variable.GetVariableName(name);
  EXPECT_EQ(name, std::string(256, 'x'));
  EXPECT_TRUE(variable.IsVariableAvailable(std::string(256, 'x').c_str()));
}

TEST_F(Variable, KeyPrefixEndsBeforeTheFirstColon) {
  ORVVariable variable;
  std::string prefix = "before";
  EXPECT_EQ(variable.GetVariableKeyPrefix(prefix), 1);
  SetText(variable.m_varkey, "plain");
  EXPECT_EQ(variable.GetVariableKeyPrefix(prefix), 1);
  EXPECT_EQ(prefix, "before");
  SetText(variable.m_varkey, "ZPS:Stress:Shell");
  EXPECT_EQ(variable.GetVariableKeyPrefix(prefix), 0);
  EXPECT_EQ(prefix, "ZPS");
  SetText(variable.m_varkey, ":Stress");
  EXPECT_EQ(variable.GetVariableKeyPrefix(prefix), 0);
  EXPECT_EQ(prefix, "");
}

TEST_F(Variable, HasUnitsLooksAtTheSmallerOfBothCounts) {
  ORVVariable variable;
  int base[3] = {0, 0, 1}, derived[3] = {0, 0, 0};
  variable.m_ncoo = 3;
  variable.SetOriginalCount(3);
  EXPECT_EQ(variable.HasUnits(), 0);
  variable.m_pMbunit = base;
  EXPECT_EQ(variable.HasUnits(), 1);
  variable.SetOriginalCount(2);
  EXPECT_EQ(variable.HasUnits(), 0);
  variable.SetOriginalCount(5);
  variable.m_ncoo = 2;
  EXPECT_EQ(variable.HasUnits(), 0);
  variable.m_pMdunit = derived;
  derived[1] = 4;
  EXPECT_EQ(variable.HasUnits(), 1);
  variable.m_ncoo = -1;
  EXPECT_EQ(variable.HasUnits(), 0);
}

TEST_F(Variable, UnitTextsAreMadeAnewFromUnitObjects) {
  ORVVariable variable;
  variable.UpdateOrgUnitStr();
  EXPECT_EQ(variable.m_ppOrgUnitStr, nullptr);
  for (const std::string& text : {std::string("mm"), std::string(600, 'u')}) {
    variable.m_units.push_back(new ORVUnit);
    variable.m_units.back()->SetUnitString(text);
  }
  variable.UpdateOrgUnitStr();
  variable.UpdateOrgUnitStr();
  ASSERT_EQ(variable.m_orgUnitCount, 2);
  EXPECT_STREQ(variable.m_ppOrgUnitStr[0], "mm");
  EXPECT_EQ(std::string(variable.m_ppOrgUnitStr[1]), std::string(511, 'u'));
  for (int i = 0; i < 2; ++i) std::free(variable.m_ppOrgUnitStr[i]);
  std::free(variable.m_ppOrgUnitStr);
}

// ---- Shape and class

TEST_F(VariableInfo, OfAVariableWithoutComponentsLeavesTheArgumentsAlone) {
  ORVVariable variable;
  const Info info = InfoOf(variable);
  EXPECT_EQ(info.status, 1);
  EXPECT_EQ(info.type, -7);
  EXPECT_EQ(info.variable_class, -7);
  EXPECT_EQ(info.count, -7);
  EXPECT_EQ(info.offset, -7);
}

TEST_F(VariableInfo, OfANegativeCountFails) {
  ORVVariable variable;
  variable.m_ncoo = -3;
  variable.SetOriginalCount(static_cast<std::uint64_t>(-3));
  EXPECT_EQ(InfoOf(variable).status, 1);
}

TEST_F(VariableInfo, CountIsTheOriginalOneAndElseTheStoredOne) {
  ORVVariable variable;
  variable.m_ncoo = 4;
  EXPECT_EQ(InfoOf(variable).count, 4);
  variable.SetOriginalCount(3);
  EXPECT_EQ(InfoOf(variable).count, 3);
  EXPECT_EQ(InfoOf(variable).offset, 0);
  EXPECT_EQ(InfoOf(variable).status, 0);
}

TEST_F(VariableInfo, ClassComesFromItsWordInAnyCase) {
  ORVVariable variable;
  variable.m_ncoo = 1;
  struct Row {
    const char* word;
    int value;
  };
  for (const Row& row : {Row{"CLASS_STRESS", 21}, Row{"Class_Strain", 20}, Row{"class_length", 12},
                         Row{"CLASS_ANGLE", 3}, Row{"", 0}, Row{"CLASS_", 0}, Row{"STRESS", 0}}) {
    SetText(variable.m_varclass, row.word);
    EXPECT_EQ(InfoOf(variable).variable_class, row.value) << row.word;
  }
}

struct Shape {
  int rank;
  int count;
  int type;
};

TEST_F(VariableInfo, WithoutAKeyGoesByRankAndCount) {
  for (const Shape& shape :
       {Shape{0, 1, 0}, Shape{0, 3, 0}, Shape{0, 6, 0}, Shape{1, 3, 1}, Shape{1, 6, 0}, Shape{1, 2, 0}, Shape{2, 3, 3},
        Shape{2, 6, 2}, Shape{2, 4, 0}, Shape{3, 3, 0}, Shape{3, 6, 0}, Shape{-1, 3, 0}}) {
    ORVVariable variable;
    variable.m_rank = shape.rank;
    variable.m_ncoo = shape.count;
    variable.SetOriginalCount(static_cast<std::uint64_t>(shape.count));
    variable.m_tensor = 1;
    EXPECT_EQ(InfoOf(variable).type, shape.type) << shape.rank << ", " << shape.count;
  }
}

TEST_F(VariableInfo, WithAKeyGoesByTensorThenCountThenRank) {
  for (const Shape& shape : {Shape{0, 1, 0}, Shape{0, 3, 1}, Shape{1, 3, 1}, Shape{2, 3, 3}, Shape{3, 3, 1},
                             Shape{2, 4, 0}, Shape{1, 5, 0}}) {
    ORVVariable variable;
    SetText(variable.m_varkey, "key");
    variable.m_rank = shape.rank;
    variable.m_ncoo = shape.count;
    EXPECT_EQ(InfoOf(variable).type, 0) << shape.rank << ", " << shape.count;
    variable.m_tensor = -1;
    EXPECT_EQ(InfoOf(variable).type, shape.type) << shape.rank << ", " << shape.count;
  }
}

TEST_F(VariableInfo, AKeyedVariableOfSixComponentsIsATensorAtAnyRank) {
  ORVVariable variable;
  SetText(variable.m_varkey, "key");
  variable.m_tensor = 1;
  variable.m_ncoo = 6;
  for (const int rank : {-1, 0, 1, 2, 3, 16}) {
    variable.m_rank = rank;
    EXPECT_EQ(InfoOf(variable).type, ORV_VARTYPE_TENSOR) << rank;
  }
}

TEST_F(VariableInfo, AKeyedVariableOfSixComponentsWithoutTensorIsSixScalars) {
  ORVVariable variable;
  SetText(variable.m_varkey, "key");
  variable.m_ncoo = 6;
  variable.m_rank = 2;
  EXPECT_EQ(InfoOf(variable).type, ORV_VARTYPE_SCALAR);
  EXPECT_EQ(InfoOf(variable).count, 6);
}

TEST_F(VariableInfo, DecidesOnTheOriginalCountWithoutAKeyAndOnTheStoredCountWithOne) {
  ORVVariable variable;
  variable.m_rank = 1;
  variable.m_tensor = 1;
  variable.m_ncoo = 5;
  variable.SetOriginalCount(3);
  EXPECT_EQ(InfoOf(variable).type, ORV_VARTYPE_VECTOR);
  SetText(variable.m_varkey, "key");
  EXPECT_EQ(InfoOf(variable).type, ORV_VARTYPE_SCALAR);
  variable.m_ncoo = 3;
  variable.SetOriginalCount(5);
  EXPECT_EQ(InfoOf(variable).type, ORV_VARTYPE_VECTOR);
}

TEST_F(VariableInfo, ByNameWantsTheNameAndNotTheKey) {
  ORVVariable variable;
  SetText(variable.m_varnam, "Name");
  SetText(variable.m_varkey, "Key");
  variable.m_ncoo = 4;
  int count = 9, offset = 9;
  EXPECT_EQ(variable.GetVariableCompAndOffset("Key", count, offset), 1);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(offset, -1);
  EXPECT_EQ(variable.GetVariableCompAndOffset("nAME", count, offset), 0);
  EXPECT_EQ(count, 4);
  EXPECT_EQ(offset, 0);
  variable.m_ncoo = 0;
  EXPECT_EQ(variable.GetVariableCompAndOffset("Name", count, offset), 1);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(offset, -1);
  EXPECT_EQ(variable.GetVariableCompAndOffset(nullptr, count, offset), 1);
}

// ---- Kinds of motion

TEST_F(VariableType, IsTheRowOfTheNameInAnyCase) {
  struct Row {
    const char* name;
    int value;
  };
  const Row rows[] = {{"DISPLACEMENTS_NOD", 1},
                      {"Complex_Translational_Displacement", 1},
                      {"Complex Translational Displacements", 1},
                      {"Velocity", 2},
                      {"VELO", 2},
                      {"Complex_Translational_Velocity", 2},
                      {"Complex Translational Velocity", 2},
                      {"Acceleration", 3},
                      {"ACCEL", 3},
                      {"Complex_Translational_Acceleration", 3},
                      {"Complex Translational Acceleration", 3},
                      {"displacements_nod", 1},
                      {"Complex Translational Displacement", 0},
                      {"Stress", 0},
                      {"", 0}};
  for (const Row& row : rows) EXPECT_EQ(orvio::FindVariableType(row.name), row.value) << row.name;
}

}  // namespace
