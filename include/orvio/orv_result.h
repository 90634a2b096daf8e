#pragma once

#include "orvio/orv_block.h"

class ORVExtVar;
class ORVVariable;
class ORVVariableGrp;
struct ORVDependentVar;

/// An axis of the dataset `res`.
enum _ORVDimensionType : int {
  ORV_DIM_ENTITY = 0,
  ORV_DIM_COMPONENT = 1,
  ORV_DIM_LAYER = 2,
  ORV_DIM_STATE = 3,
  ORV_DIM_COMPLEX = 4,
};

/// Measure of a computed component, and the number of its inputs with it; 0 for a stored component.
enum _ORVComputeType : int;

/// Where the values of a result stand on its entities; kept for the host, never looked at.
enum _ORVResultLocation : int {
  ORV_RESULT_LOCATION_DEFAULT = 0,
};

/// What a complex pair becomes on a selective read. The first bit set counts; "always" converts every selection
/// that holds both parts of its pairs, whatever its start and blocks are.
enum _ORVComplexOutput : int {
  ORV_COMPLEX_MAGNITUDE = 1,
  ORV_COMPLEX_PHASE = 2,  ///< in degrees
  ORV_COMPLEX_REAL = 4,
  ORV_COMPLEX_IMAGINARY = 8,
  ORV_COMPLEX_ALWAYS = 16,
};

/// Sentinels of a selection.
enum _ORVSelection : int {
  ORV_ALL_ENTITIES = -1,
  ORV_ALL_COMPONENTS = -100,
  ORV_ALL_LAYERS = -101,
};

/// A selection: zeroed at first, its two pointers set into its own arrays. It selects the product of its counts,
/// and nothing while a pointer is missing, the rank is below 1 or one of the trailing pointers is set.
struct ORVHyperSlab {
  std::uint64_t m_start[8] = {};
  std::uint64_t m_count[8] = {};
  std::uint64_t m_stride[8] = {};
  std::uint64_t m_block[8] = {};
  int m_rank = 0;
  std::uint64_t* m_pStart = nullptr;
  std::uint64_t* m_pCount = nullptr;
  std::uint64_t* m_pStride = nullptr;
  std::uint64_t* m_pBlock = nullptr;
};

class ORVResult;

/// Asked for the path of an id dataset to link to: `att` is ORV_ATT_IDS, `path` a zeroed buffer of 512 bytes.
typedef _ORVAction (*ORVLinkCallBack)(int att, ORVBlock* block, void* path, void* reserved);

/// One variable's values for one entity or element type in one place of a file: in a state, in the constant
/// section, or across all states. The kinds and their shapes:
///
///     key   kind                  res, slowest axis first
///     1000  entity                nent, ncoo
///     1050  entity, multi-state   nstate, nent, ncoo
///     1100  element               nele, numl, ncoo
///     1150  element, multi-state  nstate, nele, numl, ncoo
///
/// each with 1 added for complex values, which have a last axis of 2 (real, imaginary); 500 is a properties
/// block. The block owns none of its buffers, and copies share them.
class ORVIO_EXPORT ORVResult : public ORVBlock {
 public:
  ORVResult();  ///< block type -1
  explicit ORVResult(int blockType);
  ORVResult(const ORVResult&) = default;
  ORVResult& operator=(const ORVResult&) = default;
  ~ORVResult() override;

  int ReadBlockAt(const char* file, int state, int index, int stages) override;
  int ReadHeader(hid_t group, int flags) override;
  int ReadData(hid_t group, int flags) override;
  int ReadIndex(hid_t group, int flags) override;
  /// Reads this block in each state; the name of the walk is composed from the block's own fields.
  int ReadBlockOver(const char* file, int stages, ORVIterationCallBack action, int first, int last, int step,
                    const char* name) override;
  /// Walks all blocks of this kind in each state.
  int IterateBlockOver(const char* file, int stages, ORVIterationCallBack action, int first, int last, int step,
                       const char* name, int reverse) override;
  /// Writes the block into an existing file. A block that exists is left alone, with status 0, unless the
  /// overwrite mode allows it; then 1, and nothing is written, where the data are of other extents than the stored ones.
  int WriteBlock(const char* file, int state, int sections) override;
  int WriteHeader(hid_t group) override;
  int WriteData(hid_t group) override;
  int WriteIndex(hid_t group) override;

