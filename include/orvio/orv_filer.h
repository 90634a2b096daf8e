#pragma once

#include <string>
#include <vector>

#include "orvio/orv_collector.h"
#include "orvio/orv_definitions.h"
#include "orvio/orv_ent_attribute.h"
#include "orvio/orv_entity_type.h"
#include "orvio/orv_ext_var.h"
#include "orvio/orv_incr_index.h"
#include "orvio/orv_index.h"
#include "orvio/orv_properties.h"
#include "orvio/orv_result.h"
#include "orvio/orv_result_values.h"
#include "orvio/orv_system.h"
#include "orvio/orv_types.h"
#include "orvio/orv_unit.h"
#include "orvio/orv_variable_grp.h"

struct ORVContainer;

/// The facade of the library: one object per file. It does nothing until told, and no file stays open between
/// its operations. Status answers are 0 for success and 1 for failure unless told otherwise. What was read belongs to
/// the filer: the pointers and lists that it hands out live until it is cleared or destroyed. Lookups append to the
/// caller's vector and empty it nowhere.
///
/// Filers share the process-wide switches and the reader pool: use them from one thread.
class ORVIO_EXPORT ORVFiler {
 public:
  // ---- Lifecycle

  /// A filer on a path; null gives an empty path. The file is not touched.
  explicit ORVFiler(const char* path);
  /// Frees what was read from the file, together with the last filer that shares it.
  ~ORVFiler();
  /// Both filers then share what was read: there is no deep copy.
  ORVFiler(const ORVFiler& other);
  ORVFiler& operator=(const ORVFiler& other);

  void SetConfig(_ORVFilerConfig config);
  void ClearConfig(_ORVFilerConfig config);
  int CheckConfig(_ORVFilerConfig config);  ///< the bit's value, or 0
  bool IsConfigToSkipMultiStateData();
  bool IsConfigToSkipSingleStateData();

  /// Keeps the file of reads open between operations, which saves most of the time of small ones, until it is called with
  /// false or the filer ends. Each operation still sees the file as it is then: one that was changed or replaced is opened
  /// anew. It keeps no writer waiting, and a write by this process closes the file for its time. Not kept is a file that
  /// has changed within the last moment. 1 for a filer without a file.
  int KeepFileOpen(bool keep = true);

  const char* GetFilePath();
  /// Version of the file, read on first demand and kept; 0.0.0 for a file that cannot be read.
  ORVFileVersion* GetFileVersion();
  int GetMajorVersion();
  bool IsMajorVersion(int major);
  int GetMajorWriteVersion();  ///< 1 without a write container
  /// Texts of the unit system block: null until InitReader or ReadSystemBlock has read one.
  const char* GetTitle();
  const char* GetSolverName();
  const char* GetSolverVersion();
  /// 0 without variables; else 1 for single-state results or properties, plus 2 for multi-state results.
  int GetAvailableDataset();
  /// True if 1 or 2 is set in `mask`, whatever the file holds.
  bool IsDatasetAvailable(int mask);
  /// Whether the file has a group of that name at its root.
  bool HasRootGroup(const char* name);

  /// Reads a block of this file; see ORVBlock::ReadBlock.
  int ReadBlock(ORVBlock* block, int state, int stages);

  // ---- Start-up

  /// Reads what the filer must know to answer: variables and groups, headers of the results (of the multi-state
  /// section, the constant section and the first state), the unit system, index types and properties, and gives every
  /// component a handle. It reads no values. `nextId` is the next free id of a handle (below 1: 1) and is raised.
  /// 0; 1 without variables or results, or when memory runs out; 18 without results where states or constants were to be
  /// skipped. A second call clears first.
  int InitReader(int& nextId);
  /// Reads the headers of the multi-state results that InitReader was told to skip, or again with `force`. 1 when there
  /// was nothing to do or nothing was found, or when memory runs out.
  int ReadMultiStateBlocks(bool force);
  int ReadSystemBlock();  ///< reads the unit system; 0 at once if it is there
  /// Adds the results that only later states have: those of one state, of all from the second on (below 1), or with
  /// `mode` 1 of all from `state` on. `added` counts those without a twin in the list. `nextId` is the next free id of a
  /// handle; -1 for the one after the largest. 1 when memory runs out; what was added till then may lack handles.
  int UpdateContainer(int state, int& added, int nextId, int mode);
  /// For a file that has grown: extents of the multi-state results are read anew, state indexes at their next demand. The
  /// indexes of GetTagIncrIndex and AppendTagedIndex are deleted, and the map of BuildGlobalIncrMap.
  void InitForReload();

