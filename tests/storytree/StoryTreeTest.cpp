#include <type_traits>

#include <gtest/gtest.h>

#include <zelstoryparser/StoryParser.h>

#include "support/AllocationCountdown.h"
#include "support/EventScript.h"
#include "support/StoryBuilder.h"
#include "support/TreeDump.h"

namespace zelstoryparser {
namespace {

std::string gDeleted;  // the labels of the nodes that went, in order

// A node that tells when it goes, and that is held once more while it goes.
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

class StoryTree : public LeavesNothing {
 protected:
  void TearDown() override {
    std::string().swap(gDeleted);
    LeavesNothing::TearDown();
  }
};
template <typename Node>
class StoryNode : public StoryTree {};
using Nodes = ::testing::Types<TavroStory, Document, Stream, CommentStream, Section, Scene,
                               Paragraph, TextRun>;
TYPED_TEST_SUITE(StoryNode, Nodes);

TYPED_TEST(StoryNode, IsDeletedByItsLastHolderOnce) {
  static_assert(std::is_base_of_v<RefCountedObject, TypeParam> &&
                std::has_virtual_destructor_v<TypeParam> && !std::is_copy_assignable_v<TypeParam>);
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

// One of everything, with texts too long to be stored inside a string object.
StoryPtr FullStory() {
  StoryParser parser;
  Drive(
      Replaced(
          R"(<TavroStory version='1.0'><document%><stream%><section%><scene%><paragraph%>
      <textRun/><textRun>a run of some length</textRun></paragraph></scene></section></stream>
      <stream name='header'/><stream name='footer'/><commentStream%><section/></commentStream>
      </document><Tag%><metaData>more than a word</metaData>)",
          Rows("%> => \\sobjID='an identifier of some length' name='body' commentAuthor='an author "
               "of renown' sceneNumber='a number of many digits' label='a label of some length'>")),
      parser);
  return parser.GetStory();
}

// Copies a node with every allocation failing in turn; a copy has its source's content and
// children.
template <typename Node>
void ExpectShallowCopy(const boost::intrusive_ptr<Node>& source, const RefCountedObject& child) {
  const std::int32_t holders = child.mRefCount;
  const long before = gLiveAllocations;
  boost::intrusive_ptr<Node> copy;
  FailEachAllocation([&] { copy = new Node(*source); },
                     [&](bool failed) {
                       EXPECT_EQ(child.mRefCount, holders + (failed ? 0 : 1));
                       EXPECT_TRUE(!failed || gLiveAllocations == before);
                     });
  EXPECT_EQ(DumpTree(copy), DumpTree(source));
}

TEST_F(StoryTree, CopiesAreShallow) {
  const StoryPtr story = FullStory();
  const Document& document = *story->mDocument;
  const Section& section = *document.mBodyStream->mSection;
  const auto& paragraph = section.mScenes[0]->mParagraphs[0];
  ExpectShallowCopy(story->mDocument, *document.mCommentStreams[0]);
  ExpectShallowCopy(document.mBodyStream, section);
  ExpectShallowCopy(document.mCommentStreams[0], *document.mCommentStreams[0]->mSection);
  ExpectShallowCopy(document.mBodyStream->mSection, *section.mScenes[0]);
  ExpectShallowCopy(section.mScenes[0], *paragraph);
  ExpectShallowCopy(paragraph, *paragraph->mTextRuns[1]);
  ObjectID id;
  id = section.mObjectID;
  EXPECT_EQ(ObjectID(std::move(id)).AsString(), section.mObjectID.AsString());
  const StoryPtr copy(new TavroStory(*story));
  EXPECT_EQ(DumpTree(copy), DumpTree(story));
  copy->mDocument->mVersion = u"seen through both";
  copy->mTags[0] = u"the copy's own";
  EXPECT_EQ(document.mVersion, u"seen through both");
  EXPECT_EQ(story->mTags[0], u"a label of some length");
}

TEST_F(StoryTree, HeldPartOutlivesTheRest) {
  const ScenePtr scene = FullStory()->mDocument->mBodyStream->mSection->mScenes[0];
  EXPECT_EQ(scene->mRefCount, 1);
  EXPECT_EQ(DumpTree(scene), DumpTree(FullStory()->mDocument->mBodyStream->mSection->mScenes[0]));
}

}  // namespace
}  // namespace zelstoryparser
