#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "Names.h"
#include "Node.h"

namespace xmptoolkit {

// Where a packet may hold remarks outside of its properties, in the order of the file.
enum class Place {
  kBeforeMeta,         // in front of x:xmpmeta, or of rdf:RDF where there is no x:xmpmeta
  kBeforeRDF,          // inside x:xmpmeta
  kBeforeDescription,  // inside rdf:RDF
  kAfterDescription,
  kAfterRDF,
  kAfterMeta,
};
inline constexpr std::size_t kPlaceCount = 6;

// An attribute of x:xmpmeta, which says nothing about the resource but belongs to the file.
struct MetaAttribute {
  std::string mPrefix;  // empty without a namespace
  std::string mURI;
  std::string mLocalName;
  std::string mValue;

  // The prefix has no meaning of its own, and x:xmpmeta's is always written as x.
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
  std::string mAbout;                             // rdf:about, most often empty
  std::vector<MetaAttribute> mMetaAttributes;
  std::array<Remarks, kPlaceCount> mRemarks;

  Remarks& RemarksAt(Place place) { return mRemarks[static_cast<std::size_t>(place)]; }
  const Remarks& RemarksAt(Place place) const { return mRemarks[static_cast<std::size_t>(place)]; }
};

}  // namespace xmptoolkit
