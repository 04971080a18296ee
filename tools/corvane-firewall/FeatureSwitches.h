#pragma once

#include "Step.h"

// How each step that installs or removes rule sets changes the features.
void KillSwitchOn(const StepOptions& options, const FeatureSources& sources, Promises::Features& features);
void KillSwitchOff(const StepOptions& options, const FeatureSources& sources, Promises::Features& features);
void DhcpOn(const StepOptions& options, const FeatureSources& sources, Promises::Features& features);
void DhcpOff(const StepOptions& options, const FeatureSources& sources, Promises::Features& features);
void LeakProtectionOn(const StepOptions& options, const FeatureSources& sources,
                      Promises::Features& features);
void LeakProtectionOff(const StepOptions& options, const FeatureSources& sources,
                       Promises::Features& features);
void LocalNetworkBlockOn(const StepOptions& options, const FeatureSources& sources,
                         Promises::Features& features);
void LocalNetworkBlockOff(const StepOptions& options, const FeatureSources& sources,
                          Promises::Features& features);
void SkeinOn(const StepOptions& options, const FeatureSources& sources, Promises::Features& features);
void SkeinOff(const StepOptions& options, const FeatureSources& sources, Promises::Features& features);
