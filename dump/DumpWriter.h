/**
 * @file
 * What the members of records are written as.
 */
#pragma once

#include <WfpPlatform.h>

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "dump/EngineState.h"
#include "dump/NetshNames.h"
#include "dump/Symbols.h"
#include "dump/XmlWriter.h"

namespace Dump {

/// A dump that is being written.
class DumpWriter {
 public:
  /// @param state must live longer.
  explicit DumpWriter(const EngineState& state);

  void WriteKey(std::string_view name, KeyKind kind, const GUID& key);
  /// An empty element for null.
  void WriteKey(std::string_view name, KeyKind kind, const GUID* key);
  void WriteText(std::string_view name, const wchar_t* text);
  void WriteDisplayData(const FWPM_DISPLAY_DATA0& displayData);
  /// An empty element for null.
  void WriteBlob(std::string_view name, const FWP_BYTE_BLOB* blob);
  /// An empty element for no bytes.
  void WriteBlob(std::string_view name, const FWP_BYTE_BLOB& blob) {
    WriteBlob(name, blob.size == 0 ? nullptr : &blob);
  }
  void WriteNamedNumber(std::string_view name, const NumberNames& names, UINT32 number);
  /// @param objectKey whose flags they are: those that have a name only are added.
  void WriteFlags(const FlagNames& names, UINT32 flags, const GUID& objectKey);
  void WriteNumber(std::string_view name, UINT64 number);
  void WriteValue(std::string_view name, const FWP_VALUE0& value);
  void WriteConditionValue(const GUID& fieldKey, const FWP_CONDITION_VALUE0& value);
  /// What a provider context has besides bytes.
  void WriteContextData(const GUID& contextKey);

  XmlWriter& Xml() { return xml_; }

 private:
  // These say whether they know the type.
  template <class Value>
  bool WriteNumberValue(const Value& value, bool isAddress);
  template <class Value>
  bool WriteDataValue(const Value& value);
  bool WriteBlobAsText(std::string_view name, const FWP_BYTE_BLOB* blob);
  bool WriteNetworkOrRange(const FWP_CONDITION_VALUE0& value, bool isAddress);

  template <class Value>
  void WriteType(const Value& value);
  /// What is in the element of a blob.
  /// @param asString for whoever looks at it; it is not read again.
  void WriteBytes(const FWP_BYTE_BLOB& blob, const std::string& asString);
  void WriteSingle(std::string_view name, const FWP_VALUE0& value, bool isAddress);

  bool Leaf(std::string_view name, const std::string& text) {
    xml_.Leaf(name, text);
    return true;
  }

  /// An empty element for null.
  template <class Target, class Format>
  bool LeafIfAny(std::string_view name, const Target* target, Format format) {
    return target == nullptr ? Empty(name) : Leaf(name, format(*target));
  }

  template <class Target, class Write>
  bool OpenIfAny(std::string_view name, const Target* target, Write write) {
    if (target == nullptr) {
      return Empty(name);
    }
    xml_.Open(name);
    write(*target);
    xml_.Close(name);
    return true;
  }

  bool Empty(std::string_view name) {
    xml_.Empty(name);
    return true;
  }

  const EngineState& state_;
  XmlWriter xml_;
  std::map<GUID, std::set<std::string>, Catalog::KeyOrder> unknownFlags_;
  std::map<GUID, const std::string*, Catalog::KeyOrder> contextData_;
};

}  // namespace Dump
