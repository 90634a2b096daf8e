#pragma once

#include "orvio/orv_block.h"

/// The entities of one type: their ids, with optional titles and a table of further integers, which the library
/// carries and does not interpret. Blocks stand in "post/constant/attributes" or in the "attributes" of a state.
///
/// The block frees nothing. ORVFiler::ReadEntAttribute and its like allocate its arrays with the C allocator, and
/// ORVFiler::CleanUpEntAttribute frees them; who reads by the block's own operations sets buffers of their own.
class ORVIO_EXPORT ORVEntAttribute : public ORVBlock {
 public:
  /// Key 200. Counts and pointers are 0, titles have 256 bytes.
  ORVEntAttribute();
  ORVEntAttribute(const ORVEntAttribute&) = default;
  ORVEntAttribute& operator=(const ORVEntAttribute&) = default;
  ~ORVEntAttribute() override;

  /// Returns members to their initial values: 1 name, counts and title length, 2 types and arrays, 4 index. Frees
  /// nothing.
  void InitializeBlock(int mask);
  bool IsEntityTypeName(const char* name);  ///< without regard to case; false for null and ""
  void SetDuplicateNameFlag(bool flag) { m_duplicateName = flag; }
  bool GetDuplicateNameFlag() { return m_duplicateName; }
  /// Name of the group that holds such blocks, "attributes" or "identifiers". `out` has room for 256 bytes.
  void GetGroupName(char* out);

  /// Walks the block `m_etyp`, which must be set, over the states; `name` is not used. `action` gets the name of the
  /// deepest group passed (const char*) as `where`.
  int ReadBlockOver(const char* path, int stages, ORVIterationCallBack action, int first, int last, int step,
                    const char* name) override;
  /// Walks all blocks of this kind over the states; `name` is not used.
  int IterateBlockOver(const char* path, int stages, ORVIterationCallBack action, int first, int last, int step,
                       const char* name, int reverse) override;

  /// Writes header and data; the next state is made when it is missing. The index is left to WriteIndex. Data of other
  /// extents than those that are there already answer 1.
  int WriteBlock(const char* path, int state, int mode) override;
  int WriteHeader(hid_t header) override;
  /// 1 without entities. Titles are taken as 256 bytes each for files up to version 1.2, and as `m_length` bytes for later
  /// ones.
  int WriteData(hid_t data) override;
  int WriteIndex(hid_t index) override;

  char m_etyp[257];       ///< entity type name and group name of the block
  std::int64_t m_nent;    ///< entities in the block
  std::int64_t m_nuid;    ///< integers per entity
  std::int64_t m_nindex;  ///< index values
  int m_length;           ///< bytes per title
  _ORVDataType m_entidType;
  _ORVDataType m_uidType;
  void* m_entid;  ///< entity ids, nent
  void* m_uid;    ///< further integers, nent x nuid, row-major
  char* m_title;  ///< titles, nent of `m_length` bytes, and a byte behind the last; a full title has no terminator
  _ORVDataType m_indexidentType;
  _ORVDataType m_indexvalType;
  void* m_indexident;    ///< index identifiers, nindex
  void* m_indexval;      ///< index values, nindex
  void* m_userData;      ///< the host's; copied with the block
  bool m_duplicateName;  ///< see SetDuplicateNameFlag; true at first

 protected:
  int ReadHeader(hid_t header, int mode) override;
  int ReadData(hid_t data, int mode) override;
  int ReadIndex(hid_t index, int mode) override;
  int AppendBlockSchema(std::string& path) override;
};

/// The same record in "identifiers": the ids that entities go by outside. Key 250. The constant section of a file has
/// the group from version 2.1 on.
class ORVIO_EXPORT ORVIdentifiers : public ORVEntAttribute {
 public:
  ORVIdentifiers();
  ORVIdentifiers(const ORVIdentifiers&) = default;
  ORVIdentifiers& operator=(const ORVIdentifiers&) = default;
  ~ORVIdentifiers() override;
};
