#include "FirewallCommands.h"

std::unique_ptr<FirewallCommands> LoadFirewall(Engine, const std::wstring&) { return nullptr; }
