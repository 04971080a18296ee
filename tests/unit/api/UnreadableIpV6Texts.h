#pragma once

/// As long as this object lives, no text of an IPv6 address can be read. A rule set with fixed addresses
/// cannot be made to fail in another way.
class UnreadableIpV6Texts {
 public:
  UnreadableIpV6Texts();
  UnreadableIpV6Texts(const UnreadableIpV6Texts&) = delete;
  UnreadableIpV6Texts& operator=(const UnreadableIpV6Texts&) = delete;
  ~UnreadableIpV6Texts();
};
