/**
 * @file
 * Socket addresses: those of the system that builds, under the platform's names.
 */
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <windef.h>

/// The system's headers have the constants but not the type.
typedef int IPPROTO;

typedef USHORT ADDRESS_FAMILY;
typedef struct sockaddr SOCKADDR, *LPSOCKADDR;

typedef struct SOCKET_ADDRESS_ {
  LPSOCKADDR lpSockaddr;
  INT iSockaddrLength;
} SOCKET_ADDRESS;
