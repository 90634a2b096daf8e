#pragma once

#include "orvio/orv_block.h"

/// A status for each entity of one type at one state, such as which elements are active. The library gives the values
/// no meaning. Blocks stand in the "activflags" of a state only.
///
/// The block owns no array: read the header, allocate from the counts, set the pointers, read the data.
class ORVIO_EXPORT ORVEleActivation : public ORVBlock {
 public:
  /// Key 2100. All counts and pointers are 0.
  ORVEleActivation();
  explicit ORVEleActivation(int blockType);
  ORVEleActivation(const ORVEleActivation&) = default;
  ORVEleActivation& operator=(const ORVEleActivation&) = default;
  ~ORVEleActivation() override;

  /// Walks the block `m_etyp`, which must be set, over the states; `name` is not used. `action` gets the name of the
  /// deepest group passed (const char*) as `where`.
  int ReadBlockOver(const char* path, int stages, ORVIterationCallBack action, int first, int last, int step,
                    const char* name) override;
  /// Walks all activation blocks over the states; `name` is not used.
  int IterateBlockOver(const char* path, int stages, ORVIterationCallBack action, int first, int last, int step,
                       const char* name, int reverse) override;

  /// Adds the block to a state (1-based), which is made when it is missing. A name that exists already is left alone,
  /// and a state below 1 has no place for the block: 1.
  int WriteBlock(const char* path, int state, int mode) override;
  int WriteHeader(hid_t header) override;
  int WriteData(hid_t data) override;
  int WriteIndex(hid_t index) override;

  char m_etyp[257];       ///< entity type name and group name of the block
  std::int64_t m_nent;    ///< entities in the block
  std::int64_t m_nindex;  ///< index values
  std::int64_t m_nstate;  ///< states, as the index read takes them
  _ORVDataType m_entidType;
  _ORVDataType m_statusType;
  void* m_entid;   ///< entity ids, nent
  void* m_status;  ///< status of each entity, nent
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
