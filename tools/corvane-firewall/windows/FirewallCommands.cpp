#include "FirewallCommands.h"

#include "windows/FirewallLibrary.h"

std::unique_ptr<FirewallCommands> LoadFirewall(Engine engine, const std::wstring& dnsAppPath) {
  return std::make_unique<FirewallLibrary>(engine, dnsAppPath);
}
