#pragma once

#include "Steps.h"

// Steps that read the engine and change nothing.
void ExplainStep(const StepContext& context, const StepOptions& options);
void MapStep(const StepContext& context, const StepOptions& options);
void ProveStep(const StepContext& context, const StepOptions& options);
void LintStep(const StepContext& context, const StepOptions& options);
void ReportStep(const StepContext& context, const StepOptions& options);

inline constexpr StepOption kExplainOptions[]{
    {"--remote", "ADDRESS[:PORT]",
     "Other end of the connection; port 443 unless given, for protocols that have ports. Repeat it to ask "
     "more",
     &StepOptions::remotes, Times::AtLeastOnce, RejectAllButEndpoint},
    {"--local", "ADDRESS[:PORT]", "This machine's end; port 50000 unless given, likewise",
     &StepOptions::local, Times::AtMostOnce, RejectAllButEndpoint},
    {"--protocol", "tcp|udp|icmp|N", "tcp unless given", &StepOptions::protocol, Times::AtMostOnce,
     RejectAllButProtocol},
    {"--icmp-type", "N", "Of ICMP; that of an echo request unless given", &StepOptions::icmpType,
     Times::AtMostOnce, RejectAllButByte},
    {"--icmp-code", "N", "Of ICMP; 0 unless given", &StepOptions::icmpCode, Times::AtMostOnce,
     RejectAllButByte},
    {"--app", "PATH",
     "Executable, or an id such as \\device\\harddiskvolume1\\a.exe; one that no filter names "
     "unless given",
     &StepOptions::apps, Times::AtMostOnce},
    {"--interface", "NAME|LUID", "Adapter; one that no filter names unless given", &StepOptions::interfaces,
     Times::AtMostOnce},
    {"--inbound", nullptr, "The other end opens the connection", &StepOptions::inbound},
    {"--loopback", nullptr, "The connection stays on this machine", &StepOptions::loopback},
};

inline constexpr StepOption kReportOptions[]{
    {"file", "FILE.html", "Where to write the page", &StepOptions::file, Times::Once},
};
