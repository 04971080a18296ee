#include "AssumedReadings.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <string_view>
#include <vector>

#include "Json.h"
#include "Text.h"

namespace {

/// No calibration is so long.
constexpr std::size_t kMostBytes = 1024 * 1024;

/// Names in a list, for messages.
template <class Names>
std::string Listed(const Names& names) {
  std::string text;
  for (const auto& name : names) {
    text.append(text.empty() ? "" : ", ").append(name);
  }
  return text;
}

std::string NamesOfAssumptions() {
  std::vector<std::string_view> names;
  for (std::size_t i = 0; i < Policy::kAssumptionCount; ++i) {
    names.push_back(Policy::TextOf(static_cast<Policy::Assumption>(i)).name);
  }
  return Listed(names);
}

std::string NamesOfReadings(const Policy::AssumptionText& text) {
  std::vector<std::string_view> names;
  for (const auto& reading : text.readings) {
    names.push_back(reading.name);
  }
  return Listed(names);
}

std::optional<Policy::Assumption> FindAssumption(const std::string& name) {
  for (std::size_t i = 0; i < Policy::kAssumptionCount; ++i) {
    const auto assumption = static_cast<Policy::Assumption>(i);
    if (Policy::TextOf(assumption).name == name) {
      return assumption;
    }
  }
  return std::nullopt;
}

/// Takes a file's contents apart.
class AssumedReader {
 public:
  explicit AssumedReader(const std::string& path) : path_(path) {}

  Assumed Read() {
    const Json document = Json::parse(Contents(), nullptr, false);
    if (document.is_discarded()) {
      Refuse("is not JSON");
    }
    const bool isCalibration = document.is_object() && document.contains("assumptions") &&
                               document["assumptions"].is_array() && document.contains("simulated") &&
                               document["simulated"].is_boolean() && document.contains("windows") &&
                               document["windows"].is_string();
    if (!isCalibration) {
      Refuse("is no calibration: expected an object with assumptions, simulated and windows");
    }
    for (const Json& item : document["assumptions"]) {
      ReadItem(item);
    }
    return {settled_, NoteOf(document)};
  }

 private:
  [[noreturn]] void Refuse(const std::string& wrong) const { throw BadAssumptions(path_ + " " + wrong); }

  [[nodiscard]] std::string Contents() const {
    std::ifstream file(ToPath(path_), std::ios::binary);
    if (!file) {
      Refuse("cannot be read");
    }
    std::string text(kMostBytes + 1, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > kMostBytes) {
      Refuse("is longer than a calibration can be");
    }
    return text;
  }

  void ReadItem(const Json& item) {
    if (!item.is_object() || !item.contains("name") || !item["name"].is_string() ||
        !item.contains("reading") || !(item["reading"].is_string() || item["reading"].is_null())) {
      Refuse("has an assumption without a name, or without a reading, which is a text or null");
    }
    const auto name = item["name"].get<std::string>();
    const auto assumption = FindAssumption(name);
    if (!assumption) {
      Refuse("names an assumption \"" + name + "\"; expected one of " + NamesOfAssumptions());
    }
    if (item["reading"].is_string()) {
      Settle(*assumption, item["reading"].get<std::string>());
    }
  }

  void Settle(Policy::Assumption assumption, const std::string& name) {
    const Policy::AssumptionText& text = Policy::TextOf(assumption);
    const auto found = std::ranges::find(text.readings, name, &Policy::AssumptionText::Reading::name);
    if (found == text.readings.end()) {
      Refuse("gives " + std::string(text.name) + " the reading \"" + name + "\"; expected one of " +
             NamesOfReadings(text));
    }
    if (settled_.ReadingOf(assumption)) {
      Refuse("settles " + std::string(text.name) + " twice");
    }
    const auto reading = static_cast<std::size_t>(found - text.readings.begin());
    settled_.Settle(assumption, reading);
    choices_.push_back({assumption, reading});
  }

  [[nodiscard]] std::string NoteOf(const Json& document) const {
    const std::string what = choices_.empty() ? "nothing" : Policy::Describe(choices_);
    const std::string from = document["simulated"].get<bool>()
                                 ? "a simulated run, which tells what is to be expected and not what an "
                                   "engine does"
                                 : "experiments on Windows " + document["windows"].get<std::string>();
    return "Taken as settled, by " + path_ + ": " + what + ". It is from " + from + ".";
  }

  const std::string& path_;
  Policy::SettledReadings settled_;
  std::vector<Policy::Choice> choices_;
};

}  // namespace

Assumed ReadAssumed(const std::string& path) { return path.empty() ? Assumed{} : AssumedReader(path).Read(); }
