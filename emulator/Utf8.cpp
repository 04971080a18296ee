#include "emulator/Utf8.h"

#include <WfpPlatform.h>

namespace EngineEmulator {
namespace {

/// 0 for a text that the platform does not convert with these flags, and for an empty one.
int Utf8Length(std::wstring_view text, DWORD flags) {
  return WideCharToMultiByte(CP_UTF8, flags, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr,
                             nullptr);
}

}  // namespace

std::string Utf8(std::wstring_view text) {
  const int length = Utf8Length(text, 0);
  std::string utf8(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), utf8.data(), length, nullptr,
                      nullptr);
  return utf8;
}

bool IsWellFormed(std::wstring_view text) {
  return text.empty() || Utf8Length(text, WC_ERR_INVALID_CHARS) != 0;
}

}  // namespace EngineEmulator
