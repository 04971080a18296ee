/**
 * @file
 * What a dump of a filtering engine holds.
 */
#pragma once

#include <WfpPlatform.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "catalog/Guid.h"
#include "dump/Memory.h"

namespace Dump {

/// The two commands that write dumps.
enum class DumpKind {
  State,    ///< netsh wfp show state: everything, filters under their layers
  Filters,  ///< netsh wfp show filters: filters and providers; the sublayers' weights are missing
};

/// Symbols that stand for keys that the catalogue does not know, such as "FWPM_LAYER_NEW_V4", by the keys
/// made up for them: the same for the same symbol in every dump, and no key that anybody uses.
using UnknownSymbols = std::map<GUID, std::string, Catalog::KeyOrder>;

/// A flag that an object has, of which only the name is known and no value.
struct UnknownFlag {
  GUID objectKey;
  std::string name;  ///< "FWPM_FILTER_FLAG_NEW"
};

/// What a provider context holds besides a buffer of bytes: elements of the dump, kept as they are.
struct ContextData {
  GUID contextKey;
  std::string xml;
};

/// The objects of an engine, as the platform's own records. Their pointers lead into `memory`, or into other
/// memory that whoever fills the state keeps. Keys that the catalogue has no name for are in no way special.
struct EngineState {
  DumpKind kind = DumpKind::State;
  std::string timeStamp;  ///< when it was written, as the dump has it; empty if it does not say

  std::vector<FWPM_LAYER0> layers;  ///< State only
  std::vector<FWPM_PROVIDER0> providers;
  std::vector<FWPM_PROVIDER_CONTEXT0> providerContexts;  ///< State only; a null pointer for other than bytes
  std::vector<FWPM_SUBLAYER0> subLayers;                 ///< State only
  std::vector<FWPM_CALLOUT0> callouts;                   ///< State only
  std::vector<FWPM_FILTER0> filters;

  UnknownSymbols unknownSymbols;
  std::vector<UnknownFlag> unknownFlags;
  std::vector<ContextData> contextData;
  std::size_t sessions = 0;           ///< that the dump lists; nothing else is kept of them
  std::size_t unknownDomainSids = 0;  ///< conditions whose descriptors have SIDs of kUnknownDomain
  std::map<std::string, std::size_t>
      skippedElements;  ///< by name, how often: what a dump has and this has not

  Memory memory;
};

}  // namespace Dump
