#pragma once

// Writing of the model, with the library or with HDF5 alone.

#include <array>
#include <string>

#include "faults/injector.h"
#include "faults/model.h"

namespace orvio::faults {

/// Who writes. `durability` is that of ORVSetDurability; `whole` writes a state between BeginState and EndState.
struct Writer {
  bool plain = false;  ///< HDF5 alone: open, write, flush and close for every block
  int durability = 1;
  bool whole = false;
};
std::string NameOf(const Writer& writer);

/// What an append tells, in shared memory: it may not live to its end.
struct Told {
  std::array<int, kBlockCount> said{};  ///< 1 for a block that was said to be written
  int opened = 0;                       ///< 1 when the file was said to be open for writing
  bool ended = false;
  CallCount count;
};

/// Makes a file with the mesh, the variables and so many states. Throws when it cannot be made.
void MakeBase(const std::string& path, Form form, int states);

/// Appends a state, block by block, and goes on behind a block that is refused. `injection` is armed meanwhile. The
/// record, where there is one, gets a mark for each block when it is said to be written: its number.
void AppendState(const std::string& path, Form form, const Writer& writer, int state, Generation generation,
                 const Injection& injection, Told& told);

/// Opens the file for writing and closes it again, which puts right what a writer left. `plain` is refused.
void Recover(const std::string& path, Form form, const Writer& writer, const Injection& injection, Told& told);

/// One block; 0 when it was said to be written.
int WriteWithHdf5(const std::string& path, Form form, int block, int state, Generation generation);

}  // namespace orvio::faults
