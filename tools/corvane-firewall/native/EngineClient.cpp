#include "EngineClient.h"

Policy::EngineCalls FindPolicyCalls() { return Policy::LinkedEngine(); }

Replay::EngineCalls FindObjectCalls() { return Replay::LinkedEngine(); }

Watch::EventCalls FindEventCalls() { return Watch::LinkedEngine(); }
Calibrate::EngineCalls FindExperimentCalls() { return Calibrate::LinkedEngine(); }

ApplicationCalls FindApplicationCalls() { return {&::FwpmGetAppIdFromFileName0, &::FwpmFreeMemory0}; }

EmulatorControl FindEmulatorControl() {
  return {&::EngineEmulatorSetRule, &::EngineEmulatorLastRefusal, &::EngineEmulatorPretendFileExists};
}
