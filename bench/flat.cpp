#include "flat.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <vector>

namespace orvio::bench {
namespace {

constexpr std::size_t kBlock = 256 * std::size_t{1024};  // bytes read at a time where values are picked or converted

/// An open file.
class Descriptor {
 public:
  Descriptor(const std::string& path, int flags) : fd_(open(path.c_str(), flags | O_CLOEXEC, 0644)) {
    Demand(fd_ >= 0, "cannot open " + path);
  }
  ~Descriptor() { (void)close(fd_); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  void Read(void* to, std::size_t bytes, off_t at) const {
    for (auto* place = static_cast<char*>(to); bytes > 0;) {
      const ssize_t got = pread(fd_, place, bytes, at);
      Demand(got > 0, "pread failed");
      place += got;
      at += got;
      bytes -= static_cast<std::size_t>(got);
    }
  }
  void Write(const void* from, std::size_t bytes, off_t at) const {
    for (const auto* place = static_cast<const char*>(from); bytes > 0;) {
      const ssize_t put = pwrite(fd_, place, bytes, at);
      Demand(put > 0, "pwrite failed");
      place += put;
      at += put;
      bytes -= static_cast<std::size_t>(put);
    }
  }

 private:
  int fd_;
};

class FlatReader : public Reader {
 public:
  explicit FlatReader(const Files& files) : job_(files.job), path_(files.flat), places_(files.job) {}

  void Read(const Asked& asked, Answer& answer) override {
    const Descriptor file(path_, O_RDONLY);
    float* values = answer.TakeValues(ValuesAsked(job_, asked));
    const int first = asked.state == Asked::kAll ? 1 : asked.state;
    const int last = asked.state == Asked::kAll ? job_.states : asked.state;
    for (int state = first; state <= last; ++state) values += ReadState(file, asked, state, values);
    if (!asked.with_ids) return;
    const auto nodes = static_cast<std::size_t>(job_.nodes);
    file.Read(answer.TakeIds(nodes), nodes * sizeof(int), places_.Ids(asked.quantity, asked.state));
  }

  void List(Listing& listing) override {
    const Descriptor file(path_, O_RDONLY);
    const std::vector<char> table = ReadTable(file);
    for (std::size_t i = 0; i < kQuantities.size(); ++i) {
      listing.quantities.emplace_back(table.data() + i * FlatPlaces::kNameBytes);
    }
    std::sort(listing.quantities.begin(), listing.quantities.end());
    TakeStates(table, listing);
  }

  void ReadStates(Listing& listing) override {
    const Descriptor file(path_, O_RDONLY);
    TakeStates(ReadTable(file), listing);
  }

 private:
  std::vector<char> ReadTable(const Descriptor& file) const {
    std::vector<char> table(places_.table_bytes());
    file.Read(table.data(), table.size(), FlatPlaces::Names());
    return table;
  }

  void TakeStates(const std::vector<char>& table, Listing& listing) const {
    const auto states = static_cast<std::size_t>(job_.states);
    listing.idents.resize(states);
    listing.times.resize(states);
    const char* place = table.data() + places_.States();
    std::memcpy(listing.idents.data(), place, states * sizeof(int));
    std::memcpy(listing.times.data(), place + states * sizeof(int), states * sizeof(float));
  }

  /// Answers the number of values.
  std::size_t ReadState(const Descriptor& file, const Asked& asked, int state, float* to) const {
    const off_t at = places_.Values(asked.quantity, state);
    const auto components = static_cast<std::size_t>(kQuantities[static_cast<std::size_t>(asked.quantity)].components);
    const auto count = static_cast<std::size_t>(ValuesIn(job_, asked.quantity));
    if (asked.node != Asked::kAll) return ReadNode(file, asked, at, components, to);
    if (job_.storage == Storage::kDouble) return ReadDoubles(file, at, count, to);
    if (asked.component != Asked::kAll) return ReadComponent(file, asked, at, components, to);
    file.Read(to, count * sizeof(float), at);
    return count;
  }

