/**
 * @file
 * The engine's functions that reading it takes.
 */
#pragma once

#include <WfpPlatform.h>

namespace Policy {

/// The functions of one engine, the system's or an emulated one. A program that binds to the engine at run
/// time looks them up by their names, which are the members' names; others use LinkedEngine.
struct EngineCalls {
  decltype(&::FwpmEngineOpen0) FwpmEngineOpen0;
  decltype(&::FwpmEngineClose0) FwpmEngineClose0;
  decltype(&::FwpmTransactionBegin0) FwpmTransactionBegin0;
  decltype(&::FwpmTransactionAbort0) FwpmTransactionAbort0;
  decltype(&::FwpmProviderCreateEnumHandle0) FwpmProviderCreateEnumHandle0;
  decltype(&::FwpmProviderEnum0) FwpmProviderEnum0;
  decltype(&::FwpmProviderDestroyEnumHandle0) FwpmProviderDestroyEnumHandle0;
  decltype(&::FwpmSubLayerCreateEnumHandle0) FwpmSubLayerCreateEnumHandle0;
  decltype(&::FwpmSubLayerEnum0) FwpmSubLayerEnum0;
  decltype(&::FwpmSubLayerDestroyEnumHandle0) FwpmSubLayerDestroyEnumHandle0;
  decltype(&::FwpmFilterCreateEnumHandle0) FwpmFilterCreateEnumHandle0;
  decltype(&::FwpmFilterEnum0) FwpmFilterEnum0;
  decltype(&::FwpmFilterDestroyEnumHandle0) FwpmFilterDestroyEnumHandle0;
  decltype(&::FwpmFreeMemory0) FwpmFreeMemory0;
};

/// The engine that the program is linked with. Inline, so that only who calls it needs that engine.
inline EngineCalls LinkedEngine() {
  return {&::FwpmEngineOpen0,
          &::FwpmEngineClose0,
          &::FwpmTransactionBegin0,
          &::FwpmTransactionAbort0,
          &::FwpmProviderCreateEnumHandle0,
          &::FwpmProviderEnum0,
          &::FwpmProviderDestroyEnumHandle0,
          &::FwpmSubLayerCreateEnumHandle0,
          &::FwpmSubLayerEnum0,
          &::FwpmSubLayerDestroyEnumHandle0,
          &::FwpmFilterCreateEnumHandle0,
          &::FwpmFilterEnum0,
          &::FwpmFilterDestroyEnumHandle0,
          &::FwpmFreeMemory0};
}

}  // namespace Policy
