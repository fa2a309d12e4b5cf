#pragma once

// Marks what the library exports. The build defines ZELSTORYPARSER_STATIC when the library is
// linked statically, and ZELSTORYPARSER_BUILDING while it compiles the library itself.
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
