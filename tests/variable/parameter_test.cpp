// Who deletes what in a tree of values. Leaks are the sanitizers' to find.

#include "variable/parameter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

#include "support/orv_test.h"

namespace {

class Parameter : public orv_test::OrvTest {};

/// A value that counts its ends.
class Counted : public OrvValue {
 public:
  explicit Counted(int& deleted) : deleted_(deleted) {}
  Counted(int& deleted, int type, Slot slot) : OrvValue(type, slot), deleted_(deleted) {}
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  ~Counted() override { ++deleted_; }

 private:
  int& deleted_;
};

OrvValue::Slot Holding(OrvValue* object) {
  OrvValue::Slot slot = {};
  slot.m_pObject = object;
  return slot;
}

TEST_F(Parameter, StartsWithoutTypeValueOrName) {
  const OrvParameter parameter;
  EXPECT_EQ(parameter.m_type, 0);
  EXPECT_EQ(parameter.m_slot.m_integer, 0);
  EXPECT_EQ(parameter.m_name, "");
  EXPECT_TRUE(OrvParameterList().m_values.empty());
  EXPECT_EQ(ORVCatalogVariable().m_name, "");
}

TEST_F(Parameter, HoldsOneSlotOf64Bits) {
  EXPECT_EQ(sizeof(OrvValue::Slot), 8U);
  OrvValue value;
  value.m_slot.m_integer = INT64_MIN;
  EXPECT_EQ(value.m_slot.m_integer, INT64_MIN);
  value.m_slot.m_real = 0.25;
  EXPECT_EQ(value.m_slot.m_real, 0.25);
}

TEST_F(Parameter, OfCode5DeletesItsObject) {
  int deleted = 0;
  { const OrvValue value(5, Holding(new Counted(deleted))); }
  EXPECT_EQ(deleted, 1);
}

TEST_F(Parameter, OfCode5MayHaveNoObject) {
  const OrvValue value(5, Holding(nullptr));
  EXPECT_EQ(value.m_slot.m_pObject, nullptr);
}

TEST_F(Parameter, OfAnyOtherCodeDeletesNothing) {
  for (const int code : {-5, -1, 0, 1, 2, 3, 4, 6, 7, 55}) {
    int deleted = 0;
    {
      Counted object(deleted);
      { const OrvValue value(code, Holding(&object)); }
      EXPECT_EQ(deleted, 0) << code;
    }
    EXPECT_EQ(deleted, 1) << code;
  }
}

TEST_F(Parameter, DeletesObjectsInsideOfObjects) {
  int deleted = 0;
  auto* inner = new Counted(deleted);
  auto* middle = new Counted(deleted, 5, Holding(inner));
  { const OrvValue outer(5, Holding(middle)); }
  EXPECT_EQ(deleted, 2);
}

TEST_F(Parameter, IsDeletedWithItsObjectThroughItsBase) {
  int deleted = 0;
  auto parameter = std::make_unique<OrvParameter>(5, Holding(new Counted(deleted)));
  parameter->m_name = "a name that is too long to stand inside of the string itself";
  std::unique_ptr<OrvValue> base = std::move(parameter);
  base.reset();
  EXPECT_EQ(deleted, 1);
}

/// Looks at the slot of its owner when it ends.
class Watcher : public OrvValue {
 public:
  Watcher(const OrvValue*& owner, const OrvValue*& seen) : owner_(owner), seen_(seen) {}
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;
  ~Watcher() override { seen_ = owner_->m_slot.m_pObject; }

 private:
  const OrvValue*& owner_;
  const OrvValue*& seen_;
};

TEST_F(Parameter, HasAnEmptySlotWhenItsObjectEnds) {
  const OrvValue* owner = nullptr;
  const OrvValue marker;
  const OrvValue* seen = &marker;
  {
    const OrvValue value(5, Holding(new Watcher(owner, seen)));
    owner = &value;
  }
  EXPECT_EQ(seen, nullptr);
}

TEST_F(Parameter, ListDeletesEveryEntryThroughItsBase) {
  int deleted = 0;
  {
    OrvParameterList list;
    list.m_values = {new Counted(deleted), nullptr, new OrvParameter(5, Holding(new Counted(deleted))),
                     new Counted(deleted)};
  }
  EXPECT_EQ(deleted, 3);
}

TEST_F(Parameter, CatalogVariableIsDeletedWithItsEntriesThroughItsBase) {
  int deleted = 0;
  auto variable = std::make_unique<ORVCatalogVariable>();
  variable->m_name = "a name that is too long to stand inside of the string itself";
  variable->m_values.push_back(new Counted(deleted));
  std::unique_ptr<OrvParameterList> base = std::move(variable);
  base.reset();
  EXPECT_EQ(deleted, 1);
}

TEST_F(Parameter, HasOneOwner) {
  EXPECT_FALSE(std::is_copy_constructible_v<OrvParameter>);
  EXPECT_FALSE(std::is_copy_assignable_v<OrvParameter>);
  EXPECT_FALSE(std::is_copy_constructible_v<ORVCatalogVariable>);
  EXPECT_FALSE(std::is_copy_assignable_v<ORVCatalogVariable>);
}

}  // namespace
