// What all answers in JSON have in common.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace orvio::program {

using Json = nlohmann::ordered_json;

/// Version of the answers in JSON. Members may be added within a version; one that goes or means something else makes a
/// new one.
inline constexpr int kSchemaVersion = 1;

/// An answer of a command about a file, to be filled: `{"schema_version": 1, "command": ..., "file": ...}`.
Json JsonAnswer(std::string_view command, const std::string& file);

/// JSON has no word for numbers that are not finite: they become texts.
Json JsonNumber(double value, bool is_double = true);
Json JsonNumbers(const std::vector<double>& values);

/// Prints an answer on standard output. Texts of a file that are not UTF-8 come with replacement characters.
void PrintJson(const Json& answer);

}  // namespace orvio::program
