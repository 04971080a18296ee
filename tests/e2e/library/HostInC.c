/* A host in plain C. */
#include "corvane/native_firewall.h"

#define ASSERT_TYPE(function)                                                \
  _Static_assert(_Generic(&(function), function##Function : 1, default : 0), \
                 "the pointer type of " #function " is another")

ASSERT_TYPE(Initialize);
ASSERT_TYPE(GetErrorText);
ASSERT_TYPE(IsInternetEnabled);
ASSERT_TYPE(EnableInternet);
ASSERT_TYPE(DisableInternet);
ASSERT_TYPE(IsDhcpEnabled);
ASSERT_TYPE(EnableDhcp);
ASSERT_TYPE(DisableDhcp);
ASSERT_TYPE(IsLeakProtectionEnabled);
ASSERT_TYPE(EnableLeakProtection);
ASSERT_TYPE(DisableLeakProtection);
ASSERT_TYPE(IsLocalNetworkEnabled);
ASSERT_TYPE(EnableLocalNetwork);
ASSERT_TYPE(DisableLocalNetwork);
ASSERT_TYPE(EnableSkeinFirewallRules);
ASSERT_TYPE(DisableSkeinFirewallRules);

static uint32_t lineCount;

static uint64_t CORVANE_CALL CountLine(const char* line) {
  lineCount += line[0] != '\0';
  return 0;
}

/* Disables the internet; gives the number of lines logged. */
uint32_t LinesLoggedInC(DisableInternetFunction disableInternet) {
  lineCount = 0;
  return disableInternet(NULL, 0, NULL, 0, CountLine) == 0 ? lineCount : 0;
}
