#include "PolicySteps.h"

#include <WfpPlatform.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "ActiveFeatures.h"
#include "PolicyReader.h"
#include "ReportPage.h"
#include "Text.h"

namespace {

using Policy::Connection;
using Policy::Direction;

// Echo requests: types of ICMP and ICMPv6. They stand where other protocols have the local port.
constexpr UINT16 kEchoRequest = 8;
constexpr UINT16 kEchoRequestV6 = 128;

void SetProtocol(const std::string& text, Connection& connection) {
  connection.protocol = ParseProtocol(text, connection.ipVersion);
  if (text == "icmp") {
    connection.localPort = connection.ipVersion == Policy::IpVersion::V4 ? kEchoRequest : kEchoRequestV6;
    connection.remotePort = UINT16{0};
  }
}

void SetLocalEnd(const std::string& text, Connection& connection) {
  const Endpoint local = ParseEndpoint(text).value();
  if (local.address.ipVersion != connection.ipVersion) {
    throw Failure("The two ends of a connection are of one IP version", "Give --local as --remote is given.");
  }
  connection.localAddress = local.address.number;
  connection.localPort = local.port ? local.port : connection.localPort;
}

void SetInterface(const std::string& text, Connection& connection) {
  const UINT64 luid = FindInterface(text);
  connection.localInterface = luid;
  (connection.direction == Direction::Outbound ? connection.nextHopInterface : connection.arrivalInterface) =
      luid;
}

Connection ConnectionOf(const std::string& remoteText, const StepOptions& options) {
  const Endpoint remote = ParseEndpoint(remoteText).value();
  Connection connection = Policy::OrdinaryConnection(
      options.inbound.empty() ? Direction::Outbound : Direction::Inbound, remote.address.ipVersion);
  std::ranges::for_each(options.protocol, [&](const auto& text) { SetProtocol(text, connection); });
  std::ranges::for_each(options.local, [&](const auto& text) { SetLocalEnd(text, connection); });
  std::ranges::for_each(options.interfaces, [&](const auto& text) { SetInterface(text, connection); });
  for (const std::string& app : options.apps) {
    connection.application = ReadApplicationId(app);
  }
  connection.remoteAddress = remote.address.number;
  connection.remotePort = remote.port ? remote.port : connection.remotePort;
  connection.flags = options.loopback.empty() ? 0 : FWP_CONDITION_FLAG_IS_LOOPBACK;
  return connection;
}

void WriteFile(const std::string& path, const std::string& text) {
  std::ofstream file(std::filesystem::path(ToWide(path)), std::ios::binary);
  file << text;
  file.close();
  if (!file) {
    throw Failure("Cannot write " + path, "The folder must exist and be open to you.");
  }
}

}  // namespace

void ExplainStep(const StepContext& context, const StepOptions& options) {
  const Policy::Snapshot snapshot = ReadPolicy();
  const Policy::Labels labels = ReadLabels();
  const Policy::Decider decider(snapshot);
  for (const std::string& remote : options.remotes) {
    context.reporter.ShowExplanation(decider.Explain(ConnectionOf(remote, options)), labels);
  }
}

void MapStep(const StepContext& context, const StepOptions&) {
  const Policy::Labels labels = ReadLabels();
  context.reporter.ShowMap(Policy::MakeMap(ReadPolicy(), labels), labels);
}

void ProveStep(const StepContext& context, const StepOptions&) {
  const Policy::Snapshot snapshot = ReadPolicy();
  const Policy::Features features = ActiveFeatures(context.plan, context.index, snapshot);
  context.reporter.ShowPromises(Policy::Prove(snapshot, features), ReadLabels());
}

void LintStep(const StepContext& context, const StepOptions&) {
  const Policy::Snapshot snapshot = ReadPolicy();
  context.reporter.ShowFindings(Policy::Lint(snapshot));
}

void ReportStep(const StepContext& context, const StepOptions& options) {
  const std::string& path = options.file.front();
  const Policy::Snapshot snapshot = ReadPolicy();
  const Policy::Features features = ActiveFeatures(context.plan, context.index, snapshot);
  WriteFile(path, MakePage({context.plan.engine, snapshot, Policy::Prove(snapshot, features), ReadLabels()}));
  context.reporter.ShowFile(path);
}
