// What changed from state to state: found row by row against the values that a reader of the file would see.

#include "importer/state_writer.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <unordered_set>
#include <utility>

#include "importer/text_fields.h"

namespace orvio::program {
namespace {

std::size_t Size(_ORVDataType type) { return type == ORV_DOUBLE ? sizeof(double) : sizeof(float); }

std::size_t PartsOf(const EntityValues& values) { return values.is_complex ? 2 : 1; }
std::size_t PartsOf(const ElementValues& values) { return static_cast<std::size_t>(values.layers); }

const std::string& TypeOf(const EntityValues& values) { return values.entity_type; }
const std::string& TypeOf(const ElementValues& values) { return values.element_type; }

bool IsComplex(const StateValues& values) {
  const auto* of_entities = std::get_if<EntityValues>(&values);
  return of_entities && of_entities->is_complex;
}

_ORVDataType NumberTypeOf(const StateValues& values) {
  return std::visit([](const auto& of) { return of.type; }, values);
}

bool HasTwins(const std::vector<int>& ids) {
  return std::unordered_set<int>(ids.begin(), ids.end()).size() < ids.size();
}

/// The same bits are the same value, be it none. With a tolerance of 0 nothing else is.
template <class T>
bool HasChanged(T now, T before, double tolerance) {
  using Bits = std::conditional_t<sizeof(T) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;
  if (std::bit_cast<Bits>(now) == std::bit_cast<Bits>(before)) return false;
  return tolerance == 0 || !(std::abs(static_cast<double>(now) - static_cast<double>(before)) <= tolerance);
}

template <class T>
bool HasRowChanged(const std::byte* now, const std::byte* before, std::size_t bytes, double tolerance) {
  for (std::size_t i = 0; i < bytes; i += sizeof(T)) {
    T a, b;
    std::memcpy(&a, now + i, sizeof(T));
    std::memcpy(&b, before + i, sizeof(T));
    if (HasChanged(a, b, tolerance)) return true;
  }
  return false;
}

}  // namespace

StateWriter::Result StateWriter::Keep(const Quantity& quantity, const StateValues& values) {
  return std::visit(
      [&](const auto& of) {
        const auto* bytes = static_cast<const std::byte*>(of.values);
        const std::size_t row_bytes = quantity.components.size() * PartsOf(of) * Size(of.type);
        return Result{&quantity, of, *of.ids, {bytes, bytes + row_bytes * of.ids->size()}, row_bytes};
      },
      values);
}

StateWriter::Key StateWriter::KeyOf(const Result& result) {
  return std::visit([&](const auto& of) { return Key{TypeOf(of), result.quantity->name, of.zone}; }, result.values);
}

void StateWriter::Write(const StateIndex& index, const Quantity& quantity, const StateValues& values) {
  index_ = index;
  if (incremental_) {
    state_.push_back(Keep(quantity, values));
  } else {
    std::visit([&](const auto& of) { writer_.WriteInState(index, quantity, of, Extent::kFull); }, values);
  }
}

/// Complex values have two numbers per entity, which readers do not put together.
bool StateWriter::MustBeFull() const {
  if (full_states_ == 0 || since_full_ + 1 >= incremental_->full_every) return true;
  return !std::ranges::all_of(state_, [&](const Result& result) {
    const auto last = last_.find(KeyOf(result));
    return last != last_.end() && !IsComplex(result.values) && IsAlike(result, last->second);
  });
}

/// Readers put changes in their places by the ids.
bool StateWriter::IsAlike(const Result& result, const Result& last) {
  return result.ids == last.ids && !last.has_twins && result.row_bytes == last.row_bytes &&
         NumberTypeOf(result.values) == NumberTypeOf(last.values) && result.values.index() == last.values.index();
}

std::vector<std::size_t> StateWriter::ChangedRows(const Result& result, const Result& last) const {
  const auto has_changed = NumberTypeOf(result.values) == ORV_DOUBLE ? HasRowChanged<double> : HasRowChanged<float>;
  std::vector<std::size_t> rows;
  for (std::size_t row = 0; row < result.ids.size(); ++row) {
    const std::size_t first = row * result.row_bytes;
    if (has_changed(&result.bytes[first], &last.bytes[first], result.row_bytes, incremental_->tolerance)) {
      rows.push_back(row);
    }
  }
  return rows;
}

void StateWriter::WriteFull() {
  last_.clear();
  for (Result& result : state_) {
    std::visit(
        [&](auto of) {
          of.ids = &result.ids;
          of.values = result.bytes.data();
          writer_.WriteInState(index_, *result.quantity, of, Extent::kFull);
        },
        result.values);
    result.has_twins = HasTwins(result.ids);
    Key key = KeyOf(result);
    last_.insert_or_assign(std::move(key), std::move(result));
  }
  since_full_ = 0;
  ++full_states_;
}

/// A block without entities would not be found: where nothing changed, the first entity stands for it.
void StateWriter::WriteChanges(Result& result, const std::vector<std::size_t>& rows) {
  if (result.ids.empty()) return;
  Result& last = last_.at(KeyOf(result));
  std::vector<int> ids;
  std::vector<std::byte> bytes;
  for (const std::size_t row : rows.empty() ? std::vector<std::size_t>{0} : rows) {
    std::vector<std::byte>& source = rows.empty() ? last.bytes : result.bytes;
    const auto first = source.begin() + static_cast<std::ptrdiff_t>(row * result.row_bytes);
    ids.push_back(result.ids[row]);
    bytes.insert(bytes.end(), first, first + static_cast<std::ptrdiff_t>(result.row_bytes));
    std::memcpy(&last.bytes[row * result.row_bytes], &*first, rows.empty() ? 0 : result.row_bytes);
  }
  std::visit(
      [&](auto of) {
        of.ids = &ids;
        of.values = bytes.data();
        writer_.WriteInState(index_, *result.quantity, of, Extent::kChanges);
      },
      result.values);
}

void StateWriter::FinishState() {
  if (!state_.empty()) WriteHeldState();
  writer_.EndState();
}

void StateWriter::WriteHeldState() {
  if (MustBeFull()) {
    WriteFull();
  } else {
    std::vector<std::vector<std::size_t>> changes;
    bool is_smaller = false;
    for (const Result& result : state_) {
      changes.push_back(ChangedRows(result, last_.at(KeyOf(result))));
      is_smaller = is_smaller || changes.back().size() < result.ids.size();
    }
    if (!is_smaller) {
      WriteFull();
    } else {
      for (std::size_t i = 0; i < state_.size(); ++i) WriteChanges(state_[i], changes[i]);
      ++since_full_;
    }
  }
  state_.clear();
}

void WriteOrigin(const ImportOptions& options, Origin origin, BlockWriter& writer) {
  if (options.incremental) {
    origin.solver.resize(std::min(origin.solver.size(), kNameWidth - sizeof ":INC"));
    origin.solver += origin.solver.empty() ? "INC" : ":INC";
    writer.LeaveOutSteps();
  }
  if (options.units) {
    writer.WriteUnitSystem(*options.units, origin);
  } else if (options.incremental) {
    writer.WriteOrigin(origin);
  }
}

}  // namespace orvio::program
