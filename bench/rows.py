"""The rows of the table: what is compared with what, how it is measured, and why it comes out so."""

from dataclasses import dataclass

NAMES = "name → number, in memory, hit and miss (city, street, firm)"
DISK = "the same, on disk, warm"
COPY = "`cp` of the same output bytes"


@dataclass
class Row:
    name: str
    program: str  # that measures it: lookups, processes or python
    what: str
    against: str
    how: str
    why: str = ""
    measure: str = "ratio"  # or MiB, %: an amount of its own


ROWS = [
    Row("cut-warm", "processes", "cut of TX,OK, warm", COPY,
        "All that both read is in the page cache, their outputs do not exist; between two runs the "
        "outputs are removed and the disk is synced.",
        "cp moves its bytes from page cache to page cache in one copy inside the kernel. A cut copies "
        "them twice, into its window and out of it, which was half of its processor time in a "
        "profile; it also loads its tables into fresh zeroed pages, selects, unlinks or moves nearly "
        "all of the 60,877 city names and phonetics in the hash tables, sorts, and writes the tables "
        "back, whatever the states. Tried without gain: `copy_file_range`, windows of 128 KiB to "
        "2 MiB, reading and writing through a buffer of 64 KiB (18 % more processor time), tables "
        "populated ahead of their use."),
    Row("cut-small", "processes", "cut of one small state (DE), warm", COPY,
        "As `cut-warm`.",
        "cp copies what comes out once; the cut reads 10 MB into memory that the kernel must first "
        "zero (18 % of its processor time in a profile), changes them, writes 6.6 MB of them, and "
        "unlinks or moves the 60,877 names in between (19 %). Tried without gain: hashing four names "
        "in turns."),
    Row("cut-all", "processes", "cut of all 63 states into one pair, warm", COPY,
        "As `cut-warm`.",
        "As `cut-warm`; with all states every ZIP code, name and multi-ZIP key is also visited."),
    Row("cut-each", "processes", "cuts of each of the 63 states, a process each, warm",
        "`cp` of each of the 63 pairs, a process each",
        "As `cut-warm`, state by state, a cut and its copy in turn; the sums of a round are compared.",
        "See `cut-small`: every cut loads the tables of the whole country."),
    Row("cuts-made", "processes", "`statedb cuts --each --jobs 2`: cut, verified, digested, flushed",
        "`cp` of the same files, a process a pair, one after the other",
        "As `cut-each`, all products of a release at once and then all of their copies; wall time. "
        "Both sources are digested, too, and the source is verified once. cp flushes nothing.",
        "Two processors share the work. Beyond the cuts (`cuts-alone`) every byte is compared with "
        "what follows from the source, digested by the processor's own SHA-256 instructions at "
        "1.4 GB/s, which alone takes as long as its copy, and on the disk before its product has a "
        "name."),
    Row("cuts-alone", "processes", "the cuts of `statedb cuts --each` alone, two at once",
        "`cp` of the same files, a process a pair, one after the other",
        "As `cuts-made`; `xargs -P 2` starts a `statecut` a product.", "See `cut-each`."),
    Row("cuts-plan", "processes", "`statedb plan --each`: the plans of all products",
        "one `statedb info --json` of both files",
        "Start to end of both processes, in turn; all files are in the page cache.",
        "A plan derives what each of the 63 cuts would hold; `info` reads the control records and "
        "the ZIP codes once."),
    Row("cut-floor", "processes", "cut of TX,OK and of DE, warm",
        "a bare program with the same reads and writes",
        "The moves of bytes of one cut, as `strace` lists them, replayed in their order between the "
        "same files by a static program with `pread`, `pwrite` and one buffer of 1 MiB; what the cut "
        "maps is read, and larger moves go in pieces. Processor time."),
    Row("cut-cold", "processes", "cut of TX,OK, cold", "cold " + COPY,
        "As `cut-warm`, but before each run what it reads is evicted by `posix_fadvise(DONTNEED)`, "
        "checked with `mincore`. `cp` reads a finished cut.",
        "As `cut-warm`, and the partitions of two states lie in some hundred pieces of a 1 GiB file, "
        "where cp reads two files from end to end. Tried without gain: announcing the reference file "
        "as a whole, a look-ahead of 24 MiB in place of 8."),
    Row("cut-synced", "processes", "cut of TX,OK, warm, outputs synced to disk",
        COPY + ", synced to disk",
        "As `cut-warm`; the clock stops when `fsync` of the outputs returns."),
    Row("cut-baseline", "processes", "cut of TX,OK and of DE, warm", "the same cut by the baseline",
        "As `cut-warm`, with `--baseline COMMIT`: the program of that commit, built beside."),
    Row("bytes-read", "processes", "bytes read from the sources",
        "bytes of the tables used + partitions kept",
        "Results of the reading system calls on the two sources under `strace`. Used are both control "
        "records, every table of the reference file but street RBOs, firm RBOs and SCFs, and the "
        "bytes of the cut range file."),
    Row("bytes-written", "processes", "bytes written", "size of the outputs + log",
        "Results of the writing system calls on outputs and log under `strace`."),
    Row("memory-peak", "processes", "peak memory of a cut, beyond its tables", "loaded tables",
        "Largest resident size, less that of a run that loads nothing (`statecut -h`), less the "
        "tables that the log reports.", measure="MiB"),
    Row("memory-slope", "processes", "growth of peak memory, range file 0.2 → 2 GB", "no growth",
        "Difference of the largest resident sizes of the cut of TX,OK out of both files.",
        "No growth: eight runs of one cut differ among themselves by up to 0.2 MiB, because the "
        "kernel counts resident pages in batches.", measure="MiB"),
    Row("names-map", "lookups", NAMES, "`std::unordered_map<std::string, uint32_t>`",
        "`dbHashFind` on the tables of the national pair and its peers on the same names, asked for "
        "in random order; hits are all names, misses are names with one letter changed that no table "
        "has. Google Benchmark, one run of each a round. All answers are compared beforehand, by so "
        "many lookups that `dbHashFind` has an index of its own by then.",
        "The index takes two cache lines a hit, a bucket and the name, and tests in front of it that "
        "the tables are those that it was made of."),
    Row("names-cdb", "lookups", "the same", "tinycdb (memory-mapped)",
        "As `names-map`. `cdb_find` and the number behind the name.", "See `names-map`."),
    Row("names-lmdb", "lookups", "the same", "LMDB",
        "As `names-map`. `mdb_get`, one read transaction."),
    Row("names-sqlite", "lookups", "the same", "SQLite (prepared, in one transaction)",
        "As `names-map`. In-memory database, a table WITHOUT ROWID with the name as its key."),
    Row("disk-lmdb", "lookups", DISK, "LMDB",
        "`dbHashFindOff`, which reads the file at every call, against `mdb_get` in one read "
        "transaction.",
        "LMDB reads through a mapping and makes no system call. A lookup on disk here makes three "
        "(slot, overflow entries, name), a quarter of a microsecond or more each, because it must "
        "answer a file that shrinks under it with an error and not with a signal."),
    Row("disk-sqlite", "lookups", DISK, "SQLite",
        "`dbHashFindOff` against a database file, prepared, in one transaction, with SQLite's own "
        "page cache.",
        "SQLite keeps pages in a cache of its own, 2 MB; see `disk-lmdb`. Through the block cache "
        "(`disk-cache`) lookups here avoid system calls, too."),
    Row("disk-cache", "lookups", "the same, on disk through the cache, warm", "on disk without",
        "The lookups that read through the block cache, of records that it holds, with the cache and "
        "without."),
    Row("zip-memory", "lookups", "ZIP → record, in memory",
        "an array index and a bound check in a loop",
        "`dbGetZipData` of all ZIP codes in random order against the same two arrays indexed in the "
        "loop itself; both read a field of the record.",
        "The lookup is a function behind a pointer, as the interface has it, and tests the record, "
        "both tables, the range of the code and the trace switch; the loop against it is inlined."),
    Row("open-memory", "processes", "open in memory + first lookup",
        "`malloc` and one `pread` of the whole file",
        "Opening a `Session` in memory, one city looked up, closing, 20 times in a process; against "
        "reading the reference file, 20 times in a process. The file is in the page cache; large blocks "
        "are given back at once, so that every opening touches fresh pages."),
    Row("open-baseline", "processes", "open in memory + first lookup", "the same by the baseline",
        "As `open-memory`, with `--baseline COMMIT`: the library of that commit, built beside."),
    Row("open-disk", "lookups", "open + first lookup, on disk", "SQLite open + first query",
        "Opening a `Session` that loads nothing, one city looked up, closing; against opening the "
        "database file, preparing, one query, closing. In one process."),
    Row("reader-open", "lookups", "`Database::open` + first lookup",
        "`malloc` and one `pread` of the whole file",
        "Opening the national reference file with all its checks, one city looked up, closing; against "
        "reading the file into fresh memory and giving it back. In one process, processor time; the file "
        "is in the page cache."),
    Row("reader-map", "lookups", "name → key by `Database`, hit and miss (ZIP, city, street, firm)",
        "`std::unordered_map<std::string, uint32_t>`",
        "With `OpenOptions::indexNames`, all names in random order; misses are names with one letter "
        "changed, and numbers that are no ZIP code. A ZIP code is a text of five digits on both sides. "
        "All answers are compared beforehand."),
    Row("reader-c", "lookups", "the same through the C interface", "through `Database`",
        "As `reader-map`, of a program linked with the archive. A call fills a record, where `Database` "
        "gives a pointer to it."),
    Row("reader-threads", "lookups", "a city by `Database`, two threads at once", "one thread",
        "Wall time over the number of lookups: half is twice as many a second, 0.54 is 1.85 times. Each "
        "thread asks for all names 40 times."),
    Row("python-city", "python", "a city with its record, from Python",
        "`sqlite3` of Python, in memory, prepared by its cache",
        "`Database.city` of 10,000 names of the national file, a `City` each, with the index of names; "
        "against `execute` and `fetchone` of the same columns. A database makes a record the first time "
        "that it is asked for and keeps it, so there are two figures. Processor time."),
    Row("python-batch", "python", "the same, 1,000 at once", "the same, one by one",
        "As `python-city`, by `Database.find_cities`."),
    Row("sql-points", "lookups", "point queries in SQL, `mod_statecut` (ZIP, city, street, firm)",
        "SQLite's own table with an index",
        "Both tables in one connection, with the same rows, the statement prepared; all keys in random "
        "order. The native tables are in memory. All answers are compared beforehand."),
    Row("sql-scan", "lookups", "all rows with an aggregate in SQL, `mod_statecut`",
        "SQLite's own table",
        "As `sql-points`, over all ZIP codes: the sum of a column, and groups by state."),
    Row("sql-join", "lookups", "join of `zip` and `city` in SQL, `mod_statecut`",
        "SQLite's own tables with indexes",
        "As `sql-points`: each ZIP code with its city, by position and by state and name."),
    Row("startup", "processes", "`statecut -i`, `-h`", "`/bin/true`",
        "Starts of both programs in turn, from before `posix_spawn` to after `wait4`."),
    Row("query", "processes", "`statedb query`, 100,000 mixed calls in a pipe",
        "the `sqlite3` shell answering the same in one batch",
        "Both get their questions from a pipe and answer to a pipe; start to end of the process. The "
        "database of the shell holds the same records with the same keys. All answers are compared "
        "beforehand."),
    Row("verify", "processes", "`statedb verify` of a cut with its source",
        "`cmp` of two files of the source's size",
        "The cut of TX,OK; `cmp` of the range file and an equal copy. All files are in the page "
        "cache."),
    Row("growth", "processes", "cost as work grows: 1/8, 1/4, 1/2, 1 of the national ZIPs",
        "straight line through them",
        "Largest distance of a point from the least-squares line, as a share of the line; wall time "
        "of warm cuts, the minimum of the rounds.", measure="%"),
]
