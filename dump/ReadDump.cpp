#include "dump/ReadDump.h"

#include <fstream>
#include <system_error>
#include <utility>

#include "dump/ReadObjects.h"
#include "dump/ReadValues.h"
#include "dump/XmlDocument.h"

namespace Dump {
namespace {

constexpr std::size_t kMegabyte = 1024 * 1024;
constexpr std::size_t kMostMegabytes = 64;
constexpr std::size_t kMostBytes = kMostMegabytes * kMegabyte;

void ReadState(const Element& root, EngineState& state) {
  Members members(root);
  state.kind = DumpKind::State;
  const auto timeStamp = members.TakeIfAny("timeStamp");
  if (timeStamp) {
    state.timeStamp = timeStamp->TrimmedText();
  }
  const auto sessions = members.TakeIfAny("sessions");
  if (sessions) {
    state.sessions = Items(*sessions, state.skippedElements).size();
  }
  ReadLayers(members.Take("layers"), state);
  ReadProviders(members.Take("providers"), state);
  ReadProviderContexts(members.Take("providerContexts"), state);
  ReadSubLayers(members.Take("subLayers"), state);
  members.SkipRest(state.skippedElements);
}

void ReadFilterList(const Element& root, EngineState& state) {
  Members members(root);
  state.kind = DumpKind::Filters;
  const auto timeStamp = members.TakeIfAny("timeStamp");
  if (timeStamp) {
    state.timeStamp = timeStamp->TrimmedText();
  }
  ReadFilters(members.Take("filters"), nullptr, state);
  const auto providers = members.TakeIfAny("providers");
  if (providers) {
    ReadProviders(*providers, state);
  }
  members.SkipRest(state.skippedElements);
}

std::string NameOf(const std::filesystem::path& path) {
  const auto name = path.u8string();
  return {name.begin(), name.end()};
}

[[noreturn]] void FailTooLarge(const std::string& name) {
  throw DumpError(name + ": expected a dump of at most " + std::to_string(kMostMegabytes) + " MB");
}

/// @throws DumpError unless it is a file of a size that is read.
std::size_t SizeOf(const std::filesystem::path& path, const std::string& name) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) {
    throw DumpError(name + ": no such file");
  }
  if (!std::filesystem::is_regular_file(status)) {
    throw DumpError(name + ": expected a file, found a folder or a device");
  }
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (size > kMostBytes) {
    FailTooLarge(name);
  }
  return static_cast<std::size_t>(size);
}

}  // namespace

EngineState ReadDump(std::string bytes, const std::string& fileName) {
  if (bytes.size() > kMostBytes) {
    FailTooLarge(fileName);
  }
  const XmlDocument document(std::move(bytes), fileName);
  const std::vector<Element> roots = document.Roots();
  EngineState state;
  bool isRead = false;
  for (const Element& root : roots) {
    const bool isState = root.Name() == "wfpstate";
    if (!isState && root.Name() != "wfpdiag") {
      ++state.skippedElements[std::string(root.Name())];
      continue;
    }
    if (std::exchange(isRead, true)) {
      root.Fail("expected one dump, found a second");
    }
    if (isState) {
      ReadState(root, state);
    } else {
      ReadFilterList(root, state);
    }
  }
  if (!isRead) {
    throw DumpError(fileName +
                    ": expected <wfpstate> or <wfpdiag>, as netsh wfp show state and netsh wfp show "
                    "filters write them, found " +
                    (roots.empty() ? "nothing" : '<' + std::string(roots.front().Name()) + '>'));
  }
  return state;
}

EngineState ReadDumpFile(const std::filesystem::path& path) {
  const std::string name = NameOf(path);
  std::string bytes(SizeOf(path, name), '\0');
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw DumpError(name + ": cannot be opened; expected the right to read it");
  }
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  if (file.bad()) {
    throw DumpError(name + ": reading failed");
  }
  return ReadDump(std::move(bytes), name);
}

}  // namespace Dump
