#pragma once

/// Small blocks of the constant section: what the index values of a state mean, and free texts.

#include "orvio/orv_block.h"

/// Names of the index columns ("TIME" as a rule). Stands at "post/constant/indices".
class ORVIO_EXPORT ORVSimulationType : public ORVBlock {
 public:
  ORVSimulationType();  ///< key 20
  ORVSimulationType(const ORVSimulationType&) = default;
  ORVSimulationType& operator=(const ORVSimulationType&) = default;
  ~ORVSimulationType() override;

  int ReadHeader(hid_t header, int flags) override;
  /// Reads the names where the file holds them; later files name a variable group instead.
  int ReadData(hid_t data, int flags) override;
  /// Writes the names below the constant section whatever the state. Another number of them than is there already
  /// answers 1.
  int WriteBlock(const char* path, int state, int flags) override;
  int WriteHeader(hid_t header) override;
  /// Writes the names in files up to version 1.2 and nothing in later ones.
  int WriteData(hid_t data) override;

  std::int64_t m_nindex;  ///< index columns
  char m_etypvar[256];    ///< variable group whose variables name the columns
  char* m_pEtypindex;     ///< names, nindex fields of 256 bytes; not owned
  int m_reserved;

 protected:
  int AppendBlockSchema(std::string& path) override;  ///< the block has no level of its own
};

/// Lines of text of a fixed length. Stands at "post/constant/text/<name>".
class ORVIO_EXPORT ORVText : public ORVBlock {
 public:
  ORVText();  ///< key 40
  ORVText(const ORVText&) = default;
  ORVText& operator=(const ORVText&) = default;
  ~ORVText() override;

  void InitializeBlock();  ///< clears the fields; frees nothing

  int ReadHeader(hid_t header, int flags) override;
  int ReadData(hid_t data, int flags) override;
  /// Reads this text in each state.
  int ReadBlockOver(const char* file, int stages, ORVIterationCallBack action, int first, int last, int step,
                    const char* name) override;
  /// Writes the text into the constant section below state 1, else into a state that is there. Data of other extents than
  /// those that are there already answer 1.
  int WriteBlock(const char* path, int state, int flags) override;
  int WriteHeader(hid_t header) override;
  int WriteData(hid_t data) override;
  /// Writes a hyperslab of the lines, whatever the item, where `sections` selects data; a dataset that exists grows by
  /// `count`. The first of `extent` is the bytes of a line; null takes `m_length`.
  int WriteSelectiveAttribute(const char* path, int state, int sections, _ORVBlockAtt att, int rank,
                              std::uint64_t* start, std::uint64_t* count, std::uint64_t* stride, std::uint64_t* block,
                              std::uint64_t* extent);
  int WriteSelAttData(hid_t data, _ORVBlockAtt att, int rank, std::uint64_t* start, std::uint64_t* count,
                      std::uint64_t* stride, std::uint64_t* block, std::uint64_t* extent);

  char m_etyptext[256];   ///< name
  std::int64_t m_nlines;  ///< lines
  std::int64_t m_length;  ///< bytes of a line
  char* m_pLines;         ///< nlines fields of `length` bytes; not owned

 protected:
  int AppendBlockSchema(std::string& path) override;
};
