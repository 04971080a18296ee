#include "JsonSchema.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

namespace {

using Adapter = valijson::adapters::NlohmannJsonAdapter;

/// The schema with this file name in docs/json.
const nlohmann::json& FileNamed(const std::string& name) {
  static std::map<std::string, nlohmann::json> files;
  const auto [file, isNew] = files.try_emplace(name);
  if (isNew) {
    std::ifstream stream(std::filesystem::path(CORVANE_JSON_SCHEMAS) / name);
    file->second = nlohmann::json::parse(stream);
  }
  return file->second;
}

/// A schema with those that it refers to.
struct WholeSchema {
  explicit WholeSchema(const std::string& file) {
    valijson::SchemaParser().populateSchema(
        Adapter(FileNamed(file)), schema, [](const std::string& name) { return &FileNamed(name); },
        [](const nlohmann::json*) {});
  }

  valijson::Schema schema;
};

std::string FaultsOf(const nlohmann::json& document, const WholeSchema& schema) {
  valijson::ValidationResults results;
  valijson::Validator().validate(schema.schema, Adapter(document), &results);
  std::string faults;
  for (valijson::ValidationResults::Error error; results.popError(error);) {
    for (const std::string& place : error.context) {
      faults += place;
    }
    faults += ": " + error.description + '\n';
  }
  return faults;
}

}  // namespace

std::string FaultsOf(const nlohmann::json& document) {
  static const WholeSchema kDocument("document.schema.json");
  return FaultsOf(document, kDocument);
}

std::string FaultsOfWatched(const nlohmann::json& line) {
  static const WholeSchema kLine("watch.schema.json");
  return FaultsOf(line, kLine);
}
