#pragma once

#include <string>
#include <vector>

#include "orvio/orv_block.h"

class ORVExtVar;
class ORVUnit;
struct ORVDependentVar;

/// Shape of a quantity.
enum _ORVVarType : int {
  ORV_VARTYPE_SCALAR = 0,        ///< scalar, or components without tensor meaning
  ORV_VARTYPE_VECTOR = 1,        ///< three-component vector
  ORV_VARTYPE_TENSOR = 2,        ///< six-component tensor
  ORV_VARTYPE_PLANE_TENSOR = 3,  ///< rank 2 with three components
};

/// Class of a quantity, from the word in `varclass`; 0 for anything unknown.
enum _ORVVarClassType : int {
  ORV_VARCLASS_UNKNOWN = 0,
  ORV_VARCLASS_ANGLE = 3,    ///< "CLASS_ANGLE"
  ORV_VARCLASS_LENGTH = 12,  ///< "CLASS_LENGTH"
  ORV_VARCLASS_STRAIN = 20,  ///< "CLASS_STRAIN"
  ORV_VARCLASS_STRESS = 21,  ///< "CLASS_STRESS"
};

/// Definition of one kind of quantity: name, key, class, components and their units. It holds no values. Stands
/// in "post/constant/variables/<name>" of files up to version 1.2 and in "post/constant/variable/<key or name>"
/// of later ones. Names compare without regard to case; the identity of a variable is its key where it has one,
/// else its name.
///
/// The arrays are the caller's or the filer's (from the C allocator); copies share them.
class ORVIO_EXPORT ORVVariable : public ORVBlock {
 public:
  /// Key 30.
  ORVVariable();
  ORVVariable(const ORVVariable& other);
  ORVVariable& operator=(const ORVVariable& other);
  ~ORVVariable() override;

  int ReadBlock(const char* path, int state, int flags) override;
  int ReadBlockAt(const char* path, int state, int index, int flags) override;
  int ReadNumBlock(const char* path, int state, int* count) override;
  int ReadHeader(hid_t header, int flags) override;
  int ReadData(hid_t data, int flags) override;
  int IterateBlock(const char* path, int state, int flags, ORVIterationCallBack action) override;
  /// Writes the variable below the constant section whatever the state. An empty key, class or type is blanks
  /// afterwards, in the object too. Data of other extents than those that are there already answer 1.
  int WriteBlock(const char* path, int state, int flags) override;
  int WriteHeader(hid_t header) override;
  int WriteData(hid_t data) override;

  /// Group of the block: its path under `a` in the single layout, else its name under `b`. The caller closes it.
  hid_t GetVariableBlkGrp(hid_t a, hid_t b);

  void SetOriginalCount(std::uint64_t count) { m_originalCount = count; }
  std::uint64_t GetOriginalCount() const { return m_originalCount; }

  /// Shape, class, component count and offset. 1 with nothing written for a variable without components.
  int GetVariableInfo(_ORVVarType& varType, _ORVVarClassType& varClass, int& count, int& offset);
  /// 0 with count and offset when `name` is this variable's; else 1 with 0 and -1.
  int GetVariableCompAndOffset(const char* name, int& count, int& offset);
  /// The key, or with `orName` the name of a variable without one; else 1 and an empty text.
  int GetVariableKey(std::string& out, bool orName);
  /// The part of the key before its first ':'; 1 with `out` left alone where there is none.
  int GetVariableKeyPrefix(std::string& out);
  void GetVariableName(std::string& out);
  int HasUnits();
  bool IsVariableAvailable(const char* name);
  bool IsVariableKeyAvailable(const char* key, bool orName);
  /// Forgets (frees nothing): 1 names and counts, 2 the array pointers and stored types.
  void ReSetBlock(int flags);
  /// Copies array contents into `dest` where both sides have the array; component names and ids are not copied.
  void CopyDataPart(ORVVariable* dest);
  /// Makes the original unit strings anew from the unit objects; nothing without such objects.
  void UpdateOrgUnitStr();

  // ---- Handles of the components (`m_extVars`). `byIID` selects the internal id, else the external one.

