#include "policy/Test.h"

namespace Policy {

bool Test::TestsFlags() const {
  return kind == Kind::AllSet || kind == Kind::AnySet || kind == Kind::NoneSet;
}

std::string_view Unterminated(std::string_view bytes) {
  constexpr std::string_view kTerminator("\0\0", 2);
  return bytes.size() % 2 == 0 && bytes.ends_with(kTerminator) ? bytes.substr(0, bytes.size() - 2) : bytes;
}

bool IdEndsWith(std::string_view id, std::string_view ending) {
  return Unterminated(id).ends_with(Unterminated(ending));
}

}  // namespace Policy
