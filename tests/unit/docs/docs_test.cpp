// Holds the documentation to the code. With STATECUT_UPDATE_DOCS set (scripts/update-docs) the
// field tables are rewritten instead of compared.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "dbfiles/controlrec.h"
#include "fieldtables.h"
#include "log/utllgmsg.h"
#include "support/paths.h"
#include "support/process.h"
#include "tables/rows.h"

namespace statecut::docs {
namespace {

const std::string kDocs = std::string(test::kSourceFolder) + "/docs/";

std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  EXPECT_TRUE(in.good()) << path;
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// The bytes of the hex dump under `title`: lines "OFFSET  HH HH ...  |text|".
std::vector<unsigned char> dumpBytes(const std::string& document, const std::string& title) {
  std::vector<unsigned char> bytes;
  const std::size_t start = document.find(title);
  EXPECT_NE(start, std::string::npos) << title;
  if (start == std::string::npos) return bytes;
  std::istringstream lines(document.substr(start));
  const std::regex dumpLine("^([0-9a-f]{8})((?:  ?[0-9a-f]{2})+)  \\|.*\\|$");
  std::string line;
  bool inside = false;
  while (std::getline(lines, line)) {
    std::smatch match;
    if (!std::regex_match(line, match, dumpLine)) {
      if (inside) break;
      continue;
    }
    inside = true;
    std::istringstream pairs(match[2].str());
    std::string pair;
    while (pairs >> pair)
      bytes.push_back(static_cast<unsigned char>(std::stoul(pair, nullptr, 16)));
  }
  return bytes;
}

template <typename RowType>
RowType rowAt(const std::vector<unsigned char>& bytes, std::size_t at) {
  RowType row{};
  for (std::size_t i = 0; i < RowType::size && at + i < bytes.size(); ++i)
    row.bytes[i] = bytes[at + i];
  return row;
}

template <std::size_t Width>
std::string textOf(std::span<const unsigned char, Width> bytes) {
  return std::string(bytes.begin(), bytes.end());
}

TEST(FormatDocument, FieldTablesEqualTheFieldLists) {
  const std::string path = kDocs + "format.md";
  const std::string document = slurp(path);
  const std::string rendered = withFieldTables(document);
  if (std::getenv("STATECUT_UPDATE_DOCS") != nullptr) {
    std::ofstream(path, std::ios::binary) << rendered;
    return;
  }
  EXPECT_EQ(document, rendered) << "run scripts/update-docs";
}

TEST(FormatDocument, AChangedTableIsNoticed) {
  std::string document = slurp(kDocs + "format.md");
  ASSERT_EQ(document, withFieldTables(document));
  const std::size_t row = document.find("| 18 | 1 |");
  ASSERT_NE(row, std::string::npos);
  document.replace(row, 10, "| 17 | 1 |");
  EXPECT_NE(document, withFieldTables(document));
}

TEST(FormatDocument, AChangedLineOfTheDirectoryIsNoticed) {
  std::string document = slurp(kDocs + "format.md");
  ASSERT_EQ(document, withFieldTables(document));
  const std::string line = "| Firm names | +112 | +176 bytes | packed | copied |";
  const std::size_t row = document.find(line);
  ASSERT_NE(row, std::string::npos);
  document.replace(row, line.size(), "| Firm names | +112 | +172 bytes | packed | copied |");
  EXPECT_NE(document, withFieldTables(document));
}

TEST(FormatDocument, AMissingMarkerIsNoticed) {
  EXPECT_THROW(withFieldTables("# Nothing\n"), std::runtime_error);
}

TEST(FormatDocument, WorkedHeaderDecodesToTheValuesInItsText) {
  const auto bytes = dumpBytes(slurp(kDocs + "format.md"), "### The first 64 bytes");
  ASSERT_EQ(bytes.size(), 64u);
  const auto record = rowAt<RefControlRec>(bytes, 0);
  using R = RefControlRec;
  EXPECT_EQ(textOf(record.get(R::version)), "10000OF1");
  EXPECT_EQ(textOf(record.get(R::copyrightDate)), "0317");
  EXPECT_EQ(record.get(R::characterType), 1);
  EXPECT_EQ(record.get(R::endianType), 1);
  EXPECT_EQ(record.get(R::buildTimeStamp), 1479211205u);
  EXPECT_EQ(record.get(R::typeFlags), 5u);
  EXPECT_EQ(record.get(R::stateCutTimeStamp), 1500000000u);
  EXPECT_EQ(record.get(R::cityDataRba), 0x1350u);
  EXPECT_EQ(record.get(R::cityMultiZipListsRba), 0x0f20u);
  EXPECT_EQ(record.get(R::cityMultiFinanceListsRba), 0x0ffeu);
  EXPECT_EQ(record.get(R::cityNamesRba), 0x2a1cu);
  EXPECT_EQ(record.get(R::cityNamesByStateRba), 0x3b06u);
  EXPECT_EQ(record.get(R::cityPhoneticsRba), 0x4bcau);
  EXPECT_EQ(record.get(R::zipDataRba), 0x52b2u);
  EXPECT_EQ(record.get(R::zipMultiCityListsRba), 0x12a6u);
}

TEST(FormatDocument, WorkedRecordsDecodeToTheValuesInTheirText) {
  const std::string document = slurp(kDocs + "format.md");
  const auto name = rowAt<CityNameRow>(dumpBytes(document, "### A city name"), 0);
  EXPECT_EQ(name.get(CityNameRow::cityKey), 3);
  EXPECT_EQ(name.get(CityNameRow::nameLength), 11);
  EXPECT_EQ(textOf(name.get(CityNameRow::state)), "TX");
  EXPECT_EQ(textOf(name.get(CityNameRow::name)).substr(0, 11), "SAN ANTONIO");

  const auto zip = rowAt<ZipDataRow>(dumpBytes(document, "### A ZIP record"), 0);
  EXPECT_EQ(zip.get(ZipDataRow::zip), 78201u);
  EXPECT_EQ(zip.get(ZipDataRow::sfhRba), 624u);
  EXPECT_EQ(zip.get(ZipDataRow::pobRba), 0u);
  EXPECT_EQ(zip.get(ZipDataRow::rrRba), 0x2200u);
  EXPECT_EQ(zip.get(ZipDataRow::cityKey), 3);
  EXPECT_EQ(zip.get(ZipDataRow::cityKeysCount), 1);
  EXPECT_EQ(zip.get(ZipDataRow::finMultiZipKey), 7);

  const auto size = rowAt<ZipBytesRow>(dumpBytes(document, "### Its ZIP bytes record"), 0);
  EXPECT_EQ(textOf(size.get(ZipBytesRow::state)), "TX");
  EXPECT_EQ(size.get(ZipBytesRow::pobBytes), 0);
  EXPECT_EQ(size.get(ZipBytesRow::rrBytes), 288u);
  EXPECT_EQ(size.get(ZipBytesRow::sfhBytes), 8080u);
}

TEST(MessagesDocument, MessageTableEqualsTheCode) {
  const std::string document = slurp(kDocs + "messages.md");
  std::size_t rows = 0;
  for (std::int32_t number = 0; number < kLogMsgCount; ++number) {
    const std::string start = "\n| " + std::to_string(number) + " | `\"";
    const char* text = logMsgText(number);
    if (text == nullptr) {
      EXPECT_EQ(document.find(start), std::string::npos) << number;
      continue;
    }
    ++rows;
    EXPECT_NE(document.find(start + text + "\"` |"), std::string::npos) << number << ' ' << text;
  }
  EXPECT_GT(rows, 30u);
}

// The sample is the record of a reference database that is a pipe.
TEST(MessagesDocument, SampleRecordIsOneThatTheProgramWrites) {
  const std::string document = slurp(kDocs + "messages.md");
  const std::regex record("\n([0-9/]{8} [0-9:.]{8});(ERR;[a-z]+:[0-9]{4,});[0-9]+;(.*)\n");
  std::smatch sample;
  ASSERT_TRUE(std::regex_search(document, sample, record));
  const test::TempDir folder;
  ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
  const int writer = ::open(folder.file("pipe").c_str(), O_RDWR);
  ASSERT_NE(writer, -1);
  test::Command command;
  command.program = test::kStatecut;
  command.arguments = {"-f", "pipe"};
  command.input = "TX\n";
  command.folder = folder.path();
  EXPECT_EQ(test::runProcess(command).exitStatus, 255);
  ::close(writer);
  const std::string log = test::readTextFile(folder.file("tolvlog.txt"));
  std::smatch written;
  ASSERT_TRUE(std::regex_search(log, written, record)) << log;
  EXPECT_EQ(written[2], sample[2]);
  EXPECT_EQ(written[3], sample[3]);
}

// Comments and code speak of lines that never change; each of them is in the document.
TEST(MessagesDocument, EveryFixedPlaceIsListed) {
  const std::string document = slurp(kDocs + "messages.md");
  const std::string sites = slurp(std::string(test::kSourceFolder) + "/src/cut/logsites.h");
  const std::regex site("\\{k(Dbaccess|Cutstate), ([0-9]+)\\}");
  std::size_t found = 0;
  for (std::sregex_iterator it(sites.begin(), sites.end(), site), end; it != end; ++it, ++found) {
    const std::string source = (*it)[1].str() == "Dbaccess" ? "dbaccess" : "cutstate";
    const std::string line = (*it)[2].str();
    const std::string place = "| " + source + ":" + std::string(4 - line.size(), '0') + line + " |";
    EXPECT_NE(document.find(place), std::string::npos) << place;
  }
  EXPECT_GE(found, 30u);
}

}  // namespace
}  // namespace statecut::docs
