#pragma once

// Sound files in which single fields are changed, checksums following: what is wrong then is that field alone.

#include <array>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "structure/forged_structure.h"

// HDF5's own, which its headers for hosts do not declare.
extern "C" std::uint32_t H5_checksum_lookup3(const void* key, size_t length, std::uint32_t initial);

namespace orv_test {

/// The bytes of a file and a place in them. Changes count from the place; see at() and find().
class PatchedFile {
 public:
  explicit PatchedFile(std::string bytes) : bytes_(std::move(bytes)) {}

  /// Goes to the `nth` structure with this signature. If it has a checksum, that is put right for later changes.
  PatchedFile& at(std::string_view signature, int nth = 0) {
    PutChecksum();
    place_ = 0;
    for (int i = 0; i <= nth; ++i) place_ = Find(signature, i == 0 ? 0 : place_ + 1);
    structure_ = place_;
    FindChecksum();
    return *this;
  }
  /// Goes on to these bytes, still in the same structure.
  PatchedFile& find(std::string_view bytes, std::ptrdiff_t and_then = 0) {
    place_ = Find(bytes, place_ + 1) + static_cast<size_t>(and_then);
    return *this;
  }
  PatchedFile& find(std::uint64_t value, std::ptrdiff_t and_then = 0) {
    return find(std::string_view(reinterpret_cast<const char*>(&value), sizeof value), and_then);
  }
  /// Goes to an address, which is taken from a field of 8 bytes.
  PatchedFile& follow(std::ptrdiff_t offset) {
    const std::uint64_t address = get(offset, 8);
    PutChecksum();
    place_ = structure_ = address;
    FindChecksum();
    return *this;
  }

  PatchedFile& put(std::ptrdiff_t offset, unsigned width, std::uint64_t value) {
    std::memcpy(Field(offset, width), &value, width);
    return *this;
  }
  PatchedFile& put(std::ptrdiff_t offset, std::string_view bytes) {
    std::memcpy(Field(offset, static_cast<unsigned>(bytes.size())), bytes.data(), bytes.size());
    return *this;
  }
  std::uint64_t get(std::ptrdiff_t offset, unsigned width) {
    std::uint64_t value = 0;
    std::memcpy(&value, Field(offset, width), width);
    return value;
  }
  /// Leaves the checksum of the present structure as it is.
  PatchedFile& unchecked() {
    length_ = 0;
    return *this;
  }
  size_t place() const { return place_; }
  std::string& bytes() {
    PutChecksum();
    return bytes_;
  }

 private:
  char* Field(std::ptrdiff_t offset, unsigned width) {
    const size_t at = place_ + static_cast<size_t>(offset);
    if (at > bytes_.size() || width > bytes_.size() - at) throw std::runtime_error("field outside the file");
    return bytes_.data() + at;
  }
  size_t Find(std::string_view bytes, size_t from) const {
    const size_t found = bytes_.find(bytes, from);
    if (found == std::string::npos) throw std::runtime_error("not in the file: " + std::string(bytes));
    return found;
  }

  std::uint32_t Computed(size_t length, size_t zeroed = std::string::npos) const {
    std::string part = bytes_.substr(structure_, length);
    if (zeroed != std::string::npos) part.replace(zeroed, 4, 4, '\0');
    return H5_checksum_lookup3(part.data(), part.size(), 0);
  }
  bool Matches(size_t length, size_t field, size_t zeroed) const {
    std::uint32_t stored = 0;
    if (structure_ + field + 4 > bytes_.size()) return false;
    std::memcpy(&stored, bytes_.data() + structure_ + field, 4);
    return stored == Computed(length, zeroed);
  }
  /// Where a structure's checksum is follows from which length it matches.
  void FindChecksum() {
    length_ = 0;
    zeroed_ = std::string::npos;
    if (bytes_.compare(structure_, 4, "FHDB") == 0) return FindMiddleChecksum();
    for (size_t length = 8; length < 6000 && length_ == 0; ++length) {
      if (Matches(length, length, std::string::npos)) length_ = field_ = length;
    }
  }
  void FindMiddleChecksum() {
    for (size_t length = 512; length <= 65536 && length_ == 0; length *= 2) {
      for (const size_t field : {17U, 18U}) {
        if (!Matches(length, field, field)) continue;
        length_ = length;
        field_ = zeroed_ = field;
      }
    }
  }
  void PutChecksum() {
    if (length_ == 0) return;
    const std::uint32_t computed = Computed(length_, zeroed_);
    std::memcpy(bytes_.data() + structure_ + field_, &computed, 4);
  }

  std::string bytes_;
  size_t place_ = 0;
  size_t structure_ = 0;
  size_t length_ = 0;  ///< of what the checksum is of; 0: there is none
  size_t field_ = 0;
  size_t zeroed_ = std::string::npos;
};

}  // namespace orv_test
