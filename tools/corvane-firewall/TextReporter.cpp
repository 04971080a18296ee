#include "TextReporter.h"

#include <iostream>

namespace {

const char* OnOrOff(bool on) { return on ? "on" : "off"; }

std::string Heading(const std::string& kind, const std::string& name, const std::string& key) {
  return "  " + kind + " \"" + name + "\" {" + key + "}";
}

std::string Line(const ListedFilter& filter) {
  std::string line = filter.layer + ": " + filter.action;
  const char* separator = " when ";
  for (const std::string& condition : filter.conditions) {
    line += separator + condition;
    separator = " and ";
  }
  if (filter.conditions.empty()) {
    line += " always";
  }
  line += "; weight " + filter.weight;
  if (filter.overridesOtherSublayers) {
    line += "; overrides other sublayers";
  }
  return line;
}

}  // namespace

void TextReporter::BeginStep(const std::string& step) {
  step_ = step;
  std::cout << step << std::endl;
}

void TextReporter::Log(const std::string& line) { std::cout << "  " << line << std::endl; }

void TextReporter::ShowStatus(const Status& status) {
  std::cout << "  internet: " << OnOrOff(status.internet) << "\n  dhcp rules: " << OnOrOff(status.dhcp)
            << "\n  leak protection: " << OnOrOff(status.leakProtection)
            << "\n  local network: " << OnOrOff(status.localNetwork) << "\n";
}

void TextReporter::ShowAdapters(const std::vector<ListedAdapter>& adapters) {
  for (const ListedAdapter& adapter : adapters) {
    std::cout << "  \"" << adapter.name << "\", \"" << adapter.description << "\", LUID " << adapter.luid
              << "\n";
  }
  if (adapters.empty()) {
    std::cout << "  no network adapters\n";
  }
}

void TextReporter::ShowListing(const Listing& listing) {
  if (listing.provider) {
    const ListedProvider& provider = *listing.provider;
    std::cout << Heading("provider", provider.name, provider.key) << ": " << provider.description << "\n";
  } else {
    std::cout << "  no provider of this tool\n";
  }
  if (listing.sublayers.empty()) {
    std::cout << "  no sublayers, no filters\n";
  }
  for (const ListedSublayer& sublayer : listing.sublayers) {
    std::cout << Heading("sublayer", sublayer.name, sublayer.key) << ": " << sublayer.description
              << "; weight " << sublayer.weight << "; filters " << sublayer.filters.size() << "\n";
    for (const ListedFilter& filter : sublayer.filters) {
      std::cout << "    " << Line(filter) << "\n";
    }
  }
}

void TextReporter::EndStep() { std::cout << "  done" << std::endl; }

void TextReporter::Fail(const Failure& failure) {
  std::cerr << (step_.empty() ? "error" : step_ + " failed") << ": ";
  if (const auto code = failure.Code()) {
    std::cerr << CodeName(*code) << ": ";
  }
  std::cerr << failure.what() << "\n";
  if (const std::string hint = failure.Hint(engine_); !hint.empty()) {
    std::cerr << "hint: " << hint << "\n";
  }
}
