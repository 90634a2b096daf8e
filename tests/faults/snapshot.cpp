#include "faults/snapshot.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "faults/judge.h"

namespace orvio::faults {

Bytes BytesOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  Bytes bytes(std::filesystem::file_size(path));
  if (!in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()))) throw std::runtime_error("unread: " + path);
  return bytes;
}

void PutBytes(const std::string& path, const Bytes& bytes) {
  std::filesystem::remove(path);  // a new file, so that nothing of the old one stays
  std::ofstream out(path, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) throw std::runtime_error("unwritten: " + path);
}

Snapshot Snapshot::Of(const std::string& path) {
  Snapshot taken{BytesOf(path), std::nullopt};
  if (std::filesystem::exists(JournalOf(path))) taken.journal = BytesOf(JournalOf(path));
  return taken;
}

void Snapshot::Restore(const std::string& path) const {
  PutBytes(path, file);
  if (journal) {
    PutBytes(JournalOf(path), *journal);
  } else {
    std::filesystem::remove(JournalOf(path));
  }
}

}  // namespace orvio::faults
