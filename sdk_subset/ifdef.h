/**
 * @file
 * Identities of network interfaces.
 */
#pragma once

#include <windef.h>

typedef ULONG NET_IFINDEX, *PNET_IFINDEX;

typedef union NET_LUID_ {
  ULONG64 Value;
  struct {
    ULONG64 Reserved : 24;
    ULONG64 NetLuidIndex : 24;
    ULONG64 IfType : 16;
  } Info;
} NET_LUID, IF_LUID;
