#pragma once

/// Units: base units, units derived from them, and the unit of one component of a variable.

#include <cstddef>
#include <string>
#include <vector>

#include "orvio/orv_types.h"

/// Dimension of a unit.
enum _ORVUnitType : int {
  ORV_UNIT_UNKNOWN = 0,
  ORV_UNIT_LENGTH = 1,
  ORV_UNIT_MASS = 2,
  ORV_UNIT_TIME = 3,
  ORV_UNIT_ELECTRIC_CURRENT = 4,
  ORV_UNIT_TEMPERATURE = 5,  ///< thermodynamic
  ORV_UNIT_AMOUNT_OF_SUBSTANCE = 6,
  ORV_UNIT_LUMINOUS_INTENSITY = 7,
  ORV_UNIT_DERIVED = 8,
};

/// A base unit: one dimension, with a scale and a shift against SI.
class ORVIO_EXPORT ORVUnit {
 public:
  ORVUnit();
  ORVUnit(const ORVUnit&) = default;
  ORVUnit& operator=(const ORVUnit&) = default;

  /// One factor to SI. `shift` is always 0.0: a shift of the unit shows in the answer only, which is true when the
  /// factor alone is exact.
  virtual bool GetSIConversionFactors(double& scale, double& shift);
  virtual ~ORVUnit();

  void Init();  ///< restores all defaults
  int GetUnitId() const { return m_unitId; }
  void SetUnitId(int id) { m_unitId = id; }
  _ORVUnitType GetUnitType() const { return m_unitType; }
  void SetUnitType(_ORVUnitType type) { m_unitType = type; }
  const char* GetUnitCStr() const { return m_unitStr.c_str(); }
  std::size_t GetUnitStrLength() const { return m_unitStr.size(); }
  void SetUnitString(const char* text);  ///< null changes nothing
  void SetUnitString(const std::string& text);
  int GetVDBDataType() const { return m_vdbDataType; }
  void SetVDBDataType(int type) { m_vdbDataType = type; }
  void SetScaleFactor(float scale) { m_scale = scale; }
  void SetShiftFactor(float shift) { m_shift = shift; }
  void SetConversionFactors(float scale, float shift);
  /// The scale; `shift` receives the shift.
  float GetConversionFactors(float& shift) const;
  /// Text, scale and shift; the answer is the word for the dimension, empty for an unknown one.
  std::string GetUnitInfo(std::string& unitStr, float& scale, float& shift) const;

 protected:
  int m_unitId;  ///< identifier, as in `ubid` or `udid`
  _ORVUnitType m_unitType;
  std::string m_unitStr;  ///< text to show
  float m_scale;          ///< factor to SI
  float m_shift;          ///< offset to SI
  int m_vdbDataType;      ///< tag for the host; only stored
};

/// A derived unit: a scale times a product of base units with exponents. The base units are not owned.
class ORVIO_EXPORT ORVDUnit : public ORVUnit {
 public:
  ORVDUnit();
  ORVDUnit(const ORVDUnit&) = default;
  ORVDUnit& operator=(const ORVDUnit&) = default;
  ~ORVDUnit() override;

  /// As for a base unit. Without base units the answer is false and the factor 1.0, whatever the scale.
  bool GetSIConversionFactors(double& scale, double& shift) override;

  void AppendBaseUnitInfo(ORVUnit* unit, float exponent);  ///< a null unit is ignored
  /// Appends `n` pairs, or as many as there are units.
  void SetBaseUnitInfo(unsigned n, const float* exponents, const std::vector<ORVUnit*>& units);
  /// These two append to one list each: the caller keeps the lists equal in length.
  void SetBaseUnits(const std::vector<ORVUnit*>& units);
  void SetBaseExponent(unsigned n, const float* exponents);
  std::vector<ORVUnit*>& GetBaseUnits() { return m_baseUnits; }
  const std::vector<ORVUnit*>& GetBaseUnits() const { return m_baseUnits; }
  std::vector<float>& GetBaseUnitExponent() { return m_baseExponents; }
  const std::vector<float>& GetBaseUnitExponent() const { return m_baseExponents; }
  /// Appends a report for people; its text may change.
  void GetDebugInf(std::string& report);

 protected:
  std::vector<ORVUnit*> m_baseUnits;
  std::vector<float> m_baseExponents;
};

// The destructor is not virtual: the one virtual operation has the first slot.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// The unit of one component: a product of base units and derived units with exponents. It owns neither; they
/// stand in the filer's tables of units. Do not delete an object of a derived class through this one.
class ORVIO_EXPORT ORVVariableUnit {  // NOLINT(cppcoreguidelines-virtual-class-destructor): see above
 public:
  ORVVariableUnit();
  ORVVariableUnit(const ORVVariableUnit&) = default;
  ORVVariableUnit& operator=(const ORVVariableUnit&) = default;
  ~ORVVariableUnit();

  /// One factor to SI; `shift` is always 0.0. False without any unit, and when the last unit looked at is not
  /// exact without its shift or has no base units.
  virtual bool GetSIConversionFactors(double& scale, double& shift);

  void AppendBaseUnit(ORVUnit* unit, float exponent);     ///< null is ignored
  void AppendDeriveUnit(ORVDUnit* unit, float exponent);  ///< null is ignored
  /// The units; `exponents` becomes a copy of theirs.
  std::vector<ORVUnit*>& GetBaseUnitInfo(std::vector<float>& exponents);
  std::vector<ORVDUnit*>& GetDeriveUnitInfo(std::vector<float>& exponents);
  bool IsDimensionLess() const { return m_dimensionLess; }
  void SetDimensionLess(bool dimensionLess) { m_dimensionLess = dimensionLess; }

  /// Appends the base units, then those of the derived units with the products of the exponents. The scales of the
  /// derived units are no part of this.
  void ResolveToBaseUnits(std::vector<ORVUnit*>& units, std::vector<float>& exps) const;
  /// Appends one unit for each dimension of a list, in ascending order of the dimension, with the sum of its
  /// exponents, be it 0. Units of one dimension are merged whatever their scales.
  void ResolveToUniqueBaseUnits(const std::vector<ORVUnit*>& units, const std::vector<float>& exps,
                                std::vector<ORVUnit*>& outUnits, std::vector<float>& outExps) const;
  /// Appends a report for people; its text may change. With `details` it holds those of the derived units too.
  void GetDebugInf(std::string& report, bool details);

 protected:
  /// The text to show, such as "kg m/s^2"; empty without units. Whether there is one.
  bool ConstructUnitString(std::string& out);

  std::vector<ORVUnit*> m_baseUnits;
  std::vector<float> m_baseExp;
  std::vector<ORVDUnit*> m_deriveUnits;
  std::vector<float> m_deriveExp;
  bool m_dimensionLess;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
