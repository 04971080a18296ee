#include "dump/XmlWriter.h"

#include <algorithm>

#include "dump/Numbers.h"

namespace Dump {
namespace {

bool IsControl(char character) {
  return static_cast<unsigned char>(character) < 0x20 && character != '\t' && character != '\n';
}

/// Whether CDATA would end too early, or a reader would change a character.
bool NeedsEscapes(std::string_view text) {
  return text.find("]]>") != std::string_view::npos || std::ranges::any_of(text, IsControl);
}

bool NeedsCdata(std::string_view text) {
  return text.find_first_of("&<") != std::string_view::npos ||
         (!text.empty() && std::ranges::all_of(text, IsBlank));
}

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char character : text) {
    if (IsControl(character) || IsBlank(character) ||
        std::string_view("&<>").find(character) != std::string_view::npos) {
      escaped += "&#" + std::to_string(static_cast<unsigned char>(character)) + ';';
    } else {
      escaped += character;
    }
  }
  return escaped;
}

}  // namespace

void XmlWriter::Open(std::string_view name, std::optional<std::size_t> numItems) {
  Indent();
  text_.append("<").append(name);
  if (numItems) {
    text_.append(" numItems=\"").append(std::to_string(*numItems)).append("\"");
  }
  text_ += ">\n";
  ++indent_;
}

void XmlWriter::Close(std::string_view name) {
  --indent_;
  Indent();
  text_.append("</").append(name).append(">\n");
}

void XmlWriter::Leaf(std::string_view name, std::string_view text) {
  Indent();
  text_.append("<").append(name).append(">");
  if (NeedsEscapes(text)) {
    text_ += Escaped(text);
  } else if (NeedsCdata(text)) {
    text_.append("<![CDATA[").append(text).append("]]>");
  } else {
    text_ += text;
  }
  text_.append("</").append(name).append(">\n");
}

void XmlWriter::Empty(std::string_view name) {
  Indent();
  text_.append("<").append(name).append("/>\n");
}

}  // namespace Dump
