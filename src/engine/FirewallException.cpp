#include "engine/FirewallException.h"

namespace WfpFirewall {

FirewallException::FirewallException(const std::string& message, std::uint32_t errorCode)
    : message_(message), errorCode_(errorCode) {}

const char* FirewallException::what() const noexcept { return message_.c_str(); }

std::uint32_t FirewallException::GetErrorCode() const { return errorCode_; }

}  // namespace WfpFirewall
