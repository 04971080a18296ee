#include "PolicyReader.h"

#include <WfpPlatform.h>
#include <gmock/gmock.h>

#include "ActiveFeatures.h"
#include "Failure.h"
#include "Identities.h"
#include "PolicyJson.h"
#include "ReportPage.h"
#include "Steps.h"
#include "ToolProcess.h"
#include "emulator/ControlExports.h"
#include "support/EngineKeys.h"
#include "windows/LoadedModule.h"

namespace {

using testing::ElementsAre;

/// The emulated engine, loaded in this process.
class PolicyReader : public testing::Test {
 protected:
  PolicyReader() { Find<decltype(&::EngineEmulatorReset)>("EngineEmulatorReset")(); }

  template <class Function>
  Function Find(const char* function) {
    return FindFunction<Function>(emulator_.get(), function);
  }

 private:
  ModuleHandle emulator_ = LoadModule(ProgramFolder() / "emulator" / "fwpuclnt.dll");
};

TEST_F(PolicyReader, ReadsInOneReadOnlyTransaction) {
  EXPECT_FALSE(ReadPolicy().sublayers.empty());
  const auto readJournal = Find<decltype(&::EngineEmulatorJournalText)>("EngineEmulatorJournalText");
  std::string journal(readJournal(nullptr, 0), '\0');
  readJournal(journal.data(), journal.size());
  EXPECT_THAT(journal, testing::HasSubstr("FwpmTransactionBegin0("));
  for (const char* change : {"Add0(", "Delete", "FwpmTransactionCommit0("}) {
    EXPECT_THAT(journal, testing::Not(testing::HasSubstr(change)));
  }
}

TEST_F(PolicyReader, SaysPlainlyThatRightsAreMissing) {
  Find<decltype(&::EngineEmulatorFailCall)>("EngineEmulatorFailCall")("FwpmTransactionBegin0", 1,
                                                                      ERROR_ACCESS_DENIED);
  try {
    ReadPolicy();
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Code(), 5u);
    EXPECT_EQ(failure.Hint(Engine::System),
              "The filtering engine is open to administrators only: run this as administrator.");
  }
}

const Step* StepNamed(const char* name) { return FindStep(name); }

Promises::Features FeaturesAfter(const std::vector<PlannedStep>& steps,
                                 const Policy::Snapshot& snapshot = {}) {
  return ActiveFeatures(steps, "\\device\\harddiskvolume1\\resolver.exe", snapshot);
}

TEST(ActiveFeatures, AreOffUntilAStepSwitchesThemOn) {
  const Promises::Features features = FeaturesAfter({});
  EXPECT_FALSE(features.killSwitch || features.dhcp || features.localNetworkBlock ||
               features.leakProtection || features.skein);
}

TEST(ActiveFeatures, HaveTheArgumentsOfTheirSteps) {
  const Step* const killSwitch = StepNamed("disable-internet");
  const Step* const leakProtection = StepNamed("enable-leak-protection");
  const Step* const skein = StepNamed("enable-skein");
  StepOptions killSwitchOptions;
  killSwitchOptions.apps = {"\\device\\a.exe"};
  StepOptions leakOptions;
  leakOptions.server = {"203.0.113.1"};
  leakOptions.luid = {"7"};
  leakOptions.allowed = {"10.0.0.1", "10.0.0.2"};
  StepOptions skeinOptions;
  skeinOptions.luid = {"9"};
  skeinOptions.peers = {"100.64.0.5"};
  const Promises::Features features =
      FeaturesAfter({{killSwitch, killSwitchOptions}, {leakProtection, leakOptions}, {skein, skeinOptions}});
  EXPECT_THAT(features.killSwitch.value().applications,
              ElementsAre(Policy::ApplicationBytes("\\device\\a.exe")));
  EXPECT_THAT(features.leakProtection.value().interfaces, ElementsAre(7u));
  EXPECT_EQ(features.leakProtection.value().serverAddress, 0xCB007101u);
  EXPECT_THAT(features.leakProtection.value().permittedAddresses, ElementsAre(0x0A000001u, 0x0A000002u));
  EXPECT_EQ(features.leakProtection.value().nameApplication,
            Policy::ApplicationBytes("\\device\\harddiskvolume1\\resolver.exe"));
  EXPECT_THAT(features.skein.value().interfaces, ElementsAre(9u));
  EXPECT_THAT(features.skein.value().peers, ElementsAre(0x64400005u));
}

