#pragma once

/// Base of every stored object, the helper that walks blocks of unknown kind, and the paths of both.

#include <H5Lpublic.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "orvio/oh5_reader.h"
#include "orvio/orv_types.h"

class IORVBufferManager;
struct ORVBuffer;
class ORVBlockPathResolver;

/// One stored object: a set of fields and the group path it came from. The base opens the file, finds the group
/// and calls the block's own ReadHeader, ReadData and ReadIndex; a block knows nothing of files beyond the group
/// it is handed. A block owns none of its data arrays, and copies share them.
///
/// States: a positive number is the 1-based position of a state, 0 the constant section, a negative number the
/// multi-state section. Status answers are 0 for success and 1 for failure unless told otherwise. No file stays
/// open between calls.
class ORVIO_EXPORT ORVBlock {
 public:
  ORVBlock();
  ORVBlock(const ORVBlock& other);
  ORVBlock& operator=(const ORVBlock& other);
  virtual ~ORVBlock();

  /// Reads the selected stages of this block in a state. The answer is that of the last stage that ran; 1 when
  /// none did. A block without a path learns it here.
  virtual int ReadBlock(const char* file, int state, int stages);
  /// Reads the child with a 0-based index, by name, of the type group of a state.
  virtual int ReadBlockAt(const char* file, int state, int index, int stages);
  /// Number of children of the type group of a state.
  virtual int ReadNumBlock(const char* file, int state, int* count);
  virtual int ReadHeader(hid_t group, int stages);
  virtual int ReadData(hid_t group, int stages);
  virtual int ReadIndex(hid_t group, int stages);
  /// Reads the block `name` of each state from `first` (1-based) to `last` (below 1: the last one). `action` gets
  /// a pointer to the 0-based state index (int) as `where`, and status 1010 for a group that cannot be opened.
  /// Serves files whose blocks have "header", "data" and "index" groups.
  virtual int ReadBlockOver(const char* file, int stages, ORVIterationCallBack action, int first, int last, int step,
                            const char* name);
  /// Walks all blocks below the type group of a state. `action` gets the name of the deepest group passed
  /// (const char*) as `where`. The same block object is read over and over: copy what shall stay.
  virtual int IterateBlock(const char* file, int state, int stages, ORVIterationCallBack action);
  /// Walks all blocks below the group `name` of each state; backwards with `reverse` not 0.
  virtual int IterateBlockOver(const char* file, int stages, ORVIterationCallBack action, int first, int last, int step,
                               const char* name, int reverse);
  /// Reads at the block's own path, which must be the group that holds its parts.
  virtual int ReadBlockByBlockPath(const char* file, int stages);
  virtual int WriteBlock(const char* file, int state, int what) = 0;
  virtual int WriteHeader(hid_t group);
  virtual int WriteData(hid_t group);
  virtual int WriteIndex(hid_t group);
  /// Removes links by path; 4 when the file cannot be opened or made. The file does not shrink.
  virtual int DeleteLinks(const char* file, std::vector<std::string>& names);
  virtual int CacheData(IORVBufferManager& manager, const char* file, int state);
  /// Drops the map of cached datasets; the buffers belong to the buffer manager.
  virtual void ClearCacheMap();

 protected:
  virtual int ReadBlockStep(hid_t group, int stages);
  virtual hid_t OpenBlockGroup(int state);
  /// Appends the block's own group levels to the path of its type group.
  virtual int AppendBlockSchema(std::string& path);
  virtual int ReadIndexComm(hid_t group, hsize_t rows, hsize_t columns, int stages, _ORVDataType* identType,
                            void* ident, _ORVDataType* valueType, void* values);

 public:
  std::int64_t GetKey() const { return m_BlkKey; }
  bool IsIncremental() const { return m_nIncremental != 0; }
  /// Returns the fields to their initial values, the key to -1; the cache map stays.
  void Initialize();

  void SetBlkPath(const char* path);  ///< null changes nothing
  void SetBlkPath(const std::string& path) { m_BlkPath = path; }
  const std::string& GetBlkPath() const { return m_BlkPath; }
  const char* GetBlkPathCstr() const { return m_BlkPath.c_str(); }
  std::size_t GetBlkPathLen() const { return m_BlkPath.size(); }

  /// ORV_BLK_VERSION_SINGLE if and only if the path holds "/orvblock".
  _ORVBlkVersion GetBlkVersion() const;
  bool IsConstatntPath() const;    ///< the path contains "constant"
  bool IsMultiStatePath() const;   ///< the path contains "multistate"
  bool IsSingleStatePath() const;  ///< the path contains "singlestate"
  bool HasSubstringInPath(const char* text) const;

