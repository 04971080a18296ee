/**
 * @file
 * Remote procedure calls: how an engine session identifies its user.
 */
#pragma once

#include <windef.h>

#define RPC_C_AUTHN_NONE 0
#define RPC_C_AUTHN_WINNT 10
#define RPC_C_AUTHN_DEFAULT 0xFFFFFFFFU

typedef struct SEC_WINNT_AUTH_IDENTITY_W_ {
  USHORT* User;
  ULONG UserLength;
  USHORT* Domain;
  ULONG DomainLength;
  USHORT* Password;
  ULONG PasswordLength;
  ULONG Flags;
} SEC_WINNT_AUTH_IDENTITY_W;
