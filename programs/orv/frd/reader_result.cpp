// Result blocks and the end of the file.
#include <fmt/format.h>

#include <optional>
#include <utility>

#include "frd/field.h"
#include "frd/reader.h"

namespace orvio::frd {

namespace {

/// An empty result that keeps the memory of its two large vectors.
void Clear(Result& result) {
  Result empty;
  empty.ids = std::move(result.ids);
  empty.values = std::move(result.values);
  empty.ids.clear();
  empty.values.clear();
  result = std::move(empty);
}

/// A `1P` line.
void ReadParameter(const Scanner& in, std::string_view line, Result& result) {
  if (!line.starts_with("    1PSTEP")) {
    result.parameters.push_back({std::string(Trim(Columns(line, 7, 24))), std::string(Trim(Columns(line, 25, 36)))});
    return;
  }
  Step step;
  step.block = in.Integer(line, 25, 36, "block number");
  step.increment = in.Integer(line, 37, 48, "increment");
  step.step = in.Integer(line, 49, 60, "step");
  result.step = step;
}

/// The `100C` line. Returns how many nodes the block announces.
int64_t ReadState(const Scanner& in, std::string_view line, Result& result) {
  if (!line.starts_with("  100C")) in.FailLine(line);
  result.set_name = Trim(Columns(line, 7, 12));
  result.value_text = Trim(Columns(line, 13, 24));
  const std::optional<double> value = ParseDouble(result.value_text);
  if (!value && !result.value_text.empty()) in.Fail("value of the state is not a number: " + Quote(result.value_text));
  result.value = value.value_or(0);
  const int64_t count = in.Count(line, 25, 36);
  result.text = Trim(Columns(line, 37, 56));
  result.analysis_type = in.Integer(line, 57, 58, "type of analysis");
  result.state_number = in.Integer(line, 59, 63, "state number");
  result.analysis_name = Trim(Columns(line, 64, 73));
  result.format = in.FormatCode(line, kBinaryDouble);
  return count;
}

/// A ` -5` line.
Component ReadComponent(const Scanner& in, std::string_view line) {
  if (!line.starts_with(" -5")) in.FailLine(line);
  Component component;
  component.name = Trim(Columns(line, 6, 13));
  component.menu = in.Integer(line, 14, 18, "menu");
  component.type = in.Integer(line, 19, 23, "component type");
  component.first_index = in.Integer(line, 24, 28, "first index");
  component.second_index = in.Integer(line, 29, 33, "second index");
  const int32_t flag = in.Integer(line, 34, 38, "existence flag");
  if (flag != 0 && flag != 1) in.Fail(fmt::format("existence flag {} is not known", flag));
  component.stored = flag == 0;
  component.derived = Trim(Columns(line, 39, line.size()));
  return component;
}

/// The ` -4` line and its ` -5` lines. Their number must be taken from the ` -4` line: in a binary block nothing else
/// tells where the values begin.
void ReadComponents(Scanner& in, Result& result) {
  const std::string_view line = in.Line();
  if (!line.starts_with(" -4")) in.FailLine(line);
  result.name = Trim(Columns(line, 6, 13));
  in.Enter("result " + result.name, "nodes");
  const int32_t count = in.Integer(line, 14, 18, "number of components");
  if (count < 0) in.Fail(fmt::format("number of components is not a count: {}", count));
  const int32_t kind = in.Integer(line, 19, 23, "entity kind");
  if (kind != 1) in.Fail(fmt::format("entity kind {} is not known, only nodal results (1) are", kind));
  for (int32_t i = 0; i < count; ++i) result.components.push_back(ReadComponent(in, in.Line()));
}

void ReadTextValues(Scanner& in, int64_t count, const TextLayout& layout, Result& result) {
  const size_t width = result.StoredComponents();
  in.TextItems(count, [&](std::string_view line) {
    const int32_t id = in.Id(Columns(line, 4, layout.id_last), "node id");
    result.ids.push_back(id);
    in.TextValues(line, layout, width, [&](std::string_view field) {
      const std::optional<float> value = ParseFloat(field);
      if (!value) in.FailItem("node", id, "value is not a number: " + Quote(Trim(field)));
      result.values.push_back(*value);
    });
  });
}

template <class Real>
void ReadBinaryValues(Scanner& in, int64_t count, Result& result) {
  const size_t width = result.StoredComponents();
  in.BinaryItems(count, sizeof(int32_t) + width * sizeof(Real), [&](const char* item) {
    result.ids.push_back(LoadLittle<int32_t>(item));
    for (size_t i = 0; i < width; ++i) {
      const Real value = LoadLittle<Real>(item + sizeof(int32_t) + i * sizeof(Real));
      result.values.push_back(static_cast<float>(value));
    }
  });
}

void ReadValues(Scanner& in, int64_t count, Result& result) {
  switch (result.format) {
    case kShortText:
      return ReadTextValues(in, count, kShortLayout, result);
    case kLongText:
      return ReadTextValues(in, count, kLongLayout, result);
    case kBinaryFloat:
      return ReadBinaryValues<float>(in, count, result);
    case kBinaryDouble:
      return ReadBinaryValues<double>(in, count, result);
  }
}

}  // namespace

bool Reader::NextResult(Result& result) {
  Clear(result);
  if (stage_ == Stage::kEnd) return false;
  Advance(Stage::kResults, Stage::kEnd);
  in_.Enter("result block", "nodes");
  std::string_view line;
  if (!in_.NextLine(line)) return false;
  if (line.starts_with(" 9999")) {
    ReadEnd();
    return false;
  }
  for (; line.starts_with("    1P"); line = in_.Line()) ReadParameter(in_, line, result);
  const int64_t count = ReadState(in_, line, result);
  ReadComponents(in_, result);
  ReadValues(in_, count, result);
  stage_ = Stage::kResults;
  return true;
}

/// Reads on to the end of the file: a packed file has its checksum there, and results behind the end mark would
/// otherwise be lost without a word.
void Reader::ReadEnd() {
  in_.Enter("end mark");
  for (std::string_view line; in_.NextLine(line);)
    if (!Trim(line).empty()) in_.FailLine(line);
  complete_ = true;
}

}  // namespace orvio::frd
