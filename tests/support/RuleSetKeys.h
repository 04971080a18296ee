/**
 * @file
 * The keys that a host of the library hands over, in C and C++, in the order of Initialize.
 */
#pragma once

#include <guiddef.h>

static const GUID kProviderKey = {0xc0de0000, 0x0001, 0x4001, {0x80, 0, 0, 0, 0, 0, 0, 1}};
static const GUID kKillSwitchKey = {0xc0de0000, 0x0002, 0x4002, {0x80, 0, 0, 0, 0, 0, 0, 2}};
static const GUID kLocalNetworkKey = {0xc0de0000, 0x0003, 0x4003, {0x80, 0, 0, 0, 0, 0, 0, 3}};
static const GUID kDhcpKey = {0xc0de0000, 0x0004, 0x4004, {0x80, 0, 0, 0, 0, 0, 0, 4}};
static const GUID kDnsLeakKey = {0xc0de0000, 0x0005, 0x4005, {0x80, 0, 0, 0, 0, 0, 0, 5}};
static const GUID kInterfaceLeakKey = {0xc0de0000, 0x0006, 0x4006, {0x80, 0, 0, 0, 0, 0, 0, 6}};
static const GUID kFirewallCopyKey = {0xc0de0000, 0x0007, 0x4007, {0x80, 0, 0, 0, 0, 0, 0, 7}};
static const GUID kSkeinKey = {0xc0de0000, 0x0008, 0x4008, {0x80, 0, 0, 0, 0, 0, 0, 8}};
