#pragma once

// Marks what the shared library exports. Defined by the build: ZELSTORYHOST_BUILDING while the
// library is compiled, ZELSTORYHOST_STATIC for its static form.
#if defined(ZELSTORYHOST_STATIC)
#define ZELSTORYHOST_API
#elif defined(_WIN32) && defined(ZELSTORYHOST_BUILDING)
#define ZELSTORYHOST_API __declspec(dllexport)
#elif defined(_WIN32)
#define ZELSTORYHOST_API __declspec(dllimport)
#else
#define ZELSTORYHOST_API __attribute__((visibility("default")))
#endif
