#pragma once

// The whole public interface of zelstoryparser, which writes screenplay scenes into clip metadata.

#include <zelstoryparser/HeadingRules.h>
#include <zelstoryparser/ObjectID.h>
#include <zelstoryparser/SceneText.h>
#include <zelstoryparser/SceneXMP.h>
#include <zelstoryparser/StoryParser.h>
#include <zelstoryparser/StoryTree.h>
#include <zelstoryparser/TraverseStory.h>
#include <zelstoryparser/Version.h>
