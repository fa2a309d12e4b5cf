#include <algorithm>
#include <set>
#include <string>

#include <xmptoolkit/PacketPatch.h>

#include "PacketMaker.h"

// Changes the metadata of a packet and patches its bytes: they must hold what the metadata holds,
// nothing else may change, and what can be undone must give the old bytes.
namespace {

using fuzzing::Equality;
using fuzzing::Input;
using fuzzing::MadePacket;
using fuzzing::MadeProperty;
using fuzzing::Meta;
using fuzzing::Piece;
using fuzzing::Require;
using xmptoolkit::PacketPatch;

std::string Encoded(std::string_view text, XMP_OptionBits encoding) {
  if (encoding == 0) return std::string(text);
  const bool isWide = encoding == kXMP_EncodeUTF32Big || encoding == kXMP_EncodeUTF32Little;
  const bool isBig = encoding == kXMP_EncodeUTF16Big || encoding == kXMP_EncodeUTF32Big;
  std::string bytes;
  const auto append = [&](char32_t unit) {
    const int size = isWide ? 4 : 2;
    for (int i = 0; i < size; ++i) {
      bytes += static_cast<char>(unit >> 8 * (isBig ? size - 1 - i : i) & 0xFF);
    }
  };
  const fuzzing::Text units = zelcore::utility::UTF8to16(text);
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t unit = units[i];
    const bool isFirstOfTwo = unit >= 0xD800 && unit < 0xDC00;
    if (isWide && isFirstOfTwo) unit = 0x10000 + ((unit - 0xD800) << 10) + (units[++i] - 0xDC00u);
    append(unit);
  }
  return bytes;
}

// A promise about a change of a file, which is shown if it does not hold.
void RequireOf(bool holds, const char* promise, const std::string& file,
               const std::string& changed) {
  if (!holds) {
    std::string shown = file + "\n==>\n" + changed + "\n";
    std::erase(shown, '\0');  // of wide encodings
    std::replace(shown.begin(), shown.end(), '\r', '\n');
    std::fputs(shown.c_str(), stderr);
  }
  Require(holds, promise);
}

// What was done to the metadata.
struct Changes {
  std::set<std::string> mProperties;  // changed as a whole
  std::set<std::string> mRemoved;
  std::set<std::string> mEdges;  // of properties whose items may begin or end elsewhere
  bool mIsReversible = true;
};

const char* URIOf(const std::string& name) {
  return name[0] == 'q' ? "urn:q#" : name[0] == 's' ? "urn:s#" : "urn:n#";
}

std::string PickValue(Input& input) {
  constexpr const char* kValues[] = {"new",
                                     "a & <b>",
                                     "two\nlines",
                                     "\xC3\xA9",
                                     "\"it's\"",
                                     "]]>",
                                     " blanks ",
                                     "\t",
                                     "\xF0\x9F\x8E\xAC",
                                     "a rather long text, to need more room than a short one"};
  return kValues[input.Byte() % std::size(kValues)];
}

void AddProperty(Input& input, Meta& meta) {
  const std::string name =
      std::string(1, "nnq"[input.Byte() % 3]) + ":new" + std::to_string(input.Byte() % 4);
  const char* const uri = URIOf(name);
  if (meta.DoesPropertyExist(uri, name.c_str())) return;
  switch (input.Byte() % 4) {
    case 0:
      for (unsigned count = input.Byte() % 3 + 1; count > 0; --count) {
        meta.AppendArrayItem(uri, name.c_str(), kXMP_PropArrayIsOrdered, PickValue(input).c_str());
      }
      return;
    case 1:
      meta.SetStructField(uri, name.c_str(), "urn:n#", "n:field", PickValue(input));
      return meta.SetStructField(uri, name.c_str(), "urn:q#", "q:field", PickValue(input));
    default:
      meta.SetProperty(uri, name.c_str(), PickValue(input),
                       input.Byte() % 8 == 0 ? kXMP_PropValueIsURI : 0);
  }
}

void ChangeArray(Input& input, const MadeProperty& property, Meta& meta, Changes& changes) {
  const char* const uri = URIOf(property.mName);
  const std::string& name = property.mName;
  const auto count = static_cast<std::size_t>(meta.CountArrayItems(uri, name.c_str()));
  const unsigned kind = input.Byte() % 4;
  if (kind < 2 || count == 0) {
    if (property.mItems == 0) changes.mEdges.insert(name);
    return meta.AppendArrayItem(uri, name.c_str(), 0, PickValue(input).c_str());
  }
  changes.mIsReversible = false;
  const std::size_t item = input.Byte() % count + 1;
  const std::string path = name + "[" + std::to_string(item) + "]";
  // After a removal, items have other numbers than in the file.
  changes.mProperties.insert(name);
  if (kind == 2) return meta.DeleteProperty(uri, path.c_str());
  XMP_OptionBits options = 0;
  meta.GetProperty(uri, path.c_str(), nullptr, &options);
  if ((options & kXMP_PropValueIsStruct) == 0)
    meta.SetProperty(uri, path.c_str(), PickValue(input));
}

