#include "dump/XmlDocument.h"

#include <algorithm>
#include <array>
#include <utility>

#include "dump/DumpError.h"
#include "dump/Encoding.h"
#include "dump/Numbers.h"
#include "dump/XmlText.h"
#include "dump/XmlWriter.h"

namespace Dump {
namespace {

using Node = rapidxml::xml_node<char>;

constexpr int kParserFlags = rapidxml::parse_non_destructive | rapidxml::parse_no_element_values |
                             rapidxml::parse_validate_closing_tags;

struct Entity {
  std::string_view name;
  char character;
};
constexpr auto kEntities =
    std::to_array<Entity>({{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}});

/// The character that "&#65;" or "&#x41;" stands for, less "&#" and ";"; empty if there is none.
std::optional<char32_t> ParseCharacter(std::string_view number) {
  const bool isHexadecimal = number.starts_with('x');
  const auto character =
      ParseInteger<std::uint32_t>(number.substr(isHexadecimal ? 1 : 0), isHexadecimal ? 16 : 10);
  if (!character || *character == 0 || !IsCharacter(*character)) {
    return std::nullopt;
  }
  return *character;
}

/// Adds what "&amp;" stands for, less "&" and ";". False if nobody knows.
bool AppendEntity(std::string& text, std::string_view entity) {
  if (entity.starts_with('#')) {
    const auto character = ParseCharacter(entity.substr(1));
    if (character) {
      AppendUtf8(text, *character);
    }
    return character.has_value();
  }
  const auto known = std::ranges::find(kEntities, entity, &Entity::name);
  if (known != kEntities.end()) {
    text += known->character;
  }
  return known != kEntities.end();
}

/// Adds characters, with line ends as XML has them.
void AppendRaw(std::string& text, std::string_view raw) {
  for (std::size_t i = 0; i < raw.size(); ++i) {
    if (raw[i] != '\r' || !raw.substr(i + 1).starts_with('\n')) {
      text += raw[i];
    }
  }
}

/// Adds characters that may have entities among them. The entity that nobody knows; empty if there is none.
std::string_view AppendResolved(std::string& text, std::string_view raw) {
  constexpr std::size_t kLongestEntity = 12;
  while (!raw.empty()) {
    const std::size_t start = std::min(raw.find('&'), raw.size());
    AppendRaw(text, raw.substr(0, start));
    raw.remove_prefix(start);
    if (raw.empty()) {
      break;
    }
    const std::size_t end = raw.substr(0, kLongestEntity).find(';');
    if (end == std::string_view::npos || !AppendEntity(text, raw.substr(1, end - 1))) {
      return raw.substr(0, end == std::string_view::npos ? kLongestEntity : end + 1);
    }
    raw.remove_prefix(end + 1);
  }
  return {};
}

/// CheckXml bounds the depth.
void Write(XmlWriter& xml, const Element& element) {
  if (element.IsNull()) {
    xml.Empty(element.Name());
  } else if (element.HasElements()) {
    const auto numItems = element.Attribute("numItems");
    xml.Open(element.Name(), numItems ? ParseInteger<std::size_t>(*numItems) : std::nullopt);
    for (const Element& child : element.Children()) {
      Write(xml, child);
    }
    xml.Close(element.Name());
  } else {
    xml.Leaf(element.Name(), element.Text());
  }
}

}  // namespace

bool Element::IsNull() const {
  const auto* last = node_->last_attribute();
  const char* end =
      last == nullptr ? node_->name() + node_->name_size() : last->value() + last->value_size() + 1;
  const std::string_view behind =
      std::string_view(source_->text).substr(static_cast<std::size_t>(end - source_->text.data()));
  return node_->first_node() == nullptr && *std::ranges::find_if_not(behind, IsBlank) == '/';
}

std::string Element::Text() const {
  std::string text;
  for (const Node* child = node_->first_node(); child != nullptr; child = child->next_sibling()) {
    const std::string_view raw(child->value(), child->value_size());
    if (child->type() == rapidxml::node_element) {
      Fail("expected text in <" + std::string(Name()) + ">, found <" +
           std::string(child->name(), child->name_size()) + '>');
    }
    if (child->type() == rapidxml::node_cdata) {
      AppendRaw(text, raw);
    } else if (const std::string_view unknown = AppendResolved(text, raw); !unknown.empty()) {
      Fail("expected &amp; &lt; &gt; &quot; &apos; or a number like &#38; in <" + std::string(Name()) +
           ">, found " + Quote(unknown));
    }
  }
  return text;
}

std::string Element::TrimmedText() const {
  const std::string text = Text();
  const auto first = std::ranges::find_if_not(text, IsBlank);
  const auto last = std::find_if_not(text.rbegin(), text.rend(), IsBlank).base();
  return first < last ? std::string(first, last) : std::string();
}

bool Element::HasElements() const {
  const Node* first = node_->first_node();
  return first != nullptr && first->type() == rapidxml::node_element;
}

std::vector<Element> Element::Children() const {
  std::vector<Element> children;
  for (const Node* child = node_->first_node(); child != nullptr; child = child->next_sibling()) {
    if (child->type() != rapidxml::node_element) {
      Fail("expected elements in <" + std::string(Name()) + ">, found " +
           Quote({child->value(), child->value_size()}));
    }
    children.emplace_back(*source_, *child);
  }
  return children;
}

std::optional<std::string_view> Element::Attribute(std::string_view name) const {
  const auto* attribute = node_->first_attribute(name.data(), name.size());
  if (attribute == nullptr) {
    return std::nullopt;
  }
  return std::string_view(attribute->value(), attribute->value_size());
}

std::string Element::ToXml(std::size_t indent) const {
  XmlWriter xml(indent);
  Write(xml, *this);
  return xml.Text();
}

void Element::Fail(const std::string& message) const {
  const auto position = static_cast<std::size_t>(node_->name() - source_->text.data());
  throw DumpError(source_->fileName, LineAt(source_->text, position), message);
}

void Element::FailExpecting(const std::string& expected) const {
  Fail("expected " + expected + " in <" + std::string(Name()) + ">, found " +
       (IsNull() ? "nothing" : Quote(TrimmedText())));
}

XmlDocument::XmlDocument(std::string bytes, const std::string& fileName)
    : source_{fileName, DecodeFile(std::move(bytes), fileName)},
      document_(std::make_unique<rapidxml::xml_document<char>>()) {
  CheckXml(source_.text, fileName);
  try {
    document_->parse<kParserFlags>(source_.text.data());
  } catch (const rapidxml::parse_error& error) {
    const auto position = static_cast<std::size_t>(error.where<char>() - source_.text.data());
    throw DumpError(fileName, LineAt(source_.text, position), std::string("no XML: ") + error.what());
  }
}

std::vector<Element> XmlDocument::Roots() const {
  std::vector<Element> roots;
  for (const Node* root = document_->first_node(); root != nullptr; root = root->next_sibling()) {
    roots.emplace_back(source_, *root);
  }
  return roots;
}

}  // namespace Dump
