/**
 * @file
 * Conversion of address texts, which the host's headers of winsock2.h have.
 */
#pragma once

#include <winsock2.h>
