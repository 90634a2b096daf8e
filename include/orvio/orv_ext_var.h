#pragma once

/// Handles of components: one small number for a quantity in place of a variable and a position.

#include <string>
#include <vector>

#include "orvio/orv_types.h"

#include "orvio/orv_variable.h"

class ORVFiler;
class ORVResult;
class ORVUnit;

/// Measure of a computed component; a stored one has 0. Those with a name in the tables of measures are made by the
/// library, the others by hosts. The library computes none of them.
enum _ORVComputeType : int {
  ORV_COMPUTE_NONE = 0,               ///< a scalar, or a stored component
  ORV_COMPUTE_MAGNITUDE = 50,         ///< "Magnitude"; also a vector as a whole
  ORV_COMPUTE_THREE_COMPONENTS = 51,  ///< a rank 2 block of three components
  ORV_COMPUTE_PLANE_FIRST = 52,       ///< "First Princ." of three components
  ORV_COMPUTE_PLANE_SECOND = 53,      ///< "Second Princ." of three components
  ORV_COMPUTE_SIX_COMPONENTS = 55,    ///< a block of six components
  ORV_COMPUTE_VON_MISES = 56,
  ORV_COMPUTE_FIRST_PRINCIPAL = 57,
  ORV_COMPUTE_SECOND_PRINCIPAL = 58,
  ORV_COMPUTE_THIRD_PRINCIPAL = 59,
  ORV_COMPUTE_TRESCA = 60,
  ORV_COMPUTE_MEAN = 63,
  ORV_COMPUTE_PRESSURE = 64,
  ORV_COMPUTE_DETERMINANT = 65,
  ORV_COMPUTE_EQUIVALENT = 66,
};

/// One computed measure: what it is, how many components it needs, and the end of its name.
struct ORVExtVarEntry {
  int m_computeType;
  int m_minComponents;
  const char* m_name;
};

/// The measures of one shape of variables. A host's table stays the host's.
struct ORVExtVarType {
  _ORVVarType m_varType;
  int m_count;
  const ORVExtVarEntry* m_pEntries;  ///< m_count of them
};

/// What a host is told when the measures of a variable are chosen.
struct ORVFilerExtendComputedTypeCallBackData {
  ORVFiler* m_pFiler;
  int m_reason;  ///< always 1
  ORVResult* m_pResult;
  ORVVariable* m_pVariable;
};

/// Answers the measures of a variable, which stay the host's; null for none. `client` is what SetFilerCallBackClient
/// was given.
typedef ORVExtVarType* (*ORVExtendComputedTypeCallBack)(void* client, ORVFilerExtendComputedTypeCallBackData& data);

extern "C" {
/// Gives a filer measures for solvers of one family: six for every tensor, in an order of their own. Clears the client
/// pointer. Nothing for null.
ORVIO_EXPORT void ORVSetCMXStressComputedType(ORVFiler* filer);
}

/// Inputs of a computed component: stored components of one variable.
struct ORVIO_EXPORT ORVDependentVar {
  ORVVariable* GetVariable() const { return m_pVariable; }

  /// Appends the external id of each input that has one (not 0).
  void GetEID(std::vector<int>& eids) const;
  /// Whether the variable has this identity (its key, or its name where it has none); false for null.
  bool HasDependentVarKeyOrName(const char* identity) const;

  ORVVariable* m_pVariable = nullptr;  ///< holds the inputs; not owned
  std::vector<int> m_iids;             ///< internal ids of the inputs
};

/// Handle of one component. A stored one stands for a component that result blocks hold; a computed one for a
/// measure that the host derives from its dependents, and holds no data of its own.
///
/// The filer owns the handles that it makes. A handle owns its dependents and not its unit.
class ORVIO_EXPORT ORVExtVar {
 public:
  ORVExtVar();
  ~ORVExtVar();
  ORVExtVar(const ORVExtVar&) = delete;
  ORVExtVar& operator=(const ORVExtVar&) = delete;

  int GetIID() const { return m_IID; }
  void SetIID(int iid) { m_IID = iid; }
  int GetEID() const { return m_EID; }
  void SetEID(int eid) { m_EID = eid; }
  /// The internal id; `eid` receives the external one.
  int GetID(int& eid) const;
  int GeIndex() const { return m_index; }
  int GetType() const { return m_type; }
  void SetType(int type) { m_type = type; }
  /// True if any bit of `mask` is set: 1 single-state results, 2 multi-state results.
  bool IsApplicable(int mask) const { return (m_applicable & mask) != 0; }
  void SetApplicable(int bits) { m_applicable |= bits; }  ///< adds bits, takes none away
  const std::string& GetName() const { return m_name; }
  void SetName(const char* name);  ///< null changes nothing
  void SetName(const std::string& name);
  std::vector<ORVDependentVar*>& GetDependent() { return m_dependents; }
  const std::vector<ORVDependentVar*>& GetDependent() const { return m_dependents; }
  /// Takes ownership; null is ignored.
  void Append(ORVDependentVar* dependent);
  ORVUnit* GetUnit() const { return m_pUnit; }
  void SetUnit(ORVUnit* unit) { m_pUnit = unit; }

  /// Copies ids, index, type, applicability and name into `dest`, and puts copies of the dependents in place of
  /// its own. The unit is not copied.
  void CopyObject(ORVExtVar& dest) const;
  /// Appends the external ids (not 0) of all inputs.
  void GetDependentEID(std::vector<int>& eids) const;
  /// Whether the variable of any dependent has this identity; false for null.
  bool HasDependentVarKeyOrName(const char* identity) const;

 protected:
  int m_IID;  ///< unique in a filer
  int m_EID;  ///< for the host's use

 public:
  int m_index;  ///< position among a result's components; -1 for a computed component

 protected:
  int m_type;        ///< 0 for a stored component, else the computed measure
  int m_applicable;  ///< kinds of results that it serves
  std::string m_name;
  std::vector<ORVDependentVar*> m_dependents;  ///< owned
  ORVUnit* m_pUnit;                            ///< not owned
};
