#include "report/rows.h"

namespace statecut::bench {

namespace {

#define NAME_LOOKUPS "name → number, in memory, hit and miss (city, street, firm)"
#define DISK_LOOKUPS "the same, on disk, warm"

constexpr Measure kRatio = Measure::kRatio;

constexpr Row kRows[] = {
    {"cut-warm", "cut of TX,OK, warm, wall and CPU", "`cp` of the same output bytes", kRatio, 1.10,
     0.90,
     "Both processes in turn. All they read is in the page cache, their outputs do not exist; "
     "between two runs the outputs are removed and the disk is synced. CPU is user and system time "
     "of the process."},
    {"cut-all", "cut of all 63 states, warm", "`cp` of the same output bytes", kRatio, 1.10, 0.90,
     "As above."},
    {"cut-cold", "cut of TX,OK, cold", "cold `cp` of the same bytes", kRatio, 1.20, 0.90,
     "As above, but before each run what it reads is evicted by `posix_fadvise(DONTNEED)`, checked "
     "with `mincore`. `cp` reads a finished cut."},
    {"cut-small", "cut of one small state (DE), warm", "`cp` of the cut `city.sc`", kRatio, 1.5,
     1.2, "As the warm cut; `cp` copies the reference file alone."},
    {"bytes-read", "bytes read from the sources", "bytes of the tables used + partitions kept",
     kRatio, 1.05, 1.01,
     "Results of the reading system calls on the two sources under `strace`. Used are both control "
     "records, every table of the reference file but street RBOs, firm RBOs and SCFs, and the "
     "bytes "
     "of the cut range file."},
    {"bytes-written", "bytes written", "size of the outputs + log", kRatio, 1.00, 1.00,
     "Results of the writing system calls on outputs and log under `strace`."},
    {"memory-peak", "peak memory of a cut, beyond its tables", "loaded tables", Measure::kMebibytes,
     12, 4,
     "Largest resident size, less that of a run that loads nothing (`statecut -h`), less the "
     "tables "
     "that the log reports."},
    {"memory-slope", "growth of peak memory, range file 0.2 → 2 GB", "slope", Measure::kMebibytes,
     0, 0, "Difference of the largest resident sizes of the cut of TX,OK out of both files."},
    {"names-map", NAME_LOOKUPS, "`std::unordered_map<std::string, uint32_t>`", kRatio, 0.60, 0.40,
     "`dbHashFind` on the tables of the national pair and its peers on the same names, asked for "
     "in "
     "random order; hits are all names, misses are names with one letter changed that no table "
     "has. "
     "Google Benchmark, one run of each a round. All answers are compared beforehand."},
    {"names-cdb", "the same", "tinycdb (memory-mapped)", kRatio, 0.90, 0.65,
     "As above. `cdb_find` and the number behind the name."},
    {"names-lmdb", "the same", "LMDB", kRatio, 0.25, 0.18,
     "As above. `mdb_get`, one read transaction."},
    {"names-sqlite", "the same", "SQLite (prepared, in one transaction)", kRatio, 0.15, 0.09,
     "As above. In-memory database, a table WITHOUT ROWID with the name as its key."},
    {"disk-lmdb", DISK_LOOKUPS, "LMDB", kRatio, 1.0, 0.6,
     "`dbHashFindOff`, which reads the file at every call, against `mdb_get` in one read "
     "transaction."},
    {"disk-sqlite", DISK_LOOKUPS, "SQLite", kRatio, 0.2, 0.1,
     "`dbHashFindOff` against a database file, prepared, in one transaction, with SQLite's own "
     "page "
     "cache."},
    {"disk-cache", "the same, on disk through the cache, warm", "on disk without", kRatio, 0.5, 0.2,
     "The lookups that read through the block cache, of records that it holds, with the cache and "
     "without."},
    {"zip-memory", "ZIP → record, in memory", "an array index and a bound check in a loop", kRatio,
     1.3, 1.1,
     "`dbGetZipData` of all ZIP codes in random order against the same two arrays indexed in the "
     "loop itself; both read a field of the record."},
    {"open-disk", "open + first lookup, on disk", "SQLite open + first query", kRatio, 0.5, 0.2,
     "Opening a `Session` that loads nothing, one city looked up, closing; against opening the "
     "database file, preparing, one query, closing. In one process."},
    {"startup", "`statecut -i`, `-h`", "`/bin/true`", kRatio, 1.5, 1.2,
     "Starts of both programs in turn, from before `posix_spawn` to after `wait4`."},
    {"query", "`statedb query`, 100,000 mixed calls in a pipe",
     "the `sqlite3` shell answering the same in one batch", kRatio, 0.5, 0.25,
     "Both get their questions from a pipe and answer to a pipe; start to end of the process. The "
     "database of the shell holds the same records with the same keys. All answers are compared "
     "beforehand."},
    {"verify", "`statedb verify` of a cut with its source",
     "`cmp` of two files of the source's size", kRatio, 2, 1.2,
     "The cut of TX,OK; `cmp` of the range file and an equal copy. All files are in the page "
     "cache."},
    {"growth", "cost as work grows: 1/8, 1/4, 1/2, 1 of the national ZIPs",
     "straight line through them", Measure::kPercent, 10, 5,
     "Largest distance of a point from the least-squares line, as a share of the line; wall time "
     "of "
     "warm cuts, the minimum of the rounds."}};

}  // namespace

std::span<const Row> rows() { return kRows; }

}  // namespace statecut::bench
