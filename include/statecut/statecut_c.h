#ifndef STATECUT_C_H
#define STATECUT_C_H
/* Lookups on a reference database, for C (C99) and for what calls C.

   A database never changes once it is open: any number of threads may use it at the same time,
   without a lock. A cursor belongs to one thread at a time. What a call gives back points into the
   database and is good until it is closed. Names are counted, not terminated, and as they stand in
   the file: upper case, Latin-1. No call prints, ends the process or throws.

   Most calls give STATECUT_OK or STATECUT_NOT_FOUND; a null or impossible argument gives
   STATECUT_ARGUMENT. What they fill is untouched unless they give STATECUT_OK. */

#include <statecut/version.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct statecut_db statecut_db;
typedef struct statecut_cursor statecut_cursor;

enum {
  STATECUT_OK = 0,
  STATECUT_OPEN_FILE = 1,    /* the file cannot be opened; `number` is errno */
  STATECUT_READ_FILE = 2,    /* it cannot be read, or it changed while it was read */
  STATECUT_NOT_DATABASE = 3, /* it is no file of this kind */
  STATECUT_SHORT_FILE = 4,   /* a table or a partition ends behind its end */
  STATECUT_DAMAGED = 5,      /* a table leads outside of another one, or to another's record */
  STATECUT_OTHER_BUILD = 6,  /* the range file was built with another reference file */
  STATECUT_NO_MEMORY = 7,
  STATECUT_NO_RANGE = 8,      /* the database was opened without a range file */
  STATECUT_NO_PARTITION = 9,  /* the ZIP code has no partition of the kind */
  STATECUT_SMALL_BUFFER = 10, /* the partition is larger; `offset` of the error is its size */
  STATECUT_NOT_FOUND = 100,
  STATECUT_AMBIGUOUS = 101, /* a truncated name that fits several */
  STATECUT_UNKNOWN = 102,   /* what a cut does not hold */
  STATECUT_ARGUMENT = 103
};

/* A sentence about a status. */
STATECUT_API const char* statecut_strerror(int32_t status);

typedef struct statecut_error {
  int32_t code;    /* one of the above */
  int32_t number;  /* errno, 0 when there is none */
  uint64_t offset; /* in the file */
  char table[48];  /* "" when there is none */
  char text[464];  /* names the file, and the table */
} statecut_error;

/* Begins with its size, so that later versions can add to it: STATECUT_OPTIONS_INIT. */
typedef struct statecut_options {
  size_t size;
  const char* range;       /* the range file of the pair; null: none */
  int32_t mapped;          /* not 0: the file is mapped, for files that nobody touches */
  int32_t index_names;     /* not 0: as statecut_index_names */
  int32_t index_city_zips; /* not 0: as statecut_index_city_zips */
} statecut_options;
#define STATECUT_OPTIONS_INIT \
  { sizeof(statecut_options), NULL, 0, 0, 0 }

/* Opening checks all that the lookups need. `options` and `error` may be null. */
STATECUT_API int32_t statecut_open(const char* reference, const statecut_options* options,
                                   statecut_db** db, statecut_error* error);
/* Of a file in memory; the bytes stay the caller's, unchanged, as long as the database is open. */
STATECUT_API int32_t statecut_open_bytes(const void* bytes, size_t count,
                                         const statecut_options* options, statecut_db** db,
                                         statecut_error* error);
STATECUT_API void statecut_close(statecut_db* db); /* null is allowed */

typedef struct statecut_info {
  uint32_t build_time; /* seconds since 1970 */
  uint32_t cut_time;   /* 0 when it is not a cut */
  int32_t is_cut;
  char version[9];
  char copyright[5]; /* month and year, two digits each */
} statecut_info;
STATECUT_API int32_t statecut_get_info(const statecut_db* db, statecut_info* info);

/* The states, sorted, three bytes each: two letters and a zero. *count is how many there are; no
   more than `room` are stored. */
STATECUT_API int32_t statecut_states(const statecut_db* db, char (*states)[3], size_t room,
                                     size_t* count);

/* An index of all names, with which a lookup takes a third of the time; the answers are the same.
   Any thread may ask for it at any time. */
STATECUT_API int32_t statecut_index_names(const statecut_db* db);
STATECUT_API int32_t statecut_index_city_zips(const statecut_db* db);

