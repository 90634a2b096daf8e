#include "printing/json_output.h"

#include <fmt/format.h>

#include <cmath>

namespace orvio::program {
namespace {

template <class T>
Json Number(T value) {
  if (!std::isfinite(value)) return fmt::format("{}", value);
  return value;
}

}  // namespace

Json JsonAnswer(std::string_view command, const std::string& file) {
  return {{"schema_version", kSchemaVersion}, {"command", command}, {"file", file}};
}

Json JsonNumber(double value, bool is_double) { return is_double ? Number(value) : Number(static_cast<float>(value)); }

Json JsonNumbers(const std::vector<double>& values) {
  Json numbers = Json::array();
  for (const double value : values) numbers.push_back(JsonNumber(value));
  return numbers;
}

void PrintJson(const Json& answer) { fmt::print("{}\n", answer.dump(1, ' ', false, Json::error_handler_t::replace)); }

}  // namespace orvio::program
