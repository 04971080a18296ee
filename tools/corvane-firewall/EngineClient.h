/**
 * @file
 * The client library of the engine that the steps work on. On Windows it is the one that is loaded in this
 * process, the system's or the emulator's: each function is looked up when it is needed, because the loader
 * would bind an import to the system's before the emulator can be loaded. On other systems it is the
 * emulator, which the program is linked with.
 */
#pragma once

#include <WfpPlatform.h>

#include "calibrate/EngineCalls.h"
#include "emulator/ControlExports.h"
#include "policy/EngineCalls.h"
#include "replay/EngineCalls.h"
#include "watch/EventCalls.h"

/// The functions that tell of applications.
struct ApplicationCalls {
  decltype(&::FwpmGetAppIdFromFileName0) FwpmGetAppIdFromFileName0;
  decltype(&::FwpmFreeMemory0) FwpmFreeMemory0;
};

/// The functions of the emulator's control interface that the tool uses.
struct EmulatorControl {
  decltype(&::EngineEmulatorSetRule) setRule;
  decltype(&::EngineEmulatorLastRefusal) lastRefusal;
  decltype(&::EngineEmulatorPretendFileExists) pretendFileExists;
};

/// They throw Failure when the library lacks a function.
Policy::EngineCalls FindPolicyCalls();
Replay::EngineCalls FindObjectCalls();
Watch::EventCalls FindEventCalls();
Calibrate::EngineCalls FindExperimentCalls();
ApplicationCalls FindApplicationCalls();
EmulatorControl FindEmulatorControl();
