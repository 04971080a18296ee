// Tells for how many of 10,000 fixed connections a dump of a machine gives a definite verdict.
#include <exception>
#include <iostream>

#include "AskedCircumstances.h"
#include "DumpedPolicy.h"
#include "SampleConnections.h"
#include "Text.h"
#include "policy/Decide.h"

namespace {

constexpr std::size_t kCount = 10'000;

/// The network is a public, a private or a domain's in turn.
constexpr UINT32 kProfiles[]{1, 2, 3};

/// How many verdicts are certain: whatever the engine and drivers do, and if drivers let pass what they are
/// asked about.
struct Counts {
  std::size_t definite = 0;
  std::size_t definiteIfPassed = 0;
};

const Policy::WorldSet& WorldsWherePassed() {
  static const Policy::WorldSet kWorlds = [] {
    Policy::WorldSet worlds;
    for (std::size_t i = 0; i < Policy::World::kCount; ++i) {
      worlds[i] = Policy::World::OfIndex(i).Reads(Policy::Assumption::Callouts, Policy::CalloutReading::Pass);
    }
    return worlds;
  }();
  return kWorlds;
}

void Count(const Policy::Verdict& verdict, Counts& counts) {
  const Policy::WorldSet& passed = WorldsWherePassed();
  counts.definite += verdict.GetKind() == Policy::Verdict::Kind::Depends ? 0 : 1;
  counts.definiteIfPassed +=
      (verdict.Permits() & passed) == passed || (verdict.Blocks() & passed) == passed ? 1 : 0;
}

Counts CountDefinite(const Policy::Snapshot& snapshot) {
  const std::vector<Policy::Connection> connections = SampleConnections(snapshot, kCount);
  Policy::Circumstances circumstances = AskCircumstances({}, snapshot).circumstances;
  Counts counts;
  for (std::size_t turn = 0; turn < std::size(kProfiles); ++turn) {
    circumstances.profile = kProfiles[turn];
    const Policy::Decider decider(snapshot, circumstances);
    for (std::size_t i = turn; i < connections.size(); i += std::size(kProfiles)) {
      Count(decider.Decide(connections[i]), counts);
    }
  }
  return counts;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr
        << "usage: policy-sample FILE.xml, a dump of netsh wfp show state or of netsh wfp show filters\n";
    return 2;
  }
  try {
    const DumpedPolicy dump = ReadDumpedPolicy(ToPath(arguments[1]));
    const Counts counts = CountDefinite(dump.snapshot);
    std::cout << counts.definiteIfPassed << " of " << kCount << " definite if drivers let pass, "
              << counts.definite << " whatever drivers do\n";
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "error: " << error.what() << "\n";
    return 1;
  }
}