 protected:
  hid_t OpenBlockGroup(int state) override;

 public:
  using ORVBlock::CacheData;
  /// Holds datasets of this block in memory (null or no names: "res" and "indexval"), doubles as floats with `toFloat`.
  int CacheData(IORVBufferManager& manager, const char* file, int state, bool toFloat, std::vector<std::string>* names);
  /// As ReadBlock, but what a buffer of the block is set for comes from memory when all of it is cached.
  int ReadBlockThroughCache(const char* file, int state, int flags);
  /// Fills the member of an item (ids, values or index) from memory: whole with `start` and `count` null, else that part
  /// of a dataset of floats. 1 when it is not cached, or not for that state.
  int FillFromCacheData(int state, _ORVBlockAtt att, int rank, std::uint64_t* start, std::uint64_t* count);
  /// Fills several; 0 if all could be. `stopOnFirst` ends at the first that could not.
  int FillFromCacheData(int state, std::vector<_ORVBlockAtt>& atts, bool stopOnFirst);

  /// Reads one item of the block into the member of its name.
  virtual int ReadAttribute(const char* file, int state, int sections, _ORVBlockAtt att);
  /// Reads a hyperslab of one dataset.
  virtual int ReadSelectiveAttribute(const char* file, int state, int sections, _ORVBlockAtt att, ORVHyperSlab& slab,
                                     bool viaCache);
  virtual int ReadSelectiveAttribute(const char* file, int state, int sections, _ORVBlockAtt att, int rank,
                                     std::uint64_t* start, std::uint64_t* count, std::uint64_t* stride,
                                     std::uint64_t* block, bool viaCache);
  virtual int ReadAtt(hid_t group, int state, _ORVBlockAtt att);
  virtual int ReadSelAtt(hid_t group, int state, _ORVBlockAtt att, int rank, std::uint64_t* start, std::uint64_t* count,
                         std::uint64_t* stride, std::uint64_t* block);
  /// Writes a hyperslab of one dataset; `extent` says by how much an existing one grows and may be null.
  virtual int WriteSelectiveAttribute(const char* file, int state, int sections, _ORVBlockAtt att, int rank,
                                      std::uint64_t* start, std::uint64_t* count, std::uint64_t* stride,
                                      std::uint64_t* block, std::uint64_t* extent);
  int WriteSelAtt(hid_t group, int sections, _ORVBlockAtt att, int rank, std::uint64_t* start, std::uint64_t* count,
                  std::uint64_t* stride, std::uint64_t* block, std::uint64_t* extent);
  int WriteSelAttData(hid_t group, _ORVBlockAtt att, int rank, std::uint64_t* start, std::uint64_t* count,
                      std::uint64_t* stride, std::uint64_t* block, std::uint64_t* extent);

  // ---- Identity

  int SetBlockType(int blockType);  ///< answers the old one
  bool IsEntityResult() const;
  bool IsElementResult() const;
  bool IsSinglestateBlk() const;
  bool IsMultistateBlk() const;
  bool IsComplexBlk() const;
  bool IsConstantBlk() const { return m_constantBlk != 0; }
  void SetConstantBlk(bool constant) { m_constantBlk = constant ? 1 : 0; }
  /// Each cut at 256 characters. A block of the split layout that had other names forgets its path: it is looked for by
  /// the names alone.
  void SetEntityAndVarName(const std::string& type, const std::string& variable);
  std::string GetElementType();
  /// The block-wide frame id and the frame type; the answer is the frame switch.
  int GetFrameSwitch(int& frameId, std::string& frameType);
  bool HasSeriesName(const char* name);  ///< without regard to case; false for null and for a block without a series
  /// Whether the series holds "LOADCASE_", and the number that starts at its tenth character.
  bool IsLoadCaseSeriesName(int& loadCase);
  /// Whether the block's values are those of a variable, by its key (or its name where it has none), or of a group, by
  /// the name of the group or the identity of a member. False for a block without a definition.
  bool IsKeyOrVariableAvailable(const char* identity);
  /// The handle of that name; null when there is none.
  ORVExtVar* GetExtVariableFrmCmp(const char* name);
  /// The tail of the block's path from its type group on; 1 with the text left alone when there is none.
  int GetRelativePathFromResultGroup(std::string& path);
  _ORVResultLocation GetResultLocationType() const { return m_location; }
  void SetResultLocationType(_ORVResultLocation location) { m_location = location; }
  void SetLinkCallBack(ORVLinkCallBack callback) { m_linkCallBack = callback; }
  /// Walks the section or state in which blocks of this kind lie, below the entity type and variable that are set,
  /// and gives `action` every block found there. 0 after a walk, else 1.
  int DiscoverBlock(const char* file, int state, int flags, ORVIterationCallBack action);
  /// Forgets (frees nothing): -1 everything, 1 header fields, 2 data pointers, 4 index pointers.
  void ResetSection(int sections);

