#include <algorithm>

#include "dump/Bytes.h"
#include "dump/Encoding.h"
#include "dump/ReadValues.h"

namespace Dump {
namespace {

constexpr std::size_t kFlagDigits = 8;

UINT32 ReadFlag(const Element& item, const FlagNames& names, const GUID& objectKey, EngineState& state) {
  std::string text = item.TrimmedText();
  if (const auto bit = FindFlagBit(names, text)) {
    return *bit;
  }
  if (IsFlagName(names, text)) {
    state.unknownFlags.push_back({objectKey, std::move(text)});
    return 0;
  }
  const auto number = text.size() == kFlagDigits ? ParseInteger<UINT32>(text, 16) : std::nullopt;
  if (!number) {
    item.FailExpecting(std::string(names.expected) + " or eight hexadecimal digits");
  }
  return *number;
}

Bytes ReadHex(const Element& element) {
  const std::string text = element.TrimmedText();
  if (text.size() % 2 != 0 || !std::ranges::all_of(text, IsHexDigit)) {
    element.FailExpecting("hexadecimal digits, two for each byte,");
  }
  Bytes bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t i = 0; i < text.size(); i += 2) {
    bytes.push_back(*ParseInteger<UINT8>(std::string_view(text).substr(i, 2), 16));
  }
  return bytes;
}

}  // namespace

GUID ReadGuid(const std::optional<Element>& element) {
  if (!element) {
    return {};
  }
  const auto key = ParseBracedGuid(element->TrimmedText());
  if (!key) {
    element->FailExpecting("a GUID like {00112233-4455-6677-8899-aabbccddeeff}");
  }
  return *key;
}

GUID ReadKey(const Element& element, KeyKind kind, EngineState& state) {
  const auto key = ParseKey(kind, element.TrimmedText(), state.unknownSymbols);
  if (!key) {
    element.FailExpecting("a name like " + std::string(SymbolPrefix(kind)) +
                          "... or a GUID like {00112233-4455-6677-8899-aabbccddeeff}");
  }
  return *key;
}

GUID* ReadKeyIfAny(const std::optional<Element>& element, KeyKind kind, EngineState& state) {
  return element ? state.memory.Make(ReadKey(*element, kind, state)) : nullptr;
}

wchar_t* ReadText(const std::optional<Element>& element, EngineState& state) {
  return element ? state.memory.MakeText(ToWide(element->Text())) : nullptr;
}

FWPM_DISPLAY_DATA0 ReadDisplayData(Members& members, EngineState& state) {
  const auto element = members.TakeIfAny("displayData");
  if (!element) {
    return {};
  }
  Members texts(*element);
  const FWPM_DISPLAY_DATA0 displayData{ReadText(texts.TakeIfAny("name"), state),
                                       ReadText(texts.TakeIfAny("description"), state)};
  texts.SkipRest(state.skippedElements);
  return displayData;
}

FWP_BYTE_BLOB ReadBlob(const std::optional<Element>& element, EngineState& state) {
  if (!element) {
    return {};
  }
  Members members(*element);
  const auto data = members.TakeIfAny("data");
  members.TakeIfAny("asString");
  members.SkipRest(state.skippedElements);
  const Bytes bytes = data ? ReadHex(*data) : Bytes();
  return {static_cast<UINT32>(bytes.size()), state.memory.MakeBytes(bytes)};
}

UINT32 ReadNamedNumber(const Element& element, const NumberNames& names) {
  const std::string text = element.TrimmedText();
  const auto known = names.find(text);
  const auto number = known ? known : ParseInteger<UINT32>(text);
  if (!number) {
    element.FailExpecting(names.expected);
  }
  return *number;
}

UINT32 ReadFlags(const std::optional<Element>& element, const FlagNames& names, const GUID& objectKey,
                 EngineState& state) {
  UINT32 flags = 0;
  if (!element) {
    return flags;
  }
  for (const Element& item : Items(*element, state.skippedElements)) {
    flags |= ReadFlag(item, names, objectKey, state);
  }
  return flags;
}

}  // namespace Dump
