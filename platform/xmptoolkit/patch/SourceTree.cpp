#include <algorithm>
#include <charconv>

#include <xmptoolkit/model/Names.h>
#include <xmptoolkit/patch/NotPatchable.h>
#include <xmptoolkit/patch/SourceTree.h>
#include <zelcore/UTF8.h>

namespace xmptoolkit {

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr std::string_view kDeclaration = "xmlns:";

// The character that a reference stands for, by what is between "&" and ";"; 0 if unknown.
char32_t ReferredCharacter(std::string_view reference) {
  if (reference == "amp") return '&';
  if (reference == "lt") return '<';
  if (reference == "gt") return '>';
  if (reference == "quot") return '"';
  if (reference == "apos") return '\'';
  if (!reference.starts_with('#')) return 0;
  const int base = reference.starts_with("#x") ? 16 : 10;
  reference.remove_prefix(base == 16 ? 2 : 1);
  std::uint32_t value = 0;
  const char* end = reference.data() + reference.size();
  const auto [rest, error] = std::from_chars(reference.data(), end, value, base);
  return error == std::errc() && rest == end && value <= 0x10FFFF ? value : 0;
}

// The value of an attribute.
std::string Unescape(std::string_view written) {
  std::string value;
  while (!written.empty()) {
    const std::size_t begin = std::min(written.find('&'), written.size());
    value += written.substr(0, begin);
    written.remove_prefix(begin);
    const std::size_t end = written.find(';');
    if (end == npos) break;
    const char32_t character = ReferredCharacter(written.substr(1, end - 1));
    if (character != 0) zelcore::utility::AppendUTF8(character, value);
    written.remove_prefix(end + 1);
  }
  return value;
}

}  // namespace

std::string_view PrefixIn(std::string_view name) {
  const std::size_t colon = name.find(':');
  return colon == npos ? std::string_view() : name.substr(0, colon);
}

std::string_view LocalNameIn(std::string_view name) {
  return name.substr(name.find(':') + 1);
}

std::string_view LastLine(std::string_view space) {
  const std::size_t end = space.find_last_of("\r\n");
  if (end == npos) return space;
  const bool isPair = space[end] == '\n' && end > 0 && space[end - 1] == '\r';
  return space.substr(isPair ? end - 1 : end);
}

bool HoldsLineEnd(std::string_view space) {
  return space.find_first_of("\r\n") != npos;
}

// Reads the text once, from its beginning to its end.
class SourceTree::Scanner {
 public:
  explicit Scanner(SourceTree& tree) : mTree(tree), mText(tree.mText) {}

  void Scan() {
    constexpr std::size_t kUsualElement = 64;  // in bytes
    mTree.mElements.reserve(mText.size() / kUsualElement);
    for (;;) {
      mPosition = mText.find('<', mPosition);
      if (mPosition == npos) break;
      ScanMarkup();
    }
    if (!mOpen.empty() || mTree.mElements.empty()) Fail();
  }

 private:
  static bool EndsName(char byte) {
    switch (byte) {
      case ' ':
      case '\t':
      case '\r':
      case '\n':
      case '=':
      case '/':
      case '>':
      case '<':
      case '"':
      case '\'':
        return true;
      default:
        return false;
    }
  }

  [[noreturn]] static void Fail() { throw NotPatchable{"the packet is not well-formed"}; }

  void ScanMarkup() {
    const std::string_view rest = mText.substr(mPosition);
    if (rest.starts_with("</")) return EndElement();
    if (rest.starts_with("<!--")) return Skip("-->", 4);
    if (rest.starts_with("<![CDATA[")) return Skip("]]>", 9);
    if (rest.starts_with("<?")) return Skip("?>", 2);
    StartElement();
  }

  void Skip(std::string_view end, std::size_t from) {
    const std::size_t found = mText.find(end, mPosition + from);
    if (found == npos) Fail();
    mPosition = found + end.size();
    if (!mOpen.empty()) mTree.mElements[mOpen.back()].mHasMarkup = true;
  }

  void StartElement() {
    const std::size_t number = mTree.mElements.size();
    SourceElement& element = mTree.mElements.emplace_back();
    element.mWhole.mBegin = mPosition++;
    element.mName = TakeName();
    element.mParent = mOpen.empty() ? number : mOpen.back();
    element.mScope = mOpen.empty() ? number : mTree.mElements[mOpen.back()].mScope;
    if (!mOpen.empty()) mTree.mElements[mOpen.back()].mChildren.push_back(number);
    if (mOpen.empty() && number != 0) Fail();
    TakeAttributes(element, number);
    element.mContent.mBegin = mPosition;
    element.mIsEmptyTag = mText[mPosition] == '/';
    mPosition = mText.find('>', mPosition);
    if (mPosition == npos) Fail();
    ++mPosition;
    if (!element.mIsEmptyTag) {
      element.mContent.mBegin = mPosition;
      return mOpen.push_back(number);
    }
    element.mContent.mEnd = element.mWhole.mEnd = mPosition;
  }

  void TakeAttributes(SourceElement& element, std::size_t number) {
    element.mFirstAttribute = mTree.mAttributes.size();
    for (;;) {
      mPosition = mText.find_first_not_of(kSpace, mPosition);
      if (mPosition == npos) Fail();
      if (mText[mPosition] == '>' || mText[mPosition] == '/') break;
      TakeAttribute();
      const std::string_view name = mTree.mAttributes.back().mName;
      if (name == "xmlns" || name.starts_with(kDeclaration)) element.mScope = number;
    }
    element.mAttributeCount = mTree.mAttributes.size() - element.mFirstAttribute;
  }

