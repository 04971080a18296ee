#include "ReportPage.h"

#include <chrono>
#include <map>
#include <string_view>

#include "PageMap.h"
#include "PageSnapshot.h"
#include "PolicyJson.h"
#include "Progress.h"
#include "ReportTemplate.h"
#include "SharedTexts.h"
#include "catalog/Format.h"
#include "catalog/Keys.h"
#include "policy/LintText.h"

namespace {

constexpr std::string_view kDataMark = "@DATA@";
constexpr std::size_t kLongestMapText = 256 * 1024;

/// The ordinary connection of each section of a map, in the order of the sections.
Json OrdinaryConnections() {
  Json json = Json::array();
  for (const auto direction : {Policy::Direction::Outbound, Policy::Direction::Inbound}) {
    for (const auto ipVersion : {Policy::IpVersion::V4, Policy::IpVersion::V6}) {
      json.push_back(ToJson(Policy::OrdinaryConnection(direction, ipVersion), {}));
    }
  }
  return json;
}

/// The applications that the conditions of filters name.
Json Applications(const Policy::Snapshot& snapshot, SharedTexts& texts) {
  std::map<std::string, std::string> names;
  for (const Policy::Filter& filter : snapshot.filters) {
    for (const Policy::Condition& condition : filter.conditions) {
      const std::string& bytes = condition.test.bytes;
      if (condition.test.kind == Policy::Test::Kind::IsBytes &&
          condition.field->key == Catalog::kAleAppIdFieldKey) {
        names[bytes] =
            Catalog::FormatTextOrBytes({reinterpret_cast<const UINT8*>(bytes.data()), bytes.size()});
      }
    }
  }
  Json json = Json::array();
  for (const auto& [bytes, name] : names) {
    json.push_back({{"id", texts.IndexOf(HexText(bytes))}, {"text", name}});
  }
  return json;
}

Json Interfaces(const Policy::Labels& labels) {
  Json json = Json::array();
  for (const auto& [luid, name] : labels.interfaces) {
    json.push_back({{"luid", Catalog::FormatNumber(luid)}, {"name", name}});
  }
  return json;
}

/// The assumptions about the engine. The first reading of each is the one that the page expects; one that is
/// settled is the only one.
Json Assumptions(const Policy::SettledReadings& settled) {
  Json json = Json::array();
  for (std::size_t i = 0; i < Policy::kAssumptionCount; ++i) {
    const Policy::AssumptionText& text = Policy::TextOf(static_cast<Policy::Assumption>(i));
    Json readings = Json::array();
    const auto known = settled.ReadingOf(static_cast<Policy::Assumption>(i));
    for (const auto& [name, meaning] : known ? text.readings.subspan(*known, 1) : text.readings) {
      readings.push_back({{"name", name}, {"meaning", meaning}});
    }
    json.push_back({{"name", text.name}, {"question", text.question}, {"readings", std::move(readings)}});
  }
  return json;
}

std::string Today() {
  const auto today = std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now());
  const std::chrono::year_month_day date(today);
  const auto twoDigits = [](unsigned number) {
    return (number < 10 ? "0" : "") + Catalog::FormatNumber(number);
  };
  return Catalog::FormatNumber(static_cast<int>(date.year())) + "-" +
         twoDigits(static_cast<unsigned>(date.month())) + "-" + twoDigits(static_cast<unsigned>(date.day()));
}

Json CircumstancesOf(const AskedCircumstances& asked) {
  Json json = Json::object();
  for (const auto& [name, text] : asked.told) {
    json[name] = text;
  }
  return json;
}

/// The promises, without what the page does not show of them.
Json PromisesOf(const PageContent& content) {
  Json json = ToJson(content.promises, content.owners, content.labels);
  for (Json& promise : json) {
    for (const char* name : {"holdsUnder", "promised", "counterexample"}) {
      promise.erase(name);
    }
  }
  return json;
}

/// Ours first.
std::vector<Policy::Finding> FindingsOf(const PageContent& content) {
  std::vector<Policy::Finding> findings = Policy::Lint(content.snapshot, Progress().Of("parts of the lint"));
  Policy::SortByOwner(findings, content.owners);
  return findings;
}

/// The map in words; of a long one the first lines.
std::string MapText(const Policy::Map& map, const Policy::Labels& labels) {
  std::string text = Policy::Describe(map, labels, {.longestList = 12});
  if (text.size() > kLongestMapText) {
    text.resize(text.rfind('\n', kLongestMapText) + 1);
    text += "The rest is left out here; the tool's step map tells all of it.\n";
  }
  return text;
}

Json DataOf(const PageContent& content) {
  const Policy::Map map = Policy::MakeMap(content.snapshot, content.labels, content.asked.circumstances,
                                          Progress().Of("parts of the map"));
  SharedTexts texts;
  Json data{{"engine", EngineName(content.engine)},
            {"isOrderInferred", content.isOrderInferred},
            {"written", Today()},
            {"version", CORVANE_VERSION},
            {"ordinary", OrdinaryConnections()},
            {"applications", Applications(content.snapshot, texts)},
            {"interfaces", Interfaces(content.labels)},
            {"assumptions", Assumptions(content.snapshot.settled)},
            {"circumstances", CircumstancesOf(content.asked)},
            {"snapshot", PageSnapshot(content.snapshot, content.asked.circumstances, texts)},
            {"map", PageMap(map, texts)},
            {"mapText", MapText(map, content.labels)},
            {"promises", PromisesOf(content)},
            {"findings", PageFindings(FindingsOf(content), content.snapshot)}};
  data["texts"] = texts.Take();
  return data;
}

/// JSON for a script element. Other programs choose the names of filters and adapters, so a name that holds
/// "</script>" must not end the element.
std::string ScriptText(const Json& data) {
  std::string text;
  for (const char character : data.dump(-1, ' ', false, Json::error_handler_t::replace)) {
    if (character == '<') {
      text += "\\u003c";
    } else {
      text += character;
    }
  }
  return text;
}

}  // namespace

std::string MakePage(const PageContent& content) {
  std::string page(std::begin(kReportTemplate), std::end(kReportTemplate));
  return page.replace(page.find(kDataMark), kDataMark.size(), ScriptText(DataOf(content)));
}
