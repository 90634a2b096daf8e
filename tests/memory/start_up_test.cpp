// What a filer answers when memory runs out while it learns of its file. Each allocation of an operation fails once: where
// the answer is 0 all the same, nothing may be missing.

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "filer/container.h"
#include "orvio/orv_filer.h"
#include "support/forged_model.h"
#include "support/orv_test.h"

namespace {

long allocations_left = 0;  // until the one that fails; 0 for none

bool FailsNow() { return allocations_left > 0 && --allocations_left == 0; }

void* Allocate(std::size_t bytes) { return FailsNow() ? nullptr : std::malloc(bytes == 0 ? 1 : bytes); }

void* AllocateOrThrow(std::size_t bytes) {
  void* memory = Allocate(bytes);
  if (!memory) throw std::bad_alloc();
  return memory;
}

}  // namespace

// All forms, so that each allocation is freed by its counterpart whatever else replaces them.
void* operator new(std::size_t bytes) { return AllocateOrThrow(bytes); }
void* operator new[](std::size_t bytes) { return AllocateOrThrow(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t& /*tag*/) noexcept { return Allocate(bytes); }
void* operator new[](std::size_t bytes, const std::nothrow_t& /*tag*/) noexcept { return Allocate(bytes); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*bytes*/) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t /*bytes*/) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept { std::free(memory); }

namespace {

using orv_test::ForgedModel;
using orv_test::ForgedValues;

class StartUpMemory : public orv_test::OrvTest {};

/// Lets one allocation in the life of the scope fail.
class OneFailure {
 public:
  explicit OneFailure(long nth) { allocations_left = nth; }
  ~OneFailure() { allocations_left = 0; }
  OneFailure(const OneFailure&) = delete;
  OneFailure& operator=(const OneFailure&) = delete;

