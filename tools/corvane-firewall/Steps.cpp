#include "Steps.h"

#include <algorithm>
#include <iterator>

#include "EngineReader.h"
#include "Text.h"
#include "helpers/NetworkInfo.h"
#include "helpers/NetworkInfoException.h"

namespace {

/// Where the library's lines go. Its callback carries no context of the caller's.
Reporter* logReceiver = nullptr;

/// Routes the library's lines to a reporter for as long as it lives.
class LogRoute {
 public:
  explicit LogRoute(Reporter& reporter) { logReceiver = &reporter; }
  ~LogRoute() { logReceiver = nullptr; }
  LogRoute(const LogRoute&) = delete;
  LogRoute& operator=(const LogRoute&) = delete;

  static std::uint64_t CORVANE_CALL Receive(const char* line) {
    logReceiver->Log(line);
    return 0;
  }
};

std::vector<std::wstring> WideTexts(const std::vector<std::string>& texts) {
  std::vector<std::wstring> wide;
  wide.reserve(texts.size());
  for (const std::string& text : texts) {
    wide.push_back(ToWide(text));
  }
  return wide;
}

void DisableInternetStep(const StepContext& context, const StepOptions& options) {
  const LogRoute route(context.reporter);
  context.library.DisableInternet(WideTexts(options.apps), WideTexts(options.interfaces), &LogRoute::Receive);
}

void EnableInternetStep(const StepContext& context, const StepOptions&) { context.library.EnableInternet(); }

void EnableDhcpStep(const StepContext& context, const StepOptions&) {
  const LogRoute route(context.reporter);
  context.library.EnableDhcp(&LogRoute::Receive);
}

void DisableDhcpStep(const StepContext& context, const StepOptions&) {
  const LogRoute route(context.reporter);
  context.library.DisableDhcp(&LogRoute::Receive);
}

void StatusStep(const StepContext& context, const StepOptions&) {
  context.reporter.ShowStatus(context.library.IsInternetEnabled(), context.library.IsDhcpEnabled());
}

void AdaptersStep(const StepContext& context, const StepOptions&) {
  std::vector<ListedAdapter> adapters;
  try {
    for (const auto& adapter : WfpFirewall::Helpers::NetworkInfo::GetInterfaces()) {
      adapters.push_back({ToUtf8(adapter.GetName()), ToUtf8(adapter.GetDescription()), adapter.GetLuid()});
    }
  } catch (const WfpFirewall::Helpers::NetworkInfoException& error) {
    throw Failure(static_cast<std::uint32_t>(error.GetErrorCode()), error.what());
  }
  context.reporter.ShowAdapters(adapters);
}

void ListStep(const StepContext& context, const StepOptions&) { context.reporter.ShowListing(ReadEngine()); }

constexpr StepOption kDisableInternetOptions[]{
    {"--app", "PATH", "Executable that stays connected", &StepOptions::apps},
    {"--interface", "TEXT",
     "Adapters whose description contains this, in its letter case, stay free; not used with --app",
     &StepOptions::interfaces},
};

constexpr Step kSteps[]{
    {"disable-internet", "Install the kill switch, or replace it", kDisableInternetOptions, true,
     DisableInternetStep},
    {"enable-internet", "Remove the kill switch", {}, false, EnableInternetStep},
    {"enable-dhcp", "Install the rules that let DHCP through", {}, true, EnableDhcpStep},
    {"disable-dhcp", "Remove the DHCP rules", {}, false, DisableDhcpStep},
    {"status", "Tell what is switched on", {}, false, StatusStep},
    {"adapters", "List the network adapters as the firewall sees them", {}, false, AdaptersStep},
    {"list", "List what the engine holds of ours", {}, false, ListStep},
};

}  // namespace

std::span<const Step> AllSteps() { return kSteps; }

const Step* FindStep(const std::string& name) {
  const auto* found = std::ranges::find(kSteps, name, &Step::name);
  return found == std::end(kSteps) ? nullptr : found;
}
