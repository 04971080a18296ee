// Tests on a real engine, in dynamic sessions only. They end, and with them all that they have added, after a
// limit of time.
#include <gmock/gmock.h>
#include <windows.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

#include "e2e/tool/ToolProcess.h"
#include "live/LiveRun.h"

namespace {

constexpr unsigned kEndedByTheLimit = 3;

/// A job that this process and all that it starts are in. When this process ends, however it ends, Windows
/// ends the others.
Handle JoinAJobThatEndsWithThisProcess() {
  Handle job(CreateJobObjectW(nullptr, nullptr));
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  if (!SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits) ||
      !AssignProcessToJobObject(job.get(), GetCurrentProcess())) {
    std::fprintf(stderr, "This process cannot join a job: error %lu\n", GetLastError());
    std::exit(1);
  }
  return job;
}

/// Ends this process if it lives longer than the limit.
class TimeLimit {
 public:
  explicit TimeLimit(std::chrono::seconds limit)
      : thread_([this, limit](const std::stop_token& stop) {
          std::unique_lock lock(mutex_);
          if (!ended_.wait_for(lock, stop, limit, [&] { return stop.stop_requested(); })) {
            std::fputs("The limit of time is over: this process ends, and with it all rules.\n", stderr);
            TerminateProcess(GetCurrentProcess(), kEndedByTheLimit);
          }
        }) {}

 private:
  std::mutex mutex_;
  std::condition_variable_any ended_;
  std::jthread thread_;
};

void Require(const ToolRun& run, const char* advice) {
  if (run.exitCode != 0) {
    std::fputs((run.output + run.errors + advice).c_str(), stderr);
    std::exit(1);
  }
}

/// What the stand-in begins with: an engine in which somebody else blocks an application.
void MakeStart(const LiveRun& live) {
  Require(RunTool({L"--engine", L"emulated", L"--block-app", LR"(C:\unwanted.exe)", L"export",
                   live.start.wstring()}),
          "");
}

/// With rules that only permit.
void TryTheEngine(const LiveRun& live) {
  Require(
      live.OnTheEngine({L"enable-dhcp"}),
      "This machine's engine takes no rules of this program, but it takes those of an administrator's: start "
      "it in a prompt that was opened with \"Run as administrator\".\n");
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  std::string engine;
  unsigned seconds = 300;
  CLI::App options("Compares an engine with the emulator.");
  options
      .add_option("--engine", engine, "system: this machine's own, or emulated: one that stands in for it")
      ->required()
      ->check(CLI::IsMember({"system", "emulated"}));
  options.add_option("--limit", seconds, "Seconds after which the program ends")->check(CLI::Range(1, 3600));
  CLI11_PARSE(options, argc, argv);

  const TimeLimit limit{std::chrono::seconds(seconds)};
  const TemporaryFolder folder;
  LiveRun& live = LiveRun::Get();
  live.isEmulated = engine == "emulated";
  // Emulated engines end with their processes. Under Wine the job would take processes of Wine's own with it.
  const Handle job = live.isEmulated ? Handle() : JoinAJobThatEndsWithThisProcess();
  live.folder = folder.Path();
  live.start = folder.Path() / "start.xml";
  if (live.isEmulated) {
    MakeStart(live);
  } else {
    std::puts(
        "Rule sets are switched on one by one: this machine is cut off the network for under a second at a "
        "time.");
    TryTheEngine(live);
  }
  return RUN_ALL_TESTS();
}
