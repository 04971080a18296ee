#include <windows.h>
// shellapi.h needs windows.h.
#include <shellapi.h>

#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "RunPlan.h"
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

int Run(const std::vector<std::string>& arguments) {
  try {
    const Plan plan = ParseCommandLine(arguments);
    if (!plan.information.empty()) {
      std::cout << plan.information;
      return 0;
    }
    return RunPlan(plan);
  } catch (const UsageError& error) {
    return RefuseCommandLine(error, AsksForJson(arguments));
  }
}

}  // namespace

int main() {
  // Else each piece of a line is written to a console by itself.
  std::ios::sync_with_stdio(false);
  const Utf8Console console;
  try {
    return Run(Arguments());
  } catch (const std::exception& error) {
    std::cerr << "error: " << error.what() << "\n";
    return 1;
  }
}
