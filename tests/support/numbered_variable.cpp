#include "support/numbered_variable.h"

#include <cstdio>
#include <numeric>

namespace orv_test {
namespace {

constexpr std::size_t kTextWidth = 256;
constexpr int kOfSymmetricTensor = 6;  // components

template <std::size_t N>
void Name(char (&field)[N], const char* name) {
  (void)std::snprintf(field, N, "%s", name);
}

}  // namespace

NumberedVariable::NumberedVariable(const char* name, int components)
    : no_units_(static_cast<std::size_t>(components)),
      ids_(no_units_.size()),
      lengths_(no_units_.size(), 1),
      offsets_(no_units_.size()),
      names_(no_units_.size() * kTextWidth, ' ') {
  std::iota(ids_.begin(), ids_.end(), 1);
  std::iota(offsets_.begin(), offsets_.end(), 0);
  for (std::size_t i = 0; i < ids_.size(); ++i) {
    labels_ += static_cast<char>('1' + i);
    names_[i * kTextWidth] = labels_.back();
  }
  Name(variable_.m_varnam, name);
  Name(variable_.m_varkey, name);
  variable_.m_ncoo = components;
  variable_.m_rank = components == 1 ? 0 : components == kOfSymmetricTensor ? 2 : 1;
  variable_.m_ndim = 3;
  variable_.m_tensor = components == 1 ? 0 : 1;
  variable_.m_pMbunit = variable_.m_pMdunit = no_units_.data();
  variable_.m_pCid = ids_.data();
  variable_.m_pCname = names_.data();
  variable_.m_subslen = components;
  variable_.m_pSubscr = labels_.data();
  variable_.m_pSubscnt = lengths_.data();
  variable_.m_pSubsoffs = offsets_.data();
}

int NumberedVariable::Write(ORVFiler& filer) {
  return filer.WriteBlock(&variable_, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA);
}

}  // namespace orv_test
