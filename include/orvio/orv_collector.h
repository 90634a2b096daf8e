#pragma once

#include "orvio/orv_block.h"

/// Named lists of entity ids: each collector of the block has an id and, for each of the block's entity types, a count
/// of ids. Blocks stand in "post/constant/collector" or in the "collector" of a state. Meshes that change tie their
/// entities to those they came from by the collectors "NODE_FATHERS" and "SHELL_FATHERS".
///
/// The block frees nothing. ORVFiler::ReadCollector and its like allocate its arrays with the C allocator, and
/// ORVFiler::CleanUpCollector frees them; who reads by the block's own operations sets buffers of their own.
class ORVIO_EXPORT ORVCollector : public ORVBlock {
 public:
  /// Key 400. All counts and pointers are 0.
  ORVCollector();
  ORVCollector(const ORVCollector&) = default;
  ORVCollector& operator=(const ORVCollector&) = default;
  ~ORVCollector() override;

  /// Returns members to their initial values: 1 name and counts, 2 types and arrays, 4 index. Frees nothing.
  void InitializeBlock(int mask);

  /// Does nothing and answers 1.
  int IterateBlockOver(const char* path, int stages, ORVIterationCallBack action, int first, int last, int step,
                       const char* name, int reverse) override;

  /// Writes the block into the constant section, or into a state that is there. State 0 gets no index. Data of other
  /// extents than those that are there already answer 1.
  int WriteBlock(const char* path, int state, int mode) override;
  int WriteHeader(hid_t header) override;
  int WriteData(hid_t data) override;  ///< 1 without collectors, types or ids
  int WriteIndex(hid_t index) override;

  char m_etypcoll[257];    ///< collector type name and group name of the block
  std::int64_t m_ncoll;    ///< collectors in the block
  std::int64_t m_ntyp;     ///< entity types
  std::int64_t m_nenttot;  ///< ids of all collectors
  std::int64_t m_nindex;   ///< index values
  _ORVDataType m_idcollType;
  _ORVDataType m_nentType;
  _ORVDataType m_entidType;
  void* m_idcoll;  ///< collector ids, ncoll
  char* m_etyp;    ///< entity type names, ntyp of 256 bytes, and a byte behind the last
  void* m_nent;    ///< ids that collector i holds of type j, ncoll x ntyp, row-major
  void* m_entid;   ///< ids, nenttot: collector by collector, type by type
  _ORVDataType m_indexidentType;
  _ORVDataType m_indexvalType;
  void* m_indexident;  ///< index identifiers, nindex
  void* m_indexval;    ///< index values, nindex

 protected:
  int ReadHeader(hid_t header, int mode) override;
  int ReadData(hid_t data, int mode) override;
  int ReadIndex(hid_t index, int mode) override;
  int AppendBlockSchema(std::string& path) override;
};
