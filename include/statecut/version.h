#ifndef STATECUT_VERSION_H
#define STATECUT_VERSION_H
/* The version of the library: of these headers, and of what a program is linked with. C and C++. */

#define STATECUT_VERSION_MAJOR 0
#define STATECUT_VERSION_MINOR 1
#define STATECUT_VERSION_PATCH 0
#define STATECUT_VERSION \
  (STATECUT_VERSION_MAJOR * 10000 + STATECUT_VERSION_MINOR * 100 + STATECUT_VERSION_PATCH)
#define STATECUT_VERSION_STRING "0.1.0"

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define STATECUT_API __attribute__((visibility("default")))
#else
#define STATECUT_API
#endif

/* "0.1.0", of the library that runs. */
STATECUT_API const char* statecut_version(void);

#ifdef __cplusplus
}
#endif

#endif
