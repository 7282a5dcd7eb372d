// A pair small enough to lay out by hand, and the cut that must come of it. The program and the
// second derivation are both held against bytes that a reader can check with a pencil.

#include <gtest/gtest.h>

#include <string>

#include "base/le.h"
#include "support/cutcomparison.h"
#include "support/linepattern.h"

namespace statecut::test {
namespace {

constexpr std::uint32_t kStamp = 1700000000;

void setWord(FileBytes& bytes, std::size_t at, std::uint32_t value) {
  le::put<4>(&bytes.at(at), value);
}

void setShort(FileBytes& bytes, std::size_t at, std::uint32_t value) {
  le::put<2>(&bytes.at(at), value);
}

void setText(FileBytes& bytes, std::size_t at, const std::string& text) {
  std::copy(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

std::uint32_t wordAt(const FileBytes& bytes, std::size_t at) { return le::get<4>(&bytes.at(at)); }

std::uint32_t shortAt(const FileBytes& bytes, std::size_t at) { return le::get<2>(&bytes.at(at)); }

std::string textAt(const FileBytes& bytes, std::size_t at, std::size_t count) {
  const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
  return {begin, begin + static_cast<std::ptrdiff_t>(count)};
}

// Where the tables of the source stand, back to back behind the control record.
constexpr std::size_t kCities = 844;                      // 3 records of 36 bytes
constexpr std::size_t kNames = kCities + 3 * 36;          // 3 of 34
constexpr std::size_t kByState = kNames + 3 * 34;         // 2 of 34
constexpr std::size_t kPhonetics = kByState + 2 * 34;     // 1 of 26
constexpr std::size_t kZips = kPhonetics + 26;            // 3 of 52
constexpr std::size_t kZipBytes = kZips + 3 * 52;         // 3 of 12
constexpr std::size_t kRefSize = kZipBytes + 3 * 12 + 1;  // one byte, so that no RBA is the end

void addName(FileBytes& ref, std::uint32_t position, std::uint32_t city, const std::string& state,
             const std::string& name) {
  const std::size_t record = kNames + 34 * position;
  setShort(ref, record, city);
  ref.at(record + 3) = static_cast<unsigned char>(name.size());
  setText(ref, record + 4, state + name);
  const std::size_t byState = kByState + 34 * (position - 1);
  setShort(ref, byState, city);
  setText(ref, byState + 4, name);
  setText(ref, byState + 32, state);
  setWord(ref, kCities + 36 * city, position);
  setShort(ref, kCities + 36 * city + 18, 1);
}

// City 1 is ENID, OK with ZIP code 73701; city 2 is WACO, TX with ZIP code 76701.
FileBytes handMadeRef() {
  FileBytes ref(kRefSize);
  setText(ref, 0, "10000001");
  setWord(ref, 24, 1);
  setWord(ref, 32, kCities);
  setWord(ref, 188, 3);
  setWord(ref, 44, kNames);
  setWord(ref, 132, 3);
  setWord(ref, 48, kByState);
  setWord(ref, 52, kPhonetics);
  setWord(ref, 136, 1);
  setWord(ref, 56, kZips);
  setWord(ref, 192, 3);
  setWord(ref, 280, kZipBytes);
  ref[841] = 'x';
  ref[843] = 'y';
  addName(ref, 1, 1, "OK", "ENID");
  addName(ref, 2, 2, "TX", "WACO");
  setWord(ref, kZips + 52, 73701);
  setWord(ref, kZips + 52 + 8, 630);  // SFH: "enid"
  setWord(ref, kZips + 104, 76701);
  setWord(ref, kZips + 104 + 8, 634);   // SFH: "waco!"
  setWord(ref, kZips + 104 + 12, 639);  // POB: "box"
  setText(ref, kZipBytes + 12, "OK");
  setWord(ref, kZipBytes + 12 + 8, 4);
  setText(ref, kZipBytes + 24, "TX");
  setShort(ref, kZipBytes + 24 + 2, 3);
  setWord(ref, kZipBytes + 24 + 8, 5);
  return ref;
}

FileBytes handMadeRng() {
  FileBytes rng(642);
  setText(rng, 0, "10000001");
  setWord(rng, 24, 2);
  setText(rng, 630, "enidwaco!box");
  return rng;
}

RandomCase handMadeCase(const std::string& states) {
  RandomCase made;
  made.ref = handMadeRef();
  made.rng = handMadeRng();
  made.stateText = states;
  made.stamp = kStamp;
  return made;
}

// The cut of Texas, whoever made it.
void expectTexas(const FileBytes& ref, const FileBytes& rng) {
  // No table is carried: the rewritten ones follow the control record in their fixed order.
  constexpr std::size_t cities = 844, names = cities + 108, byState = names + 68;
  constexpr std::size_t phonetics = byState + 34, zips = phonetics + 26, index = zips + 156;
  ASSERT_EQ(ref.size(), index + 200000);
  EXPECT_EQ(textAt(ref, 0, 8), "10000001");
  EXPECT_EQ(wordAt(ref, 24), 5U);
  EXPECT_EQ(wordAt(ref, 28), kStamp);
  EXPECT_EQ(wordAt(ref, 32), cities);
  EXPECT_EQ(wordAt(ref, 44), names);
  EXPECT_EQ(wordAt(ref, 48), byState);
  EXPECT_EQ(wordAt(ref, 52), phonetics);
  EXPECT_EQ(wordAt(ref, 56), zips);
  EXPECT_EQ(wordAt(ref, 64), index);
  EXPECT_EQ(wordAt(ref, 132), 2U);
  EXPECT_EQ(wordAt(ref, 136), 1U);
  EXPECT_EQ(wordAt(ref, 192), 3U);
  EXPECT_EQ(wordAt(ref, 280), 0U);
  EXPECT_EQ(wordAt(ref, 324), 0U);
  EXPECT_EQ(ref[841], 'x');
  EXPECT_EQ(ref[843], 'y');
  // ENID has lost its name, WACO's has moved from 2 to 1.
  EXPECT_EQ(wordAt(ref, cities + 36), 0U);
  EXPECT_EQ(wordAt(ref, cities + 72), 1U);
  EXPECT_EQ(textAt(ref, names, 34), std::string(34, '\0'));
  EXPECT_EQ(shortAt(ref, names + 34), 2U);
  EXPECT_EQ(textAt(ref, names + 34 + 4, 6), "TXWACO");
  EXPECT_EQ(textAt(ref, byState + 4, 4), "WACO");
  EXPECT_EQ(textAt(ref, byState + 32, 2), "TX");
  // Every ZIP record stays; only those of the cut point into the new range file.
  EXPECT_EQ(wordAt(ref, zips + 52), 73701U);
  EXPECT_EQ(wordAt(ref, zips + 52 + 8), 630U);
  EXPECT_EQ(wordAt(ref, zips + 104 + 8), 624U);
  EXPECT_EQ(wordAt(ref, zips + 104 + 12), 629U);
  EXPECT_EQ(wordAt(ref, zips + 104 + 16), 0U);
  for (std::size_t zip = 0; zip < 100000; ++zip)
    ASSERT_EQ(shortAt(ref, index + 2 * zip), zip == 76701 ? 2U : 0U) << zip;
  ASSERT_EQ(rng.size(), 632U);
  EXPECT_EQ(wordAt(rng, 24), 6U);
  EXPECT_EQ(wordAt(rng, 28), kStamp);
  EXPECT_EQ(textAt(rng, 624, 8), "waco!box");
}

TEST(CutByHand, ProgramMakesTheBytesThatAPencilMakes) {
  const ComparedRun run = runBoth(handMadeCase("TX\n"));
  EXPECT_EQ(run.process.exitStatus, 0) << run.process.err;
  ASSERT_TRUE(run.ref && run.rng);
  expectTexas(*run.ref, *run.rng);
}

TEST(CutByHand, SecondDerivationMakesTheBytesThatAPencilMakes) {
  const secondcut::Outcome outcome = secondcut::deriveCut(inputsOf(handMadeCase("tx\n")));
  EXPECT_EQ(outcome.exitStatus, 0);
  expectTexas(outcome.ref.bytes, outcome.rng.bytes);
}

TEST(CutByHand, StateWithoutZipCodesGivesAnEmptyCutAndOneWarning) {
  const ComparedRun run = runBoth(handMadeCase("WY\n"));
  EXPECT_EQ(run.process.exitStatus, 0) << run.process.err;
  ASSERT_TRUE(run.ref && run.rng && run.log);
  EXPECT_EQ(wordAt(*run.ref, 132), 1U);
  EXPECT_EQ(run.rng->size(), 624U);
  EXPECT_NE(run.log->find(";0;State Selection;No zip entries found for selected states.\n"),
            std::string::npos);
  EXPECT_EQ(compareResults(run) + compareLog(run), "");
}

TEST(CutByHand, StampsThatDifferLeaveThePlaceholderAlone) {
  RandomCase made = handMadeCase("TX\n");
  ASSERT_EQ(runBoth(made).process.exitStatus, 0);
  setWord(*made.rng, 20, 1);
  const ComparedRun run = runBoth(made);
  EXPECT_EQ(run.process.exitStatus, 243);
  EXPECT_FALSE(run.rng);
  ASSERT_TRUE(run.ref);
  FileBytes placeholder(made.ref->begin(), made.ref->begin() + 844);
  setWord(placeholder, 24, 5);
  setWord(placeholder, 28, kStamp);
  for (const unsigned moved : {112U, 36U, 40U, 60U, 232U, 68U, 72U, 276U, 76U, 88U, 92U, 96U, 100U,
                               104U, 108U, 228U, 248U})
    EXPECT_EQ(wordAt(*run.ref, moved), 0U) << moved;
  EXPECT_EQ(*run.ref, placeholder);
}

TEST(CutByHand, PartitionPastTheEndRepeatsTheBlockBeforeIt) {
  RandomCase made = handMadeCase("TX\n");
  made.rng->resize(634 + 4088, 'a');
  made.rng->insert(made.rng->end(), 10, 'b');
  setWord(*made.ref, kZipBytes + 24 + 8, 4088 + 30);
  const ComparedRun run = runBoth(made);
  ASSERT_TRUE(run.rng);
  // Block 1: the file from 634 on. Block 2: its ten last bytes, then what block 1 left behind.
  EXPECT_EQ(textAt(*run.rng, 624 + 4088, 30),
            std::string(10, 'b') + textAt(*run.rng, 624 + 10, 20));
  EXPECT_EQ(compareResults(run), "");
}

}  // namespace
}  // namespace statecut::test
