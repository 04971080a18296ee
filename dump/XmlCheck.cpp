#include <algorithm>
#include <vector>

#include "dump/DumpError.h"
#include "dump/Encoding.h"
#include "dump/Numbers.h"
#include "dump/XmlText.h"

namespace Dump {
namespace {

constexpr std::size_t kMostDepth = 64;
/// A dump of an engine with 1,000 filters has 70,000.
constexpr std::size_t kMostElements = 2'000'000;
constexpr std::size_t kLongestName = 100;

bool IsNameStart(char character) {
  return IsLetter(character) || character == '_' || static_cast<unsigned char>(character) >= 0x80;
}

bool IsNamePart(char character) {
  return IsNameStart(character) || IsDigit(character) || character == '-' || character == '.' ||
         character == ':';
}

class XmlCheck {
 public:
  XmlCheck(std::string_view text, const std::string& fileName) : text_(text), fileName_(fileName) {}

  void Check() {
    for (SkipText(); position_ < text_.size(); SkipText()) {
      CheckMarkup();
    }
    if (!open_.empty()) {
      Fail("expected </" + std::string(open_.back()) + ">, since line " + LineOf(open_.back()) +
           " opens it, but the file ends");
    }
  }

 private:
  /// Elements as their names; where a name lies in the text says where the element begins.
  using Name = std::string_view;

  [[noreturn]] void Fail(const std::string& message) const {
    throw DumpError(fileName_, LineAt(text_, position_), message);
  }

  [[nodiscard]] std::string LineOf(Name name) const {
    return std::to_string(LineAt(text_, static_cast<std::size_t>(name.data() - text_.data())));
  }

  [[nodiscard]] std::string_view Rest() const { return text_.substr(position_); }

  template <class Predicate>
  std::string_view TakeWhile(Predicate belongs) {
    const std::string_view rest = Rest();
    const auto end = std::ranges::find_if_not(rest, belongs);
    const std::string_view taken = rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
    position_ += taken.size();
    return taken;
  }

  bool TakeIf(std::string_view next) {
    if (!Rest().starts_with(next)) {
      return false;
    }
    position_ += next.size();
    return true;
  }

  void SkipText() {
    TakeWhile(IsBlank);
    if (position_ == text_.size() || text_[position_] == '<') {
      return;
    }
    if (open_.empty()) {
      Fail("expected an element like <wfpstate>, found " + Quote(Rest()));
    }
    TakeWhile([](char character) { return character != '<'; });
  }

  void CheckMarkup() {
    if (TakeIf("<!--")) {
      SkipPast("-->");
    } else if (TakeIf("<?")) {
      SkipPast("?>");
    } else if (!open_.empty() && TakeIf("<![CDATA[")) {
      SkipPast("]]>");
    } else if (Rest().starts_with("<!")) {
      Fail("expected an element, found " + Quote(Rest().substr(0, 9)) + "; a dump has no document type");
    } else if (TakeIf("</")) {
      CheckEnd();
    } else {
      CheckStart();
    }
  }

  void SkipPast(std::string_view end) {
    const std::size_t found = text_.find(end, position_);
    if (found == std::string_view::npos) {
      Fail("expected " + std::string(end) + " before the file ends");
    }
    position_ = found + end.size();
  }

  Name TakeName() {
    if (position_ == text_.size() || !IsNameStart(text_[position_])) {
      Fail("expected the name of an element or attribute, found " + Found());
    }
    const Name name = TakeWhile(IsNamePart);
    if (name.size() > kLongestName) {
      Fail("expected names of at most 100 bytes, found " + Quote(name));
    }
    return name;
  }

  void CountElement() {
    if (++elements_ > kMostElements) {
      Fail("expected at most 2,000,000 elements and attributes");
    }
  }

  [[nodiscard]] std::string Found() const { return Rest().empty() ? "the end of the file" : Quote(Rest()); }

  void CheckEnd() {
    const std::size_t start = position_;
    const Name name = TakeName();
    TakeWhile(IsBlank);
    if (open_.empty() || name != open_.back()) {
      position_ = start;
      Fail(open_.empty() ? "expected the end of the file, found </" + std::string(name) + '>'
                         : "expected </" + std::string(open_.back()) + ">, since line " +
                               LineOf(open_.back()) + " opens it, found </" + std::string(name) + '>');
    }
    if (!TakeIf(">")) {
      Fail("expected > behind </" + std::string(name) + ", found " + Found());
    }
    open_.pop_back();
  }

  void CheckStart() {
    TakeIf("<");
    const Name name = TakeName();
    CountElement();
    if (open_.size() == kMostDepth) {
      Fail("expected at most 64 elements in each other");
    }
    TakeWhile(IsBlank);
    while (position_ < text_.size() && IsNameStart(text_[position_])) {
      CheckAttribute();
    }
    if (TakeIf("/>")) {
      return;
    }
    if (!TakeIf(">")) {
      Fail("expected > behind <" + std::string(name) + ", found " + Found());
    }
    open_.push_back(name);
  }

  void CheckAttribute() {
    const Name name = TakeName();
    CountElement();
    TakeWhile(IsBlank);
    const bool hasEquals = TakeIf("=");
    TakeWhile(IsBlank);
    const char quote = position_ < text_.size() ? text_[position_] : '\0';
    if (!hasEquals || (quote != '"' && quote != '\'')) {
      Fail("expected =\"...\" behind the attribute " + std::string(name) + ", found " + Found());
    }
    ++position_;
    TakeWhile([quote](char character) { return character != quote && character != '<'; });
    if (!TakeIf({&quote, 1})) {
      Fail("expected the quote that ends the attribute " + std::string(name));
    }
    TakeWhile(IsBlank);
  }

  std::string_view text_;
  const std::string& fileName_;
  std::size_t position_ = 0;
  std::size_t elements_ = 0;
  std::vector<Name> open_;
};

}  // namespace

void CheckXml(std::string_view text, const std::string& fileName) { XmlCheck(text, fileName).Check(); }

}  // namespace Dump