void ChangeProperty(Input& input, const MadeProperty& property, Meta& meta, Changes& changes) {
  const char* const uri = URIOf(property.mName);
  const char* const name = property.mName.c_str();
  if (!meta.DoesPropertyExist(uri, name)) return;
  const unsigned choice = input.Byte() % 8;
  if (choice == 0) {
    meta.DeleteProperty(uri, name);
    changes.mRemoved.insert(property.mName);
    changes.mIsReversible = false;
    return;
  }
  if (choice == 1) {
    changes.mProperties.insert(property.mName);
    changes.mIsReversible = false;
    return meta.SetProperty(uri, (property.mName + "/?xml:lang").c_str(), "en");
  }
  if (property.mKind == 'a') return ChangeArray(input, property, meta, changes);
  changes.mProperties.insert(property.mName);
  if (property.mKind == 's') {
    if (choice < 6) {
      const std::string value = PickValue(input);
      return meta.SetStructField(uri, name, "urn:q#", "q:h", value);
    }
    changes.mIsReversible = false;
    return meta.SetStructField(uri, name, "urn:s#", "s:f", PickValue(input));
  }
  if (!property.mIsPlain || property.mKind == 'v') changes.mIsReversible = false;
  meta.SetProperty(uri, name, PickValue(input), property.mKind == 'u' ? kXMP_PropValueIsURI : 0);
}

bool MayChange(const Piece& piece, const MadePacket& packet, const Changes& changes) {
  if (piece.mIsEdge) return true;
  if (piece.mDescription != 0) {
    bool hasAny = false;
    for (const MadeProperty& property : packet.mProperties) {
      if (property.mDescription != piece.mDescription) continue;
      hasAny = true;
      // An attribute may have to become an element elsewhere.
      const bool mayGo =
          changes.mRemoved.contains(property.mName) || changes.mProperties.contains(property.mName);
      if (!mayGo) return false;
    }
    return hasAny;
  }
  const std::string& name = piece.mProperty;
  if (changes.mProperties.contains(name) || changes.mRemoved.contains(name)) return true;
  return piece.mItem == 0 && changes.mEdges.contains(name);
}

void RequireOnlyNeeded(const MadePacket& packet, const PacketPatch& patch, const Changes& changes) {
  std::size_t begin = 0;
  for (const Piece& piece : packet.mPieces) {
    const std::size_t end = begin + Encoded(piece.mText, packet.mEncoding).size();
    for (const auto& change : patch.mChanges) {
      const std::size_t changeEnd = change.mOffset + change.mLength;
      const bool touches = change.mOffset < end &&
                           (changeEnd > begin || (change.mLength == 0 && change.mOffset > begin));
      RequireOf(!touches || MayChange(piece, packet, changes),
                ("other bytes stay: " + piece.mText).c_str(), packet.Text(), patch.mNewFile);
    }
    begin = end;
  }
}

std::string Applied(std::string file, const PacketPatch& patch) {
  for (auto change = patch.mChanges.rbegin(); change != patch.mChanges.rend(); ++change) {
    file.replace(change->mOffset, change->mLength, change->mBytes);
  }
  return file;
}

PacketPatch Patch(const std::string& file, const Meta& before, const Meta& after) {
  PacketPatch patch =
      xmptoolkit::PatchPacket(file.data(), static_cast<XMP_StringLen>(file.size()), before, after);
  Require(AreEqual(fuzzing::Parse(patch.mNewFile), after, Equality::kMetadata),
          "it holds what it should");
  Require(Applied(file, patch) == patch.mNewFile, "the changes make the new bytes");
  return patch;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  for (const char* const name : {"q", "s", "n"}) {
    Meta::RegisterNamespace(("urn:" + std::string(name) + "#").c_str(), name, nullptr);
  }
  Input input(bytes, size);
  const MadePacket packet = fuzzing::PacketMaker(input).Make();
  const std::string file = Encoded(packet.Text(), packet.mEncoding);
  const Meta before = fuzzing::Parse(file);
  Meta after(before);
  Changes changes;
  for (unsigned count = input.Byte() % 6 + 1; count > 0; --count) {
    const unsigned choice = input.Byte();
    if (choice % 3 == 0 || packet.mProperties.empty()) {
      AddProperty(input, after);
    } else {
      ChangeProperty(input, packet.mProperties[choice / 3 % packet.mProperties.size()], after,
                     changes);
    }
  }
  const PacketPatch patch = Patch(file, before, after);
  if (!patch.mWhyRewritten.empty()) {
    RequireOf(packet.mHasLanguage, patch.mWhyRewritten.c_str(), file, patch.mNewFile);
    return 0;
  }
  RequireOnlyNeeded(packet, patch, changes);
  if (!changes.mIsReversible || !packet.mIsReversible || packet.mHasLanguage) return 0;
  const PacketPatch back = Patch(patch.mNewFile, after, before);
  RequireOf(back.mNewFile == file, "what is undone gives the old bytes", file,
            patch.mNewFile + "\n==>\n" + back.mNewFile);
  return 0;
}
