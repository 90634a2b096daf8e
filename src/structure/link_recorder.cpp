// A key of a tree is the last name of what stands before it. HDF5 writes keys that lie where those names lie, so that
// places in the heap need to be compared, and no texts.

#include "structure/link_recorder.h"

#include <algorithm>

namespace orvio::structure {

std::string_view LinkRecorder::TextAt(std::uint64_t text, std::uint64_t length) {
  const Cursor in = walk_.view.At(heap_.data + text, length);
  if (!in.ok()) is_found_ = false;
  return in.ok() ? std::string_view(reinterpret_cast<const char*>(in.data()), in.left()) : std::string_view();
}

void LinkRecorder::Node(unsigned level) {
  if (!waiting_.empty()) {
    bounds_ = waiting_.back();
    waiting_.pop_back();
  }
  is_first_key_ = true;
  if (level == 0) runs_.push_back({links_.size(), links_.size()});
}

void LinkRecorder::Key(std::uint64_t text, unsigned level, bool is_last) {
  if (!is_first_key_ && level > 0) waiting_.push_back({key_, text});
  // What stands in a node begins behind the key that leads to it; the key before all others is the empty text.
  if (is_first_key_) is_found_ = is_found_ && text == bounds_.low;
  if (!is_first_key_ && level == 0) is_found_ = is_found_ && text == last_text_;
  if (is_last) is_found_ = is_found_ && (bounds_.high == kUndefined || text == bounds_.high);
  if (is_last && level == 0) runs_.back().end = links_.size();
  is_first_key_ = false;
  key_ = text;
}

void LinkRecorder::Entry(std::uint64_t text, std::uint64_t length, std::uint64_t header) {
  links_.push_back({walk_.catalogue->NameId(TextAt(text, length)), header});
  last_text_ = text;
}

bool LinkRecorder::IsInOrder(const std::vector<CatalogueBuilder::Link>& links) const {
  const CatalogueBuilder& names = *walk_.catalogue;
  const auto is_behind = [&](const CatalogueBuilder::Link& one, const CatalogueBuilder::Link& next) {
    return names.NameOf(one.name) >= names.NameOf(next.name);
  };
  return std::adjacent_find(links.begin(), links.end(), is_behind) == links.end();
}

void LinkRecorder::HandOn() {
  if (!is_found_) return;
  if (runs_.size() > 1) {
    std::vector<CatalogueBuilder::Link> in_order;
    in_order.reserve(links_.size());
    while (!runs_.empty()) {
      const auto begin = links_.begin() + static_cast<std::ptrdiff_t>(runs_.back().begin);
      in_order.insert(in_order.end(), begin, links_.begin() + static_cast<std::ptrdiff_t>(runs_.back().end));
      runs_.pop_back();
    }
    links_.swap(in_order);
  }
  const bool is_first_key_empty = heap_.size == 0 || walk_.view.At(heap_.data, 1).U8() == 0;
  if (is_first_key_empty && IsInOrder(links_)) walk_.catalogue->SetLinks(links_);
}

}  // namespace orvio::structure
