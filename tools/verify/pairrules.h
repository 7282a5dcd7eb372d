#pragma once
// The rules that need no source, by family. Each function adds its findings to the report.

#include "verify/pair.h"
#include "verify/report.h"

namespace statecut::verify {

// False when the rest can't be checked: a file is too short or of another type.
bool checkTypes(const Pair& pair, Report& report);
void checkForm(const Pair& pair, Report& report);
void checkStamps(const Pair& pair, Report& report);
void checkTables(const Pair& pair, Report& report);
void checkTableLayout(const Pair& pair, Report& report);  // after checkTables
void checkRangeAreas(const Pair& pair, Report& report);

void checkZipIndex(const Pair& pair, Report& report);
void checkZipRecords(const Pair& pair, Report& report);
void checkZipPartitions(const Pair& pair, Report& report);

void checkCityNames(const Pair& pair, Report& report);
void checkCityLinks(const Pair& pair, Report& report);
void checkCityFinance(const Pair& pair, Report& report);
void checkCityZips(const Pair& pair, Report& report);       // after checkZipRecords, checkCityNames
void checkCitiesByState(const Pair& pair, Report& report);  // after checkCityNames
void checkCityPhonetics(const Pair& pair, Report& report);

void checkNamePacking(const Pair& pair, Report& report);
void checkStreetLinks(const Pair& pair, Report& report);
void checkStreetLists(const Pair& pair, Report& report);  // after both

void checkHash(const Pair& pair, Report& report);  // after checkNamePacking

void checkMultiZip(const Pair& pair, Report& report);
void checkMultiZipLists(const Pair& pair, Report& report);  // after checkMultiZip

void checkRangeLayout(const Pair& pair, Report& report);  // after checkMultiZip

}  // namespace statecut::verify
