#pragma once

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

namespace zelstoryhost {

// Opens a file, and returns why it cannot be opened, if it cannot. Reading a pipe or a device might
// never end.
std::optional<std::string> OpenScript(const std::filesystem::path& file, std::ifstream& stream);

}  // namespace zelstoryhost
