/**
 * @file
 * The digests from which the platform makes SIDs of names.
 */
#pragma once

#include <WfpPlatform.h>

#include <array>
#include <span>

namespace Policy {

std::array<UINT8, 20> Sha1(std::span<const UINT8> bytes);
std::array<UINT8, 32> Sha256(std::span<const UINT8> bytes);

}  // namespace Policy
