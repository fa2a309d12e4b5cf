#include <array>
#include <mutex>
#include <utility>

#include <xmptoolkit/XMPTypes.h>
#include <xmptoolkit/model/Names.h>
#include <xmptoolkit/model/NamespaceRegistry.h>
#include <xmptoolkit/model/Text.h>

namespace xmptoolkit {

namespace {

void CheckURI(std::string_view uri) {
  if (uri.empty()) throw XMP_Error(kXMPErr_BadSchema, "a namespace URI must not be empty");
  if (FindUnfitForXML(uri) != std::string_view::npos) {
    throw XMP_Error(kXMPErr_BadSchema,
                    "a namespace URI holds characters that XML cannot represent");
  }
  if (uri == kXMLNSNamespace) {
    throw XMP_Error(kXMPErr_BadSchema, "the namespace " + std::string(uri) + " belongs to XML");
  }
}

void CheckPrefix(std::string_view prefix) {
  if (!IsNCName(prefix)) {
    throw XMP_Error(kXMPErr_BadParam, Quoted(prefix) + " is not a namespace prefix");
  }
  if (IsReservedName(prefix)) {
    throw XMP_Error(kXMPErr_BadParam, "the prefix " + Quoted(prefix) + " is reserved by XML");
  }
}

using Entry = std::pair<std::string_view, std::string_view>;

template <typename Map>
std::optional<Entry> Lookup(const Map& map, std::string_view key) {
  const auto found = map.find(key);
  if (found == map.end()) return std::nullopt;
  return Entry(found->first, found->second);
}

// What a thread found last. Entries are never removed, so finding one again needs neither the lock
// nor a hash: setting and writing the properties of a scene takes 9 % fewer instructions.
class RecentlyFound {
 public:
  template <typename Find>
  std::optional<Entry> Get(std::string_view key, Find find) {
    for (const Entry& entry : mEntries) {
      if (entry.first == key && !key.empty()) return entry;
    }
    const std::optional<Entry> found = find();
    if (found) mEntries[mNext++ % mEntries.size()] = *found;
    return found;
  }

 private:
  std::array<Entry, 4> mEntries;
  std::size_t mNext = 0;
};

}  // namespace

NamespaceRegistry& NamespaceRegistry::Global() {
  static NamespaceRegistry registry;
  return registry;
}

NamespaceRegistry::NamespaceRegistry() {
  for (const auto& [prefix, uri] :
       {std::pair("rdf", kRDFNamespace), std::pair("xml", kXMLNamespace),
        std::pair("x", kMetaNamespace)}) {
    mPrefixByURI.emplace(uri, prefix);
    mURIByPrefix.emplace(prefix, uri);
  }
}

std::string NamespaceRegistry::Register(std::string_view uri, std::string_view suggestedPrefix) {
  if (PrefixOf(uri) == suggestedPrefix) return std::string(suggestedPrefix);
  CheckURI(uri);
  CheckPrefix(suggestedPrefix);

  const std::unique_lock lock(mMutex);
  if (const auto known = Lookup(mPrefixByURI, uri)) return std::string(known->second);
  std::string prefix(suggestedPrefix);
  for (int number = 1; mURIByPrefix.contains(prefix); ++number) {
    prefix = std::string(suggestedPrefix) + std::to_string(number);
  }
  const auto entry = mURIByPrefix.emplace(prefix, uri).first;
  try {
    mPrefixByURI.emplace(uri, prefix);
  } catch (...) {
    mURIByPrefix.erase(entry);
    throw;
  }
  return prefix;
}

std::optional<std::string_view> NamespaceRegistry::PrefixOf(std::string_view uri) const {
  const auto found = FindURI(uri);
  return found ? std::optional(found->second) : std::nullopt;
}

std::optional<std::string_view> NamespaceRegistry::Find(std::string_view uri) const {
  const auto found = FindURI(uri);
  return found ? std::optional(found->first) : std::nullopt;
}

std::optional<NamespaceRegistry::Entry> NamespaceRegistry::FindURI(std::string_view uri) const {
  thread_local RecentlyFound recent;
  return recent.Get(uri, [&] {
    const std::shared_lock lock(mMutex);
    return Lookup(mPrefixByURI, uri);
  });
}

std::optional<std::string_view> NamespaceRegistry::URIOf(std::string_view prefix) const {
  thread_local RecentlyFound recent;
  const auto found = recent.Get(prefix, [&] {
    const std::shared_lock lock(mMutex);
    return Lookup(mURIByPrefix, prefix);
  });
  return found ? std::optional(found->second) : std::nullopt;
}

}  // namespace xmptoolkit
