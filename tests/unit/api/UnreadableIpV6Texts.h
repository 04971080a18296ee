#pragma once

/// As long as it lives, no text of an IPv6 address can be read. Rule sets with fixed addresses fail in no
/// other way.
class UnreadableIpV6Texts {
 public:
  UnreadableIpV6Texts();
  UnreadableIpV6Texts(const UnreadableIpV6Texts&) = delete;
  UnreadableIpV6Texts& operator=(const UnreadableIpV6Texts&) = delete;
  ~UnreadableIpV6Texts();
};
