// statedb build: makes a database pair.

#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "commands/commands.h"
#include "commands/zipsfile.h"
#include "dbbuilder/profiles.h"
#include "dbbuilder/words.h"
#include "dbbuilder/writer.h"

namespace statecut {

namespace {

constexpr int ok = 0;
constexpr int failed = 1;
constexpr std::uint32_t mostRangeMb = 4000;  // RBAs are 32-bit

struct BuildSettings {
  std::string out;
  std::string zips;
  std::string profile = "national";
  std::uint64_t seed = 1;
  std::uint32_t rangeMb = 0;  // 0 = the profile's own, as for the next two
  std::uint32_t streets = 0;
  std::uint32_t firms = 0;
  bool noMilitary = false;
  bool noPoBox = false;
};

int fail(const std::string& reason) {
  std::fprintf(stderr, "statedb build: %s\n", reason.c_str());
  return failed;
}

bool readProfilePlaces(const BuildSettings& settings, std::vector<builder::Place>& places,
                       std::string& error) {
  if (settings.profile == "national") {
    const std::string csv = settings.zips.empty() ? findZipsFile(error) : settings.zips;
    return !csv.empty() && builder::readPlaces(csv, places, error);
  }
  places = settings.profile == "tiny" ? builder::tinyPlaces() : builder::smallPlaces();
  return true;
}

builder::ProfileOptions profileOptions(const BuildSettings& settings) {
  builder::ProfileOptions options = settings.profile == "tiny"    ? builder::tinyOptions()
                                    : settings.profile == "small" ? builder::smallOptions()
                                                                  : builder::nationalOptions();
  options.seed = settings.seed;
  if (settings.rangeMb != 0) options.rangeBytes = std::uint64_t{settings.rangeMb} << 20;
  if (settings.streets != 0) options.streets = settings.streets;
  if (settings.firms != 0) options.firms = settings.firms;
  options.military = !settings.noMilitary;
  options.poBoxZones = !settings.noPoBox;
  return options;
}

// Decimal digits alone, at most 64 bits.
std::uint64_t parseSeed(const std::string& text) {
  std::uint64_t seed = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seed);
  if (error != std::errc{} || end != text.data() + text.size())
    throw CLI::ValidationError("--seed", text + " is no number from 0 to 18446744073709551615");
  return seed;
}

// Makes an empty file of what stands there.
bool emptied(const std::filesystem::path& path, std::string& error) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file != nullptr) return std::fclose(file) == 0;
  error = "cannot open " + path.string() + ": " + std::strerror(errno);
  return false;
}

int build(const BuildSettings& settings) {
  std::vector<builder::Place> places;
  std::string error;
  if (!readProfilePlaces(settings, places, error)) return fail(error);
  const std::size_t zips = places.size();
  const builder::Model model = builder::makeModel(std::move(places), profileOptions(settings));

  std::error_code made;
  std::filesystem::create_directories(settings.out, made);
  if (made) return fail("cannot create " + settings.out + ": " + made.message());
  const std::filesystem::path folder = settings.out;
  builder::WrittenFile ref, rng;
  // Emptied first, so that a build that is cut off never leaves a new file beside an older one.
  if (!emptied(folder / "zip4us.dir", error) ||
      !builder::writeReferenceFile(model, folder / "city.dir", ref, error) ||
      !builder::writeRangeFile(model, folder / "zip4us.dir", rng, error))
    return fail(error);
  std::printf("%s: %llu bytes, %zu ZIP codes, %zu city names\n", ref.path.c_str(),
              static_cast<unsigned long long>(ref.bytes), zips, model.cityNames.size() - 1);
  std::printf("%s: %llu bytes, %zu partitions\n", rng.path.c_str(),
              static_cast<unsigned long long>(rng.bytes), model.range.partitions.size());
  if (std::fflush(stdout) != 0) return fail("cannot write the summary");
  return ok;
}

}  // namespace

void addBuildCommand(CLI::App& app, int& status) {
  const auto settings = std::make_shared<BuildSettings>();
  CLI::App* command = app.add_subcommand("build", "Make a database pair, city.dir and zip4us.dir");
  command->add_option("--out", settings->out, "Folder of the two files, made if missing")
      ->required()
      ->type_name("DIR");
  command->add_option("--profile", settings->profile, "Size of the database")
      ->check(CLI::IsMember({"tiny", "small", "national"}))
      ->capture_default_str();
  CLI::Option* zips =
      command->add_option("--zips", settings->zips, "ZIP codes, cities and counties (national)")
          ->type_name("CSV");
  command
      ->add_option_function<std::string>(
          "--seed", [settings](const std::string& text) { settings->seed = parseSeed(text); },
          "What is not in the CSV file follows from it")
      ->type_name("UINT")
      ->default_str("1");
  command->add_option("--range-mb", settings->rangeMb, "About the size of zip4us.dir, in MiB")
      ->check(CLI::Range(std::uint32_t{1}, mostRangeMb));
  command->add_option("--streets", settings->streets, "Number of street names")
      ->check(CLI::Range(builder::minStreets, builder::maxStreets));
  command->add_option("--firms", settings->firms, "Number of firm names")
      ->check(CLI::Range(std::uint32_t{1}, builder::maxFirms));
  command->add_flag("--no-military", settings->noMilitary, "Leave out the military aliases");
  command->add_flag("--no-pobox", settings->noPoBox, "Leave out the PO Box zones");
  command->footer("Exit status: 0 written, 1 could not be written, 2 can't run.");
  command->callback([settings, zips, &status] {
    if (zips->count() != 0 && settings->profile != "national")
      throw CLI::ValidationError("--zips", "goes with the national profile");
    status = build(*settings);
  });
}

}  // namespace statecut
