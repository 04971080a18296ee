#include "helpers/tarnwell/Utilities.h"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

namespace Tarnwell {
namespace {

struct LocalMemoryDeleter {
  void operator()(void* memory) const { LocalFree(memory); }
};

/// snprintf into a string, whatever the length of the text.
template <class... Arguments>
std::string Format(const char* format, Arguments... arguments) {
  const int length = std::snprintf(nullptr, 0, format, arguments...);
  std::string text(length < 0 ? 0 : static_cast<std::size_t>(length), '\0');
  std::snprintf(text.data(), text.size() + 1, format, arguments...);
  return text;
}

std::string SystemMessage(DWORD code) {
  char* message = nullptr;
  const DWORD length = FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr,
                                      code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                                      reinterpret_cast<char*>(&message), 0, nullptr);
  if (length == 0) {
    throw std::runtime_error(Format("Double failure: failed FormatMessageA with code 0x%08X.",
                                    static_cast<unsigned>(GetLastError())));
  }
  const std::unique_ptr<char, LocalMemoryDeleter> owner(message);
  return message;
}

}  // namespace

void RaiseSystemError(const char* unit, int line, DWORD code, const char* call) {
  throw std::runtime_error(Format("[0x%08X] %s (on line: %d of %s) %s", static_cast<unsigned>(code),
                                  SystemMessage(code).c_str(), line, unit, call));
}

void RaiseFailedAssertion(const char* expression, int line, const char* unit, const char* unitName) {
  throw std::runtime_error(
      Format("Failed assertion { %s } on line %d of %s (%s)", expression, line, unit, unitName));
}

}  // namespace Tarnwell
