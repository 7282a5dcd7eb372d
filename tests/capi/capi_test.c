/* The C interface on a small pair: capi_test REFERENCE RANGE */

#include <statecut/statecut_c.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int failures = 0;

#define CHECK(condition)                                              \
  do {                                                                \
    if (!(condition)) {                                               \
      fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
      ++failures;                                                     \
    }                                                                 \
  } while (0)

static void errors(const char* reference, const char* range) {
  statecut_db* db = NULL;
  statecut_error error;
  statecut_options options = STATECUT_OPTIONS_INIT;
  CHECK(statecut_open("/nowhere", NULL, &db, &error) == STATECUT_OPEN_FILE);
  CHECK(db == NULL && error.code == STATECUT_OPEN_FILE && error.number != 0);
  CHECK(strcmp(error.text, "cannot open /nowhere: No such file or directory") == 0);
  CHECK(statecut_open(range, NULL, &db, NULL) == STATECUT_NOT_DATABASE);
  options.range = reference;
  CHECK(statecut_open(reference, &options, &db, &error) == STATECUT_NOT_DATABASE);
  CHECK(statecut_open(NULL, NULL, &db, NULL) == STATECUT_ARGUMENT);
  CHECK(statecut_open(reference, NULL, NULL, NULL) == STATECUT_ARGUMENT);
  CHECK(statecut_open_bytes(NULL, 4, NULL, &db, NULL) == STATECUT_ARGUMENT);
  CHECK(statecut_open_bytes("abcd", 4, NULL, &db, &error) == STATECUT_NOT_DATABASE);
  CHECK(strcmp(statecut_strerror(STATECUT_NOT_FOUND), "not found") == 0);
  CHECK(strcmp(statecut_strerror(12345), "unknown status") == 0);
  /* An options record of an older program ends before the fields that it does not know. */
  options.range = NULL;
  options.size = offsetof(statecut_options, mapped);
  options.mapped = 77;
  CHECK(statecut_open(reference, &options, &db, &error) == STATECUT_OK);
  CHECK(error.code == STATECUT_OK && error.text[0] == '\0');
  statecut_close(db);
  statecut_close(NULL);
}

static void nulls(const statecut_db* db) {
  statecut_zip zip;
  statecut_city_name city;
  statecut_name name;
  statecut_cursor* cursor = NULL;
  CHECK(statecut_zip_by_code(NULL, 75203, &zip) == STATECUT_ARGUMENT);
  CHECK(statecut_zip_by_code(db, 75203, NULL) == STATECUT_ARGUMENT);
  CHECK(statecut_find_city(db, NULL, "A", 1, &city) == STATECUT_ARGUMENT);
  CHECK(statecut_find_city(db, "TX", NULL, 1, &city) == STATECUT_ARGUMENT);
  CHECK(statecut_find_city(db, "", "A", 1, &city) == STATECUT_NOT_FOUND);
  CHECK(statecut_find_street(db, NULL, 0, &name) == STATECUT_NOT_FOUND);
  CHECK(statecut_find_firm(db, NULL, 3, &name) == STATECUT_ARGUMENT);
  CHECK(statecut_partition_bytes(db, 1, 3, NULL) == STATECUT_ARGUMENT);
  CHECK(statecut_variations(db, 2, "A", 1, -1, NULL, 0, NULL) == STATECUT_ARGUMENT);
  CHECK(statecut_cities(db, "TX", NULL, 2, &cursor) == STATECUT_ARGUMENT);
  CHECK(cursor == NULL);
  statecut_cursor_close(NULL);
  CHECK(statecut_next_zips(NULL, &zip, 1) == 0);
}

static void zips(const statecut_db* db) {
  statecut_zip zip;
  statecut_zip all[64];
  uint32_t codes[3] = {75203, 0, 75203};
  uint16_t keys[8];
  size_t count = 0;
  size_t walked = 0;
  size_t got;
  statecut_cursor* cursor = NULL;
  statecut_name name;
  CHECK(statecut_zip_by_code(db, 75203, &zip) == STATECUT_OK);
  CHECK(zip.code == 75203 && strcmp(zip.state, "TX") == 0 && zip.bytes != NULL);
  CHECK(statecut_zip_by_key(db, zip.key, &all[0]) == STATECUT_OK && all[0].code == 75203);
  CHECK(statecut_zip_by_code(db, 0, &zip) == STATECUT_NOT_FOUND && zip.code == 75203);
  CHECK(statecut_zip_cities(db, zip.key, keys, 8, &count) == STATECUT_OK);
  CHECK(count == zip.city_count && count > 0);
  {
    uint16_t first = keys[0];
    const uint16_t* of_city = NULL;
    size_t zips_of_city = 0;
    int found = 0;
    CHECK(statecut_zip_cities(db, zip.key, keys, 0, &count) == STATECUT_OK && count > 0);
    CHECK(statecut_city_zips(db, first, &of_city, &zips_of_city) == STATECUT_OK);
    while (zips_of_city > 0) found += of_city[--zips_of_city] == zip.key;
    CHECK(found == 1);
  }
  CHECK(statecut_find_zips(db, codes, 3, all) == STATECUT_OK);
  CHECK(all[0].code == 75203 && all[1].bytes == NULL && all[2].key == all[0].key);
  CHECK(statecut_zips(db, &cursor) == STATECUT_OK);
  CHECK(statecut_next_names(cursor, &name, 1) == 0);
  while ((got = statecut_next_zips(cursor, all, 7)) > 0) walked += got;
  CHECK(walked > 7);
  statecut_cursor_close(cursor);
}

