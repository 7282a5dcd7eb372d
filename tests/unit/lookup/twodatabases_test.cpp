// Two databases with hash tables of different sizes, one after the other in one process: every name
// of each is found.

#include <array>
#include <functional>

#include "base/memory.h"
#include "dbbuilder/places.h"
#include "dbbuilder/profiles.h"
#include "dbbuilder/writer.h"
#include "dbfiles/apiutil.h"
#include "hash/namehash.h"
#include "lookup/session.h"
#include "support/logfixture.h"
#include "tables/dbapi.h"
#include "tables/tolvfree.h"

namespace statecut::test {
namespace {

struct Name {
  std::uint32_t type;
  std::string text;
};

struct Database {
  std::string path;
  std::vector<Name> names;
};

std::vector<Name> namesOf(const builder::Model& model) {
  std::vector<Name> names;
  for (const std::string& firm : model.firmNames) names.push_back({kFirmNames, firm});
  for (const std::string& street : model.streetNames) names.push_back({kStreetNames, street});
  for (std::size_t i = 1; i < model.cityNames.size(); ++i)
    names.push_back({kCityNames, model.cityNames[i].state + model.cityNames[i].name});
  for (const auto& variation : model.streetStandards)
    names.push_back({kStreetStandards, variation.name});
  for (const auto& variation : model.streetPhonetics)
    names.push_back({kStreetPhonetics, variation.name});
  for (std::size_t i = 1; i < model.cityPhonetics.size(); ++i)
    names.push_back({kCityPhonetics, model.cityPhonetics[i].state + model.cityPhonetics[i].key});
  return names;
}

using Find = decltype(&dbHashFind);

class TwoDatabases : public LogFixture {
 protected:
  TwoDatabases() {
    pProcObj = nullptr;
    refPointers = {};
    for (const std::uint32_t slots : {1024U, 8192U}) {
      builder::Model model = builder::makeModel(builder::tinyPlaces(), builder::tinyOptions());
      model.hash.slots = slots;
      databases_[made_++] = {
          write("ref" + std::to_string(slots), builder::referenceFile(model).bytes),
          namesOf(model)};
    }
  }

  ~TwoDatabases() override { refPointers = {}; }

  // Runs `visit` on one database and then on the other, in both orders.
  void inBothOrders(const std::function<void(const Database&)>& visit) const {
    for (const std::size_t first : {0U, 1U}) {
      visit(databases_[first]);
      visit(databases_[1 - first]);
    }
  }

  static std::size_t missing(const Database& database, Find find) {
    std::size_t missed = 0;
    for (const Name& name : database.names) {
      const auto* bytes = reinterpret_cast<const unsigned char*>(name.text.data());
      const auto length = static_cast<std::int32_t>(name.text.size());
      if (find(bytes, length, name.type, pProcObj) == kNotFound) ++missed;
    }
    return missed;
  }

  void openWithoutSession(const Database& database) {
    pProcObj = &proc_;
    proc_.files->reference = dbOpenRefDB(&proc_, database.path.c_str());
    ASSERT_NE(proc_.files->reference, nullptr);
    ASSERT_NE(dbReadRefControlRec(proc_.files->reference, &proc_), nullptr);
  }
  void closeWithoutSession() {
    dbCloseRefDB();
    proc_.files->reference = nullptr;
    proc_.refControlRec = nullptr;
    pProcObj = nullptr;
  }

  std::array<Database, 2> databases_;
  std::size_t made_ = 0;
};

TEST_F(TwoDatabases, EveryNameIsFoundWithASession) {
  for (const auto& [mode, find] :
       {std::pair(LookupMode::kIn, &dbHashFind), std::pair(LookupMode::kOff, &dbHashFindOff)}) {
    inBothOrders([mode = mode, find = find](const Database& database) {
      Session session;
      SessionSettings settings;
      settings.ref = database.path;
      settings.mode = mode;
      std::string error;
      ASSERT_TRUE(session.open(settings, error)) << error;
      ASSERT_GT(database.names.size(), 100U);
      EXPECT_EQ(missing(database, find), 0U);
    });
  }
}

TEST_F(TwoDatabases, EveryNameIsFoundInMemoryWithoutASession) {
  inBothOrders([this](const Database& database) {
    openWithoutSession(database);
    for (TableReader* reader :
         {dbReadFirmNames, dbReadStreetNames, dbReadCityNames, dbReadStreetStndrdzd,
          dbReadStreetPhonetics, dbReadCityPhonetics, dbReadHashedNames})
      ASSERT_EQ(reader(proc_.files->reference, proc_.refControlRec, &proc_), 0);
    EXPECT_EQ(missing(database, dbHashFind), 0U);
    referenceCount = 1;
    EXPECT_EQ(dbTerminate(&proc_), 0);
    closeWithoutSession();
  });
}

TEST_F(TwoDatabases, EveryNameIsFoundOnDiskWithoutASession) {
  inBothOrders([this](const Database& database) {
    openWithoutSession(database);
    EXPECT_EQ(missing(database, dbHashFindOff), 0U);
    freeTable(proc_.refControlRec);
    closeWithoutSession();
  });
}

// Loading and releasing alone renew what is kept, whatever is searched.
TEST_F(TwoDatabases, TheKeptMaskFollowsTheLoadedTable) {
  const auto kept = [] { return le::get<4>(refPointers[kSlotHashMask].bytes); };
  openWithoutSession(databases_[0]);
  ASSERT_EQ(dbReadHashedNames(proc_.files->reference, proc_.refControlRec, &proc_), 0);
  EXPECT_EQ(kept(), 1023U);
  free18(&proc_);
  EXPECT_EQ(kept(), 0U);
  freeTable(proc_.refControlRec);
  closeWithoutSession();
  openWithoutSession(databases_[1]);
  ASSERT_EQ(dbReadHashedNames(proc_.files->reference, proc_.refControlRec, &proc_), 0);
  EXPECT_EQ(kept(), 8191U);
  free18(&proc_);
  freeTable(proc_.refControlRec);
  closeWithoutSession();
}

}  // namespace
}  // namespace statecut::test
