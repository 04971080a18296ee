#include "support/InstalledFilters.h"

#include <sstream>
#include <stdexcept>

#include "emulator/Control.h"
#include "support/FilterText.h"

namespace {

HANDLE OpenSession() {
  FWPM_SESSION0 options{};
  options.flags = FWPM_SESSION_FLAG_DYNAMIC;
  HANDLE session = nullptr;
  FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, &options, &session);
  return session;
}

void Check(DWORD result, const std::string& what) {
  if (result != ERROR_SUCCESS) {
    throw std::runtime_error(what + ": " + EngineEmulator::LastRefusal());
  }
}

}  // namespace

InstalledFilters::InstalledFilters() : session_(OpenSession(), &::FwpmEngineClose0) {}

void InstalledFilters::Install(const std::wstring& name, UINT16 weight, const std::string& filters) {
  std::wstring text = name;
  FWPM_SUBLAYER0 sublayer{};
  sublayer.subLayerKey = {0x5ab1a7e6, 0, ++sublayers_, {}};
  sublayer.displayData.name = text.data();
  sublayer.weight = weight;
  Check(FwpmSubLayerAdd0(session_.get(), &sublayer, nullptr), "sublayer");
  std::istringstream lines(filters);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty()) {
      AddFilter(line, sublayer.subLayerKey);
    }
  }
}

void InstalledFilters::AddFilter(const std::string& line, const GUID& sublayer) {
  FilterText text(line);
  FWPM_FILTER0& filter = text.Record();
  filter.subLayerKey = sublayer;
  if ((filter.action.type & FWP_ACTION_FLAG_CALLOUT) != 0) {
    FWPM_CALLOUT0 callout{};
    callout.calloutKey = filter.action.calloutKey;
    callout.displayData = filter.displayData;
    callout.applicableLayer = filter.layerKey;
    // The result does not matter: the callout may have been added before.
    FwpmCalloutAdd0(session_.get(), &callout, nullptr, nullptr);
  }
  Check(FwpmFilterAdd0(session_.get(), &filter, nullptr, nullptr), line);
}