typedef struct statecut_text {
  const char* text;
  size_t length;
} statecut_text;

/* ZIP codes. */

typedef struct statecut_zip {
  uint32_t key;
  uint32_t code;
  uint32_t street_rba; /* of the partitions in the range file, 0 = none */
  uint32_t po_box_rba;
  uint32_t rural_route_rba;
  uint32_t city_count;
  uint32_t finance_key;       /* 0 = none */
  char state[4];              /* "" when it is not known, as in a cut */
  const unsigned char* bytes; /* the record, 52 bytes; null in a batch: not found */
} statecut_zip;

STATECUT_API int32_t statecut_zip_by_code(const statecut_db* db, uint32_t code, statecut_zip* zip);
STATECUT_API int32_t statecut_zip_by_key(const statecut_db* db, uint32_t key, statecut_zip* zip);
/* The keys of its cities: *count of them, no more than `room` are stored. */
STATECUT_API int32_t statecut_zip_cities(const statecut_db* db, uint32_t zip_key, uint16_t* keys,
                                         size_t room, size_t* count);

/* A partition that several ZIP codes share; its key is also the start of the list of their keys. */
typedef struct statecut_share {
  uint32_t zip_count;
  uint32_t key;
  uint32_t rba;
} statecut_share;

STATECUT_API int32_t statecut_finance(const statecut_db* db, uint32_t index, statecut_share* share);
/* `count` ZIP keys of the multi-ZIP lists; NOT_FOUND when the table does not hold them. */
STATECUT_API int32_t statecut_multi_zips(const statecut_db* db, uint32_t start, uint32_t count,
                                         uint16_t* keys);

enum { STATECUT_PO_BOX = 0, STATECUT_STREET = 1, STATECUT_RURAL_ROUTE = 2 };
/* UNKNOWN in a cut. 0 bytes: no partition. */
STATECUT_API int32_t statecut_partition_bytes(const statecut_db* db, uint32_t zip_key, int32_t kind,
                                              uint32_t* bytes);
/* *got bytes of the buffer are the partition's; of a cut, which knows no sizes, as many as the
   buffer has and the file still holds. */
STATECUT_API int32_t statecut_read_partition(const statecut_db* db, uint32_t zip_key, int32_t kind,
                                             void* buffer, size_t size, size_t* got,
                                             statecut_error* error);

/* Cities. A state is two characters. */

typedef struct statecut_city_name {
  uint32_t key;
  uint32_t city_key; /* of its data, 0 = none */
  uint32_t value;
  char state[4];
  const char* name; /* null in a batch: not found */
  size_t length;
} statecut_city_name;

typedef struct statecut_city_query {
  const char* state; /* two characters */
  const char* name;
  size_t length;
} statecut_city_query;

STATECUT_API int32_t statecut_find_city(const statecut_db* db, const char* state, const char* name,
                                        size_t length, statecut_city_name* city);
STATECUT_API int32_t statecut_city_name_by_key(const statecut_db* db, uint32_t key,
                                               statecut_city_name* city);
/* The one name that begins with `name`; AMBIGUOUS when several do. */
STATECUT_API int32_t statecut_find_truncated_city(const statecut_db* db, const char* state,
                                                  const char* name, size_t length,
                                                  statecut_city_name* city);

typedef struct statecut_phonetic {
  uint32_t key;
  uint32_t count; /* at most 9 */
  char state[4];
  const char* code;
  size_t length;
} statecut_phonetic;

STATECUT_API int32_t statecut_find_phonetic(const statecut_db* db, const char* state,
                                            const char* code, size_t length,
                                            statecut_phonetic* phonetic);
STATECUT_API int32_t statecut_phonetic_by_key(const statecut_db* db, uint32_t key,
                                              statecut_phonetic* phonetic);

typedef struct statecut_city {
  uint32_t key;
  uint32_t name_usps; /* keys of its names */
  uint32_t name_standard;
  uint32_t zip_count;
  uint32_t finance_key;       /* 0 = none */
  const unsigned char* bytes; /* the record, 36 bytes */
} statecut_city;

STATECUT_API int32_t statecut_city_by_key(const statecut_db* db, uint32_t key, statecut_city* city);
/* The partition of a kind that the ZIP codes of a city share. */
STATECUT_API int32_t statecut_city_share(const statecut_db* db, uint32_t city_key, int32_t kind,
                                         statecut_share* share);
