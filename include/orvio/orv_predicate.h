#pragma once

#include <string>

#include "orvio/orv_types.h"

/// A comparison with a stored value, for the algorithms of a host.
class ORVIO_EXPORT ORVPredicate {
 public:
  /// With `operation` 1 two texts are compared by "less than", else by equality. The text is not owned.
  ORVPredicate(int operation, int i, float f, const char* c);

  void SetOperation(int operation) { m_operation = operation; }
  void SetInt(int i) { m_int = i; }
  void SetFloat(float f) { m_float = f; }
  void SetChar(const char* c) { m_char = c; }
  void SetORVType(_ORVEntityType type) { m_type = type; }

  /// "a sorts before b", byte by byte, or equality without regard to case.
  bool operator()(const char* a, const char* b) const;
  bool operator()(const std::string& a, const std::string& b) const;
  bool operator()(float f) const;                  ///< equal to the float, exactly
  bool operator()(_ORVEntityType type) const;      ///< equal to the entity type
  bool operator()(int i) const;                    ///< equal to the int
  bool operator()(const std::string& text) const;  ///< equal to the text, without regard to case
  bool operator()(const char* text) const;

 protected:
  int m_operation;
  int m_int;
  float m_float;
  const char* m_char;
  _ORVEntityType m_type;
};
