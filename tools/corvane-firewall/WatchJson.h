#pragma once

#include "Json.h"
#include "watch/Watcher.h"

/// Writes what is watched to stdout at once, as an object a line. The totals go into the document.
class WatchJson : public Watch::Audience {
 public:
  /// @param step of the document; must outlive this object.
  explicit WatchJson(Json& step) : step_(step) {}

  void Begin() override;
  void Note(const std::string& text) override;
  void Tell(const Watch::Drop& drop) override;
  void TellRepeats(const Watch::Group& group) override;
  void End(const Watch::Totals& totals) override;

 private:
  Json& step_;
};
