#include "Program.h"

#include <exception>
#include <iostream>

#include "RunPlan.h"

int RunProgram(const std::vector<std::string>& arguments) {
  // Else each piece of a line is written to a console by itself.
  std::ios::sync_with_stdio(false);
  try {
    const Plan plan = ParseCommandLine(arguments);
    if (!plan.information.empty()) {
      std::cout << plan.information;
      return 0;
    }
    return RunPlan(plan);
  } catch (const UsageError& error) {
    return RefuseCommandLine(error, AsksForJson(arguments));
  } catch (const std::exception& error) {
    std::cerr << "error: " << error.what() << "\n";
    return 1;
  }
}
