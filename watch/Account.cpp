#include "watch/Account.h"

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string_view>

#include "catalog/Format.h"
#include "catalog/Names.h"
#include "policy/ConditionText.h"
#include "policy/Decide.h"
#include "policy/Summary.h"
#include "watch/EventConnection.h"
#include "watch/EventText.h"

namespace Watch {
namespace {

using Agreement = Account::Agreement;

std::string FilterText(const KnownFilter& known) {
  return Policy::Describe(known.filter) + " of " + known.owner +
         (known.isGone ? ", which is gone by now" : "");
}

std::string Sentence(const NetEvent& event, const Account& account) {
  std::string text = "blocked";
  if (event.capability) {
    text += " for want of the capability " + CapabilityName(*event.capability);
  }
  if (account.filter) {
    return text + " by " + FilterText(*account.filter);
  }
  if (!event.filterId) {
    return text + "; the event does not tell by what";
  }
  return *event.filterId == 0 ? text + " by no filter: the engine itself decided"
                              : text + " by filter " + Catalog::FormatNumber(*event.filterId) +
                                    ", which is gone and was never seen";
}

/// Where the event was: the layer that it names, else that of its filter; null if neither is known.
const Catalog::Layer* LayerOf(const NetEvent& event, const std::optional<KnownFilter>& filter) {
  if (event.layerId) {
    return Catalog::FindLayer(*event.layerId);
  }
  return filter ? Catalog::FindLayer(filter->filter.layerKey) : nullptr;
}

std::string PlaceText(const Account& account) {
  if (account.layer.empty()) {
    return "";
  }
  const std::string conditions =
      account.filter ? ", which matches " + Policy::ConditionsText(account.filter->filter) : "";
  return "at " + account.layer + conditions + '\n';
}

bool IsBlockBy(const Policy::Ending& ending, UINT64 filterId) {
  return ending.outcome.action == Policy::Action::Block && ending.deciding != nullptr &&
         ending.deciding->id == filterId;
}

/// Whether a filter decides, or only the engine can tell whether it does.
bool MayDecide(const Policy::Explanation& explanation, UINT64 filterId) {
  const auto isIt = [filterId](const Policy::Filter* filter) {
    return filter != nullptr && filter->id == filterId;
  };
  for (const Policy::LayerTrace& layer : explanation.layers) {
    for (const Policy::SublayerTrace& sublayer : layer.sublayers) {
      if (isIt(sublayer.deciding) || std::ranges::any_of(sublayer.unjudged, isIt)) {
        return true;
      }
    }
  }
  return false;
}

/// @param filterId of a filter that is present.
Agreement AgreementOf(const Policy::Explanation& explanation, UINT64 filterId) {
  const auto isIt = [filterId](const Policy::Ending& ending) { return IsBlockBy(ending, filterId); };
  if (std::ranges::all_of(explanation.endings, isIt)) {
    return Agreement::Agrees;
  }
  const bool isPossible = std::ranges::any_of(explanation.endings, isIt) ||
                          (explanation.verdict.IsUnsure() && MayDecide(explanation, filterId));
  return isPossible ? Agreement::Depends : Agreement::Differs;
}

/// The lines of a text from one on.
std::string LinesFrom(std::string_view text, std::size_t first) {
  for (std::size_t number = 0; number < first && !text.empty(); ++number) {
    text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
  }
  return std::string(text);
}

/// A text of lines that are indented by two characters, without these.
std::string Outdented(const std::string& text) {
  std::string lines;
  std::istringstream rest(text);
  for (std::string line; std::getline(rest, line);) {
    lines += line.substr(std::min<std::size_t>(2, line.size())) + '\n';
  }
  return lines;
}

/// The filters of a connection's layers without one.
Policy::Snapshot Without(const Policy::Snapshot& snapshot, const Policy::Explanation& explanation,
                         UINT64 filterId) {
  Policy::Snapshot without{snapshot.sublayers, {}, snapshot.providers};
  std::ranges::copy_if(snapshot.filters, std::back_inserter(without.filters), [&](const auto& filter) {
    const auto isItsLayer = [&](const Policy::LayerTrace& layer) {
      return layer.layer->key == filter.layerKey;
    };
    return filter.id != filterId && std::ranges::any_of(explanation.layers, isItsLayer);
  });
  return without;
}

std::string EndingsText(const Policy::Explanation& explanation, const Policy::Owners& owners) {
  std::string text;
  for (const Policy::Ending& ending : explanation.endings) {
    text += text.empty() ? "" : "; ";
    text += explanation.endings.size() == 1 ? "" : "with " + Policy::Describe(ending.outcome.choices) + ' ';
    text += Policy::EndingText(ending, owners);
  }
  return text;
}

/// Adds what the present filters say of the connection.
void AddExplanation(const Policy::Connection& connection, const Policy::Circumstances& circumstances,
                    const FilterKeeper& filters, Account& account) {
  const Policy::Owners& owners = filters.PresentOwners();
  const Policy::Decider decider(filters.Present(), circumstances);
  const Policy::Explanation explanation = decider.Explain(connection);
  const bool isPresent = account.filter && !account.filter->isGone;
  account.agreement = isPresent ? AgreementOf(explanation, account.filter->filter.id) : Agreement::Differs;
  // A summary begins with the connection; where the answer is certain, who decides and where is next.
  const std::string summary = Policy::Summarize(explanation, owners);
  if (account.agreement == Agreement::Agrees) {
    account.details += Outdented(LinesFrom(summary, 3));
  } else if (account.agreement == Agreement::Depends) {
    account.details += "of the present filters alone:\n" + LinesFrom(summary, 1);
  } else {
    account.details +=
        "the present filters say otherwise: they have changed, or the engine knows more than the event "
        "tells\n" +
        LinesFrom(summary, 1);
    return;
  }
  const Policy::Snapshot without = Without(filters.Present(), explanation, account.filter->filter.id);
  account.withoutFilter = EndingsText(Policy::Decider(without, circumstances).Explain(connection), owners);
}

}  // namespace

Account AccountOf(const NetEvent& event, const FilterKeeper& filters) {
  Account account;
  if (event.filterId) {
    account.filter = filters.Find(*event.filterId);
  }
  const Catalog::Layer* layer = LayerOf(event, account.filter);
  account.layer = layer == nullptr ? "" : layer->name;
  account.sentence = Sentence(event, account);
  account.details = PlaceText(account);
  if (const auto connection = ConnectionOf(event, layer)) {
    AddExplanation(*connection, CircumstancesOf(event), filters, account);
  }
  if (!filters.Error().empty()) {
    account.details += "the filters could not be read anew: " + filters.Error() + '\n';
  }
  return account;
}

std::string Describe(const Account& account) {
  const std::string without =
      account.withoutFilter.empty() ? "" : "without that filter: " + account.withoutFilter + '\n';
  return account.sentence + '\n' + account.details + without;
}

}  // namespace Watch
