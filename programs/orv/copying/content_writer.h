// Writes whole blocks to a new file.
#pragma once

#include <hdf5.h>
#include <orvio/orvio.h>

#include <map>
#include <optional>
#include <string>

#include "checking/stored_object.h"
#include "copying/block_content.h"

namespace orvio::program {

/// How numbers are stored.
struct Storage {
  enum class Filter { kAsRead, kNone, kDigits };

  Filter filter = Filter::kAsRead;  ///< kAsRead: each dataset as the one that it comes from
  int digits = 0;                   ///< of kDigits
  std::optional<int> chunk;         ///< entities of a chunk at most; nothing: as read, else all of them
};

/// A new file of one version, open from the start to Close: what becomes of an output that is not finished is the matter
/// of who gave the path, so the file is one change as a whole and not one for each state. Operations throw Trouble.
class ContentWriter {
 public:
  /// `shown_as` is the name of the file in messages.
  ContentWriter(const std::string& path, std::string shown_as, _ORVVersion version, const Storage& storage);
  ~ContentWriter();
  ContentWriter(const ContentWriter&) = delete;
  ContentWriter& operator=(const ContentWriter&) = delete;

  _ORVVersion version() const { return version_; }
  bool IsSplit() const { return version_ < ORV_VERSION_2_0; }

  /// Adds the next state and answers the path of its group.
  std::string AddState();
  int states() const { return states_; }
  /// Writes a block below a section or a state. What is foreign in it comes from `source`; the answer is false when some of
  /// that could not be taken along.
  bool Write(const std::string& section, const BlockContent& content, hid_t source);

  /// Opens a group, or makes it with those that it lies in.
  OwnedId OpenGroup(const std::string& path);
  void Close();

 private:
  [[noreturn]] void Fail(const std::string& what) const;
  void WriteHeader(hid_t part, const BlockContent& content);
  void WriteItem(hid_t part, const BlockContent& content, const BlockItem& item);
  void WriteFiltered(hid_t part, const BlockContent& content, const BlockItem& item, int digits);
  void WriteByHdf5(hid_t part, const BlockItem& item, hid_t source);
  bool WriteLink(hid_t part, const BlockItem& item);
  bool CopyForeign(hid_t header, hid_t data, const BlockContent& content, hid_t source);

  std::string shown_as_;
  _ORVVersion version_;
  Storage storage_;
  hid_t file_ = H5I_INVALID_HID;
  hid_t source_ = H5I_INVALID_HID;  ///< of the block that is being written
  int states_ = 0;
  std::map<std::string, std::string> places_;  ///< datasets that links may lead to, by where they were read
};

}  // namespace orvio::program
