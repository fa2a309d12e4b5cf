// Preloaded into the tool, this runs its command again and again in the current folder: first as it
// is, then with its nth allocation failing, alone and with all after it, for n = 0 (SHORTAGE_FROM),
// 1, 2 ... until none fails. Each run must end as the first one did, or with status 1 and the
// message that memory ran out, and leave every file old or new. Prints the number of allocations,
// or the n that led to a fault, and the fault.
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <map>
#include <new>
#include <string>

#include <dlfcn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

using Main = int (*)(int, char**, char**);
using Files = std::map<std::string, std::string>;

long gFailing = -1;       // the number of the allocation that fails, from 0; -1: do not count
bool gIsLasting = false;  // so do all after it
long* gCount = nullptr;   // the allocations so far; shared with the parent

bool Fails() {
  if (gFailing < 0) return false;
  const long number = (*gCount)++;
  if (number < gFailing || (number > gFailing && !gIsLasting)) return false;
  errno = ENOMEM;
  return true;
}

template <typename Function>
Function* Next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" void* malloc(std::size_t size) {
  static auto* const next = Next<void*(std::size_t)>("malloc");
  return Fails() ? nullptr : next(size);
}
extern "C" void* calloc(std::size_t count, std::size_t size) {
  static auto* const next = Next<void*(std::size_t, std::size_t)>("calloc");
  return Fails() ? nullptr : next(count, size);
}
extern "C" void* realloc(void* block, std::size_t size) {
  static auto* const next = Next<void*(void*, std::size_t)>("realloc");
  return Fails() ? nullptr : next(block, size);
}
void* operator new(std::size_t size) {
  if (void* const block = malloc(size == 0 ? 1 : size)) return block;
  if (const std::new_handler handler = std::get_new_handler()) handler();
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
  return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept try {
  return operator new(size);
} catch (const std::bad_alloc&) {
  return nullptr;
}

namespace {

std::string Read(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

Files ReadFolder() {
  Files files;
  for (const auto& entry : fs::recursive_directory_iterator(".")) {
    files[entry.path().string()] = entry.is_directory() ? "" : Read(entry.path());
  }
  return files;
}

void Restore(const Files& files) {
  const Files now = ReadFolder();
  if (now == files) return;
  for (const auto& [name, bytes] : now) {
    if (!files.contains(name)) fs::remove_all(name);
  }
  for (const auto& [name, bytes] : files) {
    if (!fs::is_directory(name)) std::ofstream(name, std::ios::binary) << bytes;
  }
}

struct Outcome {
  int mStatus;  // as wait gives it
  std::string mOutput, mErrors;
  Files mFiles;

  bool operator==(const Outcome&) const = default;
};

class Sweep {
 public:
  Sweep(Main main, int argc, char** argv, char** environment)
      : mMain(main), mArgc(argc), mArgv(argv), mEnvironment(environment) {
    gCount = static_cast<long*>(
        mmap(nullptr, sizeof(long), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  }

  int Run() {
    const Outcome whole = RunOnce(std::numeric_limits<long>::max());
    const char* const first = std::getenv("SHORTAGE_FROM");
    for (long nth = first == nullptr ? 0 : std::atol(first);; ++nth) {
      for (const bool isLasting : {false, true}) {
        gIsLasting = isLasting;
        const Outcome outcome = RunOnce(nth);
        const std::string fault = FaultOf(outcome, whole);
        if (fault.empty() && *gCount > nth) continue;
        std::cout << (fault.empty() ? *gCount : nth) << (isLasting ? " and all after it: " : ": ")
                  << fault << '\n'
                  << outcome.mErrors;
        return fault.empty() ? 0 : 1;
      }
    }
  }

 private:
  Outcome RunOnce(long nth) {
    Restore(mBefore);
    *gCount = 0;
    const int output = memfd_create("output", 0), errors = memfd_create("errors", 0);
    const pid_t child = fork();
    if (child == 0) {
      dup2(output, STDOUT_FILENO);
      dup2(errors, STDERR_FILENO);
      lseek(STDIN_FILENO, 0, SEEK_SET);
      gFailing = nth;
      const int status = mMain(mArgc, mArgv, mEnvironment);
      gFailing = -1;
      std::exit(status);
    }
    Outcome outcome;
    waitpid(child, &outcome.mStatus, 0);
    outcome.mOutput = Take(output);
    outcome.mErrors = Take(errors);
    outcome.mFiles = ReadFolder();
    return outcome;
  }

  static std::string Take(int descriptor) {
    std::string text = Read("/proc/self/fd/" + std::to_string(descriptor));
    close(descriptor);
    return text;
  }

  std::string FaultOf(const Outcome& outcome, const Outcome& whole) const {
    if (outcome == whole) return "";
    if (WIFSIGNALED(outcome.mStatus)) return strsignal(WTERMSIG(outcome.mStatus));
    if (WEXITSTATUS(outcome.mStatus) != 1) return "ends as if nothing had failed";
    const std::string message = outcome.mOutput + outcome.mErrors;
    if (message.find("out of memory") == std::string::npos) return "another message";
    for (const auto& [name, bytes] : outcome.mFiles) {
      const auto is = [&, &file = name, &content = bytes](const Files& files) {
        return files.contains(file) && files.at(file) == content;
      };
      if (!is(mBefore) && !is(whole.mFiles)) return name + " is neither old nor new";
    }
    for (const auto& [name, bytes] : mBefore) {
      if (!outcome.mFiles.contains(name)) return name + " is lost";
    }
    return "";
  }

  const Main mMain;
  const int mArgc;
  char** const mArgv;
  char** const mEnvironment;
  const Files mBefore = ReadFolder();
};

Main gMain = nullptr;

int SweepMain(int argc, char** argv, char** environment) {
  return Sweep(gMain, argc, argv, environment).Run();
}

}  // namespace

// Called by the program's start code, once all libraries are there.
extern "C" int __libc_start_main(Main main, int argc, char** argv, void (*init)(), void (*fini)(),
                                 void (*loaderFini)(), void* stackEnd) {
  gMain = main;
  using Start = int(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
  return Next<Start>("__libc_start_main")(SweepMain, argc, argv, init, fini, loaderFini, stackEnd);
}