  // ---- Messages and switches

  /// Receives the texts of all filers of the process; null silences them.
  static void SetVerbosCallback(ORVMessageCallBack callback);
  static ORVMessageCallBack _m_pMessageFuc;
  /// Compression on with `digits` if `on` is not 0 and `digits` not negative; else off.
  static void SetGlobalCompressionParameters(int on, int digits);

  // ---- Variables and handles

  /// Binds each result to the variable, or group where the file has groups, of its name, and gives every component of
  /// it a handle. `nextIID` is raised. `applicable` is 1 for single-state results, 2 for multi-state ones.
  int AssociateVariables(std::vector<ORVResult*>& results, int& nextIID, int applicable);
  std::vector<ORVVariable*>& GetVariables();
  std::vector<ORVVariableGrp*>& GetVariableGroups();
  ORVVariable* GetVariable(const char* name);          ///< the first of that name; null when there is none
  ORVVariableGrp* GetVariableGroup(const char* name);  ///< the first of that name
  /// Appends the first variable of each name, or key; 0 if any was found.
  int GetVariableBlocks(std::vector<const char*>& names, std::vector<ORVVariable*>& out, bool byKey);
  /// The part before the ':' of a variable's key, from the single-state results (1) or the multi-state ones (2).
  int GetVariableKeyPrefix(std::string& out, int which);
  ORVSimulationType* GetIndexTypes();  ///< null where there are none
  ORVSystem* GetSystem();              ///< null where there is none; never reads

  /// All handles, stored and computed, in the order of their making.
  std::vector<ORVExtVar*>& GetExtVariables();
  std::uint64_t GetNumExtVariables();
  ORVExtVar* GetExtVariable(const char* name);        ///< the first of that name; null when there is none
  ORVExtVar* GetExtVariable(int id, bool byIID);      ///< by internal id, or by external id
  ORVVariable* GetVariableFrmID(int id, bool byIID);  ///< the first variable that has the handle
  /// Makes handles under new names and types for `count` existing ones from `iids[start]` on. A name that a result of
  /// the list `which` (1 single-state, 2 multi-state) goes by already is passed over. 0 if one was made.
  ///
  /// Pass k looks for a clash of `names[start + k]` and makes `names[k]` with `types[k]`.
  int CopyCreateExtendedVariables(std::vector<int>& iids, std::uint64_t start, std::uint64_t count,
                                  std::vector<const char*>& names, std::vector<int>& types, int which, bool copyUnit);
  /// Chooses the computed measures of each variable from now on; null for the built-in tables.
  void SetExtedComputedTypeCallBackHandler(ORVExtendComputedTypeCallBack handler);
  void* SetFilerCallBackClient(void* client);  ///< answers the former one

  /// Appends nothing: assigns the base units and derived units of the file to the vectors.
  void GetUnitList(std::vector<ORVUnit*>& base, std::vector<ORVUnit*>& derived);
  /// Appends the units of a component, by the internal id of its handle; a computed one has those of component 0. `out`
  /// is marked as dimensionless where the file says so. The units are those of GetUnitList. The flag plays no part.
  void GetComponentUnit(int iid, ORVVariableUnit& out, bool flag);
  void GetComponentUnit(ORVVariable* variable, int component, ORVVariableUnit& out);  ///< the same for a component

