#include <string_view>

#include <xmptoolkit/XMP.h>

namespace {

constexpr std::string_view kLast = "[last()]";

// Prefixes by namespace. This host works in one thread; one with several would take a lock.
std::map<std::string, std::string>& Prefixes() {
  static std::map<std::string, std::string> prefixes;
  return prefixes;
}

}  // namespace

template <typename tStringObj>
bool TXMPMeta<tStringObj>::RegisterNamespace(const char* namespaceURI, const char* prefix,
                                             tStringObj* registered) {
  for (const auto& [uri, known] : Prefixes()) {
    if (known == prefix && uri != namespaceURI) throw XMP_Error(known + " is taken by " + uri);
  }
  const std::string& inForce = Prefixes().emplace(namespaceURI, prefix).first->second;
  if (registered != nullptr) *registered = inForce;
  return inForce == prefix;
}

// Returns the prefix with the path, in which the last item of an array is named by its number.
template <typename tStringObj>
std::string TXMPMeta<tStringObj>::Key(const char* schema, const std::string& path) const {
  const auto prefix = Prefixes().find(schema);
  if (prefix == Prefixes().end()) throw XMP_Error(std::string("not registered: ") + schema);
  std::string key = prefix->second + ":" + path;
  const std::size_t last = key.find(kLast);
  if (last == std::string::npos) return key;
  const auto count = mItemCounts.find(key.substr(0, last));
  if (count == mItemCounts.end()) throw XMP_Error("no item in " + key.substr(0, last));
  return key.replace(last, kLast.size(), "[" + std::to_string(count->second) + "]");
}

template <typename tStringObj>
bool TXMPMeta<tStringObj>::GetProperty(const char* schema, const char* name, tStringObj* value,
                                       XMP_OptionBits* options) const {
  const auto property = mValues.find(Key(schema, name));
  if (property == mValues.end()) return false;
  if (value != nullptr) *value = property->second;
  if (options != nullptr) *options = 0;
  return true;
}

template <typename tStringObj>
void TXMPMeta<tStringObj>::SetProperty(const char* schema, const char* name,
                                       const tStringObj& value, XMP_OptionBits /*options*/) {
  mValues.insert_or_assign(Key(schema, name), value);
}

template <typename tStringObj>
bool TXMPMeta<tStringObj>::DoesPropertyExist(const char* schema, const char* name) const {
  const std::string key = Key(schema, name);
  return mValues.contains(key) || mItemCounts.contains(key);
}

template <typename tStringObj>
void TXMPMeta<tStringObj>::DeleteProperty(const char* schema, const char* name) {
  const std::string key = Key(schema, name);
  mItemCounts.erase(key);
  std::erase_if(mValues, [&key](const auto& entry) {
    const std::string& path = entry.first;
    return path == key || path.starts_with(key + "[") || path.starts_with(key + "/");
  });
}

template <typename tStringObj>
XMP_Index TXMPMeta<tStringObj>::CountArrayItems(const char* schema, const char* name) const {
  const auto count = mItemCounts.find(Key(schema, name));
  return count == mItemCounts.end() ? 0 : count->second;
}

template <typename tStringObj>
void TXMPMeta<tStringObj>::AppendArrayItem(const char* schema, const char* name,
                                           XMP_OptionBits /*arrayOptions*/, const char* value,
                                           XMP_OptionBits /*itemOptions*/) {
  ++mItemCounts[Key(schema, name)];
  if (value != nullptr) SetProperty(schema, std::string(name).append(kLast).c_str(), value, 0);
}

template <typename tStringObj>
bool TXMPMeta<tStringObj>::GetStructField(const char* schema, const char* structName,
                                          const char* fieldSchema, const char* field,
                                          tStringObj* value, XMP_OptionBits* options) const {
  const std::string path = structName + ("/" + Key(fieldSchema, field));
  return GetProperty(schema, path.c_str(), value, options);
}

template <typename tStringObj>
void TXMPMeta<tStringObj>::SetStructField(const char* schema, const char* structName,
                                          const char* fieldSchema, const char* field,
                                          const tStringObj& value, XMP_OptionBits options) {
  SetProperty(schema, (structName + ("/" + Key(fieldSchema, field))).c_str(), value, options);
}

template <typename tStringObj>
void TXMPMeta<tStringObj>::SerializeToBuffer(tStringObj* text, XMP_OptionBits, std::uint32_t,
                                             const char*, const char*, XMP_Index) const {
  text->clear();
  for (const auto& [path, value] : mValues) *text += path + ": " + value + "\n";
}

template class TXMPMeta<std::string>;

void TXMPUtils::ComposeArrayItemPath(const char* /*schema*/, const char* arrayName, XMP_Index index,
                                     std::string* path) {
  const bool isLast = index == kXMP_ArrayLastItem;
  *path = arrayName + (isLast ? std::string(kLast) : "[" + std::to_string(index) + "]");
}
