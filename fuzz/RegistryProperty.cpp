// Decodes registry data of random type and length. The first byte of a case is the type, the rest is the
// data.
#include <algorithm>
#include <array>
#include <stdexcept>

#include "fuzz/Input.h"
#include "helpers/tarnwell/RegistryProperty.h"

namespace {

using Fuzz::Input;
using Fuzz::Require;
using Tarnwell::RegistryProperty;
using Bytes = std::span<const std::uint8_t>;

struct TypeRule {
  std::size_t alternative;  ///< the index in the variant RegistryProperty
  std::size_t shortest;     ///< with fewer bytes decoding fails
};

/// By type, from REG_NONE on. Unknown types are decoded like the first, to nothing.
constexpr TypeRule kTypeRules[]{{0, 0}, {2, 0}, {2, 0}, {3, 0}, {1, 4}, {1, 4},
                                {2, 0}, {4, 0}, {3, 0}, {3, 0}, {3, 0}, {5, 8}};

std::uint64_t LittleEndian(Bytes bytes) {
  std::uint64_t number = 0;
  for (const std::uint8_t byte : bytes) {
    number = number >> 8 | std::uint64_t{byte} << 56;
  }
  return number >> (64 - 8 * bytes.size());
}

bool HasZero(const std::wstring& text) { return text.find(L'\0') != std::wstring::npos; }

void RequireDecoded(DWORD type, Bytes data, const RegistryProperty& property) {
  if (const auto* number = std::get_if<std::uint32_t>(&property)) {
    std::array<std::uint8_t, 4> bytes{};
    std::ranges::copy(data.first(4), bytes.begin());
    if (type == REG_DWORD_BIG_ENDIAN) {
      std::ranges::reverse(bytes);
    }
    Require(*number == LittleEndian(bytes), "a number has the value of its bytes");
  } else if (const auto* longNumber = std::get_if<std::uint64_t>(&property)) {
    Require(*longNumber == LittleEndian(data.first(8)), "a long number has the value of its bytes");
  } else if (const auto* text = std::get_if<std::wstring>(&property)) {
    Require(text->size() * sizeof(wchar_t) <= data.size() && !HasZero(*text),
            "a string ends at its first zero");
  } else if (const auto* raw = std::get_if<std::vector<std::byte>>(&property)) {
    Require(std::ranges::equal(*raw, std::as_bytes(data)), "raw bytes are the data");
  } else if (const auto* texts = std::get_if<std::vector<std::wstring>>(&property)) {
    const auto breaksList = [](const std::wstring& entry) { return entry.empty() || HasZero(entry); };
    Require(std::ranges::none_of(*texts, breaksList), "a list ends at its first empty string");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Input input(bytes, size);
  const DWORD type = input.Take<std::uint8_t>();
  const Bytes data = input.TakeBytes(size);
  const TypeRule& rule = kTypeRules[type < std::size(kTypeRules) ? type : 0];
  try {
    const RegistryProperty property = Tarnwell::DecodeRegistryProperty(type, std::as_bytes(data));
    Require(data.size() >= rule.shortest, "a number needs all its bytes");
    Require(property.index() == rule.alternative, "the type decides what comes out");
    RequireDecoded(type, data, property);
  } catch (const std::runtime_error&) {
    Require(data.size() < rule.shortest, "only a number can be too short");
  }
  return 0;
}
