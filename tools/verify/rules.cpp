#include "verify/rules.h"

namespace statecut::verify {

namespace {

constexpr Rule kRuleList[] = {
    {"file.short", "each file holds its control record", false},
    {"type.flags", "the files are flagged as a reference and a range database", false},
    {"stamp.build", "both files carry the same build stamp", false},
    {"stamp.cut", "both files are cut, with one cut stamp, or neither is and the stamps are 0",
     false},
    {"table.bounds",
     "every table lies behind the control record and inside the file; a cut has none that it "
     "leaves out",
     false},
    {"table.overlap", "no two tables share bytes", false},
    {"range.areas", "the areas of the range control record lie inside the range file", false},
    {"zip.index", "every entry of the ZIP index names the record of its ZIP code", false},
    {"zip.record", "every ZIP record has a code of 1 to 99999 that the index leads to, and a state",
     false},
    {"zip.cities", "every ZIP record has city keys, all of them inside the city data", false},
    {"range.bounds", "every ZIP has the partitions of its sizes, inside the range file", false},
    {"city.name", "the first city name is blank, every other has at most 28 characters", false},
    {"city.order", "city names are sorted by state, then name", false},
    {"city.key", "the city key of every city name lies inside the city data", false},
    {"city.links", "every city with a name points at names of its own, inside the city names",
     false},
    {"bystate.order", "city names by state are sorted by name, then state", false},
    {"bystate.names", "every city name by state is one of the city names", false},
    {"phonetic.key", "the first city phonetic key is blank, every other has at most 19 characters",
     false},
    {"phonetic.order", "city phonetic keys are sorted by state", false},
    {"name.packing",
     "firm, street and variation names fill their tables, as many as the control record says",
     false},
    {"street.links", "every street variation leads to street names", false},
    {"hash.size", "the number of hash slots is a power of two", false},
    {"hash.chain", "the overflow entries of every hash slot lie inside the overflow table", false},
    {"hash.missing", "every name is found through the hash at its own number", false},
    {"hash.wrong", "every hash entry leads to a name that belongs there", false},
    {"multizip.link", "multi-ZIP and finance keys of cities and ZIPs lie inside their tables",
     false},
    {"multizip.key",
     "multi-ZIP keys of city and finance records lie below their count and lead to one partition",
     false},
    {"multizip.order", "the multi-ZIP bytes tables are sorted by key", false},
    {"multizip.lists", "a list of ZIP keys begins at every multi-ZIP key in use", false},
    {"multizip.bytes", "every multi-ZIP key in use stands in the bytes table of its kind", false},
    {"multizip.bounds", "multi-ZIP partitions lie inside the range file", false},
    {"range.layout", "partitions lie in the area of their kind and share no bytes", false},
    {"cut.control", "the reference control record is the source's but for what a cut sets", true},
    {"cut.layout", "the cut's tables follow one another in the cut's order, to the file's end",
     true},
    {"cut.tables", "the copied tables are the source's", true},
    {"cut.range-control", "the range control record is the source's but for flag and stamp", true},
    {"cut.range-layout",
     "the range file holds the kept partitions in the cut's order and nothing else", true},
    {"cut.zips", "the ZIP index holds exactly the ZIP codes of the states", true},
    {"cut.zip-records", "ZIP records are the source's but for the RBAs of kept ZIPs", true},
    {"cut.partitions", "the partitions of kept ZIPs are the source's", true},
    {"cut.city-data", "city records are the source's but for renumbered name links", true},
    {"cut.city-multizip", "city multi-ZIP records are the source's but for RBAs", true},
    {"cut.finance", "finance multi-ZIP records are the source's but for RBAs", true},
    {"cut.multizip-partitions", "the multi-ZIP partitions of the cut are the source's", true},
    {"cut.names", "the city names are the source's names of the states", true},
    {"cut.bystate", "the city names by state are the source's records of the states", true},
    {"cut.phonetics", "the city phonetic keys are the source's keys of the states", true},
    {"cut.hash", "the hash is the source's with dropped names unlinked and kept names renumbered",
     true},
};
static_assert(sizeof kRuleList / sizeof kRuleList[0] == kRules);

}  // namespace

std::span<const Rule, kRules> rules() { return kRuleList; }

const Rule& rule(RuleId id) { return kRuleList[static_cast<std::size_t>(id)]; }

}  // namespace statecut::verify
