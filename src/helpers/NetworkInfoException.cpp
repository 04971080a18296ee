#include "helpers/NetworkInfoException.h"

namespace WfpFirewall::Helpers {

NetworkInfoException::NetworkInfoException(const char* message) : message_(message) {}

NetworkInfoException::NetworkInfoException(const char* message, int code) : message_(message), code_(code) {}

NetworkInfoException::NetworkInfoException(const std::exception& other) : message_(other.what()) {}

const char* NetworkInfoException::what() const noexcept { return message_.c_str(); }

int NetworkInfoException::GetErrorCode() const { return code_; }

}  // namespace WfpFirewall::Helpers
