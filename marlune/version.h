#ifndef MARLUNE_VERSION_H_
#define MARLUNE_VERSION_H_

// The version of these headers. CMake refuses to configure if it is not the project's.
#define MARLUNE_VERSION_MAJOR 0
#define MARLUNE_VERSION_MINOR 1
#define MARLUNE_VERSION_PATCH 0

#endif  // MARLUNE_VERSION_H_
