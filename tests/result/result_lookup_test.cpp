// The filter of the lookups over a list of results. Series and load cases are in result_lookup_series_test, blocks of a
// path in result_lookup_path_test, the filer's operations in filer_results_test.

#include "result/result_lookup.h"

#include <cstring>
#include <memory>
#include <vector>

#include "orvio/orv_variable_grp.h"
#include "result/variable_with_handles.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;
using namespace orvio;

_ORVEntityType Entity(int number) { return static_cast<_ORVEntityType>(number); }

/// A list of five blocks of several kinds and types.
class ResultLookup : public OrvTest {
 protected:
  ResultLookup() {
    std::strcpy(keyed_->m_varkey, "COORD");
    displacement_.Add(1, 0).SetName("Displacement_X");
    displacement_.Add(2, 1).SetName("Displacement_Y");
    stress_.Add(3, 0).SetName("Stress_XX");
    nodes_ = Add(1000, "Node", 50, 1, displacement_.get());
    shells_ = Add(1100, "SHELL", 103, 2, stress_.get());
    coordinates_ = Add(1000, "Node", 50, 1, keyed_.get());
    empty_ = Add(1000, "Mass", 60, 3, displacement_.get());
    empty_->m_ncoo = 0;
    unbound_ = Add(1000, "Node", 50, 1, nullptr);
    unbound_->SetEntityAndVarName("Node", "NOBODY");
  }

  ORVResult* Add(int kind, const char* etyp, int entity, int base, ORVVariable* variable) {
    blocks_.push_back(std::make_unique<ORVResult>(kind));
    ORVResult* block = blocks_.back().get();
    block->SetEntityAndVarName(etyp, variable ? variable->m_varnam : "");
    block->m_entityType = Entity(entity);
    block->m_baseEntityType = base;
    block->m_ncoo = 2;
    block->m_variable = variable;
    list_.push_back(block);
    return block;
  }

  ResultList Find(const ResultQuery& query) {
    ResultList found;
    FindResults(list_, query, found);
    return found;
  }

  ResultList FindNamed(const char* name, NameTest test) {
    const char* const names[] = {name};
    return Find({.names = names, .test = test});
  }

  VariableWithHandles displacement_{"DISPLACEMENT", 2};
  VariableWithHandles stress_{"STRESS", 2};
  VariableWithHandles keyed_{"COORDINATE", 2};
  std::vector<std::unique_ptr<ORVResult>> blocks_;
  ResultList list_;
  ORVResult* nodes_;
  ORVResult* shells_;
  ORVResult* coordinates_;
  ORVResult* empty_;
  ORVResult* unbound_;
};

TEST_F(ResultLookup, FindsNothingWhenNothingIsAskedFor) {
  EXPECT_EQ(Find({}), ResultList());
  EXPECT_EQ(Find({.kind = 1000}), ResultList());
}

TEST_F(ResultLookup, OfAKindAloneTakesBlocksWithoutComponentsToo) {
  ResultList found;
  FindResultsOfKind(list_, -1, found);
  EXPECT_EQ(found, list_);
  found.clear();
  FindResultsOfKind(list_, 1000, found);
  EXPECT_EQ(found, (ResultList{nodes_, coordinates_, empty_, unbound_}));
  found.clear();
  FindResultsOfKind(list_, 1050, found);
  EXPECT_EQ(found, ResultList());
}

TEST_F(ResultLookup, FiltersByEntityType) {
  const _ORVEntityType nodes[] = {Entity(50)};
  EXPECT_EQ(Find({.entities = nodes}), (ResultList{nodes_, coordinates_, unbound_}));
  const _ORVEntityType both[] = {Entity(103), Entity(50)};
  EXPECT_EQ(Find({.entities = both}), (ResultList{nodes_, shells_, coordinates_, unbound_}));
  EXPECT_EQ(Find({.kind = 1100, .entities = both}), (ResultList{shells_}));
  const _ORVEntityType none[] = {Entity(7)};
  EXPECT_EQ(Find({.entities = none}), ResultList());
}

TEST_F(ResultLookup, FiltersByBaseTypeWhereNoEntityTypeIsGiven) {
  const int shells[] = {2};
  const _ORVEntityType nodes[] = {Entity(50)};
  EXPECT_EQ(Find({.base_types = shells}), (ResultList{shells_}));
  EXPECT_EQ(Find({.entities = nodes, .base_types = shells}), (ResultList{nodes_, coordinates_, unbound_}));
}

