// Frames of results, titles of fixed width, and the attributes that later versions have besides.

#include "copying/generation.h"

#include <fmt/format.h>

#include <algorithm>

namespace orvio::program {
namespace {

constexpr std::size_t kTitleWidth = 256, kNarrow = sizeof(std::int32_t);
constexpr std::int64_t kSystem = 10, kParts = 100, kAttributes = 200, kIdentifiers = 250, kElements = 300;

bool HasTitles(const BlockContent& content) {
  return content.key == kParts || content.key == kAttributes || content.key == kIdentifiers;
}

void WidenTitles(BlockContent& content, std::vector<std::string>& notes) {
  const BlockItem* stored = content.Item("title");
  content.Remove("length");
  if (!stored && content.key == kParts) return;
  std::vector<std::string> titles = stored ? TextsOf(*stored) : std::vector<std::string>();
  // One for each id that is there: the number in the header is a claim.
  const BlockItem* ids = content.Item("entid");
  if (!stored && ids) titles.resize(ids->count());
  if (std::ranges::any_of(titles, [](const std::string& title) { return title.size() > kTitleWidth; })) {
    notes.push_back(fmt::format("left out: what titles of {} have beyond 256 characters", content.place.relative));
  }
  content.RemoveItem("title");
  content.AddTexts("title", kTitleWidth, titles);
}

void TellTitleWidth(BlockContent& content) {
  const BlockItem* stored = content.Item("title");
  const std::size_t width = stored ? stored->width : 0;
  if (stored || content.key != kParts) content.SetNumber("length", static_cast<std::int64_t>(width), kNarrow);
}

/// Tells readers which of the optional datasets of parts are not there.
void TellWhatPartsLack(BlockContent& content) {
  std::int64_t off = 0;
  if (!content.Item("mid")) off += 1;
  if (!content.Item("mtyp")) off += 2;
  if (!content.Item("pcol")) off += 4;
  content.SetNumber("off", off, kNarrow);
}

void MoveFrame(bool to_split, BlockContent& content) {
  constexpr char kFrame[] = "fidglob";
  if (to_split) {
    const HeaderField* field = content.Find(kFrame);
    if (!field || content.Number("fswitch") > 0) return;
    const std::int64_t frame = field->number;
    content.Remove(kFrame);
    if (!content.Item(kFrame)) content.AddIntegers(kFrame, {1}, {frame});
    return;
  }
  const BlockItem* item = content.Item(kFrame);
  const std::vector<std::int64_t> frame = item ? IntegersOf(*item) : std::vector<std::int64_t>();
  if (frame.size() != 1) return;
  content.RemoveItem(kFrame);
  content.SetNumber(kFrame, frame.front());
}

void ConvertSystem(bool to_split, BlockContent& content) {
  content.Remove("lenudb");
  const BlockItem* units = content.Item("udbid");
  if (!to_split) content.SetNumber("lenudb", units ? static_cast<std::int64_t>(units->count()) : 0, kNarrow);
}

}  // namespace

void ConvertBlock(bool to_split, BlockContent& content, std::vector<std::string>& notes) {
  if (content.key == kSystem) ConvertSystem(to_split, content);
  if (IsResult(content.key)) MoveFrame(to_split, content);
  if (to_split) {
    if (HasTitles(content)) WidenTitles(content, notes);
    content.Remove("off");
    content.Remove("indexic");  // states that hold changes were put together
    return;
  }
  if (HasTitles(content)) TellTitleWidth(content);
  if (content.key == kParts) TellWhatPartsLack(content);
  if (content.key == kElements && content.Text("etyp").empty()) content.SetText("etyp", content.Text("etypelem"));
}

}  // namespace orvio::program
