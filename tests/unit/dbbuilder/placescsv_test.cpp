// ZIP codes from a CSV file.

#include <gtest/gtest.h>

#include "dbbuilder/places.h"
#include "support/paths.h"
#include "support/process.h"

namespace statecut::builder {
namespace {

class PlacesCsv : public ::testing::Test {
 protected:
  bool read(const std::string& text) {
    test::writeWholeFile(folder_.file("zips.csv"), {text.begin(), text.end()});
    return readPlaces(folder_.file("zips.csv"), places_, error_);
  }
  // Accepts the rows without the bad one, then refuses them with it, naming its line.
  void refuses(const std::string& row, const std::string& reason) {
    const std::string good = header_ + "00501,NY,HOLTSVILLE,SUFFOLK,40.8,-73.0\n";
    ASSERT_TRUE(read(good)) << error_;
    ASSERT_FALSE(read(good + row + "\n")) << row;
    EXPECT_NE(error_.find("zips.csv:3: " + reason), std::string::npos) << error_;
  }

  const std::string header_ = "zip,state,city,county,latitude,longitude\n";
  test::TempDir folder_;
  std::vector<Place> places_;
  std::string error_;
};

TEST_F(PlacesCsv, RowsAreReadInTheirOrder) {
  ASSERT_TRUE(read(header_ + "99950,AK,KETCHIKAN,,1,2\r\n00601,PR,ADJUNTAS,\n")) << error_;
  ASSERT_EQ(places_.size(), 2U);
  EXPECT_EQ(places_[0].zip, 99950U);
  EXPECT_EQ(places_[1].zip, 601U);
  EXPECT_EQ(places_[1].state, "PR");
  EXPECT_EQ(places_[1].city, "ADJUNTAS");
  EXPECT_EQ(places_[1].county, "");
}

TEST_F(PlacesCsv, FourColumnsAreEnough) {
  EXPECT_TRUE(read("zip,state,city,county\n00501,NY,HOLTSVILLE,SUFFOLK"));
}

TEST_F(PlacesCsv, NationalFileIsInOrder) {
  ASSERT_TRUE(
      readPlaces(std::string(test::kSourceFolder) + "/data/us_zip_city.csv", places_, error_))
      << error_;
  EXPECT_EQ(places_.size(), 42745U);
}

TEST_F(PlacesCsv, BadZipCodeIsRefused) {
  for (const char* zip : {"", "1", "0050A", "005011", "00000", "-0501"})
    refuses(std::string(zip) + ",NY,ALBANY,", "bad ZIP code");
}

TEST_F(PlacesCsv, BadStateIsRefused) {
  for (const char* state : {"", "N", "NYC", "ny", "N1"})
    refuses(std::string("12201,") + state + ",ALBANY,", "bad state");
}

TEST_F(PlacesCsv, BadCityIsRefused) {
  const std::string names[] = {"", "Albany", std::string(29, 'A'), "SAN JOS\xC3\x89"};
  for (const std::string& name : names) refuses("12201,NY," + name + ",", "bad city");
}

TEST_F(PlacesCsv, CityOf28CharactersIsAccepted) {
  EXPECT_TRUE(read(header_ + "12201,NY," + std::string(28, 'A') + ",")) << error_;
}

TEST_F(PlacesCsv, BadCountyIsRefused) { refuses("12201,NY,ALBANY,Albany", "bad county"); }

TEST_F(PlacesCsv, MissingColumnIsRefused) { refuses("12201,NY,ALBANY", "expected zip,"); }

TEST_F(PlacesCsv, RepeatedZipCodeIsRefused) {
  refuses("00501,NY,ALBANY,", "ZIP code given before");
}

TEST_F(PlacesCsv, MissingHeaderIsRefused) {
  EXPECT_FALSE(read("00501,NY,HOLTSVILLE,SUFFOLK\n"));
  EXPECT_NE(error_.find("zips.csv:1: expected a header"), std::string::npos) << error_;
}

TEST_F(PlacesCsv, EmptyFileAndFileWithoutRowsAreRefused) {
  EXPECT_FALSE(read(""));
  EXPECT_FALSE(read(header_));
  EXPECT_NE(error_.find("no ZIP codes"), std::string::npos) << error_;
}

TEST_F(PlacesCsv, MissingFileAndFolderAreRefused) {
  EXPECT_FALSE(readPlaces(folder_.file("none.csv"), places_, error_));
  EXPECT_NE(error_.find("none.csv: No such file"), std::string::npos) << error_;
  EXPECT_FALSE(readPlaces(folder_.path(), places_, error_));
}

TEST_F(PlacesCsv, MoreZipCodesThanKeysAreRefused) {
  std::string rows = header_;
  for (int zip = 1; zip <= 65535; ++zip) {
    const std::string digits = std::to_string(zip);
    rows += std::string(5 - digits.size(), '0') + digits + ",NY,ALBANY,\n";
  }
  ASSERT_FALSE(read(rows));
  EXPECT_NE(error_.find(":65536: more than 65534"), std::string::npos) << error_;
}

}  // namespace
}  // namespace statecut::builder
