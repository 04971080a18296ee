/**
 * @file
 * Security records, registry types and languages.
 */
#pragma once

#include <windef.h>

#define REG_NONE 0
#define REG_SZ 1
#define REG_EXPAND_SZ 2
#define REG_BINARY 3
#define REG_DWORD 4
#define REG_DWORD_BIG_ENDIAN 5
#define REG_LINK 6
#define REG_MULTI_SZ 7
#define REG_RESOURCE_LIST 8
#define REG_FULL_RESOURCE_DESCRIPTOR 9
#define REG_RESOURCE_REQUIREMENTS_LIST 10
#define REG_QWORD 11

typedef DWORD ACCESS_MASK, REGSAM;
#define KEY_READ 0x20019

#define LANG_NEUTRAL 0
#define SUBLANG_DEFAULT 1
#define MAKELANGID(language, subLanguage) ((WORD)((subLanguage) << 10 | (language)))

#define SID_REVISION 1
#define SID_MAX_SUB_AUTHORITIES 15

typedef struct SID_IDENTIFIER_AUTHORITY_ {
  BYTE Value[6];
} SID_IDENTIFIER_AUTHORITY;

/// SubAuthority is the first of SubAuthorityCount entries.
typedef struct SID_ {
  BYTE Revision;
  BYTE SubAuthorityCount;
  SID_IDENTIFIER_AUTHORITY IdentifierAuthority;
  DWORD SubAuthority[1];
} SID;
typedef PVOID PSID;

typedef struct SID_AND_ATTRIBUTES_ {
  PSID Sid;
  DWORD Attributes;
} SID_AND_ATTRIBUTES, *PSID_AND_ATTRIBUTES;

#define ACL_REVISION 2

typedef struct ACL_ {
  BYTE AclRevision;
  BYTE Sbz1;
  WORD AclSize;
  WORD AceCount;
  WORD Sbz2;
} ACL, *PACL;

#define ACCESS_ALLOWED_ACE_TYPE 0

typedef struct ACE_HEADER_ {
  BYTE AceType;
  BYTE AceFlags;
  WORD AceSize;
} ACE_HEADER;

/// The SID begins at SidStart.
typedef struct ACCESS_ALLOWED_ACE_ {
  ACE_HEADER Header;
  ACCESS_MASK Mask;
  DWORD SidStart;
} ACCESS_ALLOWED_ACE;

typedef PVOID PSECURITY_DESCRIPTOR;
typedef WORD SECURITY_DESCRIPTOR_CONTROL;
typedef DWORD SECURITY_INFORMATION;

#define SECURITY_DESCRIPTOR_REVISION 1
#define SE_DACL_PRESENT 0x0004
#define SE_SACL_PRESENT 0x0010
#define SE_SELF_RELATIVE 0x8000

#define OWNER_SECURITY_INFORMATION 0x1
#define GROUP_SECURITY_INFORMATION 0x2
#define DACL_SECURITY_INFORMATION 0x4
#define SACL_SECURITY_INFORMATION 0x8

/// The form of a descriptor that can be copied: its parts are given as offsets from its start; 0 for none.
typedef struct SECURITY_DESCRIPTOR_RELATIVE_ {
  BYTE Revision;
  BYTE Sbz1;
  SECURITY_DESCRIPTOR_CONTROL Control;
  DWORD Owner;
  DWORD Group;
  DWORD Sacl;
  DWORD Dacl;
} SECURITY_DESCRIPTOR_RELATIVE;

typedef struct SECURITY_DESCRIPTOR_ {
  BYTE Revision;
  BYTE Sbz1;
  SECURITY_DESCRIPTOR_CONTROL Control;
  PSID Owner;
  PSID Group;
  PACL Sacl;
  PACL Dacl;
} SECURITY_DESCRIPTOR;
