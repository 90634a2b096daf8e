// Reading of values by component. Counts come from the values themselves: the headers of damaged files claim anything.

#include "comparing/state_values.h"

#include <algorithm>
#include <utility>

#include "reading/block_values.h"

namespace orvio::program {

ComparedValues ComponentValues::Of(std::size_t entity, std::size_t row) const {
  const Piece* piece = &pieces_.front();
  if (pieces_.size() > 1) {
    const auto begins_behind = [](std::size_t at, const Piece& one) { return at < one.first_entity; };
    piece = &*std::prev(std::upper_bound(pieces_.begin(), pieces_.end(), entity, begins_behind));
  }
  const std::size_t step = piece->layers * parts_;
  const std::size_t place = row * piece->entities + entity - piece->first_entity;
  return {piece->values.data() + place * step, piece->layers, piece->is_float};
}

StateValues::StateValues(ResultFile& file, const ComparedQuantity& quantity, int state)
    : file_(file), state_(state), is_element_(quantity.name.is_element), is_complex_(quantity.name.is_complex) {
  for (ORVResult* block : quantity.blocks) {
    const Source source = Look(*block);
    if (source.count > 0) sources_.push_back(source);
  }
  if (quantity.IsOverStates() && IsStored()) {
    rows_ = static_cast<std::size_t>(std::max<std::int64_t>(quantity.blocks.front()->m_nstate, 0));
  }
}

StateValues::Source StateValues::Look(ORVResult& block) {
  Source source{&block, static_cast<std::size_t>(file_.CountAt(block, state_)), false, false};
  if (source.count == 0) return source;
  TakeLayersOf(block);
  source.is_incremental = file_.IsIncremental(block, state_);
  source.is_double = file_.IsDouble(block, state_);
  if (source.is_incremental && !source.is_double) {
    source.is_double = file_.IsDouble(block, file_.ChainOf(block, state_).base);
  }
  return source;
}

/// A fetch reads as many layers as the block has that it is given, and the blocks of a filer are as they are in the first
/// state.
void StateValues::TakeLayersOf(ORVResult& block) const {
  ORVResult here = block;
  if (!is_element_ || state_ < 1 || here.ReadBlock(file_.path().c_str(), state_, ORV_READ_HEADER) != 0) return;
  block.m_numl = here.m_numl;
}

template <class T>
ComponentValues::Piece StateValues::ReadPiece(const Source& source, int iid, std::vector<long long>& ids) {
  const std::vector<T> values = source.is_incremental ? ReadMergedComponent<T>(file_, *source.block, iid, state_, ids)
                                                      : ReadComponent<T>(file_, *source.block, iid, state_);
  if (!source.is_incremental && !has_ids_) ids = ReadIds(file_, *source.block, state_, source.count);
  ComponentValues::Piece piece;
  piece.entities = source.is_incremental ? ids.size() : source.count;
  piece.layers = values.size();
  for (const std::size_t extent : {piece.entities, rows_, std::size_t{is_complex_ ? 2U : 1U}}) {
    if (extent == 0 || piece.layers % extent != 0) RefuseBlock(file_, *source.block);
    piece.layers /= extent;
  }
  if (piece.layers == 0 || (!is_element_ && piece.layers != 1)) RefuseBlock(file_, *source.block);
  piece.values.assign(values.begin(), values.end());
  piece.is_float = sizeof(T) == sizeof(float);
  return piece;
}

ComponentValues StateValues::Read(const Component& component) {
  ComponentValues read;
  read.parts_ = is_complex_ ? 2 : 1;
  std::size_t entities = 0;
  for (const Source& source : sources_) {
    std::vector<long long> ids;
    ComponentValues::Piece piece =
        source.is_double ? ReadPiece<double>(source, component.iid, ids) : ReadPiece<float>(source, component.iid, ids);
    piece.first_entity = entities;
    entities += piece.entities;
    read.pieces_.push_back(std::move(piece));
    if (!has_ids_) ids_.insert(ids_.end(), ids.begin(), ids.end());
  }
  if (entities != ids_.size()) RefuseBlock(file_, *sources_.front().block);
  has_ids_ = true;
  return read;
}

}  // namespace orvio::program