TEST_F(ResultLookup, LeavesOutBlocksWithoutComponents) {
  const int masses[] = {3};
  EXPECT_EQ(Find({.base_types = masses}), ResultList());
  empty_->m_ncoo = 1;
  EXPECT_EQ(Find({.base_types = masses}), (ResultList{empty_}));
}

TEST_F(ResultLookup, ByTheNameOfATypeKeepsThemWhereThatIsAskedFor) {
  const char* const types[] = {nullptr, "mass", "shell"};
  EXPECT_EQ(Find({.type_names = types, .needs_components = false}), (ResultList{shells_, empty_}));
  EXPECT_EQ(Find({.type_names = types}), (ResultList{shells_}));
  const char* const names[] = {"STRESS"};
  EXPECT_EQ(Find({.type_names = types, .names = names, .needs_components = false}), (ResultList{shells_}));
}

TEST_F(ResultLookup, TakesAKeyInPlaceOfTheNameOfAVariable) {
  EXPECT_EQ(FindNamed("coord", NameTest::kIdentity), (ResultList{coordinates_}));
  EXPECT_EQ(FindNamed("COORDINATE", NameTest::kIdentity), ResultList());
  EXPECT_EQ(FindNamed("displacement", NameTest::kIdentity), (ResultList{nodes_}));
}

TEST_F(ResultLookup, TakesTheNameAloneWhereItIsToBeExact) {
  EXPECT_EQ(FindNamed("coordinate", NameTest::kVariableName), (ResultList{coordinates_}));
  EXPECT_EQ(FindNamed("COORD", NameTest::kVariableName), ResultList());
  EXPECT_EQ(FindNamed("NOBODY", NameTest::kVariableName), ResultList());
}

TEST_F(ResultLookup, TakesAnyOfSeveralNames) {
  const char* const names[] = {"nothing", nullptr, "STRESS", "DISPLACEMENT"};
  EXPECT_EQ(Find({.names = names}), (ResultList{nodes_, shells_}));
}

TEST_F(ResultLookup, FindsBlocksByTheNameOfAHandle) {
  EXPECT_EQ(FindNamed("displacement_y", NameTest::kHandleName), (ResultList{nodes_}));
  EXPECT_EQ(FindNamed("Stress_XX", NameTest::kHandleName), (ResultList{shells_}));
  EXPECT_EQ(FindNamed("Stress", NameTest::kHandleName), ResultList());
}

TEST_F(ResultLookup, FindsMembersOfAGroupAndTheGroupItself) {
  ORVVariableGrp group;
  std::strcpy(group.m_grpName, "ALL");
  int counts[] = {2, 2};
  int offsets[] = {0, 2};
  group.m_nvar = 2;
  group.m_pCnt = counts;
  group.m_pOffs = offsets;
  group.AppendVariable(displacement_.get());
  group.AppendVariable(keyed_.get());
  ORVResult* grouped = Add(1000, "Node", 50, 1, nullptr);
  grouped->m_variableGrp = &group;
  const ResultList only = {grouped};
  list_ = only;
  for (const char* name : {"all", "Displacement", "coord"})
    EXPECT_EQ(FindNamed(name, NameTest::kIdentity), only) << name;
  EXPECT_EQ(FindNamed("coordinate", NameTest::kIdentity), ResultList());
  for (const char* name : {"displacement", "coordinate"}) {
    EXPECT_EQ(FindNamed(name, NameTest::kVariableName), only) << name;
  }
  for (const char* name : {"all", "coord"}) EXPECT_EQ(FindNamed(name, NameTest::kVariableName), ResultList()) << name;
  EXPECT_EQ(FindNamed("Displacement_Y", NameTest::kHandleName), only);
  const int handle[] = {2};
  ResultList found;
  FindResultsByHandle(list_, {}, handle, found);
  EXPECT_EQ(found, only);
}

TEST_F(ResultLookup, ByHandleWithoutTypesLooksAtNothingElse) {
  const int handles[] = {99, 2};
  ResultList found;
  FindResultsByHandle(list_, {.kind = 1100}, handles, found);
  EXPECT_EQ(found, (ResultList{nodes_, empty_}));
  FindResultsByHandle(list_, {}, {}, found);
  EXPECT_EQ(found.size(), 2U);
}