/* The keys of the ZIP codes that have the city, ascending. The first call makes the index. */
STATECUT_API int32_t statecut_city_zips(const statecut_db* db, uint32_t city_key,
                                        const uint16_t** keys, size_t* count);
/* `count` entries of 6 bytes, and `count` keys; NOT_FOUND when the table does not hold them. */
STATECUT_API int32_t statecut_city_zip_entries(const statecut_db* db, uint32_t start,
                                               uint32_t count, const unsigned char** entries);
STATECUT_API int32_t statecut_city_finance_keys(const statecut_db* db, uint32_t start,
                                                uint32_t count, uint16_t* keys);

/* Streets and firms. A key is the offset of a name. */

typedef struct statecut_name {
  uint32_t key;
  const char* name; /* null in a batch: not found */
  size_t length;
} statecut_name;

STATECUT_API int32_t statecut_find_street(const statecut_db* db, const char* name, size_t length,
                                          statecut_name* street);
STATECUT_API int32_t statecut_street_by_key(const statecut_db* db, uint32_t key,
                                            statecut_name* street);
STATECUT_API int32_t statecut_find_firm(const statecut_db* db, const char* name, size_t length,
                                        statecut_name* firm);
STATECUT_API int32_t statecut_firm_by_key(const statecut_db* db, uint32_t key, statecut_name* firm);

enum { STATECUT_PHONETIC = 0, STATECUT_STANDARD = 1 };
/* The keys of the streets that a variation of a name stands for: *count of them, no more than
   `room` are stored. `scf` is an SCF, or -1 for all. */
STATECUT_API int32_t statecut_variations(const statecut_db* db, int32_t kind, const char* name,
                                         size_t length, int32_t scf, uint32_t* streets, size_t room,
                                         size_t* count);

/* Records of 4, 32 and 32 bytes, by position. */
STATECUT_API int32_t statecut_general_delivery(const statecut_db* db, uint32_t key,
                                               const unsigned char** bytes);
STATECUT_API int32_t statecut_county(const statecut_db* db, uint32_t position,
                                     const unsigned char** bytes);
STATECUT_API int32_t statecut_urbanization(const statecut_db* db, uint32_t position,
                                           const unsigned char** bytes);

/* Batches: `count` questions, as many answers. What is not found has null in the place of its name
   or bytes. */
STATECUT_API int32_t statecut_find_zips(const statecut_db* db, const uint32_t* codes, size_t count,
                                        statecut_zip* zips);
STATECUT_API int32_t statecut_find_cities(const statecut_db* db, const statecut_city_query* queries,
                                          size_t count, statecut_city_name* cities);
STATECUT_API int32_t statecut_find_streets(const statecut_db* db, const statecut_text* names,
                                           size_t count, statecut_name* streets);
STATECUT_API int32_t statecut_find_firms(const statecut_db* db, const statecut_text* names,
                                         size_t count, statecut_name* firms);

/* Cursors: over the city names of a state that fit a pattern ("SAN", "SAN*" begin with it, "*SAN"
   ends with it, "*SAN*" holds it), and over whole tables. The pattern is copied. */
STATECUT_API int32_t statecut_cities(const statecut_db* db, const char* state, const char* pattern,
                                     size_t length, statecut_cursor** cursor);
STATECUT_API int32_t statecut_zips(const statecut_db* db, statecut_cursor** cursor);
STATECUT_API int32_t statecut_city_names(const statecut_db* db, statecut_cursor** cursor);
STATECUT_API int32_t statecut_streets(const statecut_db* db, statecut_cursor** cursor);
STATECUT_API int32_t statecut_firms(const statecut_db* db, statecut_cursor** cursor);
/* The next items, at most `room`; how many there were, 0 at the end or for a cursor of other items.
 */
STATECUT_API size_t statecut_next_zips(statecut_cursor* cursor, statecut_zip* zips, size_t room);
STATECUT_API size_t statecut_next_cities(statecut_cursor* cursor, statecut_city_name* cities,
                                         size_t room);
STATECUT_API size_t statecut_next_names(statecut_cursor* cursor, statecut_name* names, size_t room);
STATECUT_API void statecut_cursor_close(statecut_cursor* cursor); /* null is allowed */

#ifdef __cplusplus
}
#endif

#endif
