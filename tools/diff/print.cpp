#include <iomanip>
#include <ostream>

#include "diff/diff.h"
#include "diff/texts.h"

namespace statecut::diff {

namespace {

// Bytes that would harm a terminal are shown as question marks.
std::string shown(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) text += c >= 0x20 && c < 0x7F ? c : '?';
  return text;
}

// "TXAUSTIN" as "TX AUSTIN".
std::string cityText(std::string_view city) {
  if (city.empty()) return "no city";
  return shown(city.substr(0, 2)) + " " + shown(city.substr(2));
}

std::string placeText(const Zip& zip) {
  std::string text = zip.state.empty() ? "no state" : shown(zip.state);
  // The state of a city is named where it is another.
  for (std::size_t i = 0; i < zip.cities.size(); ++i) {
    const std::string_view city = zip.cities[i];
    const bool sameState = !city.empty() && city.substr(0, 2) == zip.state;
    text += (i == 0 ? " " : ", ") + (sameState ? shown(city.substr(2)) : cityText(city));
  }
  return text;
}

void printCount(std::ostream& out, const std::string& what, std::size_t added, std::size_t dropped,
                std::size_t others, const char* other) {
  out << std::left << std::setw(20) << what << std::right << std::setw(9) << added << " added"
      << std::setw(9) << dropped << " dropped";
  if (*other != '\0') out << std::setw(9) << others << ' ' << other;
  out << '\n';
}

void printCount(std::ostream& out, const std::string& what, const Names& names) {
  printCount(out, what, names.added.size(), names.dropped.size(), 0, "");
}

void printCounts(std::ostream& out, const Changes& changes) {
  printCount(out, "ZIP codes", changes.zipsAdded.size(), changes.zipsDropped.size(),
             changes.zipsMoved.size(), "moved");
  printCount(out, "cities", changes.cities.added.size(), changes.cities.dropped.size(),
             changes.citiesRenamed.size(), "renamed");
  printCount(out, "other city names", changes.otherNamesAdded.size(),
             changes.otherNamesDropped.size(), 0, "");
  printCount(out, "city phonetics", changes.cityPhonetics);
  if (changes.statelessCompared) {
    printCount(out, "streets", changes.streets);
    printCount(out, "street standards", changes.streetStandards);
    printCount(out, "street phonetics", changes.streetPhonetics);
    printCount(out, "firms", changes.firms);
  }
  if (changes.partitionsCompared) {
    PartitionCounts all;
    const auto states = changes.partitionsByState();
    for (const auto& [state, counts] : states) {
      all.added += counts.added;
      all.dropped += counts.dropped;
      all.changed += counts.changed;
    }
    printCount(out, "partitions", all.added, all.dropped, all.changed, "changed");
    for (const auto& [state, counts] : states)
      printCount(out, "  " + (state.empty() ? "no state" : shown(state)), counts.added,
                 counts.dropped, counts.changed, "changed");
  }
  if (changes.statelessCompared)
    out << std::left << std::setw(20) << "tables" << std::right << std::setw(9)
        << changes.tables.size() << " with other bytes\n";
}

void printZips(std::ostream& out, const Changes& changes) {
  for (const Zip& zip : changes.zipsAdded)
    out << "+ ZIP code " << zipText(zip.zip) << ' ' << placeText(zip) << '\n';
  for (const Zip& zip : changes.zipsDropped)
    out << "- ZIP code " << zipText(zip.zip) << ' ' << placeText(zip) << '\n';
  for (const auto& [before, after] : changes.zipsMoved)
    out << "~ ZIP code " << zipText(after.zip) << ' ' << placeText(before) << " -> "
        << placeText(after) << '\n';
}

void printNames(std::ostream& out, const char* what, const Names& names, bool ofStates) {
  const auto text = [&](std::string_view name) { return ofStates ? cityText(name) : shown(name); };
  for (const std::string_view name : names.added) out << "+ " << what << ' ' << text(name) << '\n';
  for (const std::string_view name : names.dropped)
    out << "- " << what << ' ' << text(name) << '\n';
}

void printCities(std::ostream& out, const Changes& changes) {
  printNames(out, "city", changes.cities, true);
  for (const auto& [before, after] : changes.citiesRenamed)
    out << "~ city " << cityText(before) << " -> " << cityText(after) << '\n';
  for (const OtherName& name : changes.otherNamesAdded)
    out << "+ city name " << cityText(name.name) << " of " << cityText(name.city) << '\n';
  for (const OtherName& name : changes.otherNamesDropped)
    out << "- city name " << cityText(name.name) << " of " << cityText(name.city) << '\n';
}

void printPartition(std::ostream& out, const PartitionChange& change) {
  const bool added = change.change == Change::Added, dropped = change.change == Change::Dropped;
  out << (added     ? '+'
          : dropped ? '-'
                    : '~')
      << " partition " << kindText(change.kind) << (change.shared ? " shared by" : "");
  const char* between = " ";
  for (const std::uint32_t zip : change.zips) {
    out << between << zipText(zip);
    between = ", ";
  }
  if (!change.shared) out << ' ' << shown(change.state);
  for (const std::string_view city : change.cities) {
    out << between << cityText(city);
    between = ", ";
  }
  out << ": ";
  if (added)
    out << change.bytesAfter << " bytes\n";
  else if (dropped)
    out << change.bytesBefore << " bytes\n";
  else if (change.bytesBefore == change.bytesAfter)
    out << change.bytesAfter << " bytes, other content\n";
  else
    out << change.bytesBefore << " -> " << change.bytesAfter << " bytes\n";
}

void printTable(std::ostream& out, const TableChange& table) {
  out << "~ table " << table.name << ": ";
  if (table.bytesBefore == table.bytesAfter)
    out << table.bytesAfter << " bytes, other content\n";
  else
    out << table.bytesBefore << " -> " << table.bytesAfter << " bytes\n";
}

}  // namespace

void printText(std::ostream& out, const Changes& changes, bool summary) {
  printCounts(out, changes);
  if (summary || changes.none()) return;
  out << '\n';
  printZips(out, changes);
  printCities(out, changes);
  printNames(out, "city phonetic", changes.cityPhonetics, true);
  printNames(out, "street", changes.streets, false);
  printNames(out, "street standard", changes.streetStandards, false);
  printNames(out, "street phonetic", changes.streetPhonetics, false);
  printNames(out, "firm", changes.firms, false);
  for (const PartitionChange& change : changes.partitions) printPartition(out, change);
  for (const TableChange& table : changes.tables) printTable(out, table);
}

}  // namespace statecut::diff
