#pragma once

#include "orvio/orv_block.h"

/// The parts of a model for one part type: ids and titles, with optional material ids, material types, colours and
/// property types, whose values are the producer's. Blocks stand in "post/constant/parts" or in the "parts" of a state.
///
/// The block owns no array: read the header, allocate from the counts, set the pointers, read the data. An optional
/// array whose dataset is missing is set to null by the read.
class ORVIO_EXPORT ORVPart : public ORVBlock {
 public:
  /// Key 100. Counts and pointers are 0, titles have 256 bytes.
  ORVPart();
  ORVPart(const ORVPart&) = default;
  ORVPart& operator=(const ORVPart&) = default;
  ~ORVPart() override;

  /// Adds the block to the constant section, or to a state, which is made when it is the next one. A name that exists
  /// already is left alone and answers 1. Property types are stored in files up to version 1.2 only.
  int WriteBlock(const char* path, int state, int mode) override;
  int WriteHeader(hid_t header) override;
  int WriteData(hid_t data) override;

  char m_etyppart[257];   ///< part type name and group name of the block
  std::int64_t m_npart;   ///< parts in the block
  std::int64_t m_nindex;  ///< index values
  int m_length;           ///< bytes per title
  _ORVDataType m_pidType;
  _ORVDataType m_midType;
  _ORVDataType m_mtypType;
  _ORVDataType m_pcolType;
  _ORVDataType m_pvtypType;
  void* m_pid;  ///< part ids, npart
  /// Titles, npart of `m_length` bytes, and a byte behind the last; a full title has no terminator. A write of a file up
  /// to version 1.2 takes 256 bytes each, whatever `m_length` is.
  char* m_title;
  void* m_mid;    ///< material ids, npart; null for none
  void* m_mtyp;   ///< material types, npart; null for none
  void* m_pcol;   ///< colours, npart; null for none
  void* m_pvtyp;  ///< property types, npart; null for none
  _ORVDataType m_indexidentType;
  _ORVDataType m_indexvalType;
  void* m_indexval;  ///< index values, nindex

 protected:
  int ReadHeader(hid_t header, int mode) override;
  int ReadData(hid_t data, int mode) override;
  int AppendBlockSchema(std::string& path) override;
};
