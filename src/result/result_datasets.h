#pragma once

// The datasets of a result block: where each lies, which member holds it and what shape the header's counts give it.

#include <initializer_list>
#include <optional>

#include "h5/handle.h"
#include "result/result_kinds.h"

namespace orvio {

/// Rank and extents from counts of a header. A negative count gives an extent of 0, which no read or write takes.
struct Shape {
  Shape(std::initializer_list<std::int64_t> counts);

  int rank;
  hsize_t dims[8] = {};
};

enum class ResultPart { kData, kIndex };

/// One dataset as a block has it in memory.
struct ResultDataset {
  const char* name;
  ResultPart part;
  _ORVDataType type;
  void* buffer;
  Shape shape;
};

ResultDataset IdsOf(ORVResult& block, const ResultKind& kind);
ResultDataset ValuesOf(ORVResult& block, const Shape& shape);
ResultDataset LocationsOf(ORVResult& block);
ResultDataset FrameIdsOf(ORVResult& block);
ResultDataset FrameIdOf(ORVResult& block);  ///< of the whole block; rank 0

/// The dataset behind an item, in the shape in which it is read whole; nothing for items that are attributes.
std::optional<ResultDataset> FindDataset(ORVResult& block, const ResultKind& kind, _ORVBlockAtt att);

/// The places of a block's parts below an open group: "header", "data" and "index", or one group for all three.
class ResultParts {
 public:
  explicit ResultParts(hid_t group);

  hid_t header() const { return split_ ? header_.get() : whole_; }
  hid_t of(ResultPart part) const;

 private:
  h5::Group header_;
  h5::Group data_;
  h5::Group index_;
  h5::Group orvblock_;
  bool split_;
  hid_t whole_;  // not owned
};

}  // namespace orvio