  // ---- Results. `type` is a block key, -1 for any. `flags` chooses the list: 1 single-state and constant results,
  // else 2 multi-state ones. An empty vector of types passes all; where names and types are all empty, nothing is found.

  std::vector<ORVResult*>& GetResultList(int singleState);  ///< 0: the multi-state list, else the other
  void GetResultBlks(std::vector<ORVResult*>& out, int type, int flags);
  /// By entity type and key or variable name.
  void GetResultBlks(std::vector<_ORVEntityType>& entities, std::vector<const char*>& names,
                     std::vector<ORVResult*>& out, int type, int flags);
  /// By base entity type and key or variable name.
  void GetResultBlks(std::vector<int>& baseTypes, std::vector<const char*>& names, std::vector<ORVResult*>& out,
                     int type, int flags);
  /// By key or variable name, or with `exactName` by the variable's name alone.
  void GetResultBlks(std::vector<const char*>& names, std::vector<ORVResult*>& out, int type, int flags,
                     bool exactName);
  /// By the name of the entity type, and key or variable name.
  void GetResultBlksByName(std::vector<const char*>& typeNames, std::vector<const char*>& names,
                           std::vector<ORVResult*>& out, int type, int flags);
  void GetResultBlksByVariableNameFlag(std::vector<int>& baseTypes, std::vector<const char*>& names,
                                       std::vector<ORVResult*>& out, int type, int flags, bool exactName);
  /// By the name of a handle.
  void GetResultBlksFrmCmp(std::vector<int>& baseTypes, std::vector<const char*>& components,
                           std::vector<ORVResult*>& out, int type, int flags);
  void GetResultBlksFrmCmp(std::vector<_ORVEntityType>& entities, std::vector<const char*>& components,
                           std::vector<ORVResult*>& out, int type, int flags);
  /// By the internal id of a handle.
  void GetResultBlksFrmCmp(std::vector<_ORVEntityType>& entities, std::vector<int>& baseTypes, std::vector<int>& extIds,
                           std::vector<ORVResult*>& out, int type, int flags);
  /// Blocks of the same quantity and entity type (or base type) as `sample`, which is among them.
  void GetResultBlksFrmResBlk(ORVResult& sample, std::vector<ORVResult*>& out, bool byEntityType);
  void GetResultBlksFrmResBlkGivenZoneId(ORVResult& sample, std::vector<ORVResult*>& out, int zoneId,
                                         bool byEntityType);
  /// Reads the headers of the real-valued entity results below a group of the file. The blocks are the caller's:
  /// ClearResultBlk.
  void GetResultBlkFromPath(std::string& path, std::vector<ORVResult*>& out);
  void ClearResultBlk(std::vector<ORVResult*>& results);  ///< deletes all and empties the vector
  void GetNodeCoordinateBlocks(std::vector<ORVResult*>& out);
  void GetNodeDisplacementBlocks(std::vector<ORVResult*>& out, bool withAcceleration);
  /// Blocks of `in` that hold a state of a load case, by the index column "LOAD CASE".
  void GetBlocksGivenLoadCase(int loadCase, std::vector<ORVResult*>& in, std::vector<ORVResult*>& out);
  void GetBlocksGivenSeriesName(std::string& series, std::vector<ORVResult*>& in, std::vector<ORVResult*>& out);
  void GetUniqueSeriesMultistateBlocks(std::vector<ORVResult*>& out);  ///< the first block of each series

  bool IsAllResultBlockConstant();
  bool IsLoadCaseSeriesMultiustateData();
  bool IsComplexData(int flags);  ///< here 3 means both lists
  bool IsOnlyStaticCoordinate();
  bool HasConstantCoordinate(std::vector<_ORVEntityType>& entities, std::vector<int>& baseTypes, bool stateList);
  bool HasStateCoordinate(std::vector<_ORVEntityType>& entities, std::vector<int>& baseTypes, bool stateList);
  bool IsDisplacementAvailable(std::vector<_ORVEntityType>& entities, std::vector<int>& baseTypes, bool withVector,
                               int flags);
  bool IsAnyDoublePrecisionResult(int flags, int state);
  bool IsResultValueInDoublePrecision(std::vector<ORVResult*>& results, int state);
  bool HasDoublePrecisionNodeCoordinates();
  bool IsAnyResultDatasetHasH5Filter(int filterId);  ///< asked once per filter and remembered