  static std::size_t ReadNode(const Descriptor& file, const Asked& asked, off_t at, std::size_t components, float* to) {
    const std::size_t row = static_cast<std::size_t>(asked.node) * components;
    const bool whole = asked.component == Asked::kAll;
    const std::size_t first = whole ? row : row + static_cast<std::size_t>(asked.component);
    const std::size_t count = whole ? components : 1;
    file.Read(to, count * sizeof(float), at + static_cast<off_t>(first * sizeof(float)));
    return count;
  }

  std::size_t ReadComponent(const Descriptor& file, const Asked& asked, off_t at, std::size_t components,
                            float* to) const {
    const auto nodes = static_cast<std::size_t>(job_.nodes);
    const std::size_t rows_at_once = kBlock / sizeof(float) / components;
    std::vector<float> rows(rows_at_once * components);
    for (std::size_t first = 0; first < nodes; first += rows_at_once) {
      const std::size_t count = std::min(rows_at_once, nodes - first);
      const std::size_t bytes = count * components * sizeof(float);
      file.Read(rows.data(), bytes, at);
      at += static_cast<off_t>(bytes);
      const float* from = rows.data() + asked.component;
      for (std::size_t row = 0; row < count; ++row) *to++ = from[row * components];
    }
    return nodes;
  }

  static std::size_t ReadDoubles(const Descriptor& file, off_t at, std::size_t count, float* to) {
    std::vector<double> some(kBlock / sizeof(double));
    for (std::size_t first = 0; first < count; first += some.size()) {
      const std::size_t here = std::min(some.size(), count - first);
      file.Read(some.data(), here * sizeof(double), at + static_cast<off_t>(first * sizeof(double)));
      for (std::size_t i = 0; i < here; ++i) *to++ = static_cast<float>(some[i]);
    }
    return count;
  }

  Job job_;
  std::string path_;
  FlatPlaces places_;
};

struct IndexRow {
  int ident;
  float time;
};

/// Adds the arrays of each state at the end.
class FlatWriter : public Writer {
 public:
  FlatWriter(const std::string& path, const Commit& commit) : path_(path), whole_state_(commit.whole_state) {
    const Descriptor file(path_, O_WRONLY | O_CREAT | O_TRUNC);
  }

  void WriteState(int state, StateValues& values) override {
    if (whole_state_) {
      const Descriptor file(path_, O_WRONLY);
      for (int quantity = 0; quantity < static_cast<int>(kQuantities.size()); ++quantity) {
        WriteBlock(file, state, quantity, values);
      }
      return;
    }
    for (int quantity = 0; quantity < static_cast<int>(kQuantities.size()); ++quantity) {
      WriteBlock(Descriptor(path_, O_WRONLY), state, quantity, values);
    }
  }

 private:
  void WriteBlock(const Descriptor& file, int state, int quantity, const StateValues& values) {
    const auto at = static_cast<std::size_t>(quantity);
    const IndexRow row = {IdentOf(state), TimeOf(state)};
    Append(file, &row, sizeof row);
    Append(file, values.ids.get(), static_cast<std::size_t>(values.job.nodes) * sizeof(int));
    Append(file, values.values[at].get(), static_cast<std::size_t>(ValuesIn(values.job, quantity)) * sizeof(float));
  }

  void Append(const Descriptor& file, const void* from, std::size_t bytes) {
    file.Write(from, bytes, end_);
    end_ += static_cast<off_t>(bytes);
  }

