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

TEST(MetadataPath, KnowsItsTextAndWhatLiesBelow) {
  const Path foreign = PathForSchemaNameAndPropertyName("http://ns.example/", "name");
  EXPECT_EQ(Item(2).AsString(), "xmpScript:dialogSequence[2]");
  EXPECT_EQ(PathForSchemaNameAndPropertyName(kDynamicMediaSchemaURI, "scene").AsString(),
            "xmpDM:scene");
  EXPECT_EQ(foreign.AsString() + Path().AsString(), "{http://ns.example/}name");
  EXPECT_TRUE(std::string_view(kScriptSchemaURI).ends_with('/'));
  const std::string leaves =
      "xmpScript:dialogSequence[7]/xmpScript:character "
      "xmpScript:dialogSequence[7]/xmpScript:dialog ";
  EXPECT_EQ(Text(DescendantLeafPaths(Item(7))), leaves);
  EXPECT_EQ(Text(ChildPaths(Item(7))), leaves);
  for (const Path& leaf : {*ChildPaths(Item(1)).first, foreign, Script("action"), Path()}) {
    EXPECT_EQ(Text(ChildPaths(leaf)) + Text(DescendantLeafPaths(leaf)), "") << leaf.AsString();
  }
}

TEST(MetadataPath, IsOrderedStrictly) {
  const Path ascending[] = {Path(),
                            PathForSchemaNameAndPropertyName(kDynamicMediaSchemaURI, "scene"),
                            Script("action"),
                            Script("dialogSequence"),
                            Item(1),
                            *ChildPaths(Item(1)).first,
                            *++ChildPaths(Item(1)).first,
                            Item(2),
                            Item(10)};
  for (const Path& left : ascending) {
    for (const Path& right : ascending) {
      EXPECT_EQ(left < right, &left < &right) << left.AsString() << " < " << right.AsString();
      EXPECT_EQ(left == Path(right), &left == &right)
          << left.AsString() << " = " << right.AsString();
    }
  }
}

TEST(MetadataPath, RefusesWhatIsNoItem) {
  for (const int index : {0, -1, INT_MIN})
    EXPECT_THROW(Item(index), std::invalid_argument) << index;
  EXPECT_THROW(CreatePathFromArrayItem(Path(), 1), std::invalid_argument);
}

}  // namespace
}  // namespace zelmetadata
