// Header, nodes and elements: what stands once in a file, before the first result.
#include <fmt/format.h>

#include <optional>
#include <stdexcept>

#include "frd/element_type.h"
#include "frd/field.h"
#include "frd/reader.h"

namespace orvio::frd {

namespace {

constexpr char kNoMesh[] = "the file ends before the mesh is complete";

std::string_view TrimEnd(std::string_view text) { return text.substr(0, text.find_last_not_of(' ') + 1); }

/// A `1U` line. A heading that begins with MAT looks like a material; only a number in its place makes one.
void ReadUserLine(std::string_view line, Header& header) {
  const std::optional<int32_t> number = ParseInt32(Columns(line, 10, 14));
  if (line.starts_with("    1UMAT") && number) {
    header.materials.push_back({*number, std::string(Trim(Columns(line, 15, line.size())))});
  } else {
    header.texts.emplace_back(TrimEnd(Columns(line, 7, line.size())));
  }
}

void ReadTextNode(Scanner& in, std::string_view line, const TextLayout& layout, Nodes& nodes) {
  const int32_t id = in.Id(Columns(line, 4, layout.id_last), "node id");
  nodes.ids.push_back(id);
  in.TextValues(line, layout, 3, [&](std::string_view field) {
    const std::optional<float> nearest = ParseFloat(field);
    const std::optional<double> precise = ParseDouble(field);
    if (!nearest || !precise) in.FailItem("node", id, "coordinate is not a number: " + Quote(Trim(field)));
    nodes.coordinates.push_back(*nearest);
    nodes.precise_coordinates.push_back(*precise);
  });
}

template <class Real>
void ReadBinaryNodes(Scanner& in, int64_t count, Nodes& nodes) {
  in.BinaryItems(count, sizeof(int32_t) + 3 * sizeof(Real), [&](const char* item) {
    nodes.ids.push_back(LoadLittle<int32_t>(item));
    for (size_t axis = 0; axis < 3; ++axis) {
      const Real value = LoadLittle<Real>(item + sizeof(int32_t) + axis * sizeof(Real));
      nodes.coordinates.push_back(static_cast<float>(value));
      nodes.precise_coordinates.push_back(value);
    }
  });
}

const ElementType& TypeOf(const Scanner& in, const Element& element) {
  const ElementType* type = FindElementType(element.type);
  if (!type) in.FailItem("element", element.id, fmt::format("unknown element type {}", element.type));
  return *type;
}

void ReadTextElement(Scanner& in, std::string_view line, const TextLayout& layout, Elements& elements) {
  Element element;
  element.id = in.Id(Columns(line, 4, layout.id_last), "element id");
  element.type = in.Integer(line, layout.id_last + 1, layout.id_last + 5, "element type");
  element.group = in.Integer(line, layout.id_last + 6, layout.id_last + 10, "group");
  element.material = in.Integer(line, layout.id_last + 11, layout.id_last + 15, "material");
  element.first_node = elements.nodes.size();
  const size_t count = TypeOf(in, element).nodes;
  for (size_t i = 0; i < count; ++i) {
    const size_t place = i % layout.nodes_per_line;
    if (place == 0) line = in.ContinuationLine();
    const size_t first = 4 + place * layout.id_width;
    elements.nodes.push_back(in.Id(Columns(line, first, first + layout.id_width - 1), "node id"));
  }
  in.CheckEnd(line, 3 + ((count - 1) % layout.nodes_per_line + 1) * layout.id_width);
  elements.items.push_back(element);
}

/// `head` is the part that all types have; the type says how many nodes follow in the file.
void ReadBinaryElement(Scanner& in, const char* head, Elements& elements) {
  Element element;
  element.id = LoadLittle<int32_t>(head);
  element.type = LoadLittle<int32_t>(head + 4);
  element.group = LoadLittle<int32_t>(head + 8);
  element.material = LoadLittle<int32_t>(head + 12);
  element.first_node = elements.nodes.size();
  const size_t count = TypeOf(in, element).nodes;
  for (size_t i = 0; i < count; ++i) {
    char bytes[sizeof(int32_t)];
    in.Bytes(bytes, sizeof bytes);
    elements.nodes.push_back(LoadLittle<int32_t>(bytes));
  }
  elements.items.push_back(element);
}

/// The first line of a block of the mesh.
std::string_view BlockLine(Scanner& in, std::string_view key) {
  std::string_view line;
  if (!in.NextLine(line) || line.starts_with(" 9999")) in.Fail(kNoMesh);
  if (!line.starts_with(key)) in.FailLine(line);
  return line;
}

}  // namespace

void Reader::Advance(Stage from, Stage to) {
  if (stage_ != from) throw std::logic_error("parts of a .frd file are read once each and in their order");
  stage_ = to;
}

Header Reader::ReadHeader() {
  Advance(Stage::kHeader, Stage::kNodes);
  in_.Enter("header");
  std::string_view line;
  if (!in_.FirstLine(line) || !line.starts_with("    1C")) in_.Fail("not a .frd file: it does not begin with 1C");
  Header header;
  header.case_name = Trim(Columns(line, 7, line.size()));
  do {
    if (line.starts_with("    1U")) ReadUserLine(line, header);
    if (!in_.NextLine(line)) in_.Fail(kNoMesh);
  } while (line.starts_with("    1"));
  in_.UnreadLine();
  return header;
}

Nodes Reader::ReadNodes() {
  Advance(Stage::kNodes, Stage::kElements);
  in_.Enter("node block", "nodes");
  const std::string_view line = BlockLine(in_, "    2C");
  const int64_t count = in_.Count(line, 25, 36);
  const Format format = in_.FormatCode(line, kBinaryDouble);
  Nodes nodes;
  nodes.binary = format == kBinaryDouble;
  if (format == kBinaryFloat) {
    ReadBinaryNodes<float>(in_, count, nodes);
  } else if (format == kBinaryDouble) {
    ReadBinaryNodes<double>(in_, count, nodes);
  } else {
    const TextLayout& layout = format == kShortText ? kShortLayout : kLongLayout;
    in_.TextItems(count, [&](std::string_view item) { ReadTextNode(in_, item, layout, nodes); });
  }
  return nodes;
}

Elements Reader::ReadElements() {
  Advance(Stage::kElements, Stage::kResults);
  in_.Enter("element block", "elements");
  const std::string_view line = BlockLine(in_, "    3C");
  const int64_t count = in_.Count(line, 25, 36);
  const Format format = in_.FormatCode(line, kBinaryFloat);
  Elements elements;
  if (format == kBinaryFloat) {
    const auto use = [&](const char* head) { ReadBinaryElement(in_, head, elements); };
    in_.BinaryItems(count, 4 * sizeof(int32_t), use, true);
  } else {
    const TextLayout& layout = format == kShortText ? kShortLayout : kLongLayout;
    in_.TextItems(count, [&](std::string_view item) { ReadTextElement(in_, item, layout, elements); });
  }
  return elements;
}

}  // namespace orvio::frd