  // ---- Values

  /// Values of one quantity at one state, for the blocks that hold the request's `m_resultType`; see
  /// ORVResultValuesBase.
  int GetValues(ORVResultValuesBase<float, int>& values);
  /// The same for given blocks. The quantity is a handle by internal id, or by external id where `resultType` is not
  /// -1, or with both -1 a variable by its name. A computed handle delivers the stored components that it depends on. 0
  /// when values were delivered; else 1, with the answer part of `values` left alone.
  int GetValues(ORVResultValuesBase<float, int>& values, std::vector<ORVResult*>& blocks, int extId, int resultType,
                const char* variable);
  int GetValues(ORVResultValuesBase<double, int>& values, std::vector<ORVResult*>& blocks, int extId, int resultType,
                const char* variable);
  /// All states of a variable from the multi-state blocks of an entity type, block behind block. A zone of -1 means that
  /// of the first block. `shape` is that of `values`, slowest axis first (states, entities, layers, components), with
  /// the sum of the blocks as entities; the index tables are `stateCount` x the number of index columns. All outputs are
  /// emptied first; 1 with nothing delivered, but `shape` where the index alone could not be read. After the file has
  /// grown there is nothing until InitForReload.
  int GetMultistateResultValues(const std::string& typeName, const std::string& variable, std::vector<int>& ids,
                                std::vector<std::uint64_t>& shape, std::vector<float>& values,
                                std::uint64_t& stateCount, std::vector<int>& indexIds, std::vector<float>& indexValues,
                                int zoneId);
  /// The index table of one block: the answer is its number of columns, 0 with nothing delivered. The arrays hold
  /// `stateCount` x columns entries, come from the C allocator and are the caller's.
  int ReadMultistateIndexValues(ORVResult* block, int& stateCount, int*& indexIds, float*& indexValues);
  /// Reads blocks whole, each at its own path, with their index rows. `path` must be null.
  int ReadValuesByBlockPath(std::vector<ORVResult*>& blocks, ORVFetchValuesWithIndex& values, const char* path);

  // ---- Datasets in memory. Reads of a block that can be served from there do not touch the file.

  /// Holds datasets of a block in memory until ClearCacheData; see ORVResult::CacheData.
  int CacheData(ORVResult* result, int state, std::vector<std::string>* names, bool toFloat);
  /// Frees all that is held, whatever the flags: 1 asks for the blocks of the single-state list, 2 for the multi-state
  /// one, 3 for both.
  void ClearCacheData(int flags);

  // ---- Properties: records of texts, integers and floats. Arrays come from the C allocator, integers of 4 bytes.

  /// Reads the header (1), the data of a block whose header was read (2) or both (3). 1 for a block without entities.
  /// Arrays of an earlier read are forgotten and not freed: ClearProperty goes first.
  int ReadProperty(ORVProperties* block, int sections, int state);
  void ClearProperty(ORVProperties* block);  ///< frees the arrays of a block, not the block
  /// All properties blocks of the constant section and the first state. An empty list is read anew with `load`.
  std::vector<ORVProperties*>& GetPropertiesBlocks(bool load);
  void GetPropertiesBlocks(std::vector<ORVResult*>& out);  ///< appends all
  /// Appends those of an entity type and a name, without regard to case; nothing for null.
  void GetPropertiesBlocks(const char* typeName, const char* propertyName, std::vector<ORVProperties*>& out);
  /// As GetResultBlksByName.
  void GetPropertiesBlocksByName(std::vector<const char*>& typeNames, std::vector<const char*>& names,
                                 std::vector<ORVResult*>& out, int type);
  /// The record of the first block of that type and name at a state. The arrays are the caller's; null where the count
  /// is 0. 1 without such a block.
  int GetPropertyValues(int state, const char* typeName, const char* propertyName, int& nIds, int** ids, int& nInts,
                        int** ints, int& nFloats, float** floats);
  bool HasSecureNodeProperty();  ///< whether a block of the list is of the type "SECURED_NODE", whatever its case
  bool HasSecureNodeCoordinateProperty();  ///< whether one is of the type "SECURED_NODE" and the name "COORDINATE"