  void TakeAttribute() {
    SourceAttribute attribute;
    attribute.mWhole.mBegin = mPosition;
    attribute.mName = TakeName();
    const std::size_t equals = mText.find_first_not_of(kSpace, mPosition);
    if (equals == npos || mText[equals] != '=') Fail();
    const std::size_t open = mText.find_first_not_of(kSpace, equals + 1);
    if (open == npos || (mText[open] != '"' && mText[open] != '\'')) Fail();
    const std::size_t close = mText.find(mText[open], open + 1);
    if (close == npos) Fail();
    attribute.mValue = {open + 1, close};
    attribute.mWhole.mEnd = mPosition = close + 1;
    mTree.mAttributes.push_back(attribute);
  }

  std::string_view TakeName() {
    std::size_t end = mPosition;
    while (end < mText.size() && !EndsName(mText[end])) ++end;
    if (end == mText.size() || end == mPosition) Fail();
    const std::string_view name = mText.substr(mPosition, end - mPosition);
    mPosition = end;
    return name;
  }

  void EndElement() {
    if (mOpen.empty()) Fail();
    SourceElement& element = mTree.mElements[mOpen.back()];
    element.mContent.mEnd = mPosition;
    mPosition = mText.find('>', mPosition);
    if (mPosition == npos) Fail();
    element.mWhole.mEnd = ++mPosition;
    mOpen.pop_back();
  }

  SourceTree& mTree;
  std::string_view mText;
  std::size_t mPosition = 0;
  std::vector<std::size_t> mOpen;
};

SourceTree::SourceTree(std::string_view text) : mText(text) {
  Scanner(*this).Scan();
}

std::span<const SourceAttribute> SourceTree::Attributes(std::size_t element) const {
  const SourceElement& found = mElements[element];
  return std::span(mAttributes).subspan(found.mFirstAttribute, found.mAttributeCount);
}

bool SourceTree::Is(std::size_t element, std::string_view uri, std::string_view localName) const {
  const std::string_view name = mElements[element].mName;
  return LocalNameIn(name) == localName && NamespaceOf(element, PrefixIn(name)) == uri;
}

bool SourceTree::IsAttribute(std::size_t element, const SourceAttribute& attribute,
                             std::string_view uri, std::string_view localName) const {
  if (LocalNameIn(attribute.mName) != localName) return false;
  const std::string_view prefix = PrefixIn(attribute.mName);
  return prefix.empty() ? uri == kRDFNamespace : NamespaceOf(element, prefix) == uri;
}

const SourceAttribute* SourceTree::FindAttribute(std::size_t element, std::string_view uri,
                                                 std::string_view localName) const {
  const auto attributes = Attributes(element);
  const auto found =
      std::find_if(attributes.begin(), attributes.end(), [&](const SourceAttribute& attribute) {
        return IsAttribute(element, attribute, uri, localName);
      });
  return found == attributes.end() ? nullptr : &*found;
}

const std::string& SourceTree::NamespaceOf(std::size_t element, std::string_view prefix) const {
  std::size_t scope = mElements[element].mScope;
  std::string key = std::to_string(scope);
  key.append(":").append(prefix);
  const auto [known, isNew] = mNamespaces.try_emplace(std::move(key));
  std::string& uri = known->second;
  if (!isNew) return uri;
  if (prefix == "xml") return uri = kXMLNamespace;
  for (;;) {
    const SourceAttribute* declaration = FindDeclaration(scope, prefix);
    if (declaration != nullptr) return uri = Unescape(Text(declaration->mValue));
    const std::size_t parent = mElements[scope].mParent;
    if (parent == scope) return uri;
    scope = mElements[parent].mScope;
  }
}

const SourceAttribute* SourceTree::FindDeclaration(std::size_t element,
                                                   std::string_view prefix) const {
  for (const SourceAttribute& attribute : Attributes(element)) {
    const bool declares = attribute.mName.starts_with(kDeclaration)
                              ? attribute.mName.substr(kDeclaration.size()) == prefix
                              : attribute.mName == "xmlns" && prefix.empty();
    if (declares) return &attribute;
  }
  return nullptr;
}

std::optional<std::string> SourceTree::PrefixOf(std::size_t element, std::string_view uri) const {
  for (std::size_t scope = mElements[element].mScope;;) {
    for (const SourceAttribute& attribute : Attributes(scope)) {
      if (!attribute.mName.starts_with(kDeclaration)) continue;
      if (Unescape(Text(attribute.mValue)) != uri) continue;
      const std::string_view prefix = attribute.mName.substr(kDeclaration.size());
      if (NamespaceOf(element, prefix) == uri) return std::string(prefix);  // not hidden by another
    }
    const std::size_t parent = mElements[scope].mParent;
    if (parent == scope) return std::nullopt;
    scope = mElements[parent].mScope;
  }
}

std::string SourceTree::KeyOf(std::size_t element) const {
  const std::string_view name = mElements[element].mName;
  return Key(NamespaceOf(element, PrefixIn(name)), LocalNameIn(name));
}

std::string SourceTree::KeyOf(std::size_t element, const SourceAttribute& attribute) const {
  const std::string_view prefix = PrefixIn(attribute.mName);
  return Key(prefix.empty() ? std::string() : NamespaceOf(element, prefix),
             LocalNameIn(attribute.mName));
}

std::string SourceTree::Key(std::string_view uri, std::string_view localName) {
  return std::string(uri).append(" ").append(localName);
}

std::string_view SourceTree::SpaceBefore(std::size_t position) const {
  const std::string_view before = mText.substr(0, position);
  return before.substr(before.find_last_not_of(kSpace) + 1);
}

Span SourceTree::WithSpaceBefore(Span span) const {
  return {span.mBegin - SpaceBefore(span.mBegin).size(), span.mEnd};
}

}  // namespace xmptoolkit
