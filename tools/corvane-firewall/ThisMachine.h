#pragma once

#include <memory>
#include <string>

#include "calibrate/Network.h"

// What experiments with the system's engine take. Off Windows there is none of it.

/// The version of Windows with its build, such as "10.0.26100.2314".
std::string WindowsBuild();

/// The path of this program; UTF-8.
std::string OwnProgram();

/// Sockets of this program.
/// @throws Calibrate::NetworkError
std::unique_ptr<Calibrate::Network> RealNetwork();
