// Records of different places name different lines.

#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "dbfiles/apiutil.h"
#include "dbfiles/dbaccess.h"
#include "support/logfixture.h"

namespace statecut {
namespace {

class PlacesTest : public test::LogFixture {
 protected:
  // "apiutil:3021" of each record that the call writes.
  std::vector<std::string> placesOf(const std::function<void()>& call) {
    const std::size_t before = contents("log").size();
    call();
    const test::Bytes log = contents("log");
    std::istringstream lines(
        std::string(log.begin() + static_cast<std::ptrdiff_t>(before), log.end()));
    std::vector<std::string> places;
    for (std::string line; std::getline(lines, line);) {
      const std::size_t at = line.find(';', line.find(';') + 1) + 1;
      places.push_back(line.substr(at, line.find(';', at) - at));
    }
    return places;
  }
  // Each call writes `records`, and none of their places is named twice.
  void expectOwnPlaces(std::size_t records, const std::vector<std::function<void()>>& calls) {
    std::set<std::string> seen;
    for (const auto& call : calls) {
      const std::vector<std::string> places = placesOf(call);
      EXPECT_EQ(places.size(), records);
      for (const std::string& place : places) EXPECT_TRUE(seen.insert(place).second) << place;
    }
  }
};

TEST_F(PlacesTest, StampErrorsHaveTheirOwn) {
  using Ref = RefControlRec;
  using Rng = RngControlRec;
  const auto compared = [this](std::uint32_t build, std::uint32_t flags, std::uint32_t cut) {
    return [this, build, flags, cut] {
      Ref ref{};
      Rng rng{};
      rng.set(Rng::buildTimeStamp, build);
      rng.set(Rng::typeFlags, flags);
      rng.set(Rng::stateCutTimeStamp, cut);
      EXPECT_EQ(evalTimeStamps(&ref, &rng, &proc_), -1);
    };
  };
  expectOwnPlaces(1, {compared(1, 0, 0), compared(0, kTypeStateCut, 0), compared(0, 0, 1)});
}

TEST_F(PlacesTest, ValuesOfAPairHaveTheirOwn) {
  RefControlRec ref{};
  RngControlRec rng{};
  ref.set(RefControlRec::typeFlags, kTypeStateCut);
  rng.set(RngControlRec::typeFlags, kTypeStateCut);
  expectOwnPlaces(4, {[&] { EXPECT_EQ(evalTimeStamps(&ref, &rng, &proc_), 0); }});
}

TEST_F(PlacesTest, LibraryOpensHaveTheirOwn) {
  expectOwnPlaces(2, {[this] { EXPECT_EQ(dbOpenRefDB(&proc_, "no/such"), nullptr); },
                      [this] { EXPECT_EQ(dbOpenRangeDB(&proc_, "no/such"), nullptr); }});
}

TEST_F(PlacesTest, ShortReadsOfEveryReaderHaveTheirOwn) {
  static unsigned char buffer[kBlockBytes];
  expectOwnPlaces(3, {[this] { readFile(unreadable(), 0, 100, buffer, &proc_); },
                      [this] { dbReadFile(unreadable(), 0, 100, buffer, &proc_); },
                      [this] { readMFIORngCntrl(unreadable(), 0, 100, buffer, &proc_); },
                      [this] { readMFIO(unreadable(), kBlockBytes, 100, buffer, &proc_); }});
}

TEST_F(PlacesTest, NullStreamsOfBothBlockReadersHaveTheirOwn) {
  static unsigned char buffer[kBlockBytes];
  expectOwnPlaces(1, {[this] { readMFIORngCntrl(nullptr, 0, 0, buffer, &proc_); },
                      [this] { readMFIO(nullptr, 0, 0, buffer, &proc_); }});
}

}  // namespace
}  // namespace statecut