TEST(ActiveFeatures, AreWhatTheLastStepsLeave) {
  const Step* const off = StepNamed("disable-local-network");
  const Step* const on = StepNamed("enable-local-network");
  const Step* const dhcp = StepNamed("enable-dhcp");
  EXPECT_TRUE(FeaturesAfter({{off, {}}}).localNetworkBlock);
  const Promises::Features features = FeaturesAfter({{off, {}}, {dhcp, {}}, {on, {}}});
  EXPECT_FALSE(features.localNetworkBlock);
  EXPECT_TRUE(features.dhcp);
}

/// A block of an application, without a provider.
Policy::Filter BlockOf(const std::string& application, const GUID& layer = kConnectV4) {
  Policy::Filter filter{};
  filter.id = 1;
  filter.action = FWP_ACTION_BLOCK;
  filter.layerKey = layer;
  Policy::Condition condition{};
  condition.field = Catalog::FindField("ALE_APP_ID");
  condition.test.kind = Policy::Test::Kind::IsBytes;
  condition.test.bytes = Policy::ApplicationBytes(application);
  filter.conditions = {condition};
  return filter;
}

TEST(ActiveFeatures, LeakProtectionKnowsTheApplicationsThatOthersBlock) {
  Policy::Snapshot snapshot;
  snapshot.sublayers = {{{}, "theirs", 1}};
  for (const GUID& layer : {kConnectV4, kConnectV6}) {
    snapshot.filters.push_back(BlockOf("ours.exe", layer));
    snapshot.filters.back().providerKey = kProvider.key;
    snapshot.filters.push_back(BlockOf("permitted.exe", layer));
    snapshot.filters.back().action = FWP_ACTION_PERMIT;
    snapshot.filters.push_back(BlockOf("out.exe", layer));
  }
  snapshot.filters.push_back(BlockOf("over one version.exe"));
  for (const GUID& layer : {kReceiveAcceptV4, kReceiveAcceptV6}) {
    snapshot.filters.push_back(BlockOf("in.exe", layer));
  }
  const Step* const leakProtection = StepNamed("enable-leak-protection");
  StepOptions options;
  options.server = {"203.0.113.1"};
  options.luid = {"7"};
  const auto features = FeaturesAfter({{leakProtection, options}}, snapshot).leakProtection.value();
  EXPECT_THAT(features.blockedOutbound, ElementsAre(Policy::ApplicationBytes("out.exe")));
  EXPECT_THAT(features.blockedInbound, ElementsAre(Policy::ApplicationBytes("in.exe")));
}

TEST(ReportPage, NamesOfOthersCannotEndTheData) {
  Policy::Snapshot snapshot;
  snapshot.sublayers = {{{}, "</script><script>alert(1)</script>", 1}};
  snapshot.filters = {BlockOf("<!--<script>")};
  snapshot.filters[0].name = "\xff</SCRIPT>";
  Policy::Labels labels;
  labels.interfaces[7] = "<script>";
  const std::string page = MakePage({Engine::System, snapshot, {}, labels, Policy::Owners(snapshot)});
  const std::string data = page.substr(page.find("id=\"data\">") + 10);
  EXPECT_EQ(data.find('<'), data.find("</script>\n<script>\n"));
  EXPECT_THAT(data, testing::HasSubstr(R"(\u003c/script>\u003cscript>alert(1)\u003c/script>)"));
}

TEST(ReportPage, AsksAboutEveryAssumption) {
  const Policy::Snapshot snapshot;
  const std::string page = MakePage({Engine::System, snapshot, {}, {}, Policy::Owners(snapshot)});
  const std::size_t begin = page.find("id=\"data\">") + 10;
  const Json data = Json::parse(page.substr(begin, page.find("</script>", begin) - begin));
  std::vector<std::string> names;
  for (const Json& assumption : data["assumptions"]) {
    names.push_back(assumption["name"]);
  }
  EXPECT_THAT(
      names, ElementsAre("filter-ties", "several-negations", "unset-fields", "static-block-below-hard-permit",
                         "loopback-bits", "flow-established-blocks", "callouts"));
}

TEST(HexText, KeepsTheZerosBetweenTheHalvesOfANumber) {
  EXPECT_EQ(HexText(Policy::Number(0)), "0x0");
  EXPECT_EQ(HexText(Policy::Number(0x0A000001)), "0xa000001");
  EXPECT_EQ(HexText({1, 0}), "0x10000000000000000");
  EXPECT_EQ(HexText({0xFE80000000000000, 0xAB}), "0xfe8000000000000000000000000000ab");
}

}  // namespace