  /// True for ORV_INT and ORV_LONG.
  static bool IsORVIntType(_ORVDataType type);

  /// Puts the parts of `actual` in place of the leading parts of `schema`: "/a/b/c" and "/x/y" give "/x/y/c".
  /// With an empty `actual` `out` is left alone.
  int MergeSchemaPath(const std::string& schema, const std::string& actual, std::string& out);
  /// Merges the block's path with the name of `group`.
  int ConstructSchemaPath(hid_t group, std::string& out);
  /// Opens this block as it stands in another state. Needs a reader. The caller closes the id; 1 on failure.
  hid_t GetBlkGrpUsingSchemaPathFromState(hid_t file, int state);

  /// Number of index values of this block in a state.
  int ReadNumIndex(const char* file, int state, int& count);
  /// Appends the filter ids of a dataset of this block.
  int ReadDatasetFilterIds(const char* file, int state, const std::string& name, std::vector<int>& ids);
  /// Appends the stored type of each dataset, ORV_UNKNOWN_TYPE where it cannot be found.
  int ReadDatasetFileDataType(const char* file, int state, const std::vector<std::string>& names,
                              std::vector<_ORVDataType>& types);
  /// Writes the block into the group at `path`, which is made when it is missing.
  int WriteBlkGivenPath(const char* file, const std::string& path, int what);
  /// Writes "indexval" as float and "indexident" as integer: rank 1 `rows`, else `columns` x `rows`.
  int WriteIndexComm(hid_t group, hsize_t rows, hsize_t columns, int rank, _ORVDataType identType, void* ident,
                     _ORVDataType valueType, void* values);

  /// Visitors of HDF5's group and link iteration. The block comes from the running walk, not from `data`.
  static int BlockCallBackImp(hid_t group, const char* name, void* data);
  static int BlockCallBackImp2(hid_t group, const char* name, const H5L_info1_t* info, void* data);

  int m_nCompressionFactor;  ///< decimal digits kept of the block's data when written; negative: no compression

 protected:
  int OpenH5Reader(const char* file, unsigned flags);
  int CloseH5Reader();
  IOH5Reader* GetH5Reader() const { return m_pH5Reader; }
  void SetH5Reader(IOH5Reader* reader) { m_pH5Reader = reader; }

  int ReadBlockStepWrap(hid_t group, int stages);
  hid_t GetBlkGrpUsingSchemaPath(hid_t file, hid_t group);

  /// Forwards to the reader; 1 without one.
  int OH5Read_INT(hid_t loc, const char* name, int rank, hsize_t* dims, _ORVDataType type, void* buffer);
  int OH5Read_FLOAT(hid_t loc, const char* name, int rank, hsize_t* dims, _ORVDataType type, void* buffer);
  int OH5Read_CHAR(hid_t loc, const char* name, int rank, hsize_t* dims, int size, char* buffer);
  int ReadDataset(hid_t loc, const char* name, int rank, hsize_t* dims, _ORVDataType type, void* buffer);
  int OH5Read_SELECTIVE(hid_t loc, const char* name, int rank, hsize_t* start, hsize_t* count, hsize_t* stride,
                        hsize_t* block, _ORVDataType type, void* buffer);
  int OH5Read_ATTRIBUTE(hid_t loc, const char* name, int rank, hsize_t* dims, _ORVDataType type, void* buffer);
  int OH5Read_DATATYPE(hid_t loc, const char* name, _ORVDataType* type);

  // ---- Cached datasets, by name. The buffers belong to a buffer manager. Copies of a block share its map.

  /// Reads datasets of this block whole into buffers of the manager; those that are cached already and those that cannot
  /// be read are passed over. With `toFloat` doubles are kept as floats. The answer is that of the last one tried.
  int ReadAndCacheDataset(IORVBufferManager& manager, const char* file, int state, std::vector<std::string>& names,
                          bool toFloat);
  /// The same for the datasets of a group. Needs a reader.
  int ReadAndCacheDataset(IORVBufferManager& manager, hid_t group, std::vector<std::string>& names, bool toFloat);
  void AppendCachedData(const std::string& name, ORVBuffer* buffer);  ///< replaces; null is ignored
  ORVBuffer* GetCachedDataset(const std::string& name);               ///< null when there is none
  bool IsDatasetCached(const std::string& name);
  void DeleteCache();  ///< forgets all cached datasets, for the copies that share them too
  /// Copies a cached dataset whole (`start` and `count` null, equal types), or a selection of one of floats. 1 with
  /// `out` left alone when it cannot.
  int OH5Copy_FromCache(const std::string& name, _ORVDataType cachedType, int rank, std::uint64_t* dims,
                        _ORVDataType wantedType, std::uint64_t* start, std::uint64_t* count, void* out);
  /// Copies a selection of an array of floats with these extents.
  int OH5Copy_SELECTIVE(_ORVDataType cachedType, int rank, std::uint64_t* dims, void* source, _ORVDataType wantedType,
                        std::uint64_t* start, std::uint64_t* count, void* out);

