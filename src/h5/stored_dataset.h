#pragma once

// The one door to datasets.

#include <hdf5.h>

#include <optional>
#include <string>
#include <utility>

#include "h5/extents.h"
#include "h5/handle.h"
#include "orvio/orv_types.h"
#include "structure/byte_source.h"
#include "structure/catalogue.h"

namespace orvio::h5 {

/// Values of a dataset that a catalogue tells about.
struct IndexedValues {
  hid_t loc;  ///< where it was looked for, and under which name
  std::string name;
  structure::ByteSource& bytes;
  structure::Catalogue::Values values;
};

/// What a dataset is wanted for. A description tells of values that nobody may read: whatever filters they have gone
/// through, none of them runs.
enum class DatasetUse { kValues, kDescription };

/// A dataset that may be read and written: its values lie in the file itself, the filters over them are those of the
/// format with the parameters that belong to its type and chunks, and what its extents claim fits its storage. Any other
/// is refused before a value is read; one that leads out of the file, before HDF5 is asked for its extents.
class StoredDataset {
 public:
  /// None.
  StoredDataset() = default;
  /// The dataset of that name, or none: ask the object. `name` may be a path.
  StoredDataset(hid_t loc, const char* name, DatasetUse use = DatasetUse::kValues);

  explicit operator bool() const { return static_cast<bool>(dataset_) || indexed_; }
  /// Whether there is not even a link of that name.
  bool is_missing() const { return is_missing_; }
  hid_t get() { return ByHdf5().dataset_.get(); }
  hid_t creation_list() { return ByHdf5().creation_list_.get(); }
  hid_t type() { return ByHdf5().type_.get(); }
  hid_t space() { return ByHdf5().space_.get(); }
  const Extents& extents() const { return extents_; }
  H5T_class_t type_class();
  /// See ExactType.
  _ORVDataType exact_type();

  /// Whether its values have gone through filters.
  bool is_filtered() {
    return !indexed_ && H5Pget_layout(creation_list()) == H5D_CHUNKED && H5Pget_nfilters(creation_list()) > 0;
  }

  /// Bytes that its values take in the file.
  std::uint64_t stored_bytes() { return H5Dget_storage_size(get()); }

  /// What is known of its values without HDF5; nothing for most. They are in one piece.
  const std::optional<IndexedValues>& indexed() const { return indexed_; }

  /// Why it was refused, behind a line break for the end of an error text; empty where HDF5 could not open it.
  const char* refusal() const { return refusal_; }

  /// Hands the dataset over, for what is to be closed by itself.
  Dataset Take() { return std::move(ByHdf5().dataset_); }

  [[nodiscard]] bool Close() { return dataset_.Close(); }

 private:
  void Open(hid_t loc, const char* name);
  bool FindIndexed(hid_t loc, const char* name);
  StoredDataset& ByHdf5();
  const char* Refusal();

  DatasetUse use_ = DatasetUse::kValues;
  Dataset dataset_;
  PropertyList creation_list_;
  Type type_;
  Space space_;
  Extents extents_;
  const char* refusal_ = "";
  bool is_missing_ = true;
  std::optional<IndexedValues> indexed_;
};

}  // namespace orvio::h5
