#pragma once

// Marks what the platform library exports. ZELPLATFORM_STATIC is set by the build when the platform
// is linked statically; ZELPLATFORM_BUILDING while the platform itself is compiled.
#if defined(ZELPLATFORM_STATIC)
#define ZELPLATFORM_API
#elif defined(_WIN32)
#if defined(ZELPLATFORM_BUILDING)
#define ZELPLATFORM_API __declspec(dllexport)
#else
#define ZELPLATFORM_API __declspec(dllimport)
#endif
#else
#define ZELPLATFORM_API __attribute__((visibility("default")))
#endif
