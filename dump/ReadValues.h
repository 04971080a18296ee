/**
 * @file
 * What the members of records are read from.
 */
#pragma once

#include <WfpPlatform.h>

#include <limits>
#include <string>

#include "dump/EngineState.h"
#include "dump/NetshNames.h"
#include "dump/Numbers.h"
#include "dump/Symbols.h"
#include "dump/XmlDocument.h"

// All of them throw DumpError for what they do not understand.
namespace Dump {

template <class Number>
Number ReadNumber(const Element& element) {
  const auto number = ParseInteger<Number>(element.TrimmedText());
  if (!number) {
    using Limits = std::numeric_limits<Number>;
    element.FailExpecting("a number from " + std::to_string(Limits::min()) + " to " +
                          std::to_string(Limits::max()));
  }
  return *number;
}

/// "{guid}"; zero for no element.
GUID ReadGuid(const std::optional<Element>& element);
/// A symbol or "{guid}".
GUID ReadKey(const Element& element, KeyKind kind, EngineState& state);
/// The same; null for no element.
GUID* ReadKeyIfAny(const std::optional<Element>& element, KeyKind kind, EngineState& state);

/// Null for no element.
wchar_t* ReadText(const std::optional<Element>& element, EngineState& state);
FWPM_DISPLAY_DATA0 ReadDisplayData(Members& members, EngineState& state);

/// Empty for no element.
FWP_BYTE_BLOB ReadBlob(const std::optional<Element>& element, EngineState& state);

/// A number by its name, or as it is.
UINT32 ReadNamedNumber(const Element& element, const NumberNames& names);
/// Flags by their names, what has none as eight hexadecimal digits. What has a name, but no value that
/// anybody knows, is noted for the object. Zero for no element.
UINT32 ReadFlags(const std::optional<Element>& element, const FlagNames& names, const GUID& objectKey,
                 EngineState& state);

FWP_VALUE0 ReadValue(const Element& element, EngineState& state);
FWP_CONDITION_VALUE0 ReadConditionValue(const Element& element, EngineState& state);

}  // namespace Dump
