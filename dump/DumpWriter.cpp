#include "dump/DumpWriter.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "catalog/Format.h"
#include "dump/Encoding.h"
#include "dump/Numbers.h"

namespace Dump {
namespace {

std::string HexOf(std::span<const UINT8> bytes) {
  std::string text;
  text.reserve(2 * bytes.size());
  for (const UINT8 byte : bytes) {
    AppendHex(text, byte);
  }
  return text;
}

/// A character for each byte that is one, and for others a dot.
std::string Dotted(std::span<const UINT8> bytes) {
  std::string text;
  for (const UINT8 byte : bytes) {
    const bool isShown = byte >= ' ' && byte < 0x7F && byte != '&' && byte != '<' && byte != '>';
    text += isShown ? static_cast<char>(byte) : '.';
  }
  return text;
}

}  // namespace

DumpWriter::DumpWriter(const EngineState& state) : state_(state) {
  for (const UnknownFlag& flag : state.unknownFlags) {
    unknownFlags_[flag.objectKey].insert(flag.name);
  }
  for (const ContextData& data : state.contextData) {
    contextData_.emplace(data.contextKey, &data.xml);
  }
}

void DumpWriter::WriteKey(std::string_view name, KeyKind kind, const GUID& key) {
  xml_.Leaf(name, FormatKey(kind, key, state_.unknownSymbols));
}

void DumpWriter::WriteKey(std::string_view name, KeyKind kind, const GUID* key) {
  if (key == nullptr) {
    xml_.Empty(name);
  } else {
    WriteKey(name, kind, *key);
  }
}

void DumpWriter::WriteText(std::string_view name, const wchar_t* text) {
  if (text == nullptr) {
    xml_.Empty(name);
  } else {
    xml_.Leaf(name, FromWide(text));
  }
}

void DumpWriter::WriteDisplayData(const FWPM_DISPLAY_DATA0& displayData) {
  xml_.Open("displayData");
  WriteText("name", displayData.name);
  WriteText("description", displayData.description);
  xml_.Close("displayData");
}

void DumpWriter::WriteBlob(std::string_view name, const FWP_BYTE_BLOB* blob) {
  OpenIfAny(name, blob, [this](const FWP_BYTE_BLOB& bytes) {
    WriteBytes(bytes, Dotted({bytes.data, bytes.size}));
  });
}

void DumpWriter::WriteBytes(const FWP_BYTE_BLOB& blob, const std::string& asString) {
  xml_.Leaf("data", HexOf({blob.data, blob.size}));
  xml_.Leaf("asString", asString);
}

void DumpWriter::WriteNamedNumber(std::string_view name, const NumberNames& names, UINT32 number) {
  xml_.Leaf(name, names.format(number));
}

void DumpWriter::WriteFlags(const FlagNames& names, UINT32 flags, const GUID& objectKey) {
  std::vector<std::string> items;
  for (const Catalog::Flag& flag : names.flags) {
    const UINT32 bit = flag.bit.value_or(0) & ~names.unnamed;
    if ((flags & bit) == 0) {
      continue;
    }
    items.push_back(FlagName(names, flag));
    flags &= ~bit;
  }
  if (const auto unknown = unknownFlags_.find(objectKey); unknown != unknownFlags_.end()) {
    std::ranges::copy_if(unknown->second, std::back_inserter(items),
                         [&names](const std::string& name) { return IsFlagName(names, name); });
  }
  if (flags != 0) {
    items.push_back(EightDigits(flags));
  }
  if (items.empty()) {
    xml_.Empty("flags");
    return;
  }
  xml_.Open("flags", items.size());
  for (const std::string& item : items) {
    xml_.Leaf("item", item);
  }
  xml_.Close("flags");
}

void DumpWriter::WriteNumber(std::string_view name, UINT64 number) {
  xml_.Leaf(name, std::to_string(number));
}

void DumpWriter::WriteContextData(const GUID& contextKey) {
  const auto data = contextData_.find(contextKey);
  if (data != contextData_.end()) {
    xml_.Raw(*data->second);
  }
}

}  // namespace Dump
