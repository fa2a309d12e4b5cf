#pragma once

// Marks what the library exports. ZELSTORYPARSER_STATIC is set by the build when the library is
// linked statically; ZELSTORYPARSER_BUILDING while the library itself is compiled.
#if defined(ZELSTORYPARSER_STATIC)
#define ZELSTORYPARSER_API
#elif defined(_WIN32)
#if defined(ZELSTORYPARSER_BUILDING)
#define ZELSTORYPARSER_API __declspec(dllexport)
#else
#define ZELSTORYPARSER_API __declspec(dllimport)
#endif
#else
#define ZELSTORYPARSER_API __attribute__((visibility("default")))
#endif
