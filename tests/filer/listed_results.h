#pragma once

// A filer with lists of results made by hand.

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "filer/container.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_variable.h"

namespace orv_test {

class FilerWithResults : public ORVFiler {
 public:
  explicit FilerWithResults(const char* path = "/not/there") : ORVFiler(path) {}
  using ORVFiler::ClearAll;

  ORVContainer& data() { return *m_pData; }

  /// A block of the list of its kind, of a variable of that name. The filer owns the block, the variable lives as long.
  ORVResult* Add(const char* variable, int kind = 1000, int entity = 50, int base = 1) {
    auto block = std::make_unique<ORVResult>(kind);
    block->SetEntityAndVarName("Node", variable);
    block->m_ncoo = 1;
    block->m_entityType = static_cast<_ORVEntityType>(entity);
    block->m_baseEntityType = base;
    block->m_variable = Variable(variable);
    (block->IsMultistateBlk() ? data().multi_results : data().single_results).push_back(block.get());
    return block.release();
  }

  ORVResult* AddConstant(const char* variable) {
    ORVResult* block = Add(variable);
    block->SetConstantBlk(true);
    return block;
  }

  /// A handle of the variable of a block.
  ORVExtVar& AddHandle(ORVResult* block, int iid, const char* name) {
    auto handle = std::make_unique<ORVExtVar>();
    handle->SetIID(iid);
    handle->SetName(name);
    block->m_variable->AppendExtVar(handle.get());
    data().ext_vars.push_back(handle.get());
    return *handle.release();  // the filer owns it
  }

 private:
  ORVVariable* Variable(const char* name) {
    variables_.push_back(std::make_unique<ORVVariable>());
    std::strcpy(variables_.back()->m_varnam, name);
    return variables_.back().get();
  }

  std::vector<std::unique_ptr<ORVVariable>> variables_;
};

}  // namespace orv_test
