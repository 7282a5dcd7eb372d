/* A program that knows of the library only at run time. */

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

int main(int argc, char** argv) {
  void* library;
  const char* (*version)(void) = NULL;
  void* symbol;
  if (argc != 2) return 2;
  library = dlopen(argv[1], RTLD_NOW);
  if (library == NULL) {
    fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  symbol = dlsym(library, "statecut_version");
  if (symbol == NULL) return 1;
  memcpy(&version, &symbol, sizeof version);
  printf("%s\n", version());
  return dlclose(library);
}
