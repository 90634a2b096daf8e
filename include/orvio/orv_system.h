#pragma once

#include "orvio/orv_block.h"

/// What a file tells of its origin and its units: title, solver, dates, the base units of its unit system and the units
/// derived from them. Stands at "post/constant/system". Variables refer to the units by id.
///
/// The arrays are the caller's or the filer's (from the C allocator); copies share them.
class ORVIO_EXPORT ORVSystem : public ORVBlock {
 public:
  ORVSystem();  ///< as after Initialize
  ORVSystem(const ORVSystem&) = default;
  ORVSystem& operator=(const ORVSystem&) = default;
  ~ORVSystem() override;

  /// Returns all fields to their initial values and the key to 10. Frees nothing.
  void Initialize();

  int ReadHeader(hid_t header, int flags) override;
  int ReadData(hid_t data, int flags) override;
  /// Writes the block below the constant section whatever the state. Data of other extents than those that are there
  /// already answer 1.
  int WriteBlock(const char* path, int state, int flags) override;
  int WriteHeader(hid_t header) override;
  int WriteData(hid_t data) override;
  int WriteIndex(hid_t index) override;  ///< nothing to write; 0

  /// Serves no item; 1.
  int ReadSystemAtt(hid_t group, _ORVBlockAtt att);

  char m_title[257];
  char m_sys[257];  ///< name of the unit system
  char m_solverName[257];
  char m_solverVers[257];
  char m_cdate[9], m_ctime[9];  ///< creation
  char m_mdate[9], m_mtime[9];  ///< modification
  std::int64_t m_nbunit;        ///< base units
  std::int64_t m_ndunit;        ///< derived units
  _ORVDataType m_ubidType, m_ubconType, m_ubshiftType;
  int* m_pUbid;       ///< base unit ids, nbunit
  char* m_pUbtyp;     ///< their dimensions ("Length"), nbunit fields of 256 bytes
  char* m_pUbnam;     ///< their texts ("mm"), nbunit fields of 256 bytes
  float* m_pUbshift;  ///< offsets to SI, nbunit
  float* m_pUbcon;    ///< factors to SI, nbunit
  _ORVDataType m_udidType, m_udscalType;
  int* m_pUdid;      ///< derived unit ids, ndunit
  char* m_pUdnam;    ///< their texts ("MPa"), ndunit fields of 256 bytes
  float* m_pUdscal;  ///< their scales, ndunit
  _ORVDataType m_ndbunitType, m_udbidType, m_udbexpType;
  int* m_pNdbunit;          ///< base units in each derived unit, ndunit
  int* m_pUdbid;            ///< ids of those, derived unit after derived unit; room for ndunit x nbunit
  float* m_pUdbexp;         ///< their exponents, likewise
  std::int64_t m_cversion;  ///< version of the creator; -1 when unknown, and then not stored

 protected:
  int AppendBlockSchema(std::string& path) override;  ///< the block has no level of its own
};
