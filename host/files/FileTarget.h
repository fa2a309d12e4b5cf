#pragma once

#include <filesystem>
#include <string>

// Shared by reading, replacing and locking files.
namespace zelstoryhost {

// Throws Error with WHAT and the system's message for the error number.
[[noreturn]] void FailOn(const std::filesystem::path& file, const std::string& what, int error);

// Throws Error for a directory, a device and anything else that exists but is not a regular file.
void RefuseUnlessFile(const std::filesystem::path& file);

// The folder that holds a file, "." for a bare name.
std::filesystem::path FolderOf(const std::filesystem::path& file);

// The file at the end of a chain of links, which need not exist itself. Throws Error.
std::filesystem::path TargetOf(std::filesystem::path file);

}  // namespace zelstoryhost
