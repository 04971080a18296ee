#include "policy/ValueText.h"

#include <algorithm>

#include "catalog/Format.h"
#include "catalog/Names.h"

namespace Policy {
namespace {

/// An interval that takes more networks than this is shown by its ends.
constexpr std::size_t kMostNetworks = 3;

using Texts = std::vector<std::string>;

/// The greatest network within the interval that begins where it does.
struct Network {
  Interval addresses;
  unsigned hostBits;
};
Network FirstNetwork(const Interval& interval, unsigned width) {
  for (unsigned hostBits = width;; --hostBits) {
    const Interval network = NetworkOf(interval.first, hostBits);
    if (network.first == interval.first && network.last <= interval.last) {
      return {network, hostBits};
    }
  }
}

std::string NetworkText(IpVersion ipVersion, const Network& network) {
  const std::string address = FormatAddress(ipVersion, network.addresses.first);
  const unsigned prefixLength = AddressBits(ipVersion) - network.hostBits;
  return network.hostBits == 0 ? address : address + '/' + Catalog::FormatNumber(prefixLength);
}

void AddAddresses(IpVersion ipVersion, const Interval& interval, Texts& texts) {
  Texts networks;
  for (Interval rest = interval;;) {
    const Network network = FirstNetwork(rest, AddressBits(ipVersion));
    networks.push_back(NetworkText(ipVersion, network));
    if (network.addresses.last == interval.last) {
      texts.insert(texts.end(), networks.begin(), networks.end());
      return;
    }
    if (networks.size() == kMostNetworks) {
      texts.push_back(FormatAddress(ipVersion, interval.first) + " to " +
                      FormatAddress(ipVersion, interval.last));
      return;
    }
    rest.first = Next(network.addresses.last);
  }
}

std::string ProtocolText(UINT64 number) {
  if (number == kTcp) {
    return "TCP";
  }
  return number == kUdp ? "UDP" : Catalog::FormatNumber(number);
}

std::string NumberText(Field field, UINT64 number, const Labels& labels) {
  const auto label = labels.interfaces.find(number);
  switch (field) {
    case Field::LocalInterface:
    case Field::ArrivalInterface:
    case Field::NextHopInterface:
      return label == labels.interfaces.end() ? Catalog::FormatNumber(number) : label->second;
    case Field::Flags:
      return Catalog::FormatHex(static_cast<UINT32>(number));
    case Field::Protocol:
      return ProtocolText(number);
    default:
      return Catalog::FormatNumber(number);
  }
}

void AddNumbers(Field field, IpVersion ipVersion, const Interval& interval, const Labels& labels,
                Texts& texts) {
  if (field == Field::LocalAddress || field == Field::RemoteAddress) {
    AddAddresses(ipVersion, interval, texts);
    return;
  }
  const std::string first = NumberText(field, interval.first.low, labels);
  texts.push_back(interval.first == interval.last
                      ? first
                      : first + " to " + NumberText(field, interval.last.low, labels));
}

std::string MaskedText(const ValueClass::Masked& masked) {
  const UINT32 clear = masked.mask & ~masked.value;
  std::string text = "others";
  if (masked.value != 0) {
    text += " with " + Catalog::ConditionFlagNames(masked.value);
  }
  if (clear != 0) {
    text += " without " + Catalog::ConditionFlagNames(clear);
  }
  return text;
}

std::string BytesText(const std::string& bytes) {
  return Catalog::FormatTextOrBytes({reinterpret_cast<const UINT8*>(bytes.data()), bytes.size()});
}

Texts ItemTexts(Field field, IpVersion ipVersion, const ValueClass& values, const Labels& labels) {
  Texts texts;
  for (const Interval& interval : values.intervals) {
    AddNumbers(field, ipVersion, interval, labels, texts);
  }
  std::ranges::transform(values.masked, std::back_inserter(texts), MaskedText);
  for (const std::string& id : values.applications) {
    const auto label = labels.applications.find(id);
    texts.push_back(label == labels.applications.end() ? BytesText(id) : label->second);
  }
  for (const std::string& ending : values.endings) {
    texts.push_back("others ending in " + BytesText(ending + std::string(2, '\0')));
  }
  if (values.others) {
    texts.emplace_back("others");
  }
  if (values.unset) {
    texts.emplace_back("unset");
  }
  return texts;
}

std::string Join(const Texts& texts, std::size_t longest) {
  const std::size_t shown = longest == 0 ? texts.size() : std::min(longest, texts.size());
  std::string joined;
  for (std::size_t i = 0; i < shown; ++i) {
    joined.append(i == 0 ? "" : ", ").append(texts[i]);
  }
  if (shown < texts.size()) {
    joined += " and " + Catalog::FormatNumber(texts.size() - shown) + " more";
  }
  return joined;
}

}  // namespace

std::string ValueText(Field field, IpVersion ipVersion, const ValueClass& values, const ValueClass& rest,
                      const Labels& labels, std::size_t longest) {
  const Texts texts = ItemTexts(field, ipVersion, values, labels);
  const Texts others = ItemTexts(field, ipVersion, rest, labels);
  if (!others.empty() && others.size() < texts.size()) {
    return "other than " + Join(others, longest);
  }
  return Join(texts, longest);
}

void NameClasses(FieldClasses& classes, IpVersion ipVersion, const Labels& labels) {
  for (ValueClass& named : classes.classes) {
    std::vector<const ValueClass*> others;
    for (const ValueClass& other : classes.classes) {
      if (&other != &named) {
        others.push_back(&other);
      }
    }
    named.text = ValueText(classes.field, ipVersion, named, Together(others), labels);
  }
}

}  // namespace Policy
