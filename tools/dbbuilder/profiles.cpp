#include "dbbuilder/profiles.h"

#include <algorithm>

#include "dbbuilder/draft.h"

namespace statecut::builder {

ProfileOptions tinyOptions() {
  ProfileOptions options;
  options.rangeBytes = std::uint64_t{256} << 10;
  options.streets = 60;
  options.firms = 30;
  options.severalCitiesEvery = 6;
  return options;
}

ProfileOptions smallOptions() {
  ProfileOptions options;
  options.rangeBytes = std::uint64_t{3} << 20;
  options.streets = 800;
  options.firms = 200;
  options.severalCitiesEvery = 9;
  return options;
}

ProfileOptions nationalOptions() {
  ProfileOptions options;
  options.rangeBytes = std::uint64_t{200} << 20;
  options.streets = 20000;
  options.firms = 5000;
  options.severalCitiesEvery = 23;
  return options;
}

Model makeModel(std::vector<Place> places, const ProfileOptions& options) {
  std::sort(places.begin(), places.end(),
            [](const Place& a, const Place& b) { return a.zip < b.zip; });
  places.insert(places.begin(), Place{});
  Draft draft{options, std::move(places), {}, {}, {}, {}};
  addCities(draft);
  addCityTables(draft);
  addNames(draft);
  addZipTables(draft);
  addFinanceAreas(draft);
  addMultiZips(draft);
  addSmallTables(draft);
  addRange(draft);
  return std::move(draft.model);
}

}  // namespace statecut::builder
