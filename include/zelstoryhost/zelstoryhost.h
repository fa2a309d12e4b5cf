#pragma once

// The whole public interface of zelstoryhost: story files, scenes, sidecars and lists.

#include <zelstoryhost/ClipTable.h>
#include <zelstoryhost/Error.h>
#include <zelstoryhost/Files.h>
#include <zelstoryhost/FolderLock.h>
#include <zelstoryhost/JSONWriter.h>
#include <zelstoryhost/RunningTime.h>
#include <zelstoryhost/SceneFacts.h>
#include <zelstoryhost/SceneFinder.h>
#include <zelstoryhost/ShotPackets.h>
#include <zelstoryhost/Sidecar.h>
#include <zelstoryhost/SidecarEdit.h>
#include <zelstoryhost/SidecarName.h>
#include <zelstoryhost/Story.h>
#include <zelstoryhost/StoryJSON.h>
#include <zelstoryhost/StoryLists.h>
#include <zelstoryhost/Table.h>
#include <zelstoryhost/Text.h>
