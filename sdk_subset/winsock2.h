/**
 * @file
 * Socket addresses: the host's own, under the platform's names.
 */
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <windef.h>

/// The host has only the constants.
typedef int IPPROTO;

typedef USHORT ADDRESS_FAMILY;
typedef struct sockaddr SOCKADDR, *LPSOCKADDR;

typedef struct SOCKET_ADDRESS_ {
  LPSOCKADDR lpSockaddr;
  INT iSockaddrLength;
} SOCKET_ADDRESS;
