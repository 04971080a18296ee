#include "EmulatedTool.h"

#include <gtest/gtest.h>

ToolRun RunEmulated(std::vector<std::wstring> arguments) {
  arguments.insert(arguments.begin(), {L"--engine", L"emulated"});
  return RunTool(arguments);
}

Json LastStep(std::vector<std::wstring> arguments) {
  arguments.insert(arguments.begin(), L"--json");
  const ToolRun run = RunEmulated(std::move(arguments));
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
  return Json::parse(run.output)["steps"].back();
}
