#include <cerrno>
#include <cstdint>
#include <fstream>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

#include <zelcore/xml/Reader.h>
#include <zelcore/xml/SAXDriver.h>

namespace zelcore::xml {
namespace {

// Names by the addresses of their interned parts: each is converted once a document.
class NameTable {
 public:
  const UTF16String& QualifiedName(std::string_view prefix, std::string_view localName) {
    const Key key{prefix.data(), localName.data()};
    const auto known = mNames.find(key);
    if (known != mNames.end()) return known->second;
    UTF16String name;
    if (!prefix.empty()) {
      utility::AppendUTF8to16(prefix, name);
      name.push_back(u':');
    }
    utility::AppendUTF8to16(localName, name);
    return mNames.emplace(key, std::move(name)).first->second;
  }

 private:
  using Key = std::pair<const char*, const char*>;
  struct Hash {
    std::size_t operator()(const Key& key) const {
      const auto prefix = reinterpret_cast<std::uintptr_t>(key.first);
      const auto name = reinterpret_cast<std::uintptr_t>(key.second);
      return std::hash<std::uintptr_t>()(name ^ (prefix << 1));
    }
  };
  std::unordered_map<Key, UTF16String, Hash> mNames;
};

// The map handed to StartElement. Its nodes, and the capacity of their strings, serve tag after
// tag.
class AttributeMap {
 public:
  using Map = std::map<UTF16String, UTF16String>;

  void Clear() {
    while (!mMap.empty()) mSpare.push_back(mMap.extract(mMap.begin()));
  }

  void Add(const UTF16String& name, std::string_view value) {
    if (mSpare.empty()) AddSpare();
    Map::node_type node = std::move(mSpare.back());
    mSpare.pop_back();
    node.key() = name;
    node.mapped().clear();
    utility::AppendUTF8to16(value, node.mapped());
    mMap.insert(std::move(node));
  }

  const Map& Get() const { return mMap; }

 private:
  void AddSpare() {
    Map fresh;
    fresh.emplace();
    mSpare.push_back(fresh.extract(fresh.begin()));
  }

  Map mMap;
  std::vector<Map::node_type> mSpare;
};

// A run of text is joined before it is handed on, up to this many code units.
constexpr std::size_t kLongestText = 64 * 1024;

}  // namespace

// Turns the driver's UTF-8 events into the handler's.
class Reader::Adapter final : public SAXEvents {
 public:
  explicit Adapter(AbstractParseHandler& handler) : mHandler(handler), mDriver(*this) {}

  SAXDriver& Driver() { return mDriver; }

  void StartElement(const NameView& name, std::span<const NamespaceView> declarations,
                    std::span<const AttributeView> attributes) override {
    FlushText();
    mAttributes.Clear();
    for (const NamespaceView& declaration : declarations) {
      const bool isDefault = declaration.mPrefix.empty();
      mAttributes.Add(isDefault ? mNames.QualifiedName({}, kXmlns)
                                : mNames.QualifiedName(kXmlns, declaration.mPrefix),
                      declaration.mURI);
    }
    for (const AttributeView& attribute : attributes) {
      mAttributes.Add(mNames.QualifiedName(attribute.mName.mPrefix, attribute.mName.mLocalName),
                      attribute.mValue);
    }
    mHandler.StartElement(mNames.QualifiedName(name.mPrefix, name.mLocalName), mAttributes.Get());
  }

  void EndElement(const NameView& name) override {
    FlushText();
    mHandler.EndElement(mNames.QualifiedName(name.mPrefix, name.mLocalName));
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

  AbstractParseHandler& mHandler;
  SAXDriver mDriver;
  NameTable mNames;
  AttributeMap mAttributes;
  UTF16String mText;
};

Reader::Reader() = default;
Reader::~Reader() = default;

template <typename Parse>
bool Reader::Run(std::string source, AbstractParseHandler& handler, Parse parse) {
  struct Running {
    Running(Adapter*& slot, Adapter* adapter) : mSlot(slot) { mSlot = adapter; }
    ~Running() { mSlot = nullptr; }
    Adapter*& mSlot;
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
