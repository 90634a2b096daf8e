#pragma once

#include "orvio/orv_block.h"

/// The mesh of one element type: ids, part ids and node ids of its elements, with optional parameters. The
/// library does not interpret a connectivity row. One block per element type name, in
/// "post/constant/connectivities" or in the "connectivities" of a state.
///
/// The block owns no array: read the header, allocate from the counts, set the pointers, read the data.
class ORVIO_EXPORT ORVEleConnectivity : public ORVBlock {
 public:
  /// Key 300. All counts and pointers are 0.
  ORVEleConnectivity();
  ORVEleConnectivity(const ORVEleConnectivity&) = default;
  ORVEleConnectivity& operator=(const ORVEleConnectivity&) = default;
  ~ORVEleConnectivity() override;

  /// Walks the block `m_etypelem`, which must be set, over the states; `name` is not used. `action` gets the name of
  /// the deepest group passed (const char*) as `where`.
  int ReadBlockOver(const char* path, int stages, ORVIterationCallBack action, int first, int last, int step,
                    const char* name) override;
  /// Walks all connectivity blocks over the states; `name` is not used.
  int IterateBlockOver(const char* path, int stages, ORVIterationCallBack action, int first, int last, int step,
                       const char* name, int reverse) override;
  /// Reads one item into the member of its name; the counts and the buffer it needs must be set. Serves the codes
  /// 5 (`nele`), 13, 19 to 24, 26 and 27; every other answers 1. `mode` is not used.
  int ReadAttribute(const char* path, int state, int mode, _ORVBlockAtt att);

  /// Adds the block to a state that is there (1-based), or to the constant section for a state below 1, whose
  /// "connectivities" must be there. A name that exists already is left alone and answers 1. State 0 gets no index.
  int WriteBlock(const char* path, int state, int mode) override;
  int WriteHeader(hid_t header) override;
  /// 1 without elements. Otherwise the answer is that of the last dataset alone.
  int WriteData(hid_t data) override;
  int WriteIndex(hid_t index) override;

  char m_etyp[257];        ///< generic entity type name; empty if absent
  char m_etypelem[257];    ///< element type name and group name of the block
  char m_etyppart[257];    ///< entity type name of the parts that `m_pid` refers to
  char m_etypnode[257];    ///< entity type name of the nodes that `m_ic` refers to
  std::int64_t m_nele;     ///< elements in the block
  std::int64_t m_npele;    ///< nodes per element
  std::int64_t m_ndim;     ///< dimension of the element; -1 when unknown
  std::int64_t m_nbint;    ///< integer parameters per element
  std::int64_t m_nbfloat;  ///< float parameters per element
  std::int64_t m_nindex;   ///< index values
  _ORVDataType m_ideleType;
  _ORVDataType m_pidType;
  _ORVDataType m_icType;
  void* m_idele;  ///< element ids, nele
  void* m_pid;    ///< part id of each element, nele
  void* m_ic;     ///< node ids, nele x npele, row-major
  _ORVDataType m_iparamType;
  _ORVDataType m_fparamType;
  void* m_iparam;  ///< integer parameters, nele x nbint; may stay null
  void* m_fparam;  ///< float parameters, nele x nbfloat; may stay null
  _ORVDataType m_ubidType;
  _ORVDataType m_mbunitType;
  _ORVDataType m_ubexpType;
  void* m_mbunit;  ///< base units of each float parameter, nbfloat
  void* m_ubid;    ///< base unit ids, sum of mbunit
  void* m_ubexp;   ///< base unit exponents, sum of mbunit
  _ORVDataType m_udidType;
  _ORVDataType m_mdunitType;
  _ORVDataType m_udexpType;
  void* m_mdunit;  ///< derived units of each float parameter, nbfloat
  void* m_udid;    ///< derived unit ids, sum of mdunit
  void* m_udexp;   ///< derived unit exponents, sum of mdunit
  _ORVDataType m_indexidentType;
  _ORVDataType m_indexvalType;
  void* m_indexident;  ///< index identifiers, nindex
  void* m_indexval;    ///< index values, nindex

 protected:
  int ReadHeader(hid_t header, int mode) override;
  int ReadData(hid_t data, int mode) override;
  int ReadIndex(hid_t index, int mode) override;
  int AppendBlockSchema(std::string& path) override;
  int ReadAtt(hid_t block, int mode, _ORVBlockAtt att);
};
