#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <map>
#include <new>
#include <optional>
#include <span>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

#include <zelcore/xml/Reader.h>
#include <zelcore/xml/SAXDriver.h>

namespace zelcore::xml {
namespace {

// A name by the addresses of its interned parts.
struct NameKey {
  const char* mPrefix = nullptr;
  const char* mLocalName = nullptr;

  explicit NameKey(const NameView& name)
      : mPrefix(name.mPrefix.data()), mLocalName(name.mLocalName.data()) {}
  bool operator==(const NameKey&) const = default;

  std::size_t Hash() const {
    const auto prefix = reinterpret_cast<std::uintptr_t>(mPrefix);
    const auto name = reinterpret_cast<std::uintptr_t>(mLocalName);
    return static_cast<std::size_t>(name ^ (prefix << 1));
  }
};

// Qualified names, each converted once per document.
class QualifiedNames {
 public:
  const UTF16String& QualifiedName(const NameView& name) {
    const NameKey key(name);
    const auto known = mNames.find(key);
    if (known != mNames.end()) return known->second;
    UTF16String text;
    if (!name.mPrefix.empty()) {
      utility::AppendUTF8to16(name.mPrefix, text);
      text.push_back(u':');
    }
    utility::AppendUTF8to16(name.mLocalName, text);
    return mNames.emplace(key, std::move(text)).first->second;
  }

 private:
  struct Hash {
    std::size_t operator()(const NameKey& key) const { return key.Hash(); }
  };
  std::unordered_map<NameKey, UTF16String, Hash> mNames;
};

// The map for StartElement. Tags of one name usually have the same attributes in the same order, so
// the map of the last such tag is used again with new values.
class AttributeMap {
 public:
  using Map = std::map<UTF16String, UTF16String>;

  const Map& Fill(std::span<const AttributeView> attributes, QualifiedNames& names) {
    if (!HasNamesOf(attributes)) Build(attributes, names);
    for (std::size_t i = 0; i < attributes.size(); ++i) {
      mValues[i]->clear();
      utility::AppendUTF8to16(attributes[i].mValue, *mValues[i]);
    }
    return mMap;
  }

 private:
  bool HasNamesOf(std::span<const AttributeView> attributes) const {
    return std::equal(attributes.begin(), attributes.end(), mNames.begin(), mNames.end(),
                      [](const AttributeView& attribute, const NameKey& name) {
                        return NameKey(attribute.mName) == name;
                      });
  }

  void Build(std::span<const AttributeView> attributes, QualifiedNames& names) {
    mMap.clear();
    mNames.clear();
    mValues.clear();
    for (const AttributeView& attribute : attributes) {
      mValues.push_back(&mMap[names.QualifiedName(attribute.mName)]);
      mNames.emplace_back(attribute.mName);
    }
  }

  Map mMap;
  std::vector<NameKey> mNames;        // in the tag's order
  std::vector<UTF16String*> mValues;  // in the map, for each of the names
};

// The maps of a few kinds of tags, found by element name and number of attributes.
class AttributeMaps {
 public:
  const AttributeMap::Map& Fill(const NameView& element, std::span<const AttributeView> attributes,
                                QualifiedNames& names) {
    std::size_t bytes = 0;
    for (const AttributeView& attribute : attributes) bytes += attribute.mValue.size();
    constexpr std::size_t kKeptBytes = 65'536;
    if (bytes > kKeptBytes) return mOversize.Fill(attributes, names);
    const std::size_t slot = (NameKey(element).Hash() / 8 + attributes.size()) % mMaps.size();
    return mMaps[slot].Fill(attributes, names);
  }

 private:
  std::array<AttributeMap, 16> mMaps;
  AttributeMap mOversize;  // so that the others do not keep the memory of a few huge tags
};

// Makes the namespace-aware calls, for the handlers that want them.
class NamespaceCalls {
 public:
  explicit NamespaceCalls(AbstractParseHandler& handler) : mHandler(handler) {}

  void StartMappings(std::span<const NamespaceView> declarations) {
    std::vector<UTF16String>& prefixes = mOpenElements.emplace_back().mPrefixes;
    for (const NamespaceView& declaration : declarations) {
      prefixes.push_back(utility::UTF8to16(declaration.mPrefix));
      mHandler.StartPrefixMapping(prefixes.back(), utility::UTF8to16(declaration.mURI));
    }
  }

  void StartElement(const NameView& name, std::span<const AttributeView> attributes,
                    QualifiedNames& names) {
    OpenElement& element = mOpenElements.back();
    element.mURI = utility::UTF8to16(name.mURI);
    element.mLocalName = utility::UTF8to16(name.mLocalName);
    std::vector<Attribute> converted;
    for (const auto& [attribute, value] : attributes) {
      converted.push_back({utility::UTF8to16(attribute.mURI),
                           utility::UTF8to16(attribute.mLocalName), names.QualifiedName(attribute),
                           utility::UTF8to16(value)});
    }
    mHandler.StartElementWithNamespace(element.mURI, element.mLocalName, names.QualifiedName(name),
                                       converted);
  }

  void EndElement(const UTF16String& qualifiedName) {
    const OpenElement element = std::move(mOpenElements.back());
    mOpenElements.pop_back();
    mHandler.EndElementWithNamespace(element.mURI, element.mLocalName, qualifiedName);
    std::for_each(element.mPrefixes.rbegin(), element.mPrefixes.rend(),
                  [this](const UTF16String& prefix) { mHandler.EndPrefixMapping(prefix); });
  }

