#pragma once

#include <string>
#include <vector>

#include "orvio/orv_block.h"
#include "orvio/orv_variable.h"

/// Definition of what a result holds that stores several quantities side by side: its variables by key, and for each
/// the number of components and the offset of the first. It answers for its variables what a variable answers for
/// itself. Stands in "post/constant/variablegroup/<name>". Names and keys compare without regard to case.
///
/// The arrays are the caller's or the filer's (from the C allocator); copies share them.
class ORVIO_EXPORT ORVVariableGrp : public ORVBlock {
 public:
  /// Key 32.
  ORVVariableGrp();
  ORVVariableGrp(const ORVVariableGrp&) = default;
  ORVVariableGrp& operator=(const ORVVariableGrp&) = default;
  ~ORVVariableGrp() override;

  int ReadBlock(const char* path, int state, int flags) override;
  int ReadBlockAt(const char* path, int state, int index, int flags) override;
  int ReadNumBlock(const char* path, int state, int* count) override;
  int ReadHeader(hid_t header, int flags) override;
  int ReadData(hid_t data, int flags) override;
  int IterateBlock(const char* path, int state, int flags, ORVIterationCallBack action) override;
  /// Writes the group below the constant section whatever the state. Data of other extents than those that are there
  /// already answer 1.
  int WriteBlock(const char* path, int state, int flags) override;
  int WriteHeader(hid_t header) override;
  int WriteData(hid_t data) override;

  /// Group of the block: its path under `a` in the single layout, else its name under `b`. The caller closes it.
  hid_t GetVariableGroupBlkGrp(hid_t a, hid_t b);

  // ---- The variables that the keys stand for. They are not owned.

  void AppendVariable(ORVVariable* variable);                    ///< null is ignored
  ORVVariable* GetVariableFromVarName(const char* name);         ///< the last of that name; null when there is none
  ORVVariable* GetVariableFromVarKey(const char* key);           ///< the first of that key
  ORVVariable* GetVariableObjFrmKeyOrVar(const char* identity);  ///< the first of that key, or name where it has none
  bool IsKeyOrVariableAvailable(const char* identity);
  bool IsVariableAvailable(const char* name);  ///< false without counts or offsets
  /// Whether the key is listed, be there a variable of it or not; `index` is its position, or -1.
  bool IsVariableKeyAvailable(const char* key, int& index);
  std::uint64_t GetKeys(char** keys);  ///< the key fields, and their number
  std::uint64_t GetNumberOfVariables() const { return m_variables.size(); }
  std::vector<ORVVariable*>& GetVariables() { return m_variables; }
  const std::vector<ORVVariable*>& GetVariables() const { return m_variables; }
  void GetVariableNames(std::vector<std::string>& names);  ///< emptied first
  /// The part before the ':' of the first key that has one; 1 with `out` left alone when none has.
  int GetVariableKeyPrefix(std::string& out);
  std::uint64_t GetNumOrgCmpCnt();  ///< components of all variables, as read
  /// Forgets (frees nothing): 1 name and counts, 2 the array pointers.
  void ReSetBlock(int flags);
  /// Makes the original unit strings of the variables anew; nothing without unit objects.
  void UpdateOrgUnitStr();

  /// Shape and class of the variable at a position (a negative one is the first), and the count and offset stored for
  /// that position. 1 for a position that is not listed.
  int GetVariableInfo(_ORVVarType& varType, _ORVVarClassType& varClass, int& count, int& offset, int index);
  /// Count and offset of the variable of that name, else 1. Type and class are left as they are.
  int GetVariableInfo(const char* name, _ORVVarType& varType, _ORVVarClassType& varClass, int& count, int& offset);
  /// The same by key, or by name where a variable has none.
  int GetVariableInfoFromKeyOrVar(const char* identity, int& count, int& offset);

  // ---- Handles of the components, of all variables in order; see ORVVariable. `byIID` selects the internal id.

  ORVExtVar* GetExtVarFrmId(int id, bool byIID);
  ORVVariable* GetVariableFrmId(int id, bool byIID);  ///< the last variable that has the handle
  int GetExtVarId(int id, bool byIID);
  bool IsExtVarAvailable(int id, bool byIID);
  void GetExtVarTypesOrCompTypes(std::vector<int>& eids, std::vector<int>& types);
  bool IsExtCompTypeAvailable(int type);
  void GetExtVarFrmExtendedType(int type, std::vector<ORVExtVar*>& out);
  /// The text must be both the name and the identity of a variable.
  ORVExtVar* GetExtVarFrmKeyOrVariable(const char* identity, int type);
  ORVExtVar* GetExtVariableFrmCmp(const char* name);
  int GetIIDFromKeyOrVariable(const char* identity, std::vector<int>& out, bool wantIID);
  ORVUnit* GetUnitPtr(int eid);
  /// Lets the variable of that name add its handles as inputs; 1 when there is none.
  int FillDependentForVarGrp(const char* name, ORVDependentVar& dependent);
  void GetExtVariables(std::vector<ORVExtVar*>& out);  ///< appends
  std::uint64_t GetNumExtVar();
  void ClearExtVariables();  ///< deletes nothing

  char m_grpName[256];
  std::int64_t m_nvar;  ///< keys listed
  std::int64_t m_ncoo;  ///< components of a result of this group
  int* m_pCnt;          ///< components of each variable, nvar
  int* m_pOffs;         ///< first component of each variable, nvar
  char* m_pKeys;        ///< nvar fields of 256 bytes
  /// Those that were found, in the order of their keys: after a key that was not, positions differ from those of the
  /// arrays.
  std::vector<ORVVariable*> m_variables;

 protected:
  int AppendBlockSchema(std::string& path) override;
};
