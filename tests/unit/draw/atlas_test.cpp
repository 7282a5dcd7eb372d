// Where ZIP codes lie on the map.

#include "draw/atlas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "draw/projection.h"
#include "support/paths.h"

namespace statecut::draw {
namespace {

const std::vector<builder::Place>& nation() {
  static const std::vector<builder::Place> kPlaces = [] {
    std::vector<builder::Place> places;
    std::string error;
    EXPECT_TRUE(builder::readPlaces(std::string(test::kSourceFolder) + "/data/us_zip_city.csv",
                                    places, error))
        << error;
    return places;
  }();
  return kPlaces;
}

const Atlas& atlas() {
  static const Atlas kAtlas(nation());
  return kAtlas;
}

MapPoint at(std::uint32_t zip) {
  MapPoint point;
  EXPECT_EQ(atlas().find(zip, point), Placing::OnMap) << zip;
  return point;
}

double apart(const MapPoint& a, const MapPoint& b) { return std::hypot(a.x - b.x, a.y - b.y); }

bool inFrame(const MapPoint& point, const std::string& label) {
  for (const Inset& frame : insets())
    if (label == frame.label)
      return point.x > frame.x && point.x < frame.x + frame.width && point.y > frame.y &&
             point.y < frame.y + frame.height;
  ADD_FAILURE() << label;
  return false;
}

TEST(Atlas, EveryPlaceOfTheNationIsOnTheMapOrInTheListOfThoseThatAreNot) {
  std::map<Placing, int> counts;
  for (const builder::Place& place : nation()) {
    MapPoint point;
    ++counts[atlas().find(place.zip, point)];
  }
  EXPECT_EQ(counts[Placing::OnMap], 41929);
  EXPECT_EQ(counts[Placing::Military], 510);
  EXPECT_EQ(counts[Placing::NoCoordinates], 306);
  EXPECT_EQ(counts[Placing::OffMap], 0);
  EXPECT_EQ(counts[Placing::NotListed], 0);
}

TEST(Atlas, ZipCodeOfNewYorkWithTheWrongSignIsBesideItsNeighbours) {
  const auto row = std::find_if(nation().begin(), nation().end(),
                                [](const builder::Place& place) { return place.zip == 10200; });
  ASSERT_NE(row, nation().end());
  EXPECT_EQ(row->longitude, "73.95");
  EXPECT_LT(apart(at(10200), at(10001)), 3);
}

TEST(Atlas, MendsSignsOfTheAreasAroundAmericaAlone) {
  EXPECT_EQ(mended(Area::Mainland, {40, 73}).longitude, -73);
  EXPECT_EQ(mended(Area::Caribbean, {18, 66}).longitude, -66);
  EXPECT_EQ(mended(Area::Mainland, {40, -73}).longitude, -73);
  EXPECT_EQ(mended(Area::Pacific, {13, 144}).longitude, 144);
  EXPECT_EQ(mended(Area::Alaska, {52, 173}).longitude, 173);  // of the Aleutians, rightly
}

TEST(Atlas, WakeIslandLiesAmongTheIslandsOfThePacific) {
  const MapPoint wake = at(96898), guam = at(96910), samoa = at(96799);
  EXPECT_TRUE(inFrame(wake, "Pacific islands"));
  EXPECT_GT(wake.x, guam.x);
  EXPECT_LT(wake.x, samoa.x);
  EXPECT_LT(wake.y, guam.y);
  EXPECT_TRUE(inFrame(at(96813), "Hawaii"));  // Honolulu
}

TEST(Atlas, PlacesLieInTheFrameOfTheirArea) {
  EXPECT_TRUE(inFrame(at(99501), "Alaska"));
  EXPECT_TRUE(inFrame(at(99546), "Alaska"));  // Adak, far in the west
  EXPECT_TRUE(inFrame(at(901), "Caribbean"));
  EXPECT_TRUE(inFrame(at(96940), "Pacific islands"));
  for (const builder::Place& place : nation()) {
    const MapPoint point = [&] {
      MapPoint found;
      return atlas().find(place.zip, found) == Placing::OnMap ? found : MapPoint{1, 1};
    }();
    EXPECT_TRUE(point.x > 0 && point.x < kMapWidth && point.y > 0 && point.y < kMapHeight)
        << place.zip;
    const bool mainland = areaOf(place.state, {0, -100}) == Area::Mainland;
    for (const Inset& frame : insets())
      EXPECT_FALSE(mainland && inFrame(point, frame.label)) << place.zip << " in " << frame.label;
  }
}

TEST(Atlas, NorthIsUpAndEastIsRight) {
  EXPECT_LT(at(98101).x, at(4101).x);   // Seattle, Portland in Maine
  EXPECT_LT(at(58501).y, at(78701).y);  // Bismarck, Austin
}

TEST(Atlas, TellsWhyAZipCodeIsNotOnTheMap) {
  const Atlas small({{1, "NY", "A", "", "40.7", "-74"},
                     {2, "NY", "A", "", "", ""},
                     {3, "NY", "A", "", "north", "-74"},
                     {4, "NY", "A", "", "40.7", "nan"},
                     {5, "NY", "A", "", "-40.7", "-74"},
                     {6, "AE", "APO", "", "50", "8"}});
  MapPoint point;
  EXPECT_EQ(small.find(1, point), Placing::OnMap);
  EXPECT_EQ(small.find(2, point), Placing::NoCoordinates);
  EXPECT_EQ(small.find(3, point), Placing::NoCoordinates);
  EXPECT_EQ(small.find(4, point), Placing::NoCoordinates);
  EXPECT_EQ(small.find(5, point), Placing::OffMap);
  EXPECT_EQ(small.find(6, point), Placing::Military);
  EXPECT_EQ(small.find(7, point), Placing::NotListed);
  EXPECT_EQ(small.find(100000, point), Placing::NotListed);
}

}  // namespace
}  // namespace statecut::draw
