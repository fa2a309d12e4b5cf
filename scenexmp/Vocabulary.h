#pragma once

#include <string>

#include <zelcore/String.h>
#include <zelmetadata/Path.h>

namespace zelstoryparser {

using zelcore::UTF16String;

// A property by its namespace and name, as the XMP toolkit and the metadata paths take them.
struct StoryProperty {
  const char* mNamespaceURI;
  const char* mName;
};

inline constexpr StoryProperty kSceneSetting{zelmetadata::kScriptSchemaURI, "sceneSetting"};
inline constexpr StoryProperty kShotLocation{zelmetadata::kDynamicMediaSchemaURI, "shotLocation"};
inline constexpr StoryProperty kSceneTimeOfDay{zelmetadata::kScriptSchemaURI, "sceneTimeOfDay"};
inline constexpr StoryProperty kActionText{zelmetadata::kScriptSchemaURI, "action"};

// An ordered array of structs with the fields kCharacterField and kDialogField.
inline constexpr StoryProperty kDialogSequence{zelmetadata::kScriptSchemaURI, "dialogSequence"};
inline constexpr StoryProperty kCharacterField{zelmetadata::kScriptSchemaURI, "character"};
inline constexpr StoryProperty kDialogField{zelmetadata::kScriptSchemaURI, "dialog"};

// In shot packets only. The duration is a struct with the fields kValueField and kScaleField.
inline constexpr StoryProperty kSceneNumber{zelmetadata::kDynamicMediaSchemaURI, "scene"};
inline constexpr StoryProperty kShotName{zelmetadata::kDynamicMediaSchemaURI, "shotName"};
inline constexpr StoryProperty kDuration{zelmetadata::kDynamicMediaSchemaURI, "duration"};
inline constexpr StoryProperty kValueField{zelmetadata::kDynamicMediaSchemaURI, "value"};
inline constexpr StoryProperty kScaleField{zelmetadata::kDynamicMediaSchemaURI, "scale"};

// Registers the namespaces with the toolkit, as every operation does before it touches a property.
// Repeating it is not an error. Throws XMP_Error if the toolkit refuses one.
void RegisterStoryNamespaces();

// Converts a story's text to a toolkit value.
std::string ToolkitValue(const UTF16String& text);

}  // namespace zelstoryparser
