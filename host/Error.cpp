#include <zelstoryhost/Error.h>

namespace zelstoryhost {
namespace {

using zelcore::xml::Position;

std::string DescribePlace(const std::string& file, const std::optional<Position>& position) {
  std::string place = file;
  if (!position) return place;
  place += ':' + std::to_string(position->mLine);
  if (position->mColumn > 0) place += ':' + std::to_string(position->mColumn);
  return place;
}

std::string Describe(const std::string& file, const std::optional<Position>& position,
                     const std::string& reason, const std::string& where) {
  std::string line = DescribePlace(file, position);
  if (!line.empty()) line += ": error: ";
  line += reason;
  return where.empty() ? line : line + " (" + where + ')';
}

}  // namespace

Error::Error(const std::string& file, const std::string& reason)
    : std::runtime_error(Describe(file, std::nullopt, reason, {})), mFile(file), mReason(reason) {}

Error::Error(const std::string& file, const std::string& reason, ErrorKind kind)
    : Error(file, reason) {
  mKind = kind;
}

Error::Error(const std::string& file, const std::optional<zelcore::xml::Position>& position,
             const std::string& reason, const std::string& where)
    : std::runtime_error(Describe(file, position, reason, where)),
      mFile(file),
      mPosition(position),
      mReason(reason),
      mWhere(where) {}

std::string Error::Place() const {
  return DescribePlace(mFile, mPosition);
}

}  // namespace zelstoryhost