  // ---- State index. The tables belong to the filer and are read at first demand, or again with `force`; without
  // states they are empty.

  ORVIndexBase<int, float>* GetStateIndex(bool force);
  ORVIndexBase<int, double>* GetStateIndexDP(bool force);
  ORVIndexBase<int, float>* GetMultiStateIndex(bool force);
  /// One column over all states. The answer is the number of states, 0 with nothing delivered. Arrays come from the C
  /// allocator and are the caller's; vectors are appended to.
  int GetIndexValues(ORVIndexBase<int, float>* index, int column, int** ids, float** vals);
  int GetIndexValues(ORVIndexBase<int, float>* index, int column, float** vals);
  int GetIndexValues(ORVIndexBase<int, float>* index, int column, std::vector<int>& ids, std::vector<float>& vals);
  /// Delivers the elements at 0, `column`, 2 x `column` and so on of the whole table.
  int GetIndexValues(ORVIndexBase<int, float>* index, int column, std::vector<float>& vals);
  bool IsIndexExist(const char* name, int& column);  ///< position of an index type; false and -1 without it

  // ---- Incremental data. A block may hold in a state only the entities whose data changed: the whole is then made of the
  // last full state and those after it. The filer keeps an index of states for each block asked about, by name, and one
  // map of what each state builds upon for the whole file.

  bool HasIncremetalData();           ///< whether the file says so: a part of its solver's name, split at ':', is "INC"
  bool IsIncrBlock(ORVBlock* block);  ///< whether any state of a block is incremental; reads the file
  /// False for blocks of other kinds than entity and element results of single states.
  bool IsResultIncrementalAtGivenState(ORVResult& result, int state);
  /// False for one of the constant section.
  bool IsAttributeIncrementalAtGivenState(ORVEntAttribute& attribute, int state);

  /// The index of a result's states: that of its zone, or with `withZone` false one over the blocks of all zones. Owned by
  /// the filer, which deletes it with all that was read and in InitForReload; null where it cannot be read.
  ORVTagIncrIndex* GetTagIncrIndex(ORVResult& result, bool withZone);
  /// The index of that name, read from `block` with `create`; the number of its columns comes from `state`.
  ORVTagIncrIndex* GetTagIncrIndex(ORVBlock& block, std::string& name, int state, bool create);
  void GetTagIncrIndexName(ORVResult& result, std::string& name, bool withZone);
  /// Adds an index made with new, its arrays in one allocation of the C allocator: both then belong to the filer. False,
  /// with nothing taken, for null and for a name that is there.
  bool AppendTagedIndex(ORVTagIncrIndex* index);
  void ClearIncrIndex(ORVTagIncrIndex* index);  ///< empties it and its name; it stays with the filer

  /// Appends a record for each state of a block, in the order of their index identifiers: the caller deletes them. The
  /// number of columns is looked for in `state` first. 1 with nothing appended for a block that cannot be read, for an
  /// index of more than one column, and where so many states build upon each other that the records would take 64 MiB.
  int GetIncrStateMap(ORVBlock& block, std::vector<ORVIncrStateMap*>& map, int state);
  int GetIncrStateMap(ORVIncrIndex& index, std::vector<ORVIncrStateMap*>& map);
  /// Makes the map of the file from the states of one block, or again with `force`.
  int BuildGlobalIncrMap(ORVBlock& block, int state, bool force);

