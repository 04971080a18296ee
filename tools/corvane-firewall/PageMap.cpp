#include "PageMap.h"

#include <algorithm>
#include <map>

#include "PolicyJson.h"

namespace {

long long TargetNumber(const Policy::MapTarget& target) {
  const auto index = static_cast<long long>(target.index);
  return target.isVerdict ? -1 - index : index;
}

Json PageNode(const Policy::MapNode& node) {
  std::map<long long, std::size_t> counts;
  for (const Policy::MapTarget& target : node.targets) {
    ++counts[TargetNumber(target)];
  }
  const long long most =
      std::ranges::max_element(counts, {}, [](const auto& count) { return count.second; })->first;
  Json json{node.field, most};
  for (std::size_t i = 0; i < node.targets.size(); ++i) {
    const long long target = TargetNumber(node.targets[i]);
    if (target != most) {
      json.push_back(i);
      json.push_back(target);
    }
  }
  return json;
}

bool SaysNothing(const Json& value) {
  return value.is_array() ? value.empty() : value.is_boolean() && !value.get<bool>();
}

/// A class without the members that say nothing; texts by their indices.
Json PageClass(const Policy::ValueClass& values, Policy::Field field, SharedTexts& texts) {
  const Json whole = ToJson(values, field);
  Json json;
  for (const auto& [name, value] : whole.items()) {
    if (!SaysNothing(value)) {
      json[name] = value;
    }
  }
  for (const char* name : {"applications", "endings"}) {
    if (json.contains(name)) {
      for (Json& id : json[name]) {
        id = texts.IndexOf(id);
      }
    }
  }
  if (values.exampleApplication) {
    json["example"] = texts.IndexOf(json["example"]);
  }
  json["text"] = texts.IndexOf(values.text);
  return json;
}

Json PageSection(const Policy::MapSection& section, SharedTexts& texts) {
  Json fields = Json::array();
  for (const Policy::FieldClasses& field : section.fields) {
    Json classes = Json::array();
    for (const Policy::ValueClass& values : field.classes) {
      classes.push_back(PageClass(values, field.field, texts));
    }
    fields.push_back({{"field", Policy::FieldText(field.field)}, {"classes", std::move(classes)}});
  }
  Json nodes = Json::array();
  std::ranges::transform(section.nodes, std::back_inserter(nodes), PageNode);
  return {{"direction", DirectionText(section.direction)},
          {"ipVersion", VersionNumber(section.ipVersion)},
          {"fields", std::move(fields)},
          {"nodes", std::move(nodes)},
          {"root", TargetNumber(section.root)}};
}

}  // namespace

Json PageMap(const Policy::Map& map, SharedTexts& texts) {
  Json json{{"verdicts", Json::array()}, {"sections", Json::array()}};
  for (const Policy::Verdict& verdict : map.verdicts) {
    json["verdicts"].push_back(ToJson(verdict));
  }
  for (const Policy::MapSection& section : map.sections) {
    json["sections"].push_back(PageSection(section, texts));
  }
  return json;
}
