// The lines of a block header.

#include "h5/header_io.h"

#include <hdf5.h>

#include <algorithm>

#include "h5/entry.h"
#include "h5/indexed_file.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"

namespace orvio::h5 {

int Field::Read(IOH5Reader& reader, hid_t header, const char* name) const {
  if (type_ != ORV_CHAR) return reader.ReadAttributeValue(header, name, 0, nullptr, type_, member_);
  Text text = {};
  if (reader.ReadAttributeValue(header, name, 0, nullptr, ORV_CHAR, text) != kOk) return kFail;
  AssignField(static_cast<char*>(member_), size_, Content(text));
  return kOk;
}

void Field::SetAbsent(std::int64_t number) const {
  switch (type_) {
    case ORV_LONG:
      *static_cast<std::int64_t*>(member_) = number;
      break;
    case ORV_INT:
      *static_cast<int*>(member_) = static_cast<int>(number);
      break;
    default:
      AssignField(static_cast<char*>(member_), size_, "");
      break;
  }
}

HeaderReader::HeaderReader(IOH5Reader* reader, hid_t header)
    : reader_(reader), header_(header), status_(reader ? kOk : kFail) {}

bool HasAttribute(hid_t object, const char* name) {
  return Entry(false, [&] {
    if (const IndexedPlace place(object); place) {
      structure::Catalogue::Attribute found = {};
      const auto answer = place.catalogue().FindAttribute(place.object, name, found);
      if (answer != structure::Catalogue::Answer::kUnknown) return answer == structure::Catalogue::Answer::kYes;
    }
    const Hdf5Location by_hdf5(object);
    return H5Aexists(by_hdf5.get(), name) > 0;
  });
}

void HeaderReader::required(const char* name, Field member) {
  if (ok()) status_ = member.Read(*reader_, header_, name);
}

void HeaderReader::if_present(const char* name, Field member) {
  if (ok() && Has(name)) status_ = member.Read(*reader_, header_, name);
}

void HeaderReader::defaulted(const char* name, Field member, std::int64_t absent) {
  if (!ok()) return;
  if (Has(name)) {
    status_ = member.Read(*reader_, header_, name);
  } else {
    member.SetAbsent(absent);
  }
}

void HeaderReader::tolerated(const char* name, Field member, std::int64_t absent) {
  if (!ok()) return;
  if (!Has(name)) return member.SetAbsent(absent);
  (void)member.Read(*reader_, header_, name);  // unreadable: the member stays as it is
}

bool HeaderReader::attempted(const char* name, Field member) {
  return ok() && Has(name) && member.Read(*reader_, header_, name) == kOk;
}

void HeaderWriter::integer(const char* name, std::int64_t value) {
  if (ok()) status_ = OH5write_ATTRIBUTE(header_, name, nullptr, ORV_LONG, 0, &value);
}

void HeaderWriter::integer32(const char* name, int value) {
  if (ok()) status_ = OH5write_ATTRIBUTE(header_, name, nullptr, ORV_INT, 0, &value);
}

void HeaderWriter::text(const char* name, const char* value, std::size_t width) {
  if (!ok()) return;
  char field[disk::kTextWidth];
  width = std::min(width, sizeof field);
  std::fill_n(field, width, ' ');
  const std::string_view content = Content(value, width);
  std::copy_n(content.data(), content.size(), field);
  status_ = OH5write_ATTRIBUTE(header_, name, nullptr, ORV_CHAR, width, field);
}

void HeaderWriter::attempted(const char* name, std::int64_t value) {
  if (ok()) (void)OH5write_ATTRIBUTE(header_, name, nullptr, ORV_LONG, 0, &value);
}

}  // namespace orvio::h5
