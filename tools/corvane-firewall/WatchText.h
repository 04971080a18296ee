#pragma once

#include "watch/Watcher.h"

/// Writes what is watched as text to stdout, at once.
class WatchText : public Watch::Audience {
 public:
  void Begin() override;
  void Note(const std::string& text) override;
  void Tell(const Watch::Drop& drop) override;
  void TellRepeats(const Watch::Group& group) override;
  void End(const Watch::Totals& totals) override;
};
