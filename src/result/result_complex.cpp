// Conversion of complex pairs (real, imaginary) into one number each, in place.

#include "result/result_complex.h"

#include <cmath>

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

bool SpansBothParts(const ResultKind& kind, int rank, const std::uint64_t* count) {
  const int axis = kind.PositionOf(ORV_DIM_COMPLEX);
  return axis < rank && count[axis] == kComplexParts;
}

/// QUIRK: not the complex axis is looked at but the first one, or the second of multi-state kinds: a conversion
/// starts with a selection that does not begin at its entity (or state) 0. Hosts set m_complexOutput for all their
/// reads and rely on whole reads giving pairs. Pinned by ResultComplex.RunsWhenTheFirstAxisDoesNotStartAtZero.
bool StartsConversion(const ResultKind& kind, int rank, const std::uint64_t* start) {
  const int place = kind.IsMultistate() ? 1 : 0;
  return place < rank && static_cast<std::uint32_t>(start[place]) != 0;
}

}  // namespace

bool IsConverted(const ORVResult& block, int rank, const std::uint64_t* start, const std::uint64_t* count) {
  constexpr int kOutputs = ORV_COMPLEX_MAGNITUDE | ORV_COMPLEX_PHASE | ORV_COMPLEX_REAL | ORV_COMPLEX_IMAGINARY;
  const ResultKind* kind = FindResultKind(block.GetKey());
  if (!kind || !kind->IsComplex() || !(block.m_complexOutput & kOutputs) || rank < 1) return false;
  if (block.m_complexOutput & ORV_COMPLEX_ALWAYS) return SpansBothParts(*kind, rank, count);
  return StartsConversion(*kind, rank, start);
}

int ConvertComplex(ORVResult& block, int rank, const std::uint64_t* count) {
  const ResultKind* kind = FindResultKind(block.GetKey());
  if (!kind || !kind->IsComplex() || rank != kind->rank || !SpansBothParts(*kind, rank, count)) return kFail;
  const int layer = kind->PositionOf(ORV_DIM_LAYER);
  const bool one_layer = layer < 0 || count[layer] <= 1;
  if (!one_layer && !(block.m_complexOutput & ORV_COMPLEX_ALWAYS)) return kFail;
  const auto values = h5::Product(rank, count);
  if (!values || !block.m_res) return values ? kOk : kFail;
  const std::uint64_t pairs = *values / kComplexParts;
  if (block.m_resType == ORV_DOUBLE) {
    ConvertPairs(block.m_complexOutput, static_cast<double*>(block.m_res), pairs);
  } else {
    ConvertPairs(block.m_complexOutput, static_cast<float*>(block.m_res), pairs);
  }
  return kOk;
}

}  // namespace orvio