  // ---- Geometry

  /// Fills the axes of `res`, slowest first (up to five), and answers their number; 0 for what is no result.
  int GetResDataSetDimension(int* dims);
  int GetResDimensionTypeIndex(_ORVDimensionType type);  ///< position of an axis; -1 where there is none
  /// Counts from the actual extents of `res`, 0 for an axis that the kind does not have, cut to 32 bits. 1 with all
  /// counts 0 when the rank does not fit the kind.
  int GetResDataSetDimValues(int rank, std::uint64_t* dims, int* nEnt, int* nCmp, int* nLayer, int* nState,
                             int* nComplex);
  int GetTotalCount(int rank, std::uint64_t* count);  ///< product; 0 for rank 0 and for what no int holds
  int GetValuesPerComponent();                        ///< 2 for complex kinds, else 1
  int HasIntegrationPoint(int* nLayer);               ///< 1 and the layers for element kinds, else 0 and 0
  /// Steps in values between the places of each axis, for a part of the block: a count that is 0 or not below that of
  /// the block means the whole axis. `offsets` has room for five and is filled as far as the kind has steps;
  /// `complexSel` 1 means one part of each pair. 0 for a kind that is not served and for steps beyond 64 bits.
  int GetResOffSets(std::uint64_t* offsets, int nEnt, int nCmp, int nLayer, int ignored, int complexSel);

  // ---- Selections: -100 all components, -101 all layers, -1 all entities. States and complex parts are always
  // selected whole. A component or layer outside the block selects the first, but a component beyond the last selects
  // nothing. `start` and `count` have room for five.

  /// The answer is the rank, 0 for an empty selection.
  int GetComponentSelection(int comp, int* rank, std::uint64_t* start, std::uint64_t* count, int layer, int entity);
  /// The same for a component (not `extended`) or the internal id of a handle, whose components are merged.
  int GetComponentSelectionWrap(int id, int* rank, std::uint64_t* start, std::uint64_t* count, int layer, int entity,
                                bool extended);
  /// The same for all components of the associated variable, if it has that name.
  int GetComponentSelectionByVariableName(const char* name, int* rank, std::uint64_t* start, std::uint64_t* count,
                                          int layer, int entity);
  /// Selects the whole of the index datasets (ORV_ATT_INDEXIDENT, ORV_ATT_INDEXVAL); 1 for every other item.
  int GetAttributeSelection(_ORVBlockAtt att, int* rank, std::uint64_t* start, std::uint64_t* count);
  /// The bounding slab of a handle, by its internal id (`isExtVarId`) or its external one; 1 when there is none.
  int GetHyperSelection(int id, ORVHyperSlab& slab, bool isExtVarId, int layer, int entity);
  /// Appends one slab per stored component of a handle, by internal id; the caller deletes them with `delete`.
  void GetVarSelection(int extVarId, std::vector<ORVHyperSlab*>& slabs, int layer, int entity);
  /// The bounding slab of a list; it may hold values that no slab of the list names. A list of one is copied with its
  /// pointers, which lead into that slab. 1 with `merged` left alone for an empty list and for unequal ranks.
  int GetHypSelection(std::vector<ORVHyperSlab*>& slabs, ORVHyperSlab& merged);
  /// Component count and offset of the associated variable, if it has that name; else 1 with 0 and -1.
  int GetVariableCompAndOffset(const char* name, int& nCmp, int& offset);
  /// Selects all components of the associated variable, if it has that name, in a slab whose pointers are set. All
  /// layers are selected by `layerSel`, one by `layer`. 1 when nothing was selected.
  int FillDependentForVarGrp(const char* name, ORVHyperSlab& slab, int layerSel, int layer, int entity);
  /// Adds the stored components of the associated variable, if it has that name, as inputs; 0 when there was one.
  int FillDependentForVarGrp(const char* name, ORVDependentVar& dependent);

