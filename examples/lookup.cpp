// Looks up a ZIP code and a city: lookup city.dir 75203 TX SPRING

#include <statecut/lookup.h>
#include <statecut/session.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using namespace statecut;

std::string nameOf(const CityNameRow& city) {
  const auto name = city.get(CityNameRow::name);
  return std::string(name.begin(), name.end()).substr(0, city.get(CityNameRow::nameLength));
}

void printZip(std::int32_t code) {
  std::uint32_t key = 0;
  const ZipDataRow* found = dbGetZipData(code, &key);
  if (found == nullptr) {
    std::printf("%05d is no ZIP code here\n", code);
    return;
  }
  const ZipDataRow zip = *found;  // a copy: on disk the next call would overwrite it
  std::printf("%05d lies in\n", code);
  const KeyRow* keys = dbGetCityKeysPtr(&zip);
  const int count = keys == nullptr ? 0 : zip.get(ZipDataRow::cityKeysCount);
  for (int i = 0; i < count; ++i) {
    const CityDataRow* city = dbGetCityData(keys[i].get(KeyRow::key));
    if (city == nullptr) continue;
    const std::uint32_t position = city->get(CityDataRow::nameUsps);
    const CityNameRow* name = dbGetCityName(&position);
    if (name != nullptr) std::printf("  %s\n", nameOf(*name).c_str());
  }
}

void printCity(const char* state, const char* name) {
  const CityNameRow* city = dbFindCity(state, name, static_cast<std::int32_t>(std::strlen(name)));
  if (city == nullptr) {
    std::printf("%s, %s is no city here\n", name, state);
    return;
  }
  const CityDataRow* data = dbGetCityData(city->get(CityNameRow::cityKey));
  const int zips = data == nullptr ? 0 : data->get(CityDataRow::zipCount);
  std::printf("%s, %s has %d ZIP codes\n", nameOf(*city).c_str(), state, zips);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5 || std::strlen(argv[3]) != 2) {
    std::fputs("usage: lookup REFERENCE ZIP STATE CITY\n", stderr);
    return 2;
  }
  SessionSettings settings;
  settings.ref = argv[1];
  Session session;
  std::string error;
  if (!session.open(settings, error)) {
    std::fprintf(stderr, "lookup: %s\n", error.c_str());
    return 1;
  }
  printZip(static_cast<std::int32_t>(std::strtol(argv[2], nullptr, 10)));
  printCity(argv[3], argv[4]);
  session.close();
  return 0;
}
