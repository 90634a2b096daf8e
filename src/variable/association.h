#pragma once

// The binding of results to their definitions, and the making of handles.

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "orvio/orv_ext_var.h"

class ORVVariableGrp;
struct ORVContainer;

namespace orvio {

/// Applicability of handles: the lists of results that they serve.
inline constexpr int kServesSingleState = 1, kServesMultiState = 2;

/// Binds results to the variables and groups of a filer and gives the components of each variable in use its handles.
/// The names are indexed once, so an object serves one list of results.
class Association {
 public:
  /// `next_iid` is raised with every handle.
  Association(ORVFiler& filer, ORVContainer& data, int& next_iid);

  void Associate(ORVResult& result, int applicable);

 private:
  void Bind(ORVResult& result);
  void CreateExtendedVariables(ORVResult& result, ORVVariable& variable, int offset);
  void CreateExtendedVariables(ORVResult& result, ORVVariableGrp& group);
  void ValidateCreateNewVariable(ORVResult& result);
  void ExtendVariable(ORVResult& result, ORVVariable& variable, int offset);
  void CreateStored(ORVVariable& variable, int offset);
  void CreateComputed(ORVVariable& variable, const ORVExtVarEntry& entry, const std::vector<int>& inputs);
  ORVExtVar* NewHandle(ORVVariable& variable, const std::string& name, int index, int type,
                       std::unique_ptr<ORVDependentVar> dependent = nullptr);

  /// By names in lower case; the first of a name.
  template <class T>
  using ByName = std::map<std::string, T*, std::less<>>;

  ORVFiler& filer_;
  ORVContainer& data_;
  int& next_iid_;
  std::uint64_t copied_components_ = 0;
  ByName<ORVVariable> variables_;
  ByName<ORVVariableGrp> groups_;
};

}  // namespace orvio
