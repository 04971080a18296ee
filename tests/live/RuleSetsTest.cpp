// Each rule set, added to the engine under test and to an emulated one that began with what that engine held.
#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <ostream>

#include "dump/ReadDump.h"
#include "live/LiveRun.h"
#include "live/OurObjects.h"

namespace {

using Arguments = std::vector<std::wstring>;
using Lines = std::vector<std::string>;

struct RuleSet {
  const char* name;
  Arguments arguments;
  std::size_t leastObjects;  ///< provider, sublayers and filters, without blocks copied of other owners
};

void PrintTo(const RuleSet& ruleSet, std::ostream* out) { *out << ruleSet.name; }

std::filesystem::path DumpIn(const char* name) { return LiveRun::Get().folder / name; }

Lines OursIn(const std::filesystem::path& dump) { return OurObjectsOf(Dump::ReadDumpFile(dump)); }

Lines Missing(const Lines& all, const Lines& some) {
  Lines missing;
  std::ranges::set_difference(all, some, std::back_inserter(missing));
  return missing;
}

class RuleSets : public testing::TestWithParam<RuleSet> {};

TEST_P(RuleSets, AreHeldAsTheEmulatorHoldsThem) {
  const LiveRun& live = LiveRun::Get();
  const ToolRun reading = live.OnTheEngine({L"export", DumpIn("before.xml").wstring()});
  ASSERT_EQ(reading.exitCode, 0u) << reading.output << reading.errors;
  ASSERT_THAT(OursIn(DumpIn("before.xml")), testing::IsEmpty())
      << "Another run of corvane-firewall is going on: end it, and run the tests again.";

  Arguments steps = GetParam().arguments;
  steps.insert(steps.end(), {L"export", DumpIn("held.xml").wstring()});
  const ToolRun run = live.OnTheEngine(steps);
  ASSERT_EQ(run.exitCode, 0u) << run.output << run.errors;
  steps.back() = DumpIn("emulated.xml").wstring();
  const ToolRun emulated = LiveRun::OnAnEmulatedOne(DumpIn("before.xml"), steps);
  ASSERT_EQ(emulated.exitCode, 0u) << emulated.output << emulated.errors;

  const Lines held = OursIn(DumpIn("held.xml"));
  const Lines expected = OursIn(DumpIn("emulated.xml"));
  EXPECT_GE(held.size(), GetParam().leastObjects);
  EXPECT_THAT(Missing(expected, held), testing::IsEmpty()) << "only the emulator holds these";
  EXPECT_THAT(Missing(held, expected), testing::IsEmpty()) << "only the engine under test holds these";
}

TEST_P(RuleSets, AreGoneWhenTheirProcessHasEnded) {
  const LiveRun& live = LiveRun::Get();
  const ToolRun run = live.OnTheEngine(GetParam().arguments);
  ASSERT_EQ(run.exitCode, 0u) << run.output << run.errors;
  const ToolRun reading = live.OnTheEngine({L"export", DumpIn("after.xml").wstring()});
  ASSERT_EQ(reading.exitCode, 0u) << reading.output << reading.errors;
  EXPECT_THAT(OursIn(DumpIn("after.xml")), testing::IsEmpty());
}

const Arguments kLeakProtection{L"enable-leak-protection", L"--server", L"198.51.100.7", L"--luid",
                                L"1689399632855040",       L"--allow",  L"203.0.113.1"};
const Arguments kSkein{L"enable-skein", L"--luid", L"1689399632855041", L"--peer", L"100.64.0.1"};

Arguments Together(std::initializer_list<Arguments> parts) {
  Arguments all;
  for (const Arguments& part : parts) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

INSTANTIATE_TEST_SUITE_P(
    OnThisMachine, RuleSets,
    testing::Values(RuleSet{"KillSwitch", {L"disable-internet"}, 53},
                    RuleSet{"KillSwitchButForAnApplication",
                            {L"disable-internet", L"--app", LR"(C:\Windows\System32\notepad.exe)"},
                            59},
                    RuleSet{"Dhcp", {L"enable-dhcp"}, 8}, RuleSet{"LeakProtection", kLeakProtection, 24},
                    RuleSet{"LocalNetworkBlock", {L"disable-local-network"}, 17}, RuleSet{"Skein", kSkein, 4},
                    RuleSet{"All",
                            Together({{L"disable-internet", L"enable-dhcp", L"disable-local-network"},
                                      kLeakProtection,
                                      kSkein}),
                            102}),
    [](const auto& instance) { return instance.param.name; });

}  // namespace
