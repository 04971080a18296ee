#include "dump/XmlText.h"

#include <algorithm>
#include <utility>

#include "dump/DumpError.h"
#include "dump/Encoding.h"

namespace Dump {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LittleEndianMark = "\xFF\xFE";
constexpr std::string_view kUtf16BigEndianMark = "\xFE\xFF";

/// Units of UTF-16, one after the other.
class Units {
 public:
  Units(std::string_view bytes, bool isBigEndian) : bytes_(bytes), high_(isBigEndian ? 0 : 1) {}

  [[nodiscard]] bool IsEmpty() const { return bytes_.size() < 2; }
  [[nodiscard]] char32_t Next() const {
    return char32_t{static_cast<unsigned char>(bytes_[high_])} << 8 |
           static_cast<unsigned char>(bytes_[1 - high_]);
  }
  char32_t Take() {
    const char32_t unit = Next();
    bytes_.remove_prefix(2);
    return unit;
  }

 private:
  std::string_view bytes_;
  std::size_t high_;  ///< which of the two bytes it is
};

std::string FromUtf16(std::string_view bytes, bool isBigEndian, const std::string& fileName) {
  std::string text;
  text.reserve(bytes.size());
  const auto fail = [&] { throw DumpError(fileName, LineAt(text, text.size()), "expected text in UTF-16"); };
  if (bytes.size() % 2 != 0) {
    fail();
  }
  for (Units units(bytes, isBigEndian); !units.IsEmpty();) {
    char32_t character = units.Take();
    if (IsHighSurrogate(character) && !units.IsEmpty() && IsLowSurrogate(units.Next())) {
      character = FromSurrogates(character, units.Take());
    }
    if (!IsCharacter(character)) {
      fail();
    }
    AppendUtf8(text, character);
  }
  return text;
}

void CheckUtf8(std::string_view text, const std::string& fileName) {
  const auto isBeyondAscii = [](char character) { return static_cast<unsigned char>(character) >= 0x80; };
  for (std::string_view rest = text;;) {
    rest = rest.substr(static_cast<std::size_t>(std::ranges::find_if(rest, isBeyondAscii) - rest.begin()));
    if (rest.empty()) {
      return;
    }
    const std::size_t position = text.size() - rest.size();
    if (TakeCharacter(rest) == kNotUtf8) {
      throw DumpError(fileName, LineAt(text, position),
                      "expected text in UTF-8, or in UTF-16 with a byte order mark");
    }
  }
}

}  // namespace

std::size_t LineAt(std::string_view text, std::size_t position) {
  return 1 + static_cast<std::size_t>(std::ranges::count(text.substr(0, position), '\n'));
}

std::string DecodeFile(std::string bytes, const std::string& fileName) {
  const std::string_view all = bytes;
  std::string text;
  if (all.starts_with(kUtf16LittleEndianMark) || all.starts_with(kUtf16BigEndianMark)) {
    text = FromUtf16(all.substr(2), all.starts_with(kUtf16BigEndianMark), fileName);
  } else {
    CheckUtf8(all, fileName);
    text = std::move(bytes);
    if (text.starts_with(kUtf8Mark)) {
      text.erase(0, kUtf8Mark.size());
    }
  }
  const std::size_t zero = text.find('\0');
  if (zero != std::string::npos) {
    throw DumpError(fileName, LineAt(text, zero), "expected text, found a zero byte");
  }
  return text;
}

}  // namespace Dump
