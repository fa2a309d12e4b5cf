#include "sidecars/CSV.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <utility>

#include <csv.h>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Text.h>

namespace zelstoryhost {
namespace {

zelcore::xml::Position WholeLine(std::size_t line) {
  return {static_cast<std::int64_t>(line), 0};
}

void RefuseUnlessUTF8(std::string_view text, const std::string& file) {
  std::size_t line = 1;
  while (!text.empty()) {
    const Character character = FirstCharacter(text);
    if (!character.mIsWellFormed) throw Error(file, WholeLine(line), "the text is not UTF-8");
    if (character.mValue == '\n') ++line;
    text.remove_prefix(character.mLength);
  }
}

unsigned char SeparatorOf(std::string_view text) {
  bool isQuoted = false;
  for (const char c : text) {
    if (c == '"') isQuoted = !isQuoted;
    if (isQuoted) continue;
    if (c == ',' || c == ';' || c == '\t') return static_cast<unsigned char>(c);
  }
  return ',';
}

// Collects the rows that the parser reports. No exception may pass through the parser, which is C.
class Rows {
 public:
  static void OnCell(void* bytes, std::size_t size, void* rows) {
    static_cast<Rows*>(rows)->Guard([&](Rows& self) {
      const std::string_view cell(static_cast<const char*>(bytes), size);
      self.mLinesInside += static_cast<std::size_t>(std::count(cell.begin(), cell.end(), '\n'));
      self.mRow.mCells.emplace_back(cell);
    });
  }
  static void OnLineEnd(int end, void* rows) {
    static_cast<Rows*>(rows)->Guard([end](Rows& self) { self.EndLine(end); });
  }

  void RethrowFault() const {
    if (mFault) std::rethrow_exception(mFault);
  }
  std::size_t Line() const { return mRow.mLine + mLinesInside; }
  std::vector<CSVRow> Take() { return std::move(mRows); }

 private:
  template <typename Work>
  void Guard(Work work) noexcept {
    try {
      if (!mFault) work(*this);
    } catch (...) {
      mFault = std::current_exception();
    }
  }

  // libcsv reports CR LF as two line ends.
  void EndLine(int end) {
    const bool isSecondHalf = end == '\n' && std::exchange(mLastEnd, end) == '\r';
    mLastEnd = end;
    if (isSecondHalf && mRow.mCells.empty()) return;
    const std::size_t next = Line() + 1;
    if (!mRow.mCells.empty()) mRows.push_back(std::move(mRow));
    mRow = {next, {}};
    mLinesInside = 0;
  }

  std::vector<CSVRow> mRows;
  CSVRow mRow{1, {}};
  std::size_t mLinesInside = 0;  // line ends within the row's cells
  int mLastEnd = 0;
  std::exception_ptr mFault;
};

}  // namespace

std::vector<CSVRow> ReadCSV(std::string_view text, const std::string& file) {
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
  RefuseUnlessUTF8(text, file);
  csv_parser parser;
  if (csv_init(&parser, CSV_STRICT | CSV_STRICT_FINI | CSV_REPALL_NL) != 0) throw std::bad_alloc();
  const std::unique_ptr<csv_parser, decltype(&csv_free)> owner(&parser, csv_free);
  csv_set_delim(&parser, SeparatorOf(text));
  Rows rows;
  const std::size_t read =
      csv_parse(&parser, text.data(), text.size(), Rows::OnCell, Rows::OnLineEnd, &rows);
  const bool isWhole =
      read == text.size() && csv_fini(&parser, Rows::OnCell, Rows::OnLineEnd, &rows) == 0;
  rows.RethrowFault();
  if (isWhole) return rows.Take();
  const int error = csv_error(&parser);
  if (error != CSV_EPARSE) throw std::bad_alloc();
  throw Error(
      file, WholeLine(rows.Line()),
      "a quotation mark is out of place; quote a cell that contains one, and double the mark");
}

}  // namespace zelstoryhost
