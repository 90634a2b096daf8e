// A VTKHDF file, written with HDF5 alone.
#pragma once

#include <hdf5.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "hdf5/owned_id.h"
#include "linking/linked_array.h"
#include "trouble.h"

namespace orvio::program {

/// A sidecar that could not be written. HDF5 keeps what it could not close, and crashes when it puts that away at the end
/// of the process: who tells of this must leave by std::_Exit.
class UnfinishedSidecar : public Trouble {
 public:
  using Trouble::Trouble;
};

/// Builds the group `/VTKHDF`. Paths are relative to it; groups on the way are made. What HDF5 refuses throws
/// UnfinishedSidecar.
class Sidecar {
 public:
  /// Writes to `path`, which `told_as` stands for in messages. `source` is the name of the result file for virtual
  /// datasets.
  Sidecar(const std::string& path, std::string told_as, const std::string& source);

  void AddGroup(const std::string& name);
  void AddSteps(std::int64_t count);  ///< the group Steps and its attribute

  void Write(const std::string& name, const std::vector<hsize_t>& shape, const std::vector<long long>& values);
  void Write(const std::string& name, const std::vector<hsize_t>& shape, const std::vector<double>& values);
  void Write(const std::string& name, const std::vector<hsize_t>& shape, const std::vector<std::uint8_t>& values);

  /// A virtual dataset over the result file. Rows without a value are `fill`.
  void WriteVirtual(const std::string& name, const LinkedArray& array, double fill);

  /// A dataset of an array whose rows come one after the other.
  class Rows {
   public:
    void Write(hsize_t first_row, const std::vector<double>& values);
    void Close();

   private:
    friend class Sidecar;
    Rows(const Sidecar& sidecar, OwnedId dataset, std::size_t components)
        : sidecar_(sidecar), dataset_(std::move(dataset)), components_(components) {}

    const Sidecar& sidecar_;
    OwnedId dataset_;
    std::size_t components_;
  };
  Rows StartRows(const std::string& name, const LinkedArray& array);

  /// Everything reaches the file only now.
  void Close();

 private:
  [[noreturn]] void Refuse(const std::string& what) const;
  void Require(bool done, const std::string& what) const;
  OwnedId Made(hid_t id, const std::string& what) const;
  void WriteAs(const std::string& name, const std::vector<hsize_t>& shape, hid_t stored, hid_t given,
               const void* values);
  void AddAttribute(const char* name, hid_t place, hid_t type, const std::vector<hsize_t>& shape, const void* value);
  OwnedId CreationList() const;
  void MapPiece(hid_t list, const LinkedArray& array, const Piece& piece) const;
  void MapRuns(hid_t list, const LinkedArray& array, const Piece& piece, std::span<const Run> runs,
               const ColumnGroup& columns) const;

  std::string told_as_, source_;
  OwnedId file_, root_;
};

/// Bytes of a value.
std::size_t SizeOf(NumberKind kind);

/// Rows of scalars have one axis.
std::vector<hsize_t> ShapeOf(const LinkedArray& array);

}  // namespace orvio::program