  static bool has_come() { return allocations_left == 0; }
};

class OpenFiler : public ORVFiler {
 public:
  using ORVFiler::ORVFiler;
  ORVContainer& data() { return *m_pData; }
};

/// All that a filer has learned, in numbers.
std::vector<std::size_t> Inventory(OpenFiler& filer) {
  const ORVContainer& data = filer.data();
  std::vector<std::size_t> all = {data.variables.size(),      data.variable_groups.size(), data.ext_vars.size(),
                                  data.single_results.size(), data.multi_results.size(),   data.properties.size(),
                                  data.base_units.size(),     data.derived_units.size(),   data.component_units.size(),
                                  data.system ? 1U : 0U,      data.index_types ? 1U : 0U};
  for (const ORVVariable* variable : data.variables) all.push_back(variable->m_extVars.size());
  for (const ORVVariableGrp* group : data.variable_groups) all.push_back(group->m_variables.size());
  for (const ORVExtVar* handle : data.ext_vars) all.push_back(handle->GetUnit() ? 1U : 0U);
  for (const auto* list : {&data.single_results, &data.multi_results}) {
    for (const ORVResult* result : *list) all.push_back(result->m_variable || result->m_variableGrp ? 1U : 0U);
  }
  return all;
}

/// Whether `operation` on a filer that `prepare` has readied answers 1 or has done everything, whichever of its
/// allocations fails; and whether it answers 1 for some.
void ExpectAllOrFailure(ForgedModel& model, const std::function<void(OpenFiler&)>& prepare,
                        const std::function<int(OpenFiler&)>& operation) {
  const std::string path = model.path();
  const auto run = [&](long nth, bool& has_failed, std::vector<std::size_t>& learned) {
    OpenFiler filer(path.c_str());
    filer.SetConfig(ORV_CONFIG_ASSIGN_UNITS);
    prepare(filer);
    const OneFailure failure(nth);
    const int status = operation(filer);
    has_failed = nth > 0 && OneFailure::has_come();
    allocations_left = 0;
    learned = Inventory(filer);
    return status;
  };
  bool has_failed = false;
  std::vector<std::size_t> all, learned;
  ASSERT_EQ(run(0, has_failed, all), 0);
  int failures = 0;
  for (long nth = 1;; ++nth) {
    const int status = run(nth, has_failed, learned);
    EXPECT_TRUE(status == 1 || (status == 0 && learned == all)) << "allocation " << nth << ": " << status;
    if (!has_failed) break;
    if (status == 1) ++failures;
  }
  EXPECT_GT(failures, 10);
}

ForgedValues Result(const std::string& variable, int ncoo, const std::string& etyp = "NODE") {
  ForgedValues result;
  result.variable = variable;
  result.etyp = etyp;
  result.nent = 1;
  result.ncoo = ncoo;
  return result;
}

ForgedValues History(const std::string& variable, int ncoo) {
  ForgedValues result = Result(variable, ncoo);
  result.kind = 1050;
  result.nstate = 1;
  return result;
}

ForgedModel Variables() {
  ForgedModel model;
  model.system().variable({.name = "Heat", .key = "H"}).units("H", {.mbunit = {1}, .ubid = {1}, .ubexp = {1}});
  model.variable({.name = "Speed", .key = "S", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
  return model;
}

/// Results by the names of variables.
ForgedModel PlainFile() {
  ForgedModel model = Variables();
  model.in_constant(Result("Heat", 1)).in_state(1, Result("Speed", 3)).in_state(2, Result("Speed", 3, "SHELL"));
  model.in_state(2, Result("Heat", 1, "SHELL")).in_multistate(History("Heat", 1));
  model.properties("/post/constant", "SECURED_NODE", "Heat", 2);
  return model;
}

/// Results by the names of groups of variables, one of which is in two of them at different places.
ForgedModel GroupedFile() {
  ForgedModel model = Variables();
  model.group("Both", 4, {{"H", 1, 0}, {"S", 3, 1}}).group("One", 1, {{"H", 1, 0}}).group("INDEX", 1, {{"H", 1, 0}});
  model.group("Turned", 4, {{"S", 3, 0}, {"H", 1, 3}}).index_types_of_group("INDEX", 1);
  model.in_state(1, Result("Both", 4)).in_state(1, Result("Turned", 4)).in_state(2, Result("One", 1, "SHELL"));
  model.in_multistate(History("One", 1));
  return model;
}

int StartUp(OpenFiler& filer) {
  int next_id = 1;
  return filer.InitReader(next_id);
}

TEST_F(StartUpMemory, ThatRunsOutEndsTheStartUpUnlessNothingIsMissing) {
  ForgedModel plain = PlainFile();
  ExpectAllOrFailure(
      plain, [](OpenFiler&) {}, StartUp);
}

TEST_F(StartUpMemory, ThatRunsOutEndsTheStartUpOfAFileWithGroupsUnlessNothingIsMissing) {
  ForgedModel grouped = GroupedFile();
  ExpectAllOrFailure(
      grouped, [](OpenFiler&) {}, StartUp);
}

TEST_F(StartUpMemory, ThatRunsOutEndsTheReadOfMultiStateBlocksUnlessNothingIsMissing) {
  for (const auto make : {PlainFile, GroupedFile}) {
    ForgedModel model = make();
    const auto skip = [](OpenFiler& filer) {
      filer.SetConfig(ORV_CONFIG_SKIP_MULTISTATE);
      EXPECT_EQ(StartUp(filer), 0);
    };
    ExpectAllOrFailure(model, skip, [](OpenFiler& filer) { return filer.ReadMultiStateBlocks(false); });
  }
}

TEST_F(StartUpMemory, ThatRunsOutEndsTheLookAtLaterStatesUnlessNothingIsMissing) {
  for (const auto make : {PlainFile, GroupedFile}) {
    ForgedModel model = make();
    const auto start = [](OpenFiler& filer) { EXPECT_EQ(StartUp(filer), 0); };
    const auto look = [](OpenFiler& filer) {
      int added = 0;
      return filer.UpdateContainer(2, added, -1, 0);
    };
    ExpectAllOrFailure(model, start, look);
  }
}

}  // namespace
