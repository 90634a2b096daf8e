#pragma once

// The one place of what outlives a call, and the ways to change it for a while.

#include <hdf5.h>

#include <cstdint>
#include <cstdio>
#include <utility>
#include <vector>

#include "orvio/orv_types.h"

class ORVBlock;
struct ORVContainer;
struct ORVEntityTypeMap;
class OH5ReaderPool;
class ORVHostAllocate;  // NOLINT(cppcoreguidelines-virtual-class-destructor): as its definition says

namespace orvio {

namespace h5 {
class CheckedFiles;
class FileInUse;
class IndexedFile;
class KeptFiles;
class QuietHdf5;
class WrittenFile;
struct HeldSnapshots;
}  // namespace h5

class WalkGuard;

/// Scale-offset switches of the numeric writes.
struct Compression {
  int g_nCompressionOn = 0;
  int g_nCompressionDigits = -1;
};

/// Everything in this library that outlives a call. One thread at a time; see the header of ORVFiler. There is no
/// other variable of this kind: a check of the object files fails on one.
struct ProcessState {
  int g_nWriterVersion = 1;        ///< `_ORVVersion` written; see ORVSetCurrentWriterVersion
  unsigned g_nReadAccess = 0;      ///< flags of the next open by a write helper; 0 is read-only
  hid_t g_hLastFile = -1;          ///< last file opened for a group lookup; only written
  Compression compression;         ///< see OH5SetCompression
  int chunk_entities = 0;          ///< see ORVSetChunkEntities
  int entity_axis = 0;             ///< of the dataset that is being written, whose chunks that limits
  int g_nResultOverwriteMode = 0;  ///< not 0: an existing result block may be written into

  int file_check = 1;        ///< see ORVSetFileCheck
  int file_index = 1;        ///< see ORVSetFileIndex
  int durability = 1;        ///< see ORVSetDurability
  int lock_timeout = 10000;  ///< see ORVSetLockTimeout
  double clock_step = .05;   ///< seconds: the clock that file systems take their times from moves in smaller steps
  int lock_waited = 0;       ///< milliseconds that the running operation has waited for locks

  OH5ReaderPool* reader_pool = nullptr;      ///< made at the first request, never destroyed
  ORVHostAllocate* buffer_memory = nullptr;  ///< of all cached datasets; made at the first, never destroyed

  ORVBlock* g_pCurrentBlock = nullptr;  ///< block of the running group walk
  char g_szCurrentName[257] = {};       ///< name of the deepest group passed on the way to it

  WalkGuard* walk_guard = nullptr;  ///< bounds of the running group walk

  std::vector<ORVEntityTypeMap*>* g_entityTypeMap = nullptr;  ///< made at the first row, never destroyed

  ORVContainer* no_data = nullptr;  ///< empty lists for a filer that has none; see DataOf

  void (*error_handler)(int, const char*) = nullptr;       ///< takes the calls of ORVErrorDefultHandler when set
  FILE* error_stream = stderr;                             ///< else its target; null drops the texts
  ORVMessageCallBack extended_variable_message = nullptr;  ///< second and third message callback,
  ORVMessageCallBack fetch_message = nullptr;              ///< set together with the filer's own
  char last_error[512] = {};                               ///< see ORVGetLastErrorText
  char status_text[64] = {};                               ///< see ORVGetStatusText
  hid_t file_access = -1;                                  ///< access lists of the library; HDF5 closes them
  hid_t group_access = -1;                                 ///< at exit, and tells then that they are gone
  hid_t dataset_access = -1;
  h5::CheckedFiles* checked_files = nullptr;    ///< made at the first open, never destroyed
  std::vector<h5::WrittenFile*> written_files;  ///< open ones; HDF5 owns them
  bool is_closing = false;                      ///< the library closes a file, and looks at close_failed then
  bool close_failed = false;                    ///< HDF5 does not stand a close that fails: this tells of it instead
  std::vector<h5::IndexedFile*> indexed_files;  ///< those of the running operation; see FileInUse
  /// Arrays of the running operation, from the first byte to the one behind the last; see UnsetMemory.
  std::vector<std::pair<std::uintptr_t, std::uintptr_t>> unset_memory;
  h5::FileInUse* file_in_use = nullptr;         ///< of the running operation, the innermost
  h5::KeptFiles* kept_files = nullptr;          ///< made at the first wish, never destroyed
  h5::HeldSnapshots* held_snapshots = nullptr;  ///< of the running operation; made at the first, never destroyed
  bool is_among_itself = false;                 ///< code of the library runs, and none of a host but in a HostCode
  int entries = 0;                              ///< exported operations that run, one inside the other
  unsigned exceptions = 0;                      ///< that became failures; see h5::WholeEntry
  h5::QuietHdf5* quiet = nullptr;               ///< of those that have something to put back, the innermost
};

ProcessState& process();

/// Gives a switch another value for the life of the scope.
template <class T>
class [[nodiscard]] Swapped {
 public:
  Swapped(T& place, T now) : place_(place), before_(std::exchange(place, std::move(now))) {}
  ~Swapped() { place_ = std::move(before_); }
  Swapped(const Swapped&) = delete;
  Swapped& operator=(const Swapped&) = delete;

 private:
  T& place_;
  T before_;
};

/// Composes the text of a failure. It goes nowhere but into ORVGetLastErrorText.
[[gnu::format(printf, 1, 2)]] void SetLastError(const char* format, ...);

/// The same, with the general failure as answer, for `return Fail(...)`.
[[nodiscard, gnu::format(printf, 1, 2)]] int Fail(const char* format, ...);

}  // namespace orvio
