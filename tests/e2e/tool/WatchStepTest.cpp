// The step watch in the process of the test, whose engine is the one that it watches.
#include <gmock/gmock.h>

#include <csignal>
#include <iostream>
#include <sstream>
#include <thread>
#include <vector>

#include "JsonSchema.h"
#include "Program.h"
#include "WatchedOutput.h"
#include "emulator/Control.h"
#include "support/NetEventRecord.h"

namespace {

using testing::HasSubstr;
using ParsedJson = nlohmann::json;

/// 2026-11-22T09:16:19.123Z in units of 100 ns.
constexpr UINT64 kTime = 134398125791230000;

std::vector<ParsedJson> ParsedLines(const std::string& text) {
  std::vector<ParsedJson> lines;
  std::istringstream rest(text);
  for (std::string line; std::getline(rest, line);) {
    lines.push_back(ParsedJson::parse(line));
  }
  return lines;
}

class WatchStep : public testing::Test {
 protected:
  /// The tool asks for this first of all, and with it the streams get other buffers.
  static void SetUpTestSuite() { std::ios::sync_with_stdio(false); }

  WatchStep() { EngineEmulator::Reset(); }
  ~WatchStep() override {
    const EngineEmulator::Outstanding outstanding = EngineEmulator::CountOutstanding();
    EXPECT_EQ(outstanding.sessions, 0u);
    EXPECT_EQ(outstanding.subscriptions, 0u);
    EXPECT_EQ(outstanding.enumHandles, 0u);
    EXPECT_EQ(outstanding.memoryBlocks, 0u);
    EngineEmulator::Reset();
  }

  /// The drop of a connection of bad.exe by the filter that --block-app adds first.
  static NetEventRecord DropOfBad() {
    NetEventRecord record = NetEventRecord::Drop(4294967297, 48);
    record.At(kTime).Protocol(6).Local(0xC0000201, 50000).Remote(0xC6336407, 443);
    record.App("\\device\\harddiskvolume1\\bad.exe").User({21, 7});
    return record;
  }

  /// Runs the tool on the engine of this process; bad.exe is blocked there.
  int Run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--engine", "emulated", "--block-app", "C:\\bad.exe"});
    return RunProgram(arguments);
  }

  /// Runs the tool until `drive` has done its part and Ctrl+C is pressed.
  template <class Drive>
  int RunWhile(std::vector<std::string> arguments, Drive drive) {
    int exitCode = -1;
    std::thread tool([&] { exitCode = Run(std::move(arguments)); });
    drive();
    std::raise(SIGINT);
    tool.join();
    std::cout.flush();
    return exitCode;
  }

  WatchedOutput output_{std::cout};
  WatchedOutput errors_{std::cerr};
};

TEST_F(WatchStep, PrintsADropAtOnceWithItsFilterAndWhatElseThereIsToKnow) {
  EXPECT_EQ(RunWhile({"watch"},
                     [this] {
                       EXPECT_TRUE(output_.WaitFor("watching"));
                       EngineEmulator::RaiseEvent(DropOfBad().Native());
                       EXPECT_TRUE(output_.WaitFor("\"Block of another owner\""));
                     }),
            0);
  EXPECT_EQ(
      output_.Text(),
      "watch\n"
      "  watching, times are in UTC; Ctrl+C ends it\n"
      "  The engine does not record, as is usual: drops of inbound multicast, drops of inbound broadcast, "
      "drops for want of a capability, permitted connections.\n"
      "  #1 2026-11-22T09:16:19.123Z \\device\\harddiskvolume1\\bad.exe: outbound IPv4, protocol 6 (TCP), "
      "local 192.0.2.1:50000, remote 198.51.100.7:443, user S-1-5-21-7\n"
      "    blocked by filter 4294967297 \"Block of another owner\" of no provider\n"
      "    at ALE_AUTH_CONNECT_V4, which matches ALE_APP_ID EQUAL BYTE_BLOB "
      "\\device\\harddiskvolume1\\bad.exe\n"
      "    without that filter: permitted: no filter matches\n"
      "  in all 1 drop and 0 repeats\n"
      "  done\n");
  EXPECT_EQ(errors_.Text(), "");
}

