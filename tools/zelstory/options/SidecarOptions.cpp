#include "options/SidecarOptions.h"

#include <string>

namespace zelstory {

using zelstoryhost::SidecarForm;

void AddSidecarNameOption(Command& command, std::optional<SidecarForm>& form) {
  command.AddChoice("--sidecar-name", {"full", "stem"}, "FORM",
                    "The name of a new sidecar: full (clip.mov.xmp, the default) or stem\n"
                    "(clip.xmp); stem also shares it with clip.wav",
                    [&form](const std::string& name) {
                      form = name == "stem" ? SidecarForm::kStem : SidecarForm::kFull;
                    });
}

void AddStrictFlag(Command& command, bool& isStrict) {
  command.AddFlag("--strict", isStrict, "Refuse clips without a sidecar");
}

}  // namespace zelstory
