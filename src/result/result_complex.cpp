// Conversion of complex pairs (real, imaginary) into one number each, in place.

#include "result/result_complex.h"

#include <cmath>
#include <optional>
#include <type_traits>

#include "h5/extents.h"
#include "h5/status.h"
#include "result/result_kinds.h"

namespace orvio {
namespace {

template <class T>
constexpr T kDegrees = 0;
template <>
constexpr float kDegrees<float> = 57.29578F;
template <>
constexpr double kDegrees<double> = 57.2957795;

template <class T>
T Converted(int output, T real, T imaginary) {
  if (output & ORV_COMPLEX_MAGNITUDE) return std::sqrt(real * real + imaginary * imaginary);
  if (output & ORV_COMPLEX_PHASE) return std::atan2(imaginary, real) * kDegrees<T>;
  return output & ORV_COMPLEX_REAL ? real : imaginary;
}

/// The place written is never behind the pair that is read.
template <class T>
void ConvertPairs(int output, T* values, std::uint64_t pairs) {
  for (std::uint64_t i = 0; i < pairs; ++i) values[i] = Converted(output, values[2 * i], values[2 * i + 1]);
}

bool IsAlways(const ORVResult& block) { return (block.m_complexOutput & ORV_COMPLEX_ALWAYS) != 0; }

/// Values that a selection takes along an axis; 0 where they do not fit 64 bits, which no dataset has.
std::uint64_t Along(const ComplexSelection& selection, int axis) {
  std::uint64_t values = 0;
  const std::uint64_t each = selection.block ? selection.block[axis] : 1;
  return __builtin_mul_overflow(selection.count[axis], each, &values) ? 0 : values;
}

/// QUIRK: without "always" the blocks of a selection are passed over: it is converted as if each held one value. Hosts
/// whose selections have blocks know how many pairs are left to them. Pinned by
/// ResultComplex.PassesOverBlocksUnlessAlways.
ComplexSelection Considered(const ORVResult& block, ComplexSelection selection) {
  if (!IsAlways(block)) selection.block = nullptr;
  return selection;
}

bool SpansBothParts(const ResultKind& kind, const ComplexSelection& selection) {
  const int axis = kind.PositionOf(ORV_DIM_COMPLEX);
  return axis < selection.rank && Along(selection, axis) == kComplexParts;
}

/// Pairs of a selection of the rank of its kind; nothing when their parts do not fit 64 bits.
std::optional<std::uint64_t> PairsOf(const ComplexSelection& selection) {
  std::uint64_t values[std::extent_v<decltype(ResultKind::axes)>] = {};
  for (int axis = 0; axis < selection.rank; ++axis) values[axis] = Along(selection, axis);
  const auto product = h5::Product(selection.rank, values);
  return product ? std::optional(*product / kComplexParts) : std::nullopt;
}

/// QUIRK: not the complex axis is looked at but the first one, or the second of multi-state kinds: a conversion
/// starts with a selection that does not begin at its entity (or state) 0. Hosts set m_complexOutput for all their
/// reads and rely on whole reads giving pairs. Pinned by ResultComplex.RunsWhenTheFirstAxisDoesNotStartAtZero.
bool StartsConversion(const ResultKind& kind, int rank, const std::uint64_t* start) {
  const int place = kind.IsMultistate() ? 1 : 0;
  return place < rank && static_cast<std::uint32_t>(start[place]) != 0;
}

}  // namespace

bool IsConverted(const ORVResult& block, const ComplexSelection& selection) {
  constexpr int kOutputs = ORV_COMPLEX_MAGNITUDE | ORV_COMPLEX_PHASE | ORV_COMPLEX_REAL | ORV_COMPLEX_IMAGINARY;
  const ResultKind* kind = FindResultKind(block.GetKey());
  if (!kind || !kind->IsComplex() || !(block.m_complexOutput & kOutputs) || selection.rank < 1) return false;
  if (IsAlways(block)) return SpansBothParts(*kind, selection);
  return StartsConversion(*kind, selection.rank, selection.start);
}

int ConvertComplex(ORVResult& block, const ComplexSelection& selected) {
  const ResultKind* kind = FindResultKind(block.GetKey());
  const ComplexSelection selection = Considered(block, selected);
  if (!kind || !kind->IsComplex() || selection.rank != kind->rank || !SpansBothParts(*kind, selection)) return kFail;
  const int layer = kind->PositionOf(ORV_DIM_LAYER);
  const bool one_layer = layer < 0 || selection.count[layer] <= 1;
  if (!one_layer && !IsAlways(block)) return kFail;
  const auto pairs = PairsOf(selection);
  if (!pairs || !block.m_res) return pairs ? kOk : kFail;
  if (block.m_resType == ORV_DOUBLE) {
    ConvertPairs(block.m_complexOutput, static_cast<double*>(block.m_res), *pairs);
  } else {
    ConvertPairs(block.m_complexOutput, static_cast<float*>(block.m_res), *pairs);
  }
  return kOk;
}

}  // namespace orvio