  IOH5Reader* m_pH5Reader;  ///< set during a read only, owned by the reader pool
  int m_nReserved;          ///< stored and copied
  std::int64_t m_BlkKey;    ///< block key; the derived class's constructor sets it
  int m_nIncremental;       ///< not 0 when the block is incremental
  ORVIterationCallBack m_pfnAction;
  int (*m_pfnCallBackImp)(hid_t, const char*, void*);
  int (*m_pfnCallBackImp2)(hid_t, const char*, const H5L_info1_t*, void*);
  int m_nIterFlags;     ///< stages of the running walk
  int m_nActionResult;  ///< last answer of the callback
  void* m_pUserData;    ///< copied with the block
  _ORVDataType m_indexIdentType;
  _ORVDataType m_indexValueType;
  std::shared_ptr<std::map<std::string, ORVBuffer*>> m_pCacheMap;  ///< null without cached datasets
  std::string m_BlkPath;                                           ///< absolute group path of the block in its file

 private:
  friend class ORVBlockPathResolver;
  friend class ORVBlockHelper;
  friend struct ORVBlockAccess;  // the walks and leases of the library itself

  int CreateH5Reader(const char* file, unsigned flags);
  int DeleteH5Reader();
  bool IsSchemaPathExist(const char* file, const std::string& path, int state);
  hid_t GetBlkGrpUsingSchemaPath(const char* file, const std::string& path, hid_t* fileId, int state);
  hid_t GetBlkGrpUsingBlkPath(const char* file, hid_t& fileId);
  hid_t GetBlkGrpUsingAbsloutePath(const char* file, hid_t& fileId, const std::string& path);
  int GetORVDataTypeForDataSet(hid_t loc, const char* name, _ORVDataType& type);
  int GetORVDataTypeForBlockDataSet(hid_t loc, const char* name, _ORVDataType& type);
};

/// A block that knows only its key. Its header pass can act as a filter that refuses empty result blocks.
class ORVIO_EXPORT ORVBlockHelper : public ORVBlock {
 public:
  explicit ORVBlockHelper(bool readEntityCount = false);
  ORVBlockHelper(const ORVBlockHelper&) = default;
  ORVBlockHelper& operator=(const ORVBlockHelper&) = default;
  ~ORVBlockHelper() override;

  int ReadBlock(const char* file, int state, int stages) override;
  int ReadBlockAt(const char* file, int state, int index, int stages) override;
  int ReadNumBlock(const char* file, int state, int* count) override;
  /// Reads the key. With `m_bReadEntityCount`, result blocks of one state answer 1 unless their count is positive.
  int ReadHeader(hid_t group, int stages) override;
  int IterateBlock(const char* file, int state, int stages, ORVIterationCallBack action) override;
  int WriteBlock(const char* file, int state, int what) override;

  /// Fills the path from the first block of this key in a state; with `filter` from the first that is not empty.
  /// Needs a reader. 0 when a block was found.
  int UpdateBlockPath(hid_t file, int state, bool filter);

  bool m_bReadEntityCount;
};

/// The paths and groups of a block whose reader is open. Ids that are answered belong to the caller; a negative
/// one means failure.
class ORVIO_EXPORT ORVBlockPathResolver {
 public:
  explicit ORVBlockPathResolver(ORVBlock* block) : m_pBlock(block) {}

  int AppendSection(std::string& path, int state);    ///< appends "constant", "multistate" or "singlestate"
  int AppendTypeGroup(std::string& path, int state);  ///< appends section, state and type group
  hid_t OpenSectionGroup(int state);
  hid_t OpenTypeGroup(int state);
  hid_t OpenBlockGroupFor(int state);  ///< the type group with the block's own levels
  hid_t OpenStateGroup(int state);     ///< the section group for keys that are fixed to one
  int GetNumStates();

 private:
  ORVBlock* m_pBlock;
};
