// The numbers of a report: they are those of the files, and add up.

#include "draw/figures.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "dbbuilder/profiles.h"
#include "dbbuilder/writer.h"
#include "dbfiles/controlrec.h"
#include "draw/bars.h"
#include "draw/names.h"
#include "draw/tones.h"
#include "support/files.h"
#include "support/paths.h"
#include "support/process.h"

namespace statecut::draw {
namespace {

class DrawnFigures : public testing::Test {
 protected:
  void write(const std::string& name, std::uint64_t seed, std::vector<builder::Place> places) {
    builder::ProfileOptions options = builder::tinyOptions();
    options.seed = seed;
    const builder::Model model = builder::makeModel(std::move(places), options);
    test::writeWholeFile(folder_.file(name + ".ref"), builder::referenceFile(model).bytes);
    test::writeWholeFile(folder_.file(name + ".rng"), builder::rangeFile(model.range));
  }

  void cut(const std::string& states) {
    test::Command command;
    command.program = test::kStatecut;
    command.arguments = {"-f", options_.ref,
                         "-g", options_.rng,
                         "-o", folder_.file("cut.ref"),
                         "-z", folder_.file("cut.rng"),
                         "-l", folder_.file("log")};
    command.input = states;
    ASSERT_EQ(test::runProcess(command).exitStatus, 0);
    options_.cut = {folder_.file("cut.ref"), folder_.file("cut.rng")};
  }

  void SetUp() override {
    write("new", 1, builder::tinyPlaces());
    options_.ref = folder_.file("new.ref");
    options_.rng = folder_.file("new.rng");
  }

  Figures figures() {
    std::string error;
    sources_ = openSources(options_, error);
    EXPECT_EQ(error, "");
    return collect(sources_, options_);
  }

  // Where the partitions of the database begin.
  std::uint64_t firstPartition() const {
    return sources_.database.rng().get(RngControlRec::sfhZipStart);
  }

  static const State& state(const Figures& figures, const std::string& abbreviation) {
    const auto found =
        std::find_if(figures.states.begin(), figures.states.end(),
                     [&](const State& one) { return one.abbreviation == abbreviation; });
    EXPECT_NE(found, figures.states.end()) << abbreviation;
    return *found;
  }

