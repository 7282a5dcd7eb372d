#include <statecut/version.h>

extern "C" const char* statecut_version() { return STATECUT_VERSION_STRING; }
