#pragma once

#include <string>
#include <vector>

#include "orvio/orv_result.h"
#include "orvio/orv_types.h"

struct ORVContainer;

/// The facade of the library: one object per file. It does nothing until told, and no file stays open between
/// its operations. Status answers are 0 for success and 1 for failure unless told otherwise.
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

  const char* GetFilePath();
  /// Version of the file, read on first demand and kept; 0.0.0 for a file that cannot be read.
  ORVFileVersion* GetFileVersion();
  int GetMajorVersion();
  bool IsMajorVersion(int major);
  int GetMajorWriteVersion();  ///< 1 without a write container
  /// 0 without variables; else 1 for single-state results or properties, plus 2 for multi-state results.
  int GetAvailableDataset();
  /// True if 1 or 2 is set in `mask`, whatever the file holds.
  bool IsDatasetAvailable(int mask);
  /// Whether the file has a group of that name at its root.
  bool HasRootGroup(const char* name);

  /// Reads a block of this file; see ORVBlock::ReadBlock.
  int ReadBlock(ORVBlock* block, int state, int stages);

  // ---- Messages and switches

  /// Receives the texts of all filers of the process; null silences them.
  static void SetVerbosCallback(ORVMessageCallBack callback);
  static ORVMessageCallBack _m_pMessageFuc;
  /// Compression on with `digits` if `on` is not 0 and `digits` not negative; else off.
  static void SetGlobalCompressionParameters(int on, int digits);

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
  /// Writes part of a dataset of a result in the version of this filer's file; see
  /// ORVResult::WriteSelectiveAttribute.
  int WriteSelectiveResultAttribute(ORVResult* result, int state, int sections, _ORVBlockAtt att, int rank,
                                    std::uint64_t* start, std::uint64_t* count, std::uint64_t* stride,
                                    std::uint64_t* block, std::uint64_t* extent);

 protected:
  void ClearAll();  ///< frees all that was read

  ORVContainer* m_pData;       ///< what was read
  ORVContainer* m_pWriteData;  ///< file made for writing; null otherwise
  int m_nSolverOutputKind;     ///< 0 unknown, 1 no, 2 yes
  std::uint64_t m_nReserved[2];
  unsigned m_nConfig;  ///< bits of _ORVFilerConfig
};