  /// Reads an attribute as it stands at a state, changes of earlier states included; other blocks are left alone. Entities
  /// that only a change has are added with `appendNew`, without titles. With `useGlobalMap` the map of the file tells the
  /// states, else that of the block. A block not met in a state before is looked for from `state` down to 2. Arrays that
  /// it has are forgotten, not freed; the new ones are those of ReadEntAttribute: CleanUpEntAttribute frees them. A change
  /// that cannot be read is left out. 1 when no state could be read, for other blocks, for an index of several columns,
  /// and when memory runs out: the block may have arrays then, to be cleaned up as well.
  int ReadIncrDataValues(ORVBlock* block, int state, bool appendNew, bool useGlobalMap);
  /// GetValues for blocks of one value per entity, with the changes of earlier states applied. The entities are those of
  /// the last full state. A change that cannot be read is left out. All blocks should hold entities of one numbering: of
  /// those that share an id only the last changes. Without a map of the file the first block gives it. 1 also for an
  /// empty list and for a null first block.
  int GetIncrValues(ORVResultValuesBase<float, int>& values, std::vector<ORVResult*>& blocks, int extId, int resultType,
                    const char* variable);
  int GetIncrValues(ORVResultValuesBase<double, int>& values, std::vector<ORVResult*>& blocks, int extId,
                    int resultType, const char* variable);

  // ---- Questions about the model. They read what they need; a failure answers 0, false or null. Arrays come from the C
  // allocator and are the caller's. The counts of the blocks handed in are renewed for the state asked for.

  /// Entities of all blocks at a state. A block with a count of 0 is not looked at any more.
  int GetEntityCount(std::vector<ORVResult*>& results, int state);
  int GetMaxEntityCountOverStates(std::vector<ORVResult*>& results);
  /// Ids of the entities, block behind block: the answer is their number. `second` is set to null. Either may be null.
  int GetEntityIds(std::vector<ORVResult*>& results, int state, int** ids, int** second);
  int GetNodeCoordinateIds(int** ids, int state, int** second);  ///< those of GetNodeCoordinateBlocks
  /// Ids of the frames that entities have of their own, block behind block; blocks without them are passed over. Where no
  /// block has entities at the state `ids` is left as it is.
  int GetResultFrameIds(std::vector<ORVResult*>& results, int state, int** ids);
  /// Entity types and element types of the connectivities of a state, one entry of each per block: the answer is their
  /// number.
  int GetEntityTypesHavingConnectivity(int state, std::vector<std::string>& types,
                                       std::vector<std::string>& elementTypes);
  /// Zone of the results: 1 if any has it, else that of the last one. `largest` is the largest number of layers.
  int GetZoneId(int& largest);

  int GetMaxFluidParticleCount();                                        ///< over all states
  int GetFluidParticleCountFromConstant();                               ///< of the constant section
  void GetFluidParticleCoordinateRes(std::vector<ORVResult*>& results);  ///< appends the blocks of their coordinates
  /// Values and ids of the fluid particles at a state: the answer is the number of ids.
  int ReadFluidParticleSize(int state, const char* variable, int** ids, float** values);
  int ReadFluidParticleCoordinate(int state, int** ids, float** values);

  bool IsComposite();     ///< an attribute "COMPLAYER" stands in the constant section
  bool IsModularData();   ///< identifiers "MODULE_HIERARCHY" stand in the constant section
  bool IsCATCSMOutput();  ///< a group "CATCSM" stands at the root; asked once and remembered
  bool HasFPM();          ///< the third part of the solver's name, split at ':', is "FPM"

  // ---- Entity types

