// The end of a tree of values: who deletes what.

#include "variable/parameter.h"

OrvValue::~OrvValue() {
  // The slot is empty first, so that nobody reaches an object that is half gone through its owner.
  const OrvValue* object = m_type == kOwnedObject ? m_slot.m_pObject : nullptr;
  m_slot = {};
  delete object;
}

OrvParameter::~OrvParameter() = default;

OrvParameterList::~OrvParameterList() {
  for (const OrvValue* value : m_values) delete value;
}

ORVCatalogVariable::~ORVCatalogVariable() = default;
