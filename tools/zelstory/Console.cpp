#include "Console.h"

#include <algorithm>
#include <iostream>

#include "ToolError.h"

namespace zelstory {
namespace {

std::string Printable(std::string line) {
  std::replace_if(
      line.begin(), line.end(),
      [](char byte) {
        return (static_cast<unsigned char>(byte) < 0x20 && byte != '\t') || byte == 0x7F;
      },
      '?');
  return line;
}

}  // namespace

void PrintError(const std::string& line) {
  std::cerr << Printable(line) << '\n';
}

void PrintLine(const std::string& line) {
  std::cout << Printable(line) << '\n';
}

std::string ToUTF8(const zelcore::UTF16String& text) {
  const zelcore::UTF8String bytes = zelcore::utility::UTF16to8(text);
  return std::string(bytes.data(), bytes.size());
}

void FlushOutput() {
  std::cout.flush();
  if (!std::cout) throw ToolError("standard output", "writing failed");
}

}  // namespace zelstory
