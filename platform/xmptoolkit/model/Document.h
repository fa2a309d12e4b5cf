#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include <xmptoolkit/model/Names.h>
#include <xmptoolkit/model/Node.h>

namespace xmptoolkit {

// The places where a packet may have comments outside of its properties, in the order of the file.
enum class Place {
  kBeforeMeta,         // before x:xmpmeta, or before rdf:RDF if there is no x:xmpmeta
  kBeforeRDF,          // inside x:xmpmeta
  kBeforeDescription,  // inside rdf:RDF
  kAfterDescription,
  kAfterRDF,
  kAfterMeta,
};
inline constexpr std::size_t kPlaceCount = 6;

// An attribute of x:xmpmeta, which describes the file and not the resource.
struct MetaAttribute {
  std::string mPrefix;  // empty without a namespace
  std::string mURI;
  std::string mLocalName;
  std::string mValue;

  // The prefix has no meaning, and that of x:xmpmeta is always written as x.
  friend bool operator==(const MetaAttribute& left, const MetaAttribute& right) {
    return left.mURI == right.mURI && left.mLocalName == right.mLocalName &&
           left.mValue == right.mValue;
  }
};

// The metadata of one resource: what a packet holds. A plain value; copies are deep.
class Document {
 public:
  NameTable mNames;
  Node mRoot{kItemName, kXMP_PropValueIsStruct};  // its fields are the properties of all schemas
  std::string mAbout;                             // rdf:about, usually empty
  std::vector<MetaAttribute> mMetaAttributes;
  std::array<Comments, kPlaceCount> mComments;

  Comments& CommentsAt(Place place) { return mComments[static_cast<std::size_t>(place)]; }
  const Comments& CommentsAt(Place place) const {
    return mComments[static_cast<std::size_t>(place)];
  }
};

}  // namespace xmptoolkit
