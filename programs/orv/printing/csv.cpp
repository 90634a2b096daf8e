// Printing of comma-separated values.

#include "printing/csv.h"

#include <fmt/format.h>

namespace orvio::program {
namespace {

std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\n\r") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

}  // namespace

void PrintCsvLine(const std::vector<std::string>& fields) {
  std::string line;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) line += ',';
    line += CsvField(fields[i]);
  }
  fmt::print("{}\n", line);
}

}  // namespace orvio::program
