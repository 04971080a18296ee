#include "ThisMachine.h"

#include "Failure.h"

namespace {

/// The command line has refused the system's engine already.
[[noreturn]] void Refuse() { throw Failure("This system has no filtering engine", ""); }

}  // namespace

std::string WindowsBuild() { Refuse(); }

std::string OwnProgram() { Refuse(); }

std::unique_ptr<Calibrate::Network> RealNetwork() { Refuse(); }
