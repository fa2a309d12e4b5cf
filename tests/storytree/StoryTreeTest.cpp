#include <type_traits>

#include <gtest/gtest.h>

#include <zelstoryparser/StoryParser.h>

#include "support/Story.h"

namespace zelstoryparser {
namespace {

std::string gDeleted;  // the labels of the deleted nodes, in order

// A node that reports its deletion, and is held once more while it is deleted.
template <typename Node>
struct Mortal : Node {
  explicit Mortal(std::string label) : mLabel(std::move(label)) {}
  Mortal(const Mortal& other) : Node(other), mLabel("copy") {}
  ~Mortal() override {
    const boost::intrusive_ptr<Mortal> lateHolder(this);
    gDeleted += mLabel + " ";
  }
  std::string mLabel;
};

template <typename Node>
class StoryNode : public ::testing::Test {};
using Nodes = ::testing::Types<TavroStory, Document, Stream, CommentStream, Section, Scene,
                               Paragraph, TextRun>;
TYPED_TEST_SUITE(StoryNode, Nodes);

TYPED_TEST(StoryNode, IsDeletedByItsLastHolderOnce) {
  static_assert(std::is_base_of_v<RefCountedObject, TypeParam> &&
                std::has_virtual_destructor_v<TypeParam> && !std::is_copy_assignable_v<TypeParam>);
  gDeleted.clear();
  auto* node = new Mortal<TypeParam>("node");
  EXPECT_TRUE(node->mRefCount == 0 && !node->mDeleting && !node->mNoAutoDelete);
  node->mNoAutoDelete = true;
  boost::intrusive_ptr<TypeParam>(node).reset();
  EXPECT_EQ(node->mRefCount, 0);
  std::vector<boost::intrusive_ptr<RefCountedObject>> holders(5, node);
  boost::intrusive_ptr<Mortal<TypeParam>> copy(new Mortal<TypeParam>(*node));
  EXPECT_TRUE(copy->mRefCount == 1 && !copy->mDeleting && !copy->mNoAutoDelete &&
              node->mRefCount == 5);
  node->mNoAutoDelete = false;
  holders.resize(1);
  EXPECT_EQ(gDeleted, "");
  copy.reset();
  holders.clear();
  EXPECT_EQ(gDeleted, "copy node ");
}

TEST(StoryTree, CopiesAreShallowAndPartsOutliveTheRest) {
  StoryParser parser;
  Drive(
      "<TavroStory version='1.0'><document><stream name='body'><section><scene objID='s'>"
      "<paragraph/></scene></section></stream><commentStream/></document><Tag label='t'/>",
      parser);
  StoryPtr story = parser.GetStory();
  const StoryPtr copy(new TavroStory(*story));
  EXPECT_EQ(DumpTree(copy), DumpTree(story));
  copy->mDocument->mVersion = u"seen through both";
  copy->mTags[0] = u"the copy's own";
  EXPECT_EQ(story->mDocument->mVersion, u"seen through both");
  EXPECT_EQ(story->mTags[0], u"t");
  const auto stream = story->mDocument->mBodyStream;
  const ScenePtr scene = stream->mSection->mScenes[0], shallow(new Scene(*scene));
  EXPECT_EQ(DumpTree(shallow), "scene#s>207");
  EXPECT_EQ(scene->mParagraphs[0]->mRefCount, 2);
  ObjectID id = scene->mObjectID;
  EXPECT_EQ(ObjectID(std::move(id)).AsString(), u"s");
  story->mDocument = copy->mDocument = nullptr;
  EXPECT_EQ(stream->mRefCount, 1);
  EXPECT_EQ(DumpTree(stream->mSection), "section>scene#s>207");
  EXPECT_EQ(boost::intrusive_ptr<Paragraph>(new Paragraph)->mElementType, 0);
}

}  // namespace
}  // namespace zelstoryparser
