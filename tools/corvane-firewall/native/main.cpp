#include <string>
#include <vector>

#include "Program.h"
#include "Text.h"

int main(int count, char** texts) {
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) {
    // Whatever the program shows is then UTF-8.
    arguments.push_back(ToUtf8(ToWide(texts[i])));
  }
  return RunProgram(arguments);
}
