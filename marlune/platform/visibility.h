#ifndef MARLUNE_PLATFORM_VISIBILITY_H_
#define MARLUNE_PLATFORM_VISIBILITY_H_

#if (defined(_MSVC_LANG) ? _MSVC_LANG : __cplusplus) < 202002L
#error "marlune needs C++20: compile with -std=c++20 or later."
#endif

// What a shared library exports. Everything else is hidden, in every kind of build.
#if defined(__GNUC__)
#define MARLUNE_API __attribute__((visibility("default")))
#else
#define MARLUNE_API
#endif

// Exported for the other libraries of this project and its tool, of the same version only. Their
// headers are not installed.
#define MARLUNE_INTERNAL_API MARLUNE_API

#endif  // MARLUNE_PLATFORM_VISIBILITY_H_
