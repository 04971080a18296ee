// The sentences of the promises, word for word, for each feature.
#include "promises/PromiseList.h"

#include <gmock/gmock.h>

namespace {

using Promises::Features;
using testing::ElementsAre;

/// The promises as texts of the form "feature | name | sentence".
std::vector<std::string> TextsOf(const Features& features) {
  std::vector<std::string> texts;
  for (const Promises::Promise& promise : Promises::PromisesOf(features)) {
    texts.push_back(promise.feature + " | " + promise.name + " | " + promise.sentence);
  }
  return texts;
}

std::vector<std::string> NamesOf(const Features& features) {
  std::vector<std::string> names;
  for (const Promises::Promise& promise : Promises::PromisesOf(features)) {
    names.push_back(promise.name);
  }
  return names;
}

TEST(PromiseList, OfTheKillSwitch) {
  Features features;
  features.killSwitch.emplace();
  EXPECT_THAT(
      TextsOf(features),
      ElementsAre(
          "kill switch | kill-switch-closes-outbound | No connection leaves but over loopback, to the "
          "local network, and by what is exempt.",
          "kill switch | kill-switch-closes-inbound | No connection comes in but over loopback, from "
          "the local network, and to what is exempt. For a few seconds, answers to a multicast or broadcast "
          "of "
          "this machine come in from any address.",
          "kill switch | kill-switch-no-look-ups | No name look-up leaves to the local network either.",
          "kill switch | kill-switch-loopback | This machine can still reach itself.",
          "kill switch | kill-switch-local-network | The local network stays reachable, but for name "
          "look-ups."));
}

TEST(PromiseList, OfWhatTheKillSwitchExempts) {
  Features features;
  features.killSwitch.emplace();
  features.killSwitch->interfaces = {5};
  EXPECT_EQ(
      TextsOf(features).back(),
      "kill switch | kill-switch-exempt | Connections over the exempt interfaces pass as if it were off.");
  features.killSwitch->applications = {"a.exe"};
  EXPECT_EQ(
      TextsOf(features).back(),
      "kill switch | kill-switch-exempt | The exempt applications' connections pass as if it were off.");
}

TEST(PromiseList, OfDhcp) {
  Features features;
  features.dhcp = true;
  EXPECT_THAT(TextsOf(features),
              ElementsAre("DHCP | dhcp-client | This machine can ask for an address, and renew it."));
}

TEST(PromiseList, OfTheLocalNetworkBlock) {
  Features features;
  features.localNetworkBlock = true;
  EXPECT_THAT(
      TextsOf(features),
      ElementsAre(
          "local network block | local-network-closed | No connection goes to the local network or "
          "comes from it, but for name look-ups. For a few seconds, answers to a multicast or broadcast of "
          "this "
          "machine come in from any address.",
          "local network block | local-network-loopback | This machine can still reach itself, by its "
          "own address too.",
          "local network block | local-network-look-ups | Name servers of the local network still "
          "answer."));
}

TEST(PromiseList, OfLeakProtection) {
  Features features;
  features.leakProtection.emplace();
  EXPECT_THAT(
      TextsOf(features),
      ElementsAre(
          "leak protection | leak-no-look-ups | No name look-up leaves outside the permitted interfaces but "
          "the "
          "permitted application's.",
          "leak protection | leak-name-application | The permitted application's name look-ups leave over "
          "any "
          "interface.",
          "leak protection | leak-closes | No connection leaves outside the permitted interfaces but over "
          "loopback, to the local network, to the permitted addresses and to the VPN server.",
          "leak protection | leak-tunnel-open | Connections over the permitted interfaces pass.",
          "leak protection | leak-permitted-addresses | The permitted addresses are reachable over any "
          "interface.",
          "leak protection | leak-server | The VPN server is reachable over any interface.",
          "leak protection | leak-local-network | The local network stays reachable over any interface, but "
          "for name look-ups.",
          "leak protection | leak-loopback | This machine can still reach itself.",
          "leak protection | leak-blocked-applications | Applications that Windows Firewall blocks stay "
          "blocked."));
}

TEST(PromiseList, OfSkein) {
  Features features;
  features.skein.emplace();
  EXPECT_THAT(TextsOf(features),
              ElementsAre("Skein | skein-peers | A listed peer can reach us on the Skein interface.",
                          "Skein | skein-closed | Nobody else of 100.64.0.0/10 can reach us on the Skein "
                          "interface. For a few seconds, answers to a multicast or broadcast of this machine "
                          "come in from any address."));
}

TEST(PromiseList, FeaturesTogetherPromiseLess) {
  Features features;
  features.killSwitch.emplace();
  features.localNetworkBlock = true;
  EXPECT_THAT(NamesOf(features), ElementsAre("kill-switch-closes-outbound", "kill-switch-closes-inbound",
                                             "kill-switch-no-look-ups", "kill-switch-loopback",
                                             "local-network-closed", "local-network-loopback"));
  features.leakProtection.emplace();
  EXPECT_THAT(NamesOf(features), ElementsAre("kill-switch-closes-outbound", "kill-switch-closes-inbound",
                                             "kill-switch-no-look-ups", "kill-switch-loopback",
                                             "local-network-closed", "local-network-loopback",
                                             "leak-no-look-ups", "leak-closes", "leak-blocked-applications"));
  features.killSwitch.reset();
  EXPECT_THAT(NamesOf(features),
              ElementsAre("local-network-closed", "local-network-loopback", "leak-no-look-ups",
                          "leak-name-application", "leak-closes", "leak-tunnel-open",
                          "leak-permitted-addresses", "leak-server", "leak-blocked-applications"));
}

}  // namespace