TEST_F(ResultLookup, ByHandleWithTypesFiltersAsOtherLookupsDo) {
  const int handles[] = {1, 3};
  const int base_types[] = {1, 2, 3};
  const _ORVEntityType shells[] = {Entity(103)};
  const auto find = [&](const ResultQuery& query) {
    ResultList found;
    FindResultsByHandle(list_, query, handles, found);
    return found;
  };
  EXPECT_EQ(find({.base_types = base_types}), (ResultList{nodes_, shells_}));
  EXPECT_EQ(find({.kind = 1000, .base_types = base_types}), (ResultList{nodes_}));
  EXPECT_EQ(find({.entities = shells}), (ResultList{shells_}));
}

ResultList SameAs(const ResultList& list, const ORVResult& sample, bool by_entity_type) {
  ResultList found;
  FindSameQuantity(list, sample, by_entity_type, found);
  return found;
}

TEST_F(ResultLookup, FindsBlocksOfTheSameQuantityAndType) {
  ORVResult* other_type = Add(1000, "Node", 51, 1, displacement_.get());
  ORVResult* other_base = Add(1000, "Node", 50, 9, displacement_.get());
  EXPECT_EQ(SameAs(list_, *nodes_, true), (ResultList{nodes_, other_base}));
  EXPECT_EQ(SameAs(list_, *nodes_, false), (ResultList{nodes_, other_type}));
}

TEST_F(ResultLookup, FindsBlocksOfTheSameQuantityWhateverTheirKind) {
  ORVResult* cplx = Add(1001, "Node", 50, 1, displacement_.get());
  ORVResult* elements = Add(1100, "Node", 50, 1, displacement_.get());
  EXPECT_EQ(SameAs(list_, *nodes_, true), (ResultList{nodes_, cplx, elements}));
}

TEST_F(ResultLookup, FindsASampleWithoutComponentsButNoOtherBlockWithoutThem) {
  ORVResult* twin = Add(1000, "Mass", 60, 3, displacement_.get());
  ORVResult* twin_without = Add(1000, "Mass", 60, 3, displacement_.get());
  twin_without->m_ncoo = 0;
  EXPECT_EQ(SameAs(list_, *empty_, true), (ResultList{empty_, twin}));
  EXPECT_EQ(SameAs(list_, *twin, true), (ResultList{twin}));
}

TEST_F(ResultLookup, FindsASampleThatIsBoundToAGroup) {
  ORVVariableGrp group;
  std::strcpy(group.m_grpName, "ALL");
  int counts[] = {2}, offsets[] = {0};
  group.m_nvar = 1;
  group.m_pCnt = counts;
  group.m_pOffs = offsets;
  group.AppendVariable(displacement_.get());
  ORVResult* sample = Add(1000, "Node", 50, 1, nullptr);
  ORVResult* other = Add(1000, "Node", 50, 1, nullptr);
  sample->m_variableGrp = other->m_variableGrp = &group;
  sample->SetEntityAndVarName("Node", "All");
  EXPECT_EQ(SameAs(list_, *sample, true), (ResultList{sample, other}));
  EXPECT_EQ(SameAs(list_, *nodes_, true), (ResultList{nodes_, sample, other}));  // it has a member of that name
}

TEST_F(ResultLookup, FindsNoVariableByItsExactNameInAGroupWithoutCounts) {
  ORVVariableGrp group;
  group.m_nvar = 1;
  group.AppendVariable(displacement_.get());
  ORVResult* grouped = Add(1000, "Node", 50, 1, nullptr);
  grouped->m_variableGrp = &group;
  list_ = {grouped};
  EXPECT_EQ(FindNamed("displacement", NameTest::kVariableName), ResultList());
}

TEST_F(ResultLookup, FindsASampleWhoseVariableGoesByAKey) {
  EXPECT_EQ(SameAs(list_, *coordinates_, true), (ResultList{coordinates_}));
  EXPECT_EQ(SameAs(list_, *unbound_, true), (ResultList{unbound_}));
}

TEST_F(ResultLookup, OfASampleWithoutANameFindsVariablesWithoutAny) {
  VariableWithHandles nameless("", 2);
  VariableWithHandles only_key("", 2);
  std::strcpy(only_key->m_varkey, "KEY");
  ORVResult* bound = Add(1000, "Node", 50, 1, nameless.get());
  Add(1000, "Node", 50, 1, only_key.get());
  ORVResult sample(1000);
  sample.m_entityType = Entity(50);
  EXPECT_EQ(SameAs(list_, sample, true), (ResultList{bound}));
}

TEST_F(ResultLookup, AppendsAlsoToTheListThatIsSearched) {
  list_.push_back(nullptr);
  FindResultsOfKind(list_, 1100, list_);
  ASSERT_EQ(list_.size(), 7U);
  EXPECT_EQ(list_.back(), shells_);
}

}  // namespace
