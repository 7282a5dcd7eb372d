#pragma once
// The database library's file access and small shared routines.

#include <array>
#include <cstdint>
#include <cstdio>

#include "../base/procobj.h"
#include "../base/stream.h"
#include "../dbfiles/controlrec.h"

namespace statecut {

inline constexpr char kApiutil[] = "apiutil";  // source name in log records

// As readFile, but 0 for a count of 0 before seeking, and no record for a failed seek; -1 for a
// negative count.
std::int32_t dbReadFile(Stream* fp, std::uint32_t rba, std::int32_t count, void* buffer,
                        ProcObj* proc);
Stream* openReadFile(ProcObj* proc, const char* path);
Stream* openOutFile(ProcObj* proc, const char* path);

// One record each, with `text` as the message's argument.
void memoryError(const char* text, ProcObj* proc);
void memoryWarning(const char* text, ProcObj* proc);
void readRefError(const char* text, ProcObj* proc);
void readRefWarning(const char* text, ProcObj* proc);
void readRangeError(const char* text, ProcObj* proc);

// Called by dbOpenRefDB on success, to install the first-call lookups. Null: nothing to install.
extern void (*dbLookupInstaller)(ProcObj* proc);

// The opened stream, which the caller keeps in the file record; null on failure (logged).
Stream* dbOpenRefDB(ProcObj* proc, const char* path);
Stream* dbOpenRangeDB(ProcObj* proc, const char* path);
// Close the stream of pProcObj's file record and leave the pointer as it is. In any order with each
// other, with Session::close and with themselves; a stream that is closed already is left alone.
void dbCloseRefDB();
std::int32_t dbCloseRangeDB();

// Whether the two records are of one pair. 0, or -1 (logged).
std::int32_t evalTimeStamps(const RefControlRec* ref, const RngControlRec* rng, ProcObj* proc);

// Static buffers, overwritten by the next call. The version needs 8 characters, the engine
// version 19, the copyright date 4.
const char* formatVersion(const unsigned char* version);
const char* formatEngineVersion(const unsigned char* version);
const char* formatCopyRight(const unsigned char* date);

// As ReadRefControlRec and ReadRangeControlRec of dbaccess.h; a reference record that could not be
// read stays in proc all the same.
RefControlRec* dbReadRefControlRec(Stream* fp, ProcObj* proc);
RngControlRec* dbReadRangeControlRec(Stream* fp, ProcObj* proc);
// Dump the record held in proc to the log; nothing when it is null.
void dbDebugControlRecord(ProcObj* proc);
void dbDebugRngControlRec(ProcObj* proc);

// Sequential readers of 4088-byte blocks (the buffer holds one block). readMFIORngCntrl reads the
// first block and returns `rba`; readMFIO returns the offset of `rba` in its block, or -1. `length`
// is only shown, in the record of a short read.
inline constexpr std::uint32_t kBlockBytes = 4088;
extern std::uint32_t previousRecordNumber;
std::uint32_t readMFIORngCntrl(Stream* fp, std::uint32_t rba, std::int32_t length, void* buffer,
                               ProcObj* proc);
std::int32_t readMFIO(Stream* fp, std::uint32_t rba, std::int32_t length, void* buffer,
                      ProcObj* proc);

// Text tests: 0 means yes.
std::int32_t containsString(const char* text, const char* part);
std::int32_t startsWith(const char* text, const char* prefix);
std::int32_t endsWith(const char* text, const char* suffix);
std::int32_t matchAll(const char* text, const char* other);
void InArray(const std::int32_t* values, std::int32_t count, std::int32_t value,
             std::int32_t* flag);

// Little-endian numbers of 1 to 4 bytes in buffers.
void ReadNumber(const unsigned char* from, std::int32_t unused, std::uint32_t* widthThenNumber);
void WriteNumber(unsigned char* to, std::int32_t width, std::uint32_t value);
void ReadFromBuffer(const unsigned char* buffer, std::int32_t width, std::int32_t* position,
                    std::uint32_t* result);

// The numbers 0 to 9, 0 to 99 and 0 to 999 as terminated texts with leading zeros.
extern const std::array<std::array<char, 2>, 10> OneDigitNumbers;
extern const std::array<std::array<char, 3>, 100> TwoDigitNumbers;
extern const std::array<std::array<char, 4>, 1000> ThreeDigitNumbers;

// Binary dump and carrier routes. The text of baseDisp holds max(minimumDigits, 32) + 1 bytes;
// a minimum above 255 counts as 255.
void baseDisp(std::int32_t value, char* text, std::int32_t base, std::int32_t minimumDigits);
void displayBuffer(std::FILE* to, const unsigned char* bytes, std::int32_t count);
void displayBitInd(std::FILE* to, std::int32_t value);
const char* uncompressCRT(std::uint16_t code);  // static buffer; "" for a code outside the tables

}  // namespace statecut
