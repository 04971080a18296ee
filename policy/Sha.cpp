// Both digests as FIPS 180-4 has them, with its letters.
#include "policy/Sha.h"

#include <bit>
#include <cstddef>
#include <utility>
#include <vector>

namespace Policy {
namespace {

constexpr std::size_t kBlockSize = 64;

constexpr std::array<UINT32, 64> kSha256Constants{
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

using Block = std::span<const UINT8, kBlockSize>;

/// The message and behind it a bit, zeros up to whole blocks, and its length in bits.
std::vector<UINT8> Padded(std::span<const UINT8> bytes) {
  constexpr std::size_t kLengthSize = 8;
  std::vector<UINT8> padded(bytes.begin(), bytes.end());
  padded.push_back(0x80);
  while (padded.size() % kBlockSize != kBlockSize - kLengthSize) {
    padded.push_back(0);
  }
  const UINT64 bits = UINT64{bytes.size()} * 8;
  for (int shift = 56; shift >= 0; shift -= 8) {
    padded.push_back(static_cast<UINT8>(bits >> shift));
  }
  return padded;
}

/// The sixteen words of a block, and room for those that follow from them.
template <std::size_t kCount>
std::array<UINT32, kCount> WordsOf(Block block) {
  std::array<UINT32, kCount> words{};
  for (std::size_t i = 0; i < kBlockSize; ++i) {
    words[i / 4] = words[i / 4] << 8 | block[i];
  }
  return words;
}

/// The function and the constant of one of SHA-1's rounds.
UINT32 MixOfSha1(std::size_t round, UINT32 b, UINT32 c, UINT32 d) {
  if (round < 20) {
    return ((b & c) ^ (~b & d)) + 0x5a827999;
  }
  if (round < 40) {
    return (b ^ c ^ d) + 0x6ed9eba1;
  }
  if (round < 60) {
    return ((b & c) ^ (b & d) ^ (c & d)) + 0x8f1bbcdc;
  }
  return (b ^ c ^ d) + 0xca62c1d6;
}

void AddBlockOfSha1(std::array<UINT32, 5>& state, Block block) {
  auto w = WordsOf<80>(block);
  for (std::size_t i = 16; i < w.size(); ++i) {
    w[i] = std::rotl(w[i - 3] ^ w[i - 8] ^ w[i - 14] ^ w[i - 16], 1);
  }
  auto [a, b, c, d, e] = state;
  for (std::size_t i = 0; i < w.size(); ++i) {
    const UINT32 next = std::rotl(a, 5) + MixOfSha1(i, b, c, d) + e + w[i];
    e = std::exchange(d, c);
    c = std::rotl(b, 30);
    b = std::exchange(a, next);
  }
  state[0] += a;
  state[1] += b;
  state[2] += c;
  state[3] += d;
  state[4] += e;
}

void AddBlockOfSha256(std::array<UINT32, 8>& state, Block block) {
  auto w = WordsOf<64>(block);
  for (std::size_t i = 16; i < w.size(); ++i) {
    const UINT32 s0 = std::rotr(w[i - 15], 7) ^ std::rotr(w[i - 15], 18) ^ w[i - 15] >> 3;
    const UINT32 s1 = std::rotr(w[i - 2], 17) ^ std::rotr(w[i - 2], 19) ^ w[i - 2] >> 10;
    w[i] = w[i - 16] + s0 + w[i - 7] + s1;
  }
  auto [a, b, c, d, e, f, g, h] = state;
  for (std::size_t i = 0; i < w.size(); ++i) {
    const UINT32 s1 = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
    const UINT32 t1 = h + s1 + ((e & f) ^ (~e & g)) + kSha256Constants[i] + w[i];
    const UINT32 s0 = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
    const UINT32 t2 = s0 + ((a & b) ^ (a & c) ^ (b & c));
    h = std::exchange(g, f);
    f = std::exchange(e, d + t1);
    d = std::exchange(c, b);
    b = std::exchange(a, t1 + t2);
  }
  const std::array<UINT32, 8> added{a, b, c, d, e, f, g, h};
  for (std::size_t i = 0; i < state.size(); ++i) {
    state[i] += added[i];
  }
}

template <std::size_t kWords>
std::array<UINT8, kWords * 4> Digest(std::span<const UINT8> bytes, std::array<UINT32, kWords> state,
                                     void (*addBlock)(std::array<UINT32, kWords>&, Block)) {
  const std::vector<UINT8> padded = Padded(bytes);
  for (std::size_t at = 0; at < padded.size(); at += kBlockSize) {
    addBlock(state, Block(padded.data() + at, kBlockSize));
  }
  std::array<UINT8, kWords * 4> digest{};
  for (std::size_t i = 0; i < digest.size(); ++i) {
    digest[i] = static_cast<UINT8>(state[i / 4] >> (24 - i % 4 * 8));
  }
  return digest;
}

}  // namespace

std::array<UINT8, 20> Sha1(std::span<const UINT8> bytes) {
  return Digest<5>(bytes, {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0}, AddBlockOfSha1);
}

std::array<UINT8, 32> Sha256(std::span<const UINT8> bytes) {
  return Digest<8>(
      bytes, {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a, 0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19},
      AddBlockOfSha256);
}

}  // namespace Policy
