#include "faults/power_cut.h"

#include <algorithm>
#include <stdexcept>

namespace orvio::faults {
namespace {

constexpr char kJournal[] = "-journal";
constexpr std::size_t kPage = 4096, kSector = 512;

/// Copies the bytes of a write, unit by unit, as chance has it.
void PutSome(const Call& write, std::mt19937& chance, double share, std::size_t unit, Bytes& bytes) {
  std::bernoulli_distribution is_there(share);
  const auto begin = static_cast<std::size_t>(write.offset), end = begin + write.bytes.size();
  if (bytes.size() < end) bytes.resize(end);
  for (std::size_t at = begin; at < end;) {
    const std::size_t next = std::min(end, (at / unit + 1) * unit);
    if (is_there(chance)) {
      std::copy(write.bytes.data() + (at - begin), write.bytes.data() + (next - begin), bytes.data() + at);
    }
    at = next;
  }
}

void Apply(const Call& call, Bytes& bytes) {
  if (call.op == Op::kResize) {
    bytes.resize(static_cast<std::size_t>(call.size));
    return;
  }
  std::mt19937 chance;
  PutSome(call, chance, 1, kPage, bytes);
}

}  // namespace

Disk::Disk(const Snapshot& now) {
  contents_.push_back({now.file, {}});
  names_[""] = 0;
  if (now.journal) {
    contents_.push_back({*now.journal, {}});
    names_[kJournal] = 1;
  }
  synced_names_ = names_;
}

Disk::ContentNumber Disk::ContentOf(const std::string& suffix) const {
  const auto found = names_.find(suffix);
  if (found == names_.end()) throw std::runtime_error("a call to a file that is not there: " + suffix);
  return found->second;
}

void Disk::Name(const std::string& suffix, ContentNumber content) {
  if (suffix != kJournal) throw std::runtime_error("a file of an unknown name is made or removed: " + suffix);
  if (content == kNone) {
    names_.erase(suffix);
  } else {
    names_[suffix] = content;
  }
  later_names_.push_back({suffix, content});
}

void Disk::Make(const Call& call) {
  const std::string suffix = call.suffix;
  switch (call.op) {
    case Op::kWrite:
    case Op::kResize:
      contents_[static_cast<std::size_t>(ContentOf(suffix))].later.push_back(&call);
      return;
    case Op::kCreate:
      contents_.push_back({});
      return Name(suffix, static_cast<ContentNumber>(contents_.size()) - 1);
    case Op::kRemove:
      return Name(suffix, kNone);
    case Op::kMark:
      return;
    case Op::kSync:
      break;
  }
  if (suffix == kFolder) {
    synced_names_ = names_;
    later_names_.clear();
    return;
  }
  Content& content = contents_[static_cast<std::size_t>(ContentOf(suffix))];
  for (const Call* change : content.later) Apply(*change, content.synced);
  content.later.clear();
}

Bytes Disk::Remaining(const Content& content, std::mt19937& chance, double share, std::size_t unit) const {
  std::bernoulli_distribution is_there(share);
  Bytes bytes = content.synced;
  std::size_t size = bytes.size();
  for (const Call* change : content.later) {
    if (change->op == Op::kWrite) {
      PutSome(*change, chance, share, unit, bytes);
      const auto end = static_cast<std::size_t>(change->offset) + change->bytes.size();
      if (end > size && is_there(chance)) size = end;
    } else if (is_there(chance)) {
      size = static_cast<std::size_t>(change->size);
      if (bytes.size() > size) bytes.resize(size);
    }
  }
  bytes.resize(size);
  return bytes;
}

Snapshot Disk::Cut(unsigned seed) const {
  static constexpr double kShares[] = {0, 1, .5, .5, .9, .1};
  std::mt19937 chance(seed * 2654435761U + 1);
  const double share = kShares[seed % std::size(kShares)];
  const std::size_t unit = seed % 4 == 3 ? kSector : kPage;
  std::bernoulli_distribution is_there(share);
  auto names = synced_names_;
  for (const Naming& naming : later_names_) {
    if (is_there(chance)) names[naming.suffix] = naming.content;
  }
  Snapshot image;
  image.file = Remaining(contents_[static_cast<std::size_t>(names.at(""))], chance, share, unit);
  const auto journal = names.find(kJournal);
  if (journal != names.end() && journal->second != kNone) {
    image.journal = Remaining(contents_[static_cast<std::size_t>(journal->second)], chance, share, unit);
  }
  return image;
}

}  // namespace orvio::faults
