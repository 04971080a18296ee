#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A network adapter as the library sees it; UTF-8.
struct ListedAdapter {
  std::string name;
  std::string description;
  std::uint64_t luid;
};

/// This machine's adapters; none off Windows, where no engine knows them.
/// @throws Failure with the system's code when they cannot be listed.
std::vector<ListedAdapter> ListAdapters();