  // ---- Component types, from the associated variable; -1 for a block without one. A result type is the external id of
  // a handle.

  int GetResultTypeFromIndex(int index);       ///< result type of the handle at a position
  int GetComponentTypeFromIndex(int index);    ///< measure of the handle at a position
  int GetComponentIndex(int type);             ///< position of a result type
  int GetComponentType(int type, int* index);  ///< measure and component of a result type
  /// Measure of the block's values as a whole: 0 scalar, 50 vector, 51 and 55 tensor. Needs tables of a host.
  int GetBlockComponentType(int index);
  int GetVariableComputeTypeFrmIId(int id, bool byIID);  ///< measure of a handle
  /// Kind of motion that the name of the variable stands for: 1 displacement, 2 velocity, 3 acceleration, else 0. The
  /// name is that of the associated variable, or the block's own without one.
  int GetVariableType();
  /// Measure and component count to read for a result type: of the first measure of a whole value from its position on.
  /// 1 when there is none.
  int GetResultTypeToReadAllComponent(int type, _ORVComputeType& computeType, int& nCmp, int& outType);
  /// Components that a measure is computed from; the answer is how many values it gives. 0 and 0 for every other.
  int GetNumCompForCompution(_ORVComputeType computeType, int& nCmp);

  // ---- Names of items

  int GetAttributeName(_ORVBlockAtt att, char* out);
  /// Full path of an item as a file of that version has it, without a leading slash. `out` has room for 1024 bytes.
  int GetAttributePath(int sections, _ORVBlockAtt att, int state, char* out, _ORVVersion version);
  int GetDatasetNames(int sections, std::vector<std::string>& names);
  int GetDatasetInfoFromBlock(_ORVBlockAtt att, std::string& name, _ORVDataType& type, void** ptr, int& rank,
                              std::uint64_t* dims);

  char m_etyp[257];          ///< entity type name, or element type name of element kinds
  std::int64_t m_nent;       ///< entities or elements
  char m_etypvar[257];       ///< variable name
  char m_etypzone[257];      ///< zone type
  std::int64_t m_ncoo;       ///< components of a value
  std::int64_t m_fswitch;    ///< 0: one frame id for the block, else one per entity
  std::int64_t m_dmpswitch;  ///< written, never read back
  char m_etypframe[257];     ///< frame type
  std::int64_t m_nstate;     ///< states of a multi-state block; 0 when absent
  std::int64_t m_numl;       ///< layers or integration points per element
  std::int64_t m_zoneid;     ///< 0 when absent
  std::int64_t m_ndim;       ///< coordinates per integration point location
  std::int64_t m_nindex;     ///< index values
  char m_series[257];        ///< series name
  _ORVDataType m_entidType;
  _ORVDataType m_resType;
  _ORVDataType m_fidType;
  void* m_entid;           ///< ids, nent
  void* m_res;             ///< values, shape as above
  void* m_fid;             ///< frame id of each entity, nent
  std::int64_t m_fidglob;  ///< block-wide frame id
  _ORVDataType m_elocType;
  void* m_eloc;  ///< integration point locations, numl x ndim
  _ORVDataType m_indexidentType;
  _ORVDataType m_indexvalType;
  void* m_indexident;        ///< nindex, or nstate x nindex
  void* m_indexval;          ///< nindex, or nstate x nindex
  char m_subBlockName[257];  ///< last group name where it is not the variable's
  _ORVEntityType m_entityType;
  int m_baseEntityType;
  int m_readIds;  ///< not 0: ids are read and written beside the values
  int m_constantBlk;
  int m_spare0;
  ORVVariable* m_variable;        ///< not owned
  ORVVariableGrp* m_variableGrp;  ///< not owned; only one of the two is set
  int m_complexOutput;            ///< see _ORVComplexOutput
  int m_spare1;
  int m_spare2;
  int m_fetchSkip;
  ORVLinkCallBack m_linkCallBack;
  _ORVResultLocation m_location;

 private:
  friend struct ORVResultAccess;  // the tests and helpers of the library itself

  int GetResultPath(const _OH5BlockKeyMap* key, char* path);  // room for 3000 bytes
  hid_t GetResultGrp(int state);
  hid_t GetResultBlkGrp(const _OH5BlockKeyMap* key, hid_t place);
  static void CreateStatePath(int state, char* path);
  int GetResultValueDimension(std::uint64_t* dims);
};
