// Comparisons for the algorithms of a host.

#include "orvio/orv_predicate.h"

#include <string_view>

#include "h5/text_field.h"

using namespace orvio;

namespace {

constexpr int kLessThan = 1;

/// A text that is not there is neither before nor equal to another.
bool AreEqual(const char* a, const char* b) { return a && b && EqualIgnoringCase(a, b); }

}  // namespace

ORVPredicate::ORVPredicate(int operation, int i, float f, const char* c)
    : m_operation(operation), m_int(i), m_float(f), m_char(c), m_type(static_cast<_ORVEntityType>(0)) {}

bool ORVPredicate::operator()(const char* a, const char* b) const {
  if (m_operation != kLessThan) return AreEqual(a, b);
  return a && b && std::string_view(a) < std::string_view(b);
}

bool ORVPredicate::operator()(const std::string& a, const std::string& b) const {
  return m_operation == kLessThan ? a < b : EqualIgnoringCase(a, b);
}

bool ORVPredicate::operator()(float f) const { return f == m_float; }

bool ORVPredicate::operator()(_ORVEntityType type) const { return type == m_type; }

bool ORVPredicate::operator()(int i) const { return i == m_int; }

bool ORVPredicate::operator()(const std::string& text) const { return m_char && EqualIgnoringCase(text, m_char); }

bool ORVPredicate::operator()(const char* text) const { return AreEqual(text, m_char); }
