/**
 * @file
 * XML as netsh lays it out.
 */
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Dump {

/// Writes elements one below the other, each level a tab further in.
class XmlWriter {
 public:
  explicit XmlWriter(std::size_t indent = 0) : indent_(indent) {}

  /// @param numItems of a list; empty if the list does not say.
  void Open(std::string_view name, std::optional<std::size_t> numItems = std::nullopt);
  void Close(std::string_view name);

  /// "<name>text</name>". Text with markup in it goes into CDATA; what even there would not survive is
  /// escaped.
  void Leaf(std::string_view name, std::string_view text);
  /// "<name/>": a null pointer, or an empty list.
  void Empty(std::string_view name);

  /// Whole lines as they are.
  void Raw(std::string_view lines) { text_ += lines; }

  [[nodiscard]] const std::string& Text() const { return text_; }

 private:
  void Indent() { text_.append(indent_, '\t'); }

  std::string text_;
  std::size_t indent_;
};

}  // namespace Dump
