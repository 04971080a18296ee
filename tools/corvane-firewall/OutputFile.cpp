#include "OutputFile.h"

#include <filesystem>
#include <fstream>

#include "Failure.h"
#include "Text.h"

void WriteFile(const std::string& path, const std::string& text) {
  std::ofstream file(ToPath(path), std::ios::binary);
  file << text;
  file.close();
  if (!file) {
    throw Failure("Cannot write " + path, "The folder must exist and be open to you.");
  }
}