TEST_F(WatchStep, RepeatsAreToldAtTheEnd) {
  EXPECT_EQ(RunWhile({"watch"},
                     [this] {
                       EXPECT_TRUE(output_.WaitFor("watching"));
                       EngineEmulator::RaiseEvent(DropOfBad().Native());
                       EngineEmulator::RaiseEvent(DropOfBad().At(kTime + 20'000'000).Native());
                       EngineEmulator::RaiseEvent(DropOfBad().Remote(0xC6336407, 80).Native());
                       EXPECT_TRUE(output_.WaitFor("  #2 "));
                     }),
            0);
  EXPECT_THAT(
      output_.Text(),
      HasSubstr("  #1 again once until 2026-11-22T09:16:21.123Z: \\device\\harddiskvolume1\\bad.exe to "
                "198.51.100.7:443\n"
                "  in all 2 drops and 1 repeat\n"
                "  done\n"));
}

TEST_F(WatchStep, EndsAfterTheSecondsGiven) {
  EXPECT_EQ(Run({"watch", "--for", "1"}), 0);
  std::cout.flush();
  EXPECT_THAT(output_.Text(), testing::EndsWith("  in all 0 drops and 0 repeats\n  done\n"));
}

TEST_F(WatchStep, JsonIsALineForEachEventAndThenTheDocument) {
  EXPECT_EQ(RunWhile({"watch", "--json"},
                     [this] {
                       EXPECT_TRUE(output_.WaitFor("begin"));
                       EngineEmulator::RaiseEvent(DropOfBad().Native());
                       EngineEmulator::RaiseEvent(DropOfBad().Native());
                       EngineEmulator::RaiseEvent(DropOfBad().Remote(0xC6336407, 80).Native());
                       EXPECT_TRUE(output_.WaitFor("\"number\":2"));
                     }),
            0);
  const std::vector<ParsedJson> lines = ParsedLines(output_.Text());
  ASSERT_EQ(lines.size(), 6u) << output_.Text();
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(FaultsOfWatched(lines[i]), "") << lines[i];
  }
  EXPECT_EQ(lines[0], ParsedJson::parse(R"({"event": "begin"})"));
  EXPECT_EQ(lines[1]["event"], "note");
  EXPECT_EQ(lines[2], ParsedJson::parse(R"json({
    "event": "drop", "number": 1, "time": "2026-11-22T09:16:19.123Z", "lastTime": "2026-11-22T09:16:19.123Z",
    "count": 1, "direction": "outbound", "ipVersion": 4, "protocol": 6, "localAddress": "192.0.2.1",
    "localPort": 50000, "remoteAddress": "198.51.100.7", "remotePort": 443,
    "program": "\\device\\harddiskvolume1\\bad.exe", "user": "S-1-5-21-7", "appContainer": null,
    "loopback": false, "capability": null, "filterId": 4294967297, "filter": "Block of another owner",
    "owner": "no provider", "ours": false, "gone": false, "layer": "ALE_AUTH_CONNECT_V4",
    "presentFilters": "agrees", "withoutFilter": "permitted: no filter matches",
    "text": "blocked by filter 4294967297 \"Block of another owner\" of no provider\nat ALE_AUTH_CONNECT_V4, which matches ALE_APP_ID EQUAL BYTE_BLOB \\device\\harddiskvolume1\\bad.exe\nwithout that filter: permitted: no filter matches\n"
  })json"));
  EXPECT_EQ(lines[3]["number"], 2);
  EXPECT_EQ(lines[4],
            ParsedJson::parse(
                R"({"event": "repeats", "number": 1, "count": 1, "lastTime": "2026-11-22T09:16:19.123Z"})"));
  EXPECT_EQ(FaultsOf(lines[5]), "");
  EXPECT_EQ(lines[5], ParsedJson::parse(R"json({
    "engine": "emulated", "ok": true,
    "steps": [{"step": "watch", "ok": true, "log": [],
               "totals": {"drops": 2, "repeats": 1, "lost": 0, "others": {}}}]
  })json"));
}