  /// Gives a number to every name that the file uses for a family of elements. New ones take the host's numbers from
  /// `firstAppType` to `lastAppType`; the answer is how many were used.
  int CheckCreateGenericEntityTypes(int firstAppType, int lastAppType, int state);
  void UpdateGenericTypes(int state);  ///< collects such names from the connectivities of a state, or of all (-1)
  const std::vector<ORVGenericEntityNameMap*>& GetGenericTypes();
  /// The family that holds an element type, by the host's number of the type. 0 when found.
  int GetGenericAppTypeFrmBaseAppType(int baseAppType, _ORVEntityType ignored, std::string& genericName,
                                      int& genericAppType, _ORVEntityType& genericType);
  void GetAppTypesFrmGeneric(const char* generic, std::vector<int>& appTypes);
  void GetORVTypesFrmGeneric(const char* generic, std::vector<_ORVEntityType>& types);
  /// Looks for element types that the table lacks; the vector is a copy, so nothing comes back.
  void GetUnknowEntTyps(int state, std::vector<ORVEntityTypeMap*> types);
  void UpdateEntityType(std::vector<ORVResult*>& results);  ///< renews the numbers in result blocks
  void UpdateFrameEntity();                                 ///< collects the frame types of the single-state results
  bool IsFrameEntityName(std::string& name);
  void GetFrameEntityNames(std::vector<const char*>& names);  ///< pointers into the filer's list
  void GetFrameEntityNames(std::vector<std::string>& names);

  // ---- Parts

  /// Parts of a type in the constant section (state 0) or in a state: how many there are, 0 for none. `names` is emptied
  /// first. Without such a block, or with one whose header has no parts, the other vectors stay as they were; all are
  /// empty when its data cannot be read. Those of materials are empty where the file has none. There is a name for each
  /// part, empty where the file has no titles.
  std::uint64_t GetPartInfo(const std::string& partType, std::vector<int>& ids, std::vector<std::string>& names,
                            std::vector<int>& materialIds, std::vector<int>& materialTypes, int state);
  std::uint64_t GetPartIdsAndNames(const std::string& partType, std::vector<int>& ids, std::vector<std::string>& names,
                                   int state);

  // ---- Attributes and identifiers. `mode` is 1 for the header, 2 for the data of a block whose header was read, 3 for
  // both; `state` is 0 for the constant section. Arrays come from the C allocator, integers of 4 bytes: CleanUp frees them.

  /// Reads the block of the type `m_etyp`. 1 for one without entities.
  int ReadEntAttribute(ORVEntAttribute* block, int mode, int state);
  int ReadEntIdentifiers(ORVIdentifiers* block, int mode, int state);
  /// Appends all blocks of a section that have entities and can be read. The blocks are the caller's: clean up each
  /// and delete it.
  void GetEntityAttributes(int state, int mode, std::vector<ORVEntAttribute*>& blocks);
  void GetEntityIdentifiers(int state, int mode, std::vector<ORVIdentifiers*>& blocks);
  void CleanUpEntAttribute(ORVEntAttribute* block);  ///< frees the arrays of a block, not the block
  void CleanUpEntIdentifiers(ORVIdentifiers* block);
  void CleanUpEntityIdentifierList(std::vector<ORVIdentifiers*>& blocks);  ///< frees blocks and arrays

  // ---- Collectors. `mode`, `state` and arrays as above.

  /// Reads the block of the type `m_etypcoll`. 1 for one without collectors.
  int ReadCollector(ORVCollector* block, int mode, int state);
  void GetCollector(int state, int mode, std::vector<ORVCollector*>& blocks);  ///< appends all of a section
  void CleanUpCollector(ORVCollector* block);                ///< frees the arrays of a block, not the block
  void DeleteCollector(std::vector<ORVCollector*>& blocks);  ///< frees blocks and arrays
  /// Reads a collector block by name. One with other entity types than `types`, in their order and without regard to
  /// case, answers 1 and is left empty; no types ask for no check.
  int ReadValidCollector(std::string& name, ORVCollector* block, int state, std::vector<char*>& types);
  int ReadShellFathers(ORVCollector* block, int state);  ///< "SHELL_FATHERS" of the types "SHELL", "SHELL"
  int ReadNodeFathers(ORVCollector* block, int state);   ///< "NODE_FATHERS" of the types "NODE", "NODE"
  /// Writes "NODE_FATHERS" of the types "NODE", "NODE" with the given counts and arrays, in a state with the index of
  /// `source`. Does nothing unless `ntyp` is 2 and there are collectors and ids.
  int WriteNodeFathers(ORVCollector* source, int state, int ncoll, int* idcoll, int ntyp, int* nent, int nenttot,
                       int* entid);
  /// Whether any state has a collector of that name; `hasCollectors` tells whether one of the states looked at has any.
  bool IsAdaptiveCollectorEntity(std::string& name, bool& hasCollectors);
  /// Whether the mesh changes: a state has elements of its own. `skipFpm` passes over those of the type "FPM".
  bool IsAdaptive(bool skipFpm);

