/* Looks up a ZIP code and a city: lookup city.dir 75203 TX SPRING */

#include <statecut/statecut_c.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void print_zip(const statecut_db* db, uint32_t code) {
  enum { kMost = 256 };
  uint16_t keys[kMost];
  size_t count = 0;
  size_t i;
  statecut_zip zip;
  if (statecut_zip_by_code(db, code, &zip) != STATECUT_OK) {
    printf("%05u is no ZIP code here\n", (unsigned)code);
    return;
  }
  printf("%05u lies in\n", (unsigned)code);
  if (statecut_zip_cities(db, zip.key, keys, kMost, &count) != STATECUT_OK) return;
  for (i = 0; i < count && i < kMost; ++i) {
    statecut_city city;
    statecut_city_name name;
    if (statecut_city_by_key(db, keys[i], &city) == STATECUT_OK &&
        statecut_city_name_by_key(db, city.name_usps, &name) == STATECUT_OK)
      printf("  %.*s\n", (int)name.length, name.name);
  }
}

static void print_city(const statecut_db* db, const char* state, const char* text) {
  statecut_city_name name;
  const uint16_t* zips;
  size_t count = 0;
  if (statecut_find_city(db, state, text, strlen(text), &name) != STATECUT_OK) {
    printf("%s, %s is no city here\n", text, state);
    return;
  }
  if (statecut_city_zips(db, name.city_key, &zips, &count) != STATECUT_OK) count = 0;
  printf("%.*s, %s has %u ZIP codes\n", (int)name.length, name.name, name.state, (unsigned)count);
}

int main(int argc, char** argv) {
  statecut_db* db = NULL;
  statecut_error error;
  if (argc != 5 || strlen(argv[3]) != 2) {
    fputs("usage: lookup REFERENCE ZIP STATE CITY\n", stderr);
    return 2;
  }
  if (statecut_open(argv[1], NULL, &db, &error) != STATECUT_OK) {
    fprintf(stderr, "lookup: %s\n", error.text);
    return 1;
  }
  print_zip(db, (uint32_t)strtoul(argv[2], NULL, 10));
  print_city(db, argv[3], argv[4]);
  statecut_close(db);
  return 0;
}
