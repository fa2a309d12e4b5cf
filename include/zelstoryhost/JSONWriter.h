#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

#include <zelstoryhost/Export.h>

namespace zelstoryhost {

// Writes JSON value by value, so that a document of any size takes little memory. A document is an
// object or an array, and what is between its Begin and End:
//
//   JSONWriter json(std::cout, JSONWriter::Layout::kIndented);
//   json.BeginObject();
//   json.Name("file").Text(file);
//   json.EndObject();
//
// The writer does not check the order of the calls: each member of an object is a Name and a value,
// and each Begin has its End. It buffers; a whole document has reached the stream, without a line
// end after it. Failures of the stream are left in its state. A call may throw std::bad_alloc; the
// document is then incomplete. One thread at a time.
class ZELSTORYHOST_API JSONWriter {
 public:
  enum class Layout {
    kIndented,  // each member and item on a line of its own, by two blanks per level
    kOneLine,
  };

  // The stream must outlive the writer.
  JSONWriter(std::ostream& output, Layout layout);

  void BeginObject() { Begin('{'); }
  void EndObject() { End('}'); }
  void BeginArray() { Begin('['); }
  void EndArray() { End(']'); }

  // The name of the member whose value follows, in UTF-8.
  JSONWriter& Name(std::string_view name);

  void Text(std::string_view text);     // UTF-8; bytes that are not become U+FFFD
  void Text(std::u16string_view text);  // UTF-16; a surrogate without its partner becomes U+FFFD
  void Number(std::int64_t number);
  void Bool(bool value);
  void Null();

 private:
  void Begin(char bracket);
  void End(char bracket);
  void BeginValue();
  void BreakLine();
  void Append(std::string_view json);
  void AppendEscaped(std::string_view piece);

  std::ostream& mOutput;
  const Layout mLayout;
  std::string mBuffer;
  std::size_t mDepth = 0;
  bool mIsFirst = true;   // nothing is in the innermost object or array yet
  bool mIsNamed = false;  // the next value has its name
};

}  // namespace zelstoryhost