  std::string path_;
  bool whole_state_;
  off_t end_ = 0;
};

void WriteTable(const Descriptor& file, const Job& job, const FlatPlaces& places) {
  std::vector<char> names(kQuantities.size() * FlatPlaces::kNameBytes);
  for (std::size_t i = 0; i < kQuantities.size(); ++i) {
    std::memcpy(names.data() + i * FlatPlaces::kNameBytes, kQuantities[i].name, std::strlen(kQuantities[i].name));
  }
  std::vector<int> idents;
  std::vector<float> times;
  for (int state = 1; state <= job.states; ++state) {
    idents.push_back(IdentOf(state));
    times.push_back(TimeOf(state));
  }
  const std::size_t bytes = idents.size() * sizeof(int);
  file.Write(names.data(), names.size(), FlatPlaces::Names());
  file.Write(idents.data(), bytes, places.States());
  file.Write(times.data(), bytes, places.States() + static_cast<off_t>(bytes));
}

}  // namespace

FlatPlaces::FlatPlaces(const Job& job)
    : job_(job), value_bytes_(job.storage == Storage::kDouble ? sizeof(double) : sizeof(float)) {}

std::size_t FlatPlaces::table_bytes() const {
  return static_cast<std::size_t>(States()) + static_cast<std::size_t>(job_.states) * (sizeof(int) + sizeof(float));
}

off_t FlatPlaces::States() const { return kQuantities.size() * kNameBytes; }

off_t FlatPlaces::Ids(int quantity, int state) const {
  std::size_t block[kQuantities.size()], whole_state = 0;
  for (std::size_t i = 0; i < kQuantities.size(); ++i) {
    block[i] = static_cast<std::size_t>(job_.nodes) * sizeof(int) +
               static_cast<std::size_t>(ValuesIn(job_, static_cast<int>(i))) * value_bytes_;
    whole_state += block[i];
  }
  std::size_t at = table_bytes() + static_cast<std::size_t>(state - 1) * whole_state;
  for (int i = 0; i < quantity; ++i) at += block[i];
  return static_cast<off_t>(at);
}

off_t FlatPlaces::Values(int quantity, int state) const {
  return Ids(quantity, state) + static_cast<off_t>(static_cast<std::size_t>(job_.nodes) * sizeof(int));
}

bool IsFlatWritten(const std::string& path, const StateValues& values, int states) {
  std::size_t of_a_state = 0;
  for (int quantity = 0; quantity < static_cast<int>(kQuantities.size()); ++quantity) {
    of_a_state += sizeof(IndexRow) + static_cast<std::size_t>(values.job.nodes) * sizeof(int) +
                  static_cast<std::size_t>(ValuesIn(values.job, quantity)) * sizeof(float);
  }
  const std::size_t size = of_a_state * static_cast<std::size_t>(states);
  if (std::filesystem::file_size(path) != size) return false;
  std::vector<float> last(static_cast<std::size_t>(ValuesIn(values.job, kStress)));
  const std::size_t bytes = last.size() * sizeof(float);
  Descriptor(path, O_RDONLY).Read(last.data(), bytes, static_cast<off_t>(size - bytes));
  return std::equal(last.begin(), last.end(), values.values[kStress].get());
}

void MakeFlatFile(const Job& job, const std::string& path) {
  const Descriptor file(path, O_WRONLY | O_CREAT | O_TRUNC);
  const FlatPlaces places(job);
  WriteTable(file, job, places);
  std::vector<int> ids(static_cast<std::size_t>(job.nodes));
  FillIds(job, ids.data());
  for (int state = 1; state <= job.states; ++state) {
    for (int quantity = 0; quantity < static_cast<int>(kQuantities.size()); ++quantity) {
      std::vector<float> values(static_cast<std::size_t>(ValuesIn(job, quantity)));
      FillValues(job, quantity, state, values.data());
      const std::vector<double> doubles(values.begin(), values.end());
      const bool as_doubles = job.storage == Storage::kDouble;
      const void* stored = as_doubles ? static_cast<const void*>(doubles.data()) : values.data();
      file.Write(ids.data(), ids.size() * sizeof(int), places.Ids(quantity, state));
      file.Write(stored, values.size() * places.value_bytes(), places.Values(quantity, state));
    }
  }
}

std::unique_ptr<Reader> MakeFlatReader(const Files& files) { return std::make_unique<FlatReader>(files); }
std::unique_ptr<Writer> MakeFlatWriter(const std::string& path, const Commit& commit) {
  return std::make_unique<FlatWriter>(path, commit);
}

}  // namespace orvio::bench
