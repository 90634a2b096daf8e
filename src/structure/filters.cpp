// Versions 1 and 2 of the filter pipeline message, and the parameters of the filters that result files use. A filter
// that decodes trusts its parameters: those of another type or chunk make it leave its buffers.

#include "structure/filters.h"

namespace orvio::structure {
namespace {

constexpr std::uint16_t kFirstNamed = 256;  ///< version 2 stores no names for filters of HDF5's own
constexpr Verdict kCutShort = "filter message is cut short";

Verdict PassName(Cursor& in, unsigned version, std::uint64_t length) {
  if (version == 1 && length % 8 != 0) return "name of a filter has a wrong length";
  Cursor name = in.Take(length);
  if (!in.ok()) return kCutShort;
  if (length > 0) name.Text();
  return name.ok() ? nullptr : "name of a filter does not end";
}

Verdict ParseFilter(Cursor& in, unsigned version, Filter& filter) {
  filter.id = in.U16();
  const unsigned name_length = version == 1 || filter.id >= kFirstNamed ? in.U16() : 0U;
  filter.flags = in.U16();
  filter.value_count = in.U16();
  if (const Verdict bad = PassName(in, version, name_length)) return bad;
  for (unsigned i = 0; i < filter.value_count && in.ok(); ++i) {
    const std::uint32_t value = in.U32();
    if (i < Filter::kKept) filter.values[i] = value;
  }
  if (version == 1 && filter.value_count % 2 == 1) in.Skip(4);
  return in.ok() ? nullptr : kCutShort;
}

// The parameters of the scale-offset filter, in their order.
enum ScaleOffsetValue { kScaleType, kScaleFactor, kElements, kClass, kSize, kSign, kOrder, kHasFill };
constexpr std::uint16_t kScaleOffsetValues = 20;
constexpr std::uint32_t kFloatByDigits = 0;
constexpr std::uint32_t kInteger = 2;

bool ScaleOffsetFits(const Filter& filter, const Datatype& type, std::uint64_t elements) {
  const auto& value = filter.values;
  const bool is_float = type.type_class == TypeClass::kFloat;
  if (!is_float && type.type_class != TypeClass::kFixed) return false;
  if (value[kClass] != (is_float ? 1U : 0U) || value[kScaleType] != (is_float ? kFloatByDigits : kInteger))
    return false;
  if (!IsPowerOf2(type.size) || type.size > 8 || (is_float && type.size < 4)) return false;
  if (value[kSize] != type.size || value[kOrder] != (type.big_endian ? 1U : 0U)) return false;
  if (!is_float && value[kSign] != (type.is_signed ? 1U : 0U)) return false;
  return value[kElements] == elements && value[kHasFill] <= 1;
}

Verdict JudgeFilter(const Filter& filter, const Datatype& type, std::uint64_t elements) {
  switch (filter.id) {
    case kDeflate:
      return filter.value_count == 1 && filter.values[0] <= 9 ? nullptr : "deflate filter has wrong parameters";
    case kShuffle:
      // A type with variable-length parts has another size in memory, and it is that one which may be noted.
      return filter.value_count == 1 && filter.values[0] > 0 && (filter.values[0] == type.size || type.holds_variable)
                 ? nullptr
                 : "shuffle filter is set up for another type";
    case kFletcher32:
      return filter.value_count == 0 ? nullptr : "checksum filter has parameters";
    case kScaleOffset:
      if (filter.value_count != kScaleOffsetValues) return "scale-offset filter has a wrong number of parameters";
      return ScaleOffsetFits(filter, type, elements) ? nullptr : "scale-offset filter is set up for another dataset";
    default:
      return nullptr;
  }
}

}  // namespace

bool KeepsAllBits(const Filter& scale_offset, std::uint64_t element_size) {
  const auto& value = scale_offset.values;
  return value[kScaleType] == kInteger && value[kScaleFactor] == 8 * element_size;
}

Verdict ParsePipeline(Cursor in, Pipeline& pipeline) {
  const unsigned version = in.U8();
  const unsigned count = in.U8();
  if (!in.ok()) return kCutShort;
  if (version != 1 && version != 2) return "filter message has an unknown version";
  if (count == 0 || count > kMaxFilters) return "filter message has an impossible number of filters";
  if (version == 1) in.Skip(6);
  for (unsigned i = 0; i < count; ++i) {
    if (const Verdict bad = ParseFilter(in, version, pipeline.filters[i])) return bad;
  }
  pipeline.count = count;
  return nullptr;
}

Verdict JudgePipeline(const Pipeline& pipeline, const Datatype& type, std::uint64_t elements) {
  for (unsigned i = 0; i < pipeline.count; ++i) {
    if (const Verdict bad = JudgeFilter(pipeline.filters[i], type, elements)) return bad;
  }
  return nullptr;
}

}  // namespace orvio::structure
