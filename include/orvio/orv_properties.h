#pragma once

#include "orvio/orv_result.h"

/// For each entity a record of texts, integers and floats, in place of values. Key 500. The block lies in the constant
/// section or in a state; the library reads it and does not write it.
class ORVIO_EXPORT ORVProperties : public ORVResult {
 public:
  ORVProperties();
  ORVProperties(const ORVProperties&) = default;
  ORVProperties& operator=(const ORVProperties&) = default;
  ~ORVProperties() override;

  void Initialize();  ///< zeroes the counts and buffers below; frees nothing

  int ReadHeader(hid_t group, int flags) override;
  /// Reads what a buffer and a count are set for.
  int ReadData(hid_t group, int flags) override;
  int ReadIndex(hid_t group, int flags) override;
  int ReadSelAtt(hid_t group, int state, _ORVBlockAtt att, int rank, std::uint64_t* start, std::uint64_t* count,
                 std::uint64_t* stride, std::uint64_t* block) override;
  /// As ReadSelAtt, but with a callback set, values asked for and ids wanted, the ids are read into `m_entid` and the
  /// texts are handed to the callback.
  int ReadSelAttWithCallBack(hid_t group, int state, _ORVBlockAtt att, int rank, std::uint64_t* start,
                             std::uint64_t* count, std::uint64_t* stride, std::uint64_t* block);

  int m_length;     ///< bytes of one text
  int m_nbfloat;    ///< floats per entity
  int m_nbid;       ///< id columns per entity
  int m_nbint;      ///< integers per entity
  int m_nbstring;   ///< texts per entity
  char* m_cparam;   ///< texts; not owned
  int* m_iparam;    ///< nent x nbint; not owned
  float* m_fparam;  ///< nent x nbfloat; not owned
  /// Given the status of the read and the block, whose `m_cparam` holds the texts for the length of the call.
  void (*m_readCallBack)(int status, ORVProperties* block, void* data);
  void* m_readCallBackData;
};
