#pragma once

// The ways to the same values that are measured side by side.

#include <memory>
#include <span>
#include <string>

#include "answer.h"

namespace orvio::bench {

/// A job as it lies on the disk: once as a result file, once as plain bytes.
struct Files {
  Job job;
  std::string orv;
  std::string flat;
};

/// Reads one file in one way. Everything throws Trouble when it fails.
class Reader {
 public:
  Reader() = default;
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  virtual ~Reader() = default;

  virtual void Read(const Asked& asked, Answer& answer) = 0;
  /// Quantities and states, as whoever opens the file for the first time learns them.
  virtual void List(Listing& listing) = 0;
  /// Makes ready for ReadStates, which is measured alone and may remember nothing of an earlier call.
  virtual void PrepareStates() {}
  virtual void ReadStates(Listing& listing) = 0;
};

/// What is written at every state.
struct StateValues {
  explicit StateValues(const Job& job);

  Job job;
  CArray<int> ids;
  std::array<CArray<float>, kQuantities.size()> values;
};

/// How writing is committed.
struct Commit {
  bool whole_state;  ///< once for all blocks of a state, else once for each
  int durability;    ///< of the library, see ORVSetDurability
};

/// Adds states to one file in one way.
class Writer {
 public:
  Writer() = default;
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  virtual ~Writer() = default;

  virtual void WriteState(int state, StateValues& values) = 0;
};

/// One way. What belongs to a way is here and in the functions named here; benchmarks know the table alone.
struct Road {
  const char* name;
  std::unique_ptr<Reader> (*make_reader)(const Files& files);
  std::unique_ptr<Writer> (*make_writer)(const std::string& path, const Commit& commit);  ///< null: it does not write
  bool plain_bytes;  ///< reads and writes the file of plain bytes
  bool remembers;    ///< may know from an earlier request what is in a file
  void (*enter)();   ///< sets the library's switches for it; null: nothing to set
};

/// All of them, the limit first.
std::span<const Road> Roads();

std::unique_ptr<Reader> MakeFlatReader(const Files& files);
std::unique_ptr<Writer> MakeFlatWriter(const std::string& path, const Commit& commit);
std::unique_ptr<Reader> MakeRawReader(const Files& files);      ///< opens and closes the file at each request
std::unique_ptr<Reader> MakeKeptRawReader(const Files& files);  ///< opens it once
std::unique_ptr<Writer> MakeRawWriter(const std::string& path, const Commit& commit);
std::unique_ptr<Reader> MakeLibraryReader(const Files& files);
std::unique_ptr<Reader> MakeKeptLibraryReader(const Files& files);
std::unique_ptr<Writer> MakeLibraryWriter(const std::string& path, const Commit& commit);

}  // namespace orvio::bench
