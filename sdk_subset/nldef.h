/**
 * @file
 * The network layer.
 */
#pragma once

#include <windef.h>

typedef SDK_SUBSET_ENUM(NL_ADDRESS_TYPE_){
    NlatUnspecified = 0, NlatUnicast = 1,   NlatAnycast = 2,
    NlatMulticast = 3,   NlatBroadcast = 4, NlatInvalid = 5,
} NL_ADDRESS_TYPE;
