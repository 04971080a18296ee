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

/// The schema of a whole document.
struct DocumentSchema {
  DocumentSchema() {
    valijson::SchemaParser().populateSchema(
        Adapter(FileNamed("document.schema.json")), schema,
        [](const std::string& name) { return &FileNamed(name); }, [](const nlohmann::json*) {});
  }

  valijson::Schema schema;
};

}  // namespace

std::string FaultsOf(const nlohmann::json& document) {
  static const DocumentSchema kDocument;
  valijson::ValidationResults results;
  valijson::Validator().validate(kDocument.schema, Adapter(document), &results);
  std::string faults;
  for (valijson::ValidationResults::Error error; results.popError(error);) {
    for (const std::string& place : error.context) {
      faults += place;
    }
    faults += ": " + error.description + '\n';
  }
  return faults;
}
