#pragma once

// Named values in a tree, as a catalog of variables may hold them. Nothing in the library makes one yet, and hosts do not
// see them.

#include <cstdint>
#include <string>
#include <vector>

/// A value of some type: plain data, or an object that it owns.
class OrvValue {
 public:
  /// What the slot holds. Other types are plain data.
  static constexpr int kOwnedObject = 5;

  union Slot {
    std::int64_t m_integer;
    double m_real;
    OrvValue* m_pObject;  ///< of an owned object
  };

  OrvValue() = default;
  OrvValue(int type, Slot slot) : m_type(type), m_slot(slot) {}
  OrvValue(const OrvValue&) = delete;
  OrvValue& operator=(const OrvValue&) = delete;
  virtual ~OrvValue();  ///< deletes an owned object

  int m_type = 0;
  Slot m_slot = {};
};

class OrvParameter : public OrvValue {
 public:
  using OrvValue::OrvValue;
  OrvParameter(const OrvParameter&) = delete;
  OrvParameter& operator=(const OrvParameter&) = delete;
  ~OrvParameter() override;

  std::string m_name;
};

/// Owns its entries; a null one is allowed.
class OrvParameterList {
 public:
  OrvParameterList() = default;
  OrvParameterList(const OrvParameterList&) = delete;
  OrvParameterList& operator=(const OrvParameterList&) = delete;
  virtual ~OrvParameterList();  ///< deletes the entries

  std::vector<OrvValue*> m_values;
};

class ORVCatalogVariable : public OrvParameterList {
 public:
  ORVCatalogVariable() = default;
  ORVCatalogVariable(const ORVCatalogVariable&) = delete;
  ORVCatalogVariable& operator=(const ORVCatalogVariable&) = delete;
  ~ORVCatalogVariable() override;

  std::string m_name;
};
