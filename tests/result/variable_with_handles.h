#pragma once

// A variable with handles, as a filer makes them, for the tests of what a result block asks of its variable.

#include <cstring>
#include <memory>
#include <vector>

#include "orvio/orv_ext_var.h"
#include "orvio/orv_variable.h"

namespace orv_test {

class VariableWithHandles {
 public:
  VariableWithHandles(const char* name, std::uint64_t components) {
    std::strcpy(variable_.m_varnam, name);
    variable_.m_ncoo = static_cast<std::int64_t>(components);
    variable_.SetOriginalCount(components);
  }

  /// A handle of a component, or with -1 of a measure. Its external id is its internal one and 100.
  ORVExtVar& Add(int iid, int component, int measure = 0) {
    auto handle = std::make_unique<ORVExtVar>();
    handle->SetIID(iid);
    handle->SetEID(iid + 100);
    handle->m_index = component;
    handle->SetType(measure);
    variable_.AppendExtVar(handle.get());
    handles_.push_back(std::move(handle));
    return *handles_.back();
  }

  /// A handle of a measure with inputs, one dependent for each list.
  ORVExtVar& AddComputed(int iid, int measure, const std::vector<std::vector<int>>& inputs) {
    ORVExtVar& handle = Add(iid, -1, measure);
    for (const auto& iids : inputs) {
      auto dependent = std::make_unique<ORVDependentVar>();
      dependent->m_pVariable = &variable_;
      dependent->m_iids = iids;
      handle.Append(dependent.release());
    }
    return handle;
  }

  ORVVariable* get() { return &variable_; }
  ORVVariable* operator->() { return &variable_; }

 private:
  ORVVariable variable_;
  std::vector<std::unique_ptr<ORVExtVar>> handles_;
};

}  // namespace orv_test
