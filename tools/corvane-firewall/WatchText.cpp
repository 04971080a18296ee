#include "WatchText.h"

#include <iostream>
#include <sstream>

#include "watch/EventText.h"

namespace {

std::string TimesText(std::size_t count) { return count == 1 ? "once" : std::to_string(count) + " times"; }

std::string Counted(std::size_t count, const std::string& thing) {
  return std::to_string(count) + ' ' + thing + (count == 1 ? "" : "s");
}

}  // namespace

void WatchText::Begin() { std::cout << "  watching, times are in UTC; Ctrl+C ends it" << std::endl; }

void WatchText::Note(const std::string& text) { std::cout << "  " << text << std::endl; }

void WatchText::Tell(const Watch::Drop& drop) {
  std::cout << "  #" << drop.number << ' ' << Watch::TimeText(drop.event.time) << ' '
            << Watch::ProgramText(drop.event) << ": " << Watch::ConnectionText(drop.event);
  if (drop.count > 1) {
    std::cout << "; " << TimesText(drop.count) << " until " << Watch::TimeText(drop.lastTime);
  }
  std::cout << '\n';
  std::istringstream lines(Watch::Describe(drop.account));
  for (std::string line; std::getline(lines, line);) {
    std::cout << "    " << line << '\n';
  }
  std::cout << std::flush;
}

void WatchText::TellRepeats(const Watch::Group& group) {
  std::cout << "  #" << group.number << " again " << TimesText(group.Untold()) << " until "
            << Watch::TimeText(group.lastTime) << ": " << Watch::ProgramText(group.first) << ' '
            << Watch::TargetText(group.first) << std::endl;
}

void WatchText::End(const Watch::Totals& totals) {
  std::cout << "  in all " << Counted(totals.drops, "drop") << " and " << Counted(totals.repeats, "repeat");
  for (const auto& [type, count] : totals.others) {
    std::cout << ", " << count << ' ' << type;
  }
  if (totals.lost > 0) {
    std::cout << "; " << Counted(totals.lost, "event") << " lost";
  }
  std::cout << std::endl;
}