TEST_F(WatchStep, ListsWhatTheEngineRemembers) {
  EngineEmulator::RaiseEvent(DropOfBad().Remote(0xC6336407, 80).Native());
  EngineEmulator::RaiseEvent(DropOfBad().At(kTime + 10'000'000).Native());
  EngineEmulator::RaiseEvent(DropOfBad().At(kTime + 20'000'000).Native());
  EXPECT_EQ(Run({"watch", "--last"}), 0);
  std::cout.flush();
  EXPECT_EQ(
      output_.Text(),
      "watch\n"
      "  #1 2026-11-22T09:16:19.123Z \\device\\harddiskvolume1\\bad.exe: outbound IPv4, protocol 6 (TCP), "
      "local 192.0.2.1:50000, remote 198.51.100.7:80, user S-1-5-21-7\n"
      "    blocked by filter 4294967297 \"Block of another owner\" of no provider\n"
      "    at ALE_AUTH_CONNECT_V4, which matches ALE_APP_ID EQUAL BYTE_BLOB "
      "\\device\\harddiskvolume1\\bad.exe\n"
      "    without that filter: permitted: no filter matches\n"
      "  #2 2026-11-22T09:16:20.123Z \\device\\harddiskvolume1\\bad.exe: outbound IPv4, protocol 6 (TCP), "
      "local 192.0.2.1:50000, remote 198.51.100.7:443, user S-1-5-21-7; 2 times until "
      "2026-11-22T09:16:21.123Z\n"
      "    blocked by filter 4294967297 \"Block of another owner\" of no provider\n"
      "    at ALE_AUTH_CONNECT_V4, which matches ALE_APP_ID EQUAL BYTE_BLOB "
      "\\device\\harddiskvolume1\\bad.exe\n"
      "    without that filter: permitted: no filter matches\n"
      "  in all 2 drops and 1 repeat\n"
      "  done\n");
}

TEST_F(WatchStep, SaysThatItLacksTheRight) {
  EngineEmulator::FailCall("FwpmNetEventSubscribe2", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Run({"watch"}), 1);
  std::cerr.flush();
  EXPECT_EQ(errors_.Text(),
            "watch failed: ERROR_ACCESS_DENIED (0x00000005): The filtering engine cannot be watched: "
            "FwpmNetEventSubscribe2 failed: ERROR_ACCESS_DENIED (0x00000005)\n");
}

TEST_F(WatchStep, SaysWhyTheEngineRemembersNothing) {
  EngineEmulator::FailCall("FwpmNetEventCreateEnumHandle0", 1, static_cast<DWORD>(FWP_E_NET_EVENTS_DISABLED));
  EXPECT_EQ(Run({"watch", "--last"}), 1);
  std::cerr.flush();
  EXPECT_EQ(errors_.Text(),
            "watch failed: The engine does not collect net events, so it remembers none\n"
            "hint: \"netsh wfp set options netevents=on\" switches it on, for everybody and for good.\n");
}

TEST_F(WatchStep, EndsWithAMessageWhenTheEngineStops) {
  int exitCode = -1;
  std::thread tool([&] { exitCode = Run({"watch"}); });
  EXPECT_TRUE(output_.WaitFor("watching"));
  EngineEmulator::StopEngine();
  tool.join();
  std::cerr.flush();
  EXPECT_EQ(exitCode, 1);
  EXPECT_EQ(errors_.Text(),
            "watch failed: RPC_S_SERVER_UNAVAILABLE (0x000006ba): The engine does not answer any more: its "
            "service was stopped, and with it the watch\n");
  EXPECT_THAT(output_.Text(), testing::EndsWith("  in all 0 drops and 0 repeats\n"));
}

TEST_F(WatchStep, TheLastDropsTakeNoTime) {
  EXPECT_EQ(Run({"watch", "--last", "--for", "1"}), 1);
  std::cerr.flush();
  EXPECT_EQ(errors_.Text(),
            "watch failed: What the engine remembers takes no time to list\n"
            "hint: Give either --last or --for.\n");
}

}  // namespace
