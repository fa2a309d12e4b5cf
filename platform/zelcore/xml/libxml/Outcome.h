#pragma once

#include <exception>
#include <new>
#include <optional>
#include <utility>

#include <zelcore/xml/SAXDriver.h>

namespace zelcore::xml {

// Thrown to stop a parse where the driver itself refuses the document.
struct Refusal {
  SyntaxError mError;
};

// What has stopped a parse, if anything has.
class Outcome {
 public:
  // Whether the parse has come to its end early. No event follows then.
  bool HasStopped() const { return mError || mException; }

  void Fail(SyntaxError error) { mError = std::move(error); }

  // libxml2 lacks memory. It may go on without.
  void LackMemory() { mHasNoMemory = true; }
  bool HasNoMemory() const { return mHasNoMemory; }

  // Runs an action. What it throws stops the parse: no exception crosses the C library.
  template <typename Action>
  void Try(Action action) {
    try {
      action();
    } catch (Refusal& refusal) {
      mError = std::move(refusal.mError);
    } catch (...) {
      mException = std::current_exception();
    }
  }

  // The end of the parse. Throws what an action has thrown, and std::bad_alloc. Lack of memory
  // comes first: any error may be a consequence of it.
  std::optional<SyntaxError> Take() {
    if (mHasNoMemory) throw std::bad_alloc();
    if (mException) std::rethrow_exception(std::exchange(mException, nullptr));
    return std::move(mError);
  }

 private:
  std::optional<SyntaxError> mError;
  std::exception_ptr mException;
  bool mHasNoMemory = false;
};

}  // namespace zelcore::xml
