#include <zelstoryparser/ObjectID.h>

namespace zelstoryparser {

ObjectID::ObjectID() = default;
ObjectID::ObjectID(const UTF16String& id) : mID(id) {}
ObjectID::ObjectID(const ObjectID& other) = default;
ObjectID& ObjectID::operator=(const ObjectID& other) = default;
ObjectID::ObjectID(ObjectID&& other) noexcept = default;
ObjectID& ObjectID::operator=(ObjectID&& other) noexcept = default;
ObjectID::~ObjectID() = default;

UTF16String ObjectID::AsString() const {
  return mID;
}

}  // namespace zelstoryparser
