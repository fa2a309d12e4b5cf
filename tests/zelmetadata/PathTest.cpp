#include <climits>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <zelmetadata/Path.h>

namespace zelmetadata {
namespace {

Path Script(const char* name) {
  return PathForSchemaNameAndPropertyName(kScriptSchemaURI, name);
}
Path Item(int index) {
  return CreatePathFromArrayItem(Script("dialogSequence"), index);
}

std::string Text(const PathRange& range) {
  std::string text;
  for (auto path = range.first; path != range.second; path++) text += path->AsString() + " ";
  return text;
}

TEST(MetadataPath, HasATextAndChildren) {
  const Path foreign = PathForSchemaNameAndPropertyName("http://ns.example/", "name");
  EXPECT_EQ(Item(2).AsString(), "xmpScript:dialogSequence[2]");
  EXPECT_EQ(PathForSchemaNameAndPropertyName(kDynamicMediaSchemaURI, "scene").AsString(),
            "xmpDM:scene");
  EXPECT_EQ(foreign.AsString() + Path().AsString(), "{http://ns.example/}name");
  const std::string leaves =
      Item(7).AsString() + "/xmpScript:character " + Item(7).AsString() + "/xmpScript:dialog ";
  EXPECT_EQ(Text(DescendantLeafPaths(Item(7))), leaves);
  EXPECT_EQ(Text(ChildPaths(Item(7))), leaves);
  const Path duration = PathForSchemaNameAndPropertyName(kDynamicMediaSchemaURI, "duration");
  for (const Path& leaf : {*ChildPaths(Item(1)).first, foreign, Script("action"), Path(),
                           Script("dialogSequence"), CreatePathFromArrayItem(duration, 1)}) {
    EXPECT_EQ(Text(ChildPaths(leaf)) + Text(DescendantLeafPaths(leaf)), "") << leaf.AsString();
  }
}

TEST(MetadataPath, IsOrderedStrictly) {
  const Path scene = PathForSchemaNameAndPropertyName(kDynamicMediaSchemaURI, "scene");
  const PathRange fields = ChildPaths(Item(1));
  auto second = fields.first;
  const Path ascending[] = {Path(),  scene,         Script("action"), Script("dialogSequence"),
                            Item(1), *fields.first, *++second,        Item(2),
                            Item(10)};
  for (const Path& left : ascending) {
    for (const Path& right : ascending) {
      EXPECT_EQ(left < right, &left < &right) << left.AsString() << " " << right.AsString();
      EXPECT_EQ(left == Path(right), &left == &right) << left.AsString() << right.AsString();
    }
  }
  for (const int index : {0, -1, INT_MIN}) EXPECT_THROW(Item(index), std::invalid_argument);
  EXPECT_THROW(CreatePathFromArrayItem(Path(), 1), std::invalid_argument);
}

}  // namespace
}  // namespace zelmetadata