 private:
  struct OpenElement {
    UTF16String mURI;
    UTF16String mLocalName;
    std::vector<UTF16String> mPrefixes;  // that it declares
  };

  AbstractParseHandler& mHandler;
  std::vector<OpenElement> mOpenElements;
};

// Pieces of text are joined before the handler gets them, up to this many code units.
constexpr std::size_t kLongestText = 65'536;

}  // namespace

// Turns the driver's UTF-8 events into the handler's.
class Reader::Adapter final : public SAXEvents {
 public:
  explicit Adapter(AbstractParseHandler& handler) : mHandler(handler), mDriver(*this) {
    if (handler.WantsNamespaces()) mNamespaceCalls.emplace(handler);
  }

  SAXDriver& Driver() { return mDriver; }

  void StartElement(const NameView& name, std::span<const NamespaceView> declarations,
                    std::span<const AttributeView> attributes) override {
    FlushText();
    mOpenNames.push_back(&mNames.QualifiedName(name));
    if (mNamespaceCalls) mNamespaceCalls->StartMappings(declarations);
    const auto all = declarations.empty() ? attributes : Join(declarations, attributes);
    mHandler.StartElement(*mOpenNames.back(), mMaps.Fill(name, all, mNames));
    if (mNamespaceCalls) mNamespaceCalls->StartElement(name, attributes, mNames);
  }

  void EndElement() override {
    FlushText();
    mHandler.EndElement(*mOpenNames.back());
    if (mNamespaceCalls) mNamespaceCalls->EndElement(*mOpenNames.back());
    mOpenNames.pop_back();
  }

  void Characters(std::string_view text) override {
    utility::AppendUTF8to16(text, mText);
    if (mText.size() >= kLongestText) FlushText();
  }

  void StartCDATA() override {
    FlushText();
    mHandler.StartCDATA();
  }

  void EndCDATA() override {
    FlushText();
    mHandler.EndCDATA();
  }

  void Comment(std::string_view text) override {
    FlushText();
    mHandler.Comment(utility::UTF8to16(text));
  }

  void FlushText() {
    if (mText.empty()) return;
    mHandler.Characters(mText);
    mText.clear();
  }

 private:
  static constexpr std::string_view kXmlns = "xmlns";

  // To the plain callbacks, namespace declarations are attributes.
  std::span<const AttributeView> Join(std::span<const NamespaceView> declarations,
                                      std::span<const AttributeView> attributes) {
    mJoined.clear();
    for (const NamespaceView& declaration : declarations) {
      const NameView name = declaration.mPrefix.empty() ? NameView{{}, kXmlns, {}}
                                                        : NameView{kXmlns, declaration.mPrefix, {}};
      mJoined.push_back({name, declaration.mURI});
    }
    mJoined.insert(mJoined.end(), attributes.begin(), attributes.end());
    return mJoined;
  }

  AbstractParseHandler& mHandler;
  SAXDriver mDriver;
  std::optional<NamespaceCalls> mNamespaceCalls;
  QualifiedNames mNames;
  std::vector<const UTF16String*> mOpenNames;  // of the open elements, in mNames
  AttributeMaps mMaps;
  std::vector<AttributeView> mJoined;
  UTF16String mText;
};

Reader::Reader() = default;
Reader::~Reader() = default;

template <typename Parse>
bool Reader::Run(std::string source, AbstractParseHandler& handler, Parse parse) {
  struct Running {
    Running(Adapter*& slot, Adapter* adapter) : mSlot(slot), mOuter(std::exchange(slot, adapter)) {}
    ~Running() { mSlot = mOuter; }
    Adapter*& mSlot;
    Adapter* mOuter;  // of a parse whose handler reads another document
  };
  Adapter adapter(handler);
  const Running running(mRunning, &adapter);
  handler.StartDocument();
  std::optional<SyntaxError> error = parse(adapter.Driver());
  adapter.FlushText();
  handler.EndDocument();
  if (!error) return true;
  mError = {std::move(source), error->mPosition, std::move(error->mReason)};
  return false;
}

bool Reader::ParseFile(const std::filesystem::path& file, AbstractParseHandler& handler) {
  const std::u8string name = file.u8string();
  std::string source(name.begin(), name.end());
  const auto refuse = [&](std::string reason) {
    mError = {std::move(source), {}, std::move(reason)};
    return false;
  };
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(file, error);
  if (error) return refuse(error.message());
  if (std::filesystem::is_directory(status)) return refuse("is a directory");
  std::ifstream stream(file, std::ios::binary);
  if (!stream && errno == ENOMEM) throw std::bad_alloc();
  if (!stream) return refuse(std::generic_category().message(errno));
  return ParseStream(stream, std::move(source), handler);
}

bool Reader::ParseBuffer(std::string_view bytes, std::string source,
                         AbstractParseHandler& handler) {
  return Run(std::move(source), handler,
             [&](SAXDriver& driver) { return driver.ParseBuffer(bytes); });
}

bool Reader::ParseStream(std::istream& stream, std::string source, AbstractParseHandler& handler) {
  return Run(std::move(source), handler,
             [&](SAXDriver& driver) { return driver.ParseStream(stream); });
}

Position Reader::CurrentPosition() const {
  return mRunning == nullptr ? Position{} : mRunning->Driver().CurrentPosition();
}

}  // namespace zelcore::xml