static void cities(const statecut_db* db) {
  statecut_city_name city;
  statecut_city_name answers[3];
  statecut_city_query queries[3] = {{"TX", "DALLAS", 6}, {"QQ", "DALLAS", 6}, {NULL, NULL, 0}};
  statecut_city data;
  statecut_cursor* cursor = NULL;
  size_t fitting = 0;
  CHECK(statecut_find_city(db, "TX", "DALLAS", 6, &city) == STATECUT_OK);
  CHECK(city.length == 6 && memcmp(city.name, "DALLAS", 6) == 0 && strcmp(city.state, "TX") == 0);
  CHECK(statecut_find_city(db, "TX", "DALLAZ", 6, &city) == STATECUT_NOT_FOUND);
  CHECK(statecut_city_by_key(db, city.city_key, &data) == STATECUT_OK && data.zip_count > 0);
  CHECK(statecut_find_truncated_city(db, "TX", "SPRING", 6, &answers[0]) == STATECUT_AMBIGUOUS);
  CHECK(statecut_find_truncated_city(db, "TX", "SPRINGT", 7, &answers[0]) == STATECUT_OK);
  CHECK(statecut_find_cities(db, queries, 3, answers) == STATECUT_OK);
  CHECK(answers[0].key == city.key && answers[1].name == NULL && answers[2].name == NULL);
  CHECK(statecut_cities(db, "TX", "SPR*", 4, &cursor) == STATECUT_OK);
  while (statecut_next_cities(cursor, answers, 1) == 1) {
    CHECK(memcmp(answers[0].name, "SPR", 3) == 0);
    ++fitting;
  }
  CHECK(fitting >= 2);
  statecut_cursor_close(cursor);
}

static void names(const statecut_db* db) {
  statecut_cursor* cursor = NULL;
  statecut_name street;
  statecut_name again;
  statecut_text text;
  size_t count = 0;
  CHECK(statecut_streets(db, &cursor) == STATECUT_OK);
  while (statecut_next_names(cursor, &street, 1) == 1) {
    text.text = street.name;
    text.length = street.length;
    CHECK(statecut_find_street(db, street.name, street.length, &again) == STATECUT_OK);
    CHECK(again.length == street.length);
    CHECK(statecut_find_streets(db, &text, 1, &again) == STATECUT_OK && again.name != NULL);
    CHECK(statecut_street_by_key(db, street.key, &again) == STATECUT_OK);
    CHECK(again.name == street.name);
    ++count;
  }
  CHECK(count > 1);
  statecut_cursor_close(cursor);
  CHECK(statecut_firms(db, &cursor) == STATECUT_OK);
  CHECK(statecut_next_names(cursor, &street, 1) == 1);
  CHECK(statecut_find_firm(db, street.name, street.length, &again) == STATECUT_OK);
  statecut_cursor_close(cursor);
}

static void partitions(const statecut_db* db) {
  statecut_zip zip;
  uint32_t bytes = 0;
  size_t got = 0;
  statecut_error error;
  unsigned char* buffer;
  CHECK(statecut_zip_by_code(db, 75203, &zip) == STATECUT_OK && zip.street_rba != 0);
  CHECK(statecut_partition_bytes(db, zip.key, STATECUT_STREET, &bytes) == STATECUT_OK);
  CHECK(bytes > 0);
  buffer = malloc(bytes);
  CHECK(statecut_read_partition(db, zip.key, STATECUT_STREET, buffer, bytes, &got, &error) ==
        STATECUT_OK);
  CHECK(got == bytes);
  CHECK(statecut_read_partition(db, zip.key, STATECUT_STREET, buffer, 0, &got, &error) ==
        STATECUT_SMALL_BUFFER);
  CHECK(error.offset == bytes);
  free(buffer);
}

int main(int argc, char** argv) {
  statecut_db* db = NULL;
  statecut_options options = STATECUT_OPTIONS_INIT;
  statecut_info info;
  char states[4][3];
  size_t count = 0;
  if (argc != 3) return 2;
  CHECK(strcmp(statecut_version(), STATECUT_VERSION_STRING) == 0);
  errors(argv[1], argv[2]);
  options.range = argv[2];
  CHECK(statecut_open(argv[1], &options, &db, NULL) == STATECUT_OK);
  if (db == NULL) return 1;
  CHECK(statecut_get_info(db, &info) == STATECUT_OK && !info.is_cut && info.build_time != 0);
  CHECK(statecut_states(db, states, 1, &count) == STATECUT_OK && count > 1);
  CHECK(strlen(states[0]) == 2);
  nulls(db);
  zips(db);
  cities(db);
  names(db);
  partitions(db);
  CHECK(statecut_index_names(db) == STATECUT_OK);
  cities(db);
  names(db);
  statecut_close(db);
  if (failures == 0) puts("ok");
  return failures != 0;
}
