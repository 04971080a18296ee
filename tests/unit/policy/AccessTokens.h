/**
 * @file
 * Tokens that tests ask descriptors about.
 */
#pragma once

#include <ostream>
#include <utility>
#include <vector>

#include "dump/Sddl.h"
#include "policy/AccessCheck.h"

namespace Policy {
/// For tests that fail.
inline void PrintTo(Access access, std::ostream* stream) {
  constexpr const char* kNames[]{"Denied", "Unknown", "Granted"};
  *stream << kNames[static_cast<int>(access)];
}
}  // namespace Policy

namespace AccessTokens {

inline Policy::Sid Named(const char* text) { return Policy::ParseSid(text).value(); }

/// Anybody who signed in.
inline Policy::Token AnyUser() { return Policy::UserProgram(); }
/// S-1-5-21-1-2-3-1001
inline Policy::Token Alice() { return Policy::UserProgram(Named("S-1-5-21-1-2-3-1001")); }
inline Policy::Token ElevatedAlice() {
  Policy::Token token = Alice();
  std::erase_if(token.groups, [](const auto& group) { return group.sid == Named("S-1-5-32-544"); });
  token.groups.push_back({Named("S-1-5-32-544"), 0xF});
  return token;
}
/// A member of S-1-5-32-551 in full, of S-1-5-32-552 for denying, of S-1-5-32-550 not at all; of no other
/// groups.
inline Policy::Token Operator() {
  Policy::Token token;
  token.user = Named("S-1-5-21-1-2-3-1002");
  token.groups = {{Named("S-1-1-0"), 0x7},
                  {Named("S-1-5-32-551"), 0x7},
                  {Named("S-1-5-32-552"), 0x10},
                  {Named("S-1-5-32-550"), 0x0}};
  return token;
}
/// The operator, restricted to S-1-5-12 and S-1-5-32-551.
inline Policy::Token Restricted() {
  Policy::Token token = Operator();
  token.restricting = {Named("S-1-5-12"), Named("S-1-5-32-551")};
  return token;
}
inline Policy::Token WriteRestricted() {
  Policy::Token token = Operator();
  token.restricting = {Named("S-1-5-33"), Named("S-1-5-80-1-2-3-4-5")};
  return token;
}
inline Policy::Token System() { return Policy::SystemProgram(); }
/// S-1-5-80-1-2-3-4-5, of whatever account.
inline Policy::Token Service() { return Policy::ServiceProgram(Named("S-1-5-80-1-2-3-4-5")); }
inline Policy::Token SystemService() {
  return Policy::ServiceProgram(Named("S-1-5-80-1-2-3-4-5"), Policy::ServiceAccount::System);
}
/// Alice's program that is packaged but in no app container.
inline Policy::Token PackagedAlice() {
  return Policy::WithPackageFamily(Alice(), "Example.App_0123456789abc");
}

/// Alice's app, S-1-15-2-1-2-3-4-5-6-7.
inline Policy::Token AppWith(std::vector<Policy::Sid> capabilities, bool isLessPrivileged = false) {
  return Policy::WithPackageFamily(Policy::AppContainerProgram({Named("S-1-15-2-1-2-3-4-5-6-7"),
                                                                std::move(capabilities), isLessPrivileged},
                                                               Named("S-1-5-21-1-2-3-1001")),
                                   "Example.App_0123456789abc");
}
inline Policy::Token InternetApp() { return AppWith({Named("S-1-15-3-1")}); }
inline Policy::Token App() { return AppWith({}); }
inline Policy::Token LessPrivilegedApp() { return AppWith({}, true); }
inline Policy::Token LoopbackApp() { return AppWith({Policy::CapabilitySid("networkLoopback").value()}); }

}  // namespace AccessTokens

/// A descriptor, a token, and what the one grants to the other.
struct AccessCase {
  const char* sddl;
  Policy::Token (*token)();
  Policy::Access access;
};