  // ---- Writing

  /// Makes a file and its tree, or with ORV_FILE_APPEND and `keepTree` opens an existing one as it is. 4 when the
  /// file cannot be opened. Switches HDF5's error printing off for the rest of the process.
  int InitForWriting(const char* name, _ORVVersion version, _ORVFileMode mode, bool keepTree);
  /// Writes a block in the version given to InitForWriting. `what` combines _ORVWriteStage.
  int WriteBlock(ORVBlock* block, int state, int what);
  /// Writes a block into the group at `path`, which is made when it is missing.
  int WriteBlkGivenPath(ORVBlock* block, const std::string& path, int what);
  /// Removes links by name below the block's path.
  int DeleteLinks(ORVBlock* block, std::vector<std::string>& names);
  /// Begins a change of several blocks. What is written through this filer up to EndState appears in the file at once or
  /// not at all, and costs one commit; nobody else can write to the file meanwhile. `state` is the 1-based state that is
  /// written: one that is there, or the next; 0 for blocks that belong to no state. Blocks of other sections may be
  /// written, too. 1 when the filer has no file for writing, has begun a change already, cannot open the file, or when
  /// there would be a gap before the state.
  int BeginState(int state);
  /// Ends the change: 0 when all of it is in the file, or when it was dropped because `keep` is false. 1 when nothing was
  /// begun; 1, and the file as it was before, when a write failed since BeginState (so do all after it) or the change cannot
  /// be written. A filer that is destroyed before drops it.
  int EndState(bool keep = true);
  /// Writes part of a dataset of a result in the version of this filer's file; see
  /// ORVResult::WriteSelectiveAttribute.
  int WriteSelectiveResultAttribute(ORVResult* result, int state, int sections, _ORVBlockAtt att, int rank,
                                    std::uint64_t* start, std::uint64_t* count, std::uint64_t* stride,
                                    std::uint64_t* block, std::uint64_t* extent);

 protected:
  int ReadVariableBlks(std::vector<ORVVariableGrp*>& groups, std::vector<ORVVariable*>& variables);
  int ReadSystemBlk(ORVSystem& system);
  int ReadIndicesBlk(ORVSimulationType& types);
  void ReadResultBlks(int state, std::vector<ORVResult*>& results);
  void ReadPropertiesBlks(int state, std::vector<ORVProperties*>& properties);
  void InitProperityBlockReading(int& nextId, bool force);
  void ReadStateIndex(bool force);
  void ReadMultiStateIndex(bool force);
  int GetIncrStateInfo(ORVResult& result, std::vector<int>& states, std::vector<int>& flags);
  /// Allocates an index for the states of a block and fills it. The index must be empty, as its arrays are not freed; it
  /// is left empty where it cannot be filled. The number of columns comes from `state`, or the first other one that has
  /// the block.
  int ReadIncrIndex(ORVBlock& block, ORVIncrIndex& index, int state);
  void TestIncrRead();  ///< tells the message callback how incremental data read, and how long it took
  void ClearAll();      ///< frees all that was read

 private:
  int ReadResults(int& nextId);

 protected:
  ORVContainer* m_pData;       ///< what was read
  ORVContainer* m_pWriteData;  ///< file made for writing; null otherwise
  int m_nSolverOutputKind;     ///< 0 unknown, 1 no, 2 yes
  std::uint64_t m_nReserved[2];
  unsigned m_nConfig;  ///< bits of _ORVFilerConfig
};
