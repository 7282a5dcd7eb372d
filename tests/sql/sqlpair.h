#pragma once
// A random pair, or a cut of it, in a folder: as a Database and as tables of a connection.

#include <gtest/gtest.h>

#include <memory>

#include "connection.h"
#include "dbbuilder/model.h"
#include "dbbuilder/random.h"
#include "dbbuilder/writer.h"
#include "reader/database.h"
#include "support/paths.h"
#include "support/process.h"
#include "support/randomdb.h"

namespace statecut::test {

class SqlPair {
  TempDir folder_;  // before the names in it

 public:
  SqlPair(std::uint64_t seed, bool isCut) : SqlPair(modelOf(seed), isCut) {}
  SqlPair(const builder::Model& model, bool isCut)
      : reference(folder_.file(isCut ? "city.sc" : "city.dir")),
        range(folder_.file(isCut ? "zip4us.sc" : "zip4us.dir")) {
    builder::WrittenFile written;
    std::string text;
    EXPECT_TRUE(builder::writeReferenceFile(model, folder_.file("city.dir"), written, text))
        << text;
    EXPECT_TRUE(builder::writeRangeFile(model, folder_.file("zip4us.dir"), written, text)) << text;
    if (isCut) cut();
    OpenOptions options;
    options.range = range;
    Error error;
    database = Database::open(reference, options, error);
    EXPECT_NE(database, nullptr) << error.text;
    EXPECT_EQ(sql.openAll(reference, range), "");
  }

  std::string reference, range;
  std::shared_ptr<const Database> database;
  Connection sql;

 private:
  static builder::Model modelOf(std::uint64_t seed) {
    builder::Random random(seed);
    std::vector<std::string> states;
    builder::Model model = randomModel(random, states);
    // A Database wants lists that lie in their table.
    std::size_t room = model.multiZipLists.size();
    const auto hold = [&](const auto& share) {
      if (share.zipCount > 1)
        room = std::max(room, std::size_t{share.key} + std::size_t{share.zipCount});
    };
    for (const builder::CityMultiZip& city : model.cityMultiZip) {
      hold(city.sfh);
      hold(city.pob);
      hold(city.rr);
    }
    for (const builder::FinMultiZip& area : model.finMultiZip) hold(area);
    model.multiZipLists.resize(room, 1);
    // Lists of cities, each once.
    const std::size_t cities = model.cityData.size() - 1;
    for (builder::ZipRecord& zip : model.zips) {
      if (zip.cityKeysCount > cities) zip.cityKeysCount = 0;
      if (zip.cityKeysCount < 2) continue;
      zip.cityKeysIndex = static_cast<std::uint32_t>(model.cityKeysOfZips.size());
      const std::uint32_t first = random.below(static_cast<std::uint32_t>(cities));
      for (std::size_t i = 0; i < zip.cityKeysCount; ++i)
        model.cityKeysOfZips.push_back(static_cast<std::uint16_t>(1 + (first + i) % cities));
    }
    return model;
  }

  void cut() {
    Command command;
    command.program = kStatecut;
    command.folder = folder_.path();
    command.input = "TX\nOK\nNY\nPR\n\n";
    EXPECT_EQ(runProcess(command).exitStatus, 0);
  }
};

}  // namespace statecut::test
