#include "api/Logging.h"

#include <WfpPlatform.h>

std::string ToNarrow(std::wstring_view text) {
  if (text.empty()) {
    return {};
  }
  const int length = static_cast<int>(text.size());
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, narrow.data(), size, nullptr, nullptr);
  return narrow;
}

std::vector<std::wstring> CopyTexts(const wchar_t* const* texts, std::uint32_t count) {
  return {texts, texts + count};
}

std::wstring Join(std::span<const std::wstring> texts) {
  std::wstring joined;
  for (const std::wstring& text : texts) {
    if (&text != texts.data()) {
      joined += L',';
    }
    joined += text;
  }
  return joined;
}

std::string ToSignedDecimal(std::uint32_t code) { return std::to_string(static_cast<std::int32_t>(code)); }
