#pragma once

// The whole public interface of zelstoryhost: story files, scripts, scenes, sidecars and lists.

// Errors and texts
#include <zelstoryhost/Error.h>
#include <zelstoryhost/Text.h>

// Whole files
#include <zelstoryhost/Files.h>
#include <zelstoryhost/FolderLock.h>

// What a script holds
#include <zelstoryhost/RunningTime.h>
#include <zelstoryhost/SceneFacts.h>
#include <zelstoryhost/SceneFinder.h>
#include <zelstoryhost/Story.h>
#include <zelstoryhost/StoryCheck.h>
#include <zelstoryhost/StoryLists.h>

// Scripts in other formats, and stories written
#include <zelstoryhost/FDX.h>
#include <zelstoryhost/Finding.h>
#include <zelstoryhost/Fountain.h>
#include <zelstoryhost/ScriptFormats.h>
#include <zelstoryhost/StoryWriter.h>

// A clip's XMP file
#include <zelstoryhost/ClipTable.h>
#include <zelstoryhost/ShotPackets.h>
#include <zelstoryhost/Sidecar.h>
#include <zelstoryhost/SidecarEdit.h>
#include <zelstoryhost/SidecarName.h>

// What other programs read
#include <zelstoryhost/JSONWriter.h>
#include <zelstoryhost/StoryJSON.h>
#include <zelstoryhost/Table.h>
