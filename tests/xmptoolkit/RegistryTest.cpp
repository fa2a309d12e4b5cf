#include <atomic>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "XMPTestSupport.h"

namespace {

using namespace xmptest;
using testing::StartsWith;

TEST(RegistryTest, KeepsTheFirstPrefixAndMakesTakenOnesUnique) {
  const struct {
    const char* mURI;
    const char* mSuggested;
    const char* mPrefix;
  } rows[] = {
      {"urn:reg:1#", "reg", "reg"},   {"urn:reg:1#", "reg", "reg"},
      {"urn:reg:1#", "other", "reg"}, {"urn:reg:2#", "reg", "reg1"},
      {"urn:reg:3#", "reg", "reg2"},  {"urn:reg:3#", "reg2", "reg2"},
      {"urn:reg:4#", "rdf", "rdf1"},  {"adobe:ns:meta/", "m", "x"},
      {"urn:reg:5#", "x", "x1"},      {"http://www.w3.org/XML/1998/namespace", "xml", "xml"},
  };
  for (const auto& row : rows) {
    std::string prefix;
    const bool asSuggested = Meta::RegisterNamespace(row.mURI, row.mSuggested, &prefix);
    EXPECT_EQ(prefix, row.mPrefix) << row.mURI << ' ' << row.mSuggested;
    EXPECT_EQ(asSuggested, prefix == row.mSuggested);
  }
}

TEST(RegistryTest, RefusesWhatCannotBeDeclared) {
  const struct {
    const char* mURI;
    const char* mPrefix;
    const char* mError;
  } rows[] = {
      {"", "a", "101"},         {nullptr, "a", "101"},
      {"urn:\x01", "a", "101"}, {"urn:\xFF", "a", "101"},
      {"urn:r#", "", "4"},      {"urn:r#", nullptr, "4"},
      {"urn:r#", "a:", "4"},    {"urn:r#", "1a", "4"},
      {"urn:r#", "xml", "4"},   {"urn:r#", "XMLfoo", "4"},
      {"urn:r#", "\xC3", "4"},  {"http://www.w3.org/2000/xmlns/", "a", "101"},
  };
  for (const auto& row : rows) {
    std::string prefix = "untouched";
    EXPECT_THAT(ErrorOf([&] { Meta::RegisterNamespace(row.mURI, row.mPrefix, &prefix); }),
                StartsWith(row.mError));
    EXPECT_EQ(prefix, "untouched");
  }
}

TEST(RegistryTest, ManyThreadsAgree) {
  constexpr int kThreads = 8;
  constexpr int kNamespaces = 200;
  std::vector<std::vector<std::string>> prefixes(kThreads);
  std::atomic<int> waiting = kThreads;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (--waiting; waiting > 0;) std::this_thread::yield();
      for (int i = 0; i < kNamespaces; ++i) {
        const std::string uri = "urn:threads:" + std::to_string(i);
        std::string prefix;
        Meta::RegisterNamespace(uri.c_str(), "t", &prefix);
        Meta meta;
        meta.SetProperty(uri.c_str(), (prefix + ":p").c_str(), "v");
        prefixes[static_cast<std::size_t>(t)].push_back(prefix);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const auto& seen : prefixes) EXPECT_EQ(seen, prefixes[0]);
}

}  // namespace
