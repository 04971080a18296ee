/**
 * @file
 * Kinds of network interfaces.
 */
#pragma once

#define IF_TYPE_ETHERNET_CSMACD 6
#define IF_TYPE_SOFTWARE_LOOPBACK 24
