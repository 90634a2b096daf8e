// What differs between two files, as JSON.

#include <string>

#include "printing/diff_output.h"
#include "printing/json_output.h"

namespace orvio::program {
namespace {

void AddStates(const StatePair& states, Json& json) {
  if (states.a == 0) return;
  json["state"] = states.a;
  json["other_state"] = states.b;
}

Json ToJson(const QuantityName& quantity) {
  Json json = {{"section", quantity.section},
               {"variable", quantity.variable},
               {"entity", quantity.entity},
               {"complex", quantity.is_complex},
               {"element_values", quantity.is_element}};
  if (!quantity.zone.empty()) json["zone"] = quantity.zone;
  if (quantity.zone_id != 0) json["zone_id"] = quantity.zone_id;
  if (!quantity.series.empty()) json["series"] = quantity.series;
  if (quantity.number > 0) json["block"] = quantity.number + 1;
  return json;
}

Json ToJson(const TextDifference& difference) {
  Json json = {{"kind", difference.kind}, {"name", difference.name}, {"what", difference.what},
               {"a", difference.a},       {"b", difference.b},       {"note", difference.is_note}};
  AddStates(difference.states, json);
  return json;
}

Json ToJson(const OnlyIn& lone) {
  Json json = {{"in", lone.in_a ? "a" : "b"}, {"kind", lone.kind}, {"name", lone.name}, {"note", lone.is_note}};
  if (lone.quantity) json["result"] = ToJson(*lone.quantity);
  if (!lone.states.empty()) json["states"] = lone.states;
  return json;
}

Json ToJson(const LoneIds& ids) { return {{"count", ids.count}, {"first", ids.first}}; }

Json ToJson(const TableDifference& difference) {
  Json json = {{"kind", difference.kind}, {"name", difference.name}};
  AddStates(difference.states, json);
  if (difference.what.empty()) {
    json["only_in_a"] = ToJson(difference.only_a);
    json["only_in_b"] = ToJson(difference.only_b);
    return json;
  }
  json.update({{"what", difference.what}, {"compared", difference.compared}, {"differing", difference.differing}});
  json["first"] = {
      {difference.kind == "index" ? "state" : "id", difference.first_id}, {"a", difference.a}, {"b", difference.b}};
  return json;
}

Json ToJson(const ValuePlace& place) {
  Json json = {{"difference", JsonNumber(place.difference)}, {"id", place.id}};
  if (place.layer > 0) json["layer"] = place.layer;
  json["component"] = place.component;
  json["a"] = JsonNumber(place.a, !place.a_is_float);
  json["b"] = JsonNumber(place.b, !place.b_is_float);
  return json;
}

Json ToJson(const ValueDifference& difference) {
  Json json = ToJson(difference.quantity);
  AddStates(difference.states, json);
  json["compared"] = difference.compared;
  json["differing"] = difference.differing;
  if (difference.differing > 0) {
    json["largest_absolute"] = ToJson(difference.absolute);
    json["largest_relative"] = ToJson(difference.relative);
  }
  if (difference.layers) json["layers"] = {{"a", difference.layers->first}, {"b", difference.layers->second}};
  json["only_in_a"] = ToJson(difference.only_a);
  json["only_in_b"] = ToJson(difference.only_b);
  return json;
}

template <class T>
Json ListToJson(const std::vector<T>& list) {
  Json json = Json::array();
  for (const T& item : list) json.push_back(ToJson(item));
  return json;
}

}  // namespace

void PrintDifferencesAsJson(const DiffSubject& subject, const Differences& found) {
  Json answer = JsonAnswer("diff", subject.file);
  answer["other"] = subject.other;
  answer["same"] = !found.IsAny(subject.is_strict);
  answer["strict"] = subject.is_strict;
  answer["compared"] = {{"quantities", found.quantities}, {"states", found.states}, {"values", found.compared_values}};
  answer["differing_values"] = found.differing_values;
  answer["texts"] = ListToJson(found.texts);
  answer["only_in_one"] = ListToJson(found.lone);
  answer["tables"] = ListToJson(found.tables);
  answer["values"] = ListToJson(found.values);
  PrintJson(answer);
}

}  // namespace orvio::program
