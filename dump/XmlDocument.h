/**
 * @file
 * A dump's elements.
 */
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <rapidxml/rapidxml.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace Dump {

/// The file that elements lie in.
struct XmlSource {
  std::string fileName;
  std::string text;  ///< in UTF-8
};

/// An element of a document that lives longer.
class Element {
 public:
  Element(const XmlSource& source, const rapidxml::xml_node<char>& node) : source_(&source), node_(&node) {}

  [[nodiscard]] std::string_view Name() const { return {node_->name(), node_->name_size()}; }

  /// Whether it is "<a/>", which stands for a null pointer, and not "<a></a>".
  [[nodiscard]] bool IsNull() const;

  /// Its text, with entities and CDATA resolved.
  /// @throws DumpError if it has elements in it, or an entity that nobody defined.
  [[nodiscard]] std::string Text() const;
  /// The same without blanks around it.
  [[nodiscard]] std::string TrimmedText() const;

  [[nodiscard]] bool HasElements() const;
  /// @throws DumpError if there is text among them.
  [[nodiscard]] std::vector<Element> Children() const;

  /// An attribute's value as it stands; empty if it has none of that name.
  [[nodiscard]] std::optional<std::string_view> Attribute(std::string_view name) const;

  /// Itself with all that is in it, as text, indented by so many tabs.
  [[nodiscard]] std::string ToXml(std::size_t indent) const;

  /// @throws DumpError
  [[noreturn]] void Fail(const std::string& message) const;
  /// "expected a number in <filterId>, found \"abc\""
  [[noreturn]] void FailExpecting(const std::string& expected) const;

 private:
  const XmlSource* source_;
  const rapidxml::xml_node<char>* node_;
};

/// A whole dump.
class XmlDocument {
 public:
  /// @param bytes of a file.
  /// @throws DumpError if it is not well-formed, or too large.
  XmlDocument(std::string bytes, const std::string& fileName);

  /// The document elements, of which there may be several.
  [[nodiscard]] std::vector<Element> Roots() const;

 private:
  XmlSource source_;
  /// It has 64 KB in it.
  std::unique_ptr<rapidxml::xml_document<char>> document_;
};

/// How often elements of a name were skipped.
using SkippedElements = std::map<std::string, std::size_t>;

/// The elements in an element, each to be taken by its name.
class Members {
 public:
  explicit Members(const Element& parent);

  /// @throws DumpError if there is none of that name, or more than one.
  Element Take(std::string_view name);
  /// Empty if there is none, or if it is null.
  /// @throws DumpError if there is more than one.
  std::optional<Element> TakeIfAny(std::string_view name);

  /// What nobody took.
  [[nodiscard]] std::vector<Element> Rest() const;
  /// Counts what nobody took.
  void SkipRest(SkippedElements& skipped) const;

 private:
  struct Member {
    Element element;
    bool isTaken = false;
  };
  Member* Find(std::string_view name);

  Element parent_;
  std::vector<Member> members_;
};

/// The elements of a list.
/// @throws DumpError if numItems says another number of them.
std::vector<Element> Items(const Element& list, SkippedElements& skipped);

}  // namespace Dump