  ORVExtVar* GetExtVarFrmId(int id, bool byIID);  ///< null when there is none
  bool IsExtVarAvailable(int id, bool byIID);
  /// The other id of the handle: the external one of an internal id and the reverse; -1 when there is none.
  int GetExtVarId(int id, bool byIID);
  /// Appends external id and type of each handle.
  void GetExtVarTypesOrCompTypes(std::vector<int>& eids, std::vector<int>& types);
  bool IsResultTypeAvailable(int eid);
  bool IsExtCompTypeAvailable(int type);
  /// Appends all handles of a type.
  void GetExtVarFrmExtendedType(int type, std::vector<ORVExtVar*>& out);
  /// The first handle of a type if the text is the variable's identity, else null.
  ORVExtVar* GetExtVarFrmKeyOrVariable(const char* identity, int type);
  ORVExtVar* GetExtVariableFrmCmp(const char* name);  ///< by the name of the handle
  /// Appends the ids (internal with `wantIID`) if the text is the variable's identity. 1 when it is not and when
  /// there is no handle.
  int GetIIDFromKeyOrVariable(const char* identity, std::vector<int>& out, bool wantIID);
  /// Appends the internal id of the first handle with each of the component indexes that has one.
  void GetIIDFromIndex(const std::vector<int>& indexes, std::vector<int>& out);
  /// Position of a stored component's handle in the list; -1 for a computed one and for one that is not there.
  int GetVariableIndex(const ORVExtVar* extVar, bool& found);
  ORVUnit* GetUnitPtr(int eid);
  /// Adds the handles at positions 0 to ncoo - 1 as inputs; 0 when there was one, then with this variable set.
  int FillDependentForVarGrp(ORVDependentVar& dependent);
  void GetExtVariables(std::vector<ORVExtVar*>& out);  ///< appends
  std::vector<ORVExtVar*>& GetExtVariables() { return m_extVars; }
  void AppendExtVar(ORVExtVar* extVar);  ///< null is ignored; not owned
  std::uint64_t GetNumExtVar() const { return m_extVars.size(); }
  void ClearExtVariables() { m_extVars.clear(); }  ///< deletes nothing

  std::uint64_t m_originalCount;  ///< component count as read
  char m_varnam[257];
  std::int64_t m_ncoo;     ///< components of a value
  std::int64_t m_rank;     ///< tensor rank
  std::int64_t m_ndim;     ///< extent of each tensor index
  std::int64_t m_idtrans;  ///< carried through
  std::int64_t m_lenb, m_lend;
  char m_varkey[257];      ///< empty in files up to version 1.2
  char m_varclass[257];    ///< "CLASS_STRESS" and so on
  char m_type[257];        ///< carried through
  std::int64_t m_tensor;   ///< not 0: the components form a vector or tensor
  std::int64_t m_lvmap;    ///< not 0: there is a `vmap`
  std::int64_t m_subslen;  ///< bytes of the packed component labels
  _ORVDataType m_mbunitType, m_mdunitType;
  int* m_pMbunit;  ///< base units of each component, ncoo
  int* m_pMdunit;  ///< derived units of each component, ncoo
  _ORVDataType m_ubidType, m_ubexpType;
  int* m_pUbid;     ///< base unit ids, component after component, at most 7 ncoo
  float* m_pUbexp;  ///< their exponents
  _ORVDataType m_udidType, m_udexpType;
  int* m_pUdid;     ///< derived unit ids, component after component, at most 7 ncoo
  float* m_pUdexp;  ///< their exponents
  char* m_pCname;   ///< component names, ncoo fields of 256 bytes
  _ORVDataType m_cidType;
  int* m_pCid;       ///< component ids, ncoo
  char* m_pSubscr;   ///< packed labels, subslen bytes
  int* m_pSubscnt;   ///< length of each label, ncoo
  int* m_pSubsoffs;  ///< offset of each label in `m_pSubscr`, ncoo
  float* m_pVmap;    ///< carried through
  int* m_pCompEid;   ///< filled by hosts only
  int* m_pCompType;  ///< filled by hosts only
  int m_orgUnitCount;
  char** m_ppOrgUnitStr;
  int m_unitFlag;
  std::vector<ORVExtVar*> m_extVars;  ///< handles of the components, owned by the filer
  std::vector<ORVUnit*> m_units;      ///< owned

 protected:
  int AppendBlockSchema(std::string& path) override;
};
