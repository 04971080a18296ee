#pragma once

/// Makes Ctrl+C a wish to end, which a long step looks out for, as long as this object lives. A second Ctrl+C
/// ends the program at once, as it always does otherwise. There is one such object at a time.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  [[nodiscard]] static bool IsAskedFor();
};
