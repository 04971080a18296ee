#include "EmulatedTool.h"

#include <gtest/gtest.h>

#include <regex>

#include "JsonSchema.h"

ToolRun RunEmulated(std::vector<std::wstring> arguments) {
  arguments.insert(arguments.begin(), {L"--engine", L"emulated"});
  return RunTool(arguments);
}

std::string WithoutIds(const std::string& text) {
  return std::regex_replace(text, std::regex("filter [0-9]+"), "filter #");
}

ParsedJson DocumentOf(const ToolRun& run) {
  ParsedJson document = ParsedJson::parse(run.output);
  EXPECT_EQ(FaultsOf(document), "") << run.output;
  return document;
}

ParsedJson LastStep(std::vector<std::wstring> arguments) {
  arguments.insert(arguments.begin(), L"--json");
  const ToolRun run = RunEmulated(std::move(arguments));
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
  return DocumentOf(run)["steps"].back();
}
