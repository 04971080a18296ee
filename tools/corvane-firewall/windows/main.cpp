#include <windows.h>
// shellapi.h needs windows.h.
#include <shellapi.h>

#include <memory>
#include <string>
#include <vector>

#include "Program.h"
#include "Text.h"

namespace {

/// Sets the console to UTF-8 while the program runs.
class Utf8Console {
 public:
  Utf8Console() : before_(GetConsoleOutputCP()) { SetConsoleOutputCP(CP_UTF8); }
  ~Utf8Console() { SetConsoleOutputCP(before_); }
  Utf8Console(const Utf8Console&) = delete;
  Utf8Console& operator=(const Utf8Console&) = delete;

 private:
  UINT before_;
};

/// The command line in UTF-8, without the program's name. It is read from Windows, because the arguments of
/// main have lost all characters that the system's code page lacks.
std::vector<std::string> Arguments() {
  struct FreeLocal {
    void operator()(wchar_t** memory) const { LocalFree(memory); }
  };
  int count = 0;
  const std::unique_ptr<wchar_t*, FreeLocal> wide(CommandLineToArgvW(GetCommandLineW(), &count));
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) {
    arguments.push_back(ToUtf8(wide.get()[i]));
  }
  return arguments;
}

}  // namespace

int main() {
  const Utf8Console console;
  return RunProgram(Arguments());
}
