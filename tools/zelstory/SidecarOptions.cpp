#include "SidecarOptions.h"

#include <string>

namespace zelstory {

void AddSidecarNameOption(CLI::App& command, std::optional<SidecarForm>& form) {
  command
      .add_option_function<std::string>(
          "--sidecar-name",
          [&form](const std::string& name) {
            form = name == "stem" ? SidecarForm::kStem : SidecarForm::kFull;
          },
          "What a clip's new sidecar is called: full (clip.mov.xmp, the default) or stem\n"
          "(clip.xmp); stem also shares it with clip.wav")
      ->type_name("FORM")
      ->check(CLI::IsMember({"full", "stem"}).description(""));
}

void AddStrictFlag(CLI::App& command, bool& isStrict) {
  command.add_flag("--strict", isStrict, "Refuse clips without sidecar");
}

}  // namespace zelstory