  test::TempDir folder_;
  Options options_;
  Sources sources_;
};

std::uint64_t bytesOf(const std::string& path) { return test::readWholeFile(path)->size(); }

TEST_F(DrawnFigures, PiecesOfAFileAreTheWholeFile) {
  cut("TX\nPR\n");
  const Figures drawn = figures();
  ASSERT_EQ(drawn.files.size(), 2U);
  for (std::size_t i = 0; i < 2; ++i) {
    const File& file = drawn.files[i];
    SCOPED_TRACE(file.name);
    std::uint64_t bytes = 0, kept = 0;
    for (const Piece& piece : file.pieces) {
      bytes += piece.bytes;
      kept += piece.kept;
      EXPECT_LE(piece.kept, piece.bytes) << piece.name;
    }
    EXPECT_EQ(bytes, bytesOf(i == 0 ? options_.ref : options_.rng));
    EXPECT_EQ(bytes, file.bytes);
    EXPECT_EQ(kept, bytesOf(options_.cut[i]));
    EXPECT_EQ(kept, file.cutBytes);
    const auto slices = slicesOf(file);
    EXPECT_NEAR(slices.back().at + slices.back().width, 1, 1e-9);
  }
  // Everything behind the place where partitions begin belongs to somebody.
  const Piece& rest = drawn.files[1].pieces.back();
  EXPECT_EQ(rest.name, "Nothing leads to these");
  EXPECT_EQ(rest.bytes, firstPartition() - RngControlRec::size);
}

TEST_F(DrawnFigures, StatesAreTheRangeFileFromItsFirstPartitionOn) {
  const Figures drawn = figures();
  std::uint64_t bytes = firstPartition(), zips = 0, names = 0;
  for (const State& one : drawn.states) {
    bytes += one.allBytes();
    zips += one.zips;
    names += one.cityNames;
  }
  EXPECT_EQ(bytes, bytesOf(options_.rng));
  EXPECT_EQ(zips, builder::tinyPlaces().size());
  EXPECT_EQ(zips, drawn.zips.size());
  EXPECT_EQ(names, drawn.cityNames);
  EXPECT_EQ(state(drawn, "TX").name, "Texas");
  EXPECT_EQ(state(drawn, "TX").zips, 12U);
}

TEST_F(DrawnFigures, ACutByItselfHasTheBytesThatItsSourceHas) {
  const Figures source = figures();
  cut("TX\n");
  options_.ref = options_.cut[0];
  options_.rng = options_.cut[1];
  options_.cut.clear();
  const Figures drawn = figures();
  EXPECT_TRUE(drawn.isCut);
  EXPECT_TRUE(drawn.bytesKnown);
  EXPECT_EQ(drawn.zips.size(), 12U);
  EXPECT_EQ(state(drawn, "TX").bytes, state(source, "TX").bytes);
  options_.rng.clear();
  EXPECT_FALSE(figures().bytesKnown);
  EXPECT_EQ(modesOf(figures()).front().id, "plain");
}

TEST_F(DrawnFigures, CutKeepsTheZipCodesOfItsStates) {
  cut("TX\n");
  const Figures drawn = figures();
  EXPECT_EQ(drawn.keptZips, 12U);
  for (const Zip& zip : drawn.zips)
    EXPECT_EQ(zip.kept, drawn.states[zip.state].abbreviation == "TX") << zip.zip;
  for (const State& one : drawn.states)
    EXPECT_EQ(one.kept, one.abbreviation == "TX" ? one.zips : 0) << one.abbreviation;
}

TEST_F(DrawnFigures, ChangesAreMarkedWhereTheyAre) {
  auto places = builder::tinyPlaces();
  places.erase(std::find_if(places.begin(), places.end(),
                            [](const builder::Place& place) { return place.zip == 77373; }));
  places.push_back({74009, "OK", "BIXBY", "TULSA"});
  write("old", 1, places);
  options_.old = {folder_.file("old.ref")};
  const Figures drawn = figures();
  EXPECT_EQ(drawn.changes.zipsAdded.size(), 1U);
  EXPECT_EQ(drawn.changes.zipsDropped.size(), 1U);
  std::vector<std::uint32_t> added, dropped;
  for (const Zip& zip : drawn.zips) {
    if (zip.added) added.push_back(zip.zip);
    if (zip.dropped) dropped.push_back(zip.zip);
  }
  EXPECT_EQ(added, std::vector<std::uint32_t>{77373});
  EXPECT_EQ(dropped, std::vector<std::uint32_t>{74009});
  EXPECT_EQ(state(drawn, "TX").added, 1U);
  EXPECT_EQ(state(drawn, "OK").dropped, 1U);
  EXPECT_EQ(drawn.zipCount() + 1, drawn.zips.size());
}

TEST_F(DrawnFigures, EveryZipCodeHasOneToneOfEachMode) {
  cut("TX\n");
  options_.old = {options_.ref};
  const Figures drawn = figures();
  const auto modes = modesOf(drawn);
  ASSERT_EQ(modes.size(), 3U);
  for (const Mode& mode : modes) {
    ASSERT_EQ(mode.ofZip.size(), drawn.zips.size()) << mode.id;
    std::uint64_t zips = 0;
    for (const Tone& tone : mode.tones) zips += tone.zips;
    EXPECT_EQ(zips, drawn.zips.size()) << mode.id;
  }
}

TEST(DrawnNames, NumbersAreAsPeopleReadThem) {
  EXPECT_EQ(grouped(0), "0");
  EXPECT_EQ(grouped(999), "999");
  EXPECT_EQ(grouped(1234567), "1,234,567");
  EXPECT_EQ(bytesText(1), "1 byte");
  EXPECT_EQ(bytesText(999), "999 bytes");
  EXPECT_EQ(bytesText(1000), "1 kB");
  EXPECT_EQ(bytesText(10450413), "10.5 MB");
  EXPECT_EQ(bytesText(999600), "1 MB");
  EXPECT_EQ(shareText(1, 3), "33.3 %");
  EXPECT_EQ(shareText(1, 100000), "under 0.1 %");
  EXPECT_EQ(shareText(99999, 100000), "over 99.9 %");
  EXPECT_EQ(shareText(0, 0), "0 %");
  EXPECT_EQ(stateName("TX"), "Texas");
  EXPECT_EQ(stateName("AE"), "Armed Forces");
  EXPECT_EQ(stateName("??"), "??");
}

TEST(DrawnNames, TextsAreUtf8AndEscaped) {
  EXPECT_EQ(shown("A\xC9\x01\x7F"), "A\xC3\x89??");
  EXPECT_EQ(escaped("<a b=\"c\">'&"), "&lt;a b=&quot;c&quot;&gt;&#39;&amp;");
  EXPECT_EQ(baseName("/x/city\xFF.dir"), "city\xEF\xBF\xBD.dir");
}

}  // namespace
}  // namespace statecut::draw
