#include "Text.h"

#include "dump/Encoding.h"

std::string ToUtf8(std::wstring_view text) { return Dump::FromWide(text); }

std::wstring ToWide(std::string_view text) { return Dump::ToWide(text); }

std::vector<std::wstring> ToWide(const std::vector<std::string>& texts) {
  std::vector<std::wstring> wide;
  wide.reserve(texts.size());
  for (const std::string& text : texts) {
    wide.push_back(ToWide(text));
  }
  return wide;
}

std::filesystem::path ToPath(std::string_view text) { return std::u8string(text.begin(), text.end()); }

std::string PathToUtf8(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}
