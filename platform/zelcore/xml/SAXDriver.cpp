#include <cstddef>
#include <istream>
#include <memory>
#include <vector>

#include <zelcore/xml/SAXDriver.h>
#include <zelcore/xml/libxml/ParseState.h>

namespace zelcore::xml {
namespace {

constexpr std::size_t kChunkBytes = 65'536;

}  // namespace

SAXDriver::SAXDriver(SAXEvents& events) : mEvents(events) {}

SAXDriver::~SAXDriver() = default;

// Runs `feedAll` with a state of its own, which is destroyed however the parse ends.
template <typename FeedAll>
std::optional<SyntaxError> SAXDriver::Run(FeedAll feedAll) {
  mState = std::make_unique<ParseState>(mEvents);
  struct Ending {
    ~Ending() { mState.reset(); }
    std::unique_ptr<ParseState>& mState;
  } ending{mState};
  const bool anyBytes = feedAll(*mState);
  return mState->Finish(anyBytes);
}

std::optional<SyntaxError> SAXDriver::ParseBuffer(std::string_view bytes) {
  return Run([bytes](ParseState& state) {
    std::string_view rest = bytes;
    bool wantsMore = !rest.empty();
    while (wantsMore) {
      const std::string_view chunk = rest.substr(0, kChunkBytes);
      rest.remove_prefix(chunk.size());
      wantsMore = state.Feed(chunk, rest.empty()) && !rest.empty();
    }
    return !bytes.empty();
  });
}

std::optional<SyntaxError> SAXDriver::ParseStream(std::istream& stream) {
  return Run([&stream](ParseState& state) {
    std::vector<char> chunk(kChunkBytes);
    bool anyBytes = false;
    bool wantsMore = true;
    while (wantsMore) {
      stream.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
      if (stream.bad()) {
        state.FailToRead();
        return true;
      }
      const auto count = static_cast<std::size_t>(stream.gcount());
      anyBytes = anyBytes || count > 0;
      const bool isLast = count < chunk.size();
      wantsMore = anyBytes && state.Feed({chunk.data(), count}, isLast) && !isLast;
    }
    return anyBytes;
  });
}

Position SAXDriver::CurrentPosition() const {
  return mState ? mState->CurrentPosition() : Position{};
}

}  // namespace zelcore::xml
