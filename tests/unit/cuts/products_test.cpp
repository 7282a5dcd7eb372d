// Which products a run makes, and what they are called.

#include <gtest/gtest.h>

#include "cuts/names.h"
#include "cuts/products.h"
#include "support/process.h"

namespace statecut::cuts {
namespace {

using Texts = std::vector<std::string>;

ProductList listOf(const test::TempDir& folder, const std::string& text) {
  test::writeWholeFile(folder.file("list"), {text.begin(), text.end()});
  return readProducts(folder.file("list"));
}

TEST(ProductNames, AreNamesOfFoldersThatNoShellMindsOrHides) {
  for (const char* name : {"TX", "south-west", "a.b", "1", "x_y+z"})
    EXPECT_TRUE(isProductName(name)) << name;
  EXPECT_TRUE(isProductName(std::string(200, 'x')));
  EXPECT_FALSE(isProductName(std::string(201, 'x')));
  for (const char* name : {"", ".", "..", ".hidden", "-x", "a/b", "a b", "a\nb", "manifest.json"})
    EXPECT_FALSE(isProductName(name)) << name;
}

TEST(ProductNames, ArePartOfTheNamesThatProductsAreMadeUnder) {
  EXPECT_EQ(partName("TX"), ".TX.part");
  EXPECT_TRUE(isPartName(partName("TX")));
  for (const char* name : {"TX", ".part", "..part", ".a b.part", ".TX.parts", "TX.part"})
    EXPECT_FALSE(isPartName(name)) << name;
}

TEST(ProductWords, NameAProductAndItsStates) {
  const ProductList list = parseProducts({"SOUTH=tx, OK", "NY=NY"});
  ASSERT_EQ(list.problems, Texts{});
  ASSERT_EQ(list.products.size(), 2U);
  EXPECT_EQ(list.products[0].name, "SOUTH");
  EXPECT_EQ(list.products[0].states, (Texts{"TX", "OK"}));
  EXPECT_EQ(list.products[1].name, "NY");
}

TEST(ProductWords, ThatNameNoProductAreAllTold) {
  const ProductList list =
      parseProducts({"SOUTH=TX", "SOUTH=OK", "TX", "=TX", "a/b=TX", "X=", "Y=TXX", "Z=TX,QQ"});
  EXPECT_EQ(
      list.problems,
      (Texts{"--product: SOUTH stands there twice", "--product: not NAME=STATES: \"TX\"",
             "--product: no name for a folder: \"\"", "--product: no name for a folder: \"a/b\"",
             "--product: X: no list of two-letter states: \"\"",
             "--product: Y: no list of two-letter states: \"TXX\"",
             "--product: Z: no such state: QQ"}));
}

TEST(ProductFile, HasALineAProductAndComments) {
  const test::TempDir folder;
  const ProductList list =
      listOf(folder, "# regions\n\nSOUTH: TX OK  # both\n  NORTH :ny,vt\r\nLAST: WY");
  ASSERT_EQ(list.problems, Texts{});
  ASSERT_EQ(list.products.size(), 3U);
  EXPECT_EQ(list.products[0].states, (Texts{"TX", "OK"}));
  EXPECT_EQ(list.products[1].name, "NORTH");
  EXPECT_EQ(list.products[1].states, (Texts{"NY", "VT"}));
  EXPECT_EQ(list.products[2].name, "LAST");
}

TEST(ProductFile, ThatIsWrongIsToldLineByLine) {
  const test::TempDir folder;
  const std::string path = folder.file("list");
  EXPECT_EQ(listOf(folder, "A: TX\nB: OK\n").problems, Texts{});
  EXPECT_EQ(listOf(folder, "A: TX\nB OK\nA: OK\nC: QQ\n").problems,
            (Texts{path + ":2: not NAME: STATES: \"B OK\"", path + ":3: A stands there twice",
                   path + ":4: C: no such state: QQ"}));
  EXPECT_EQ(readProducts(folder.file("none")).problems,
            Texts{folder.file("none") + ": No such file or directory"});
  EXPECT_EQ(readProducts(folder.path()).problems, Texts{folder.path() + ": Is a directory"});
}

TEST(EveryState, IsAProductOfEachAbbreviation) {
  const ProductList list = everyState();
  EXPECT_EQ(list.products.size(), 63U);
  EXPECT_EQ(list.products.front().name, "AA");
  EXPECT_EQ(list.products.front().states, Texts{"AA"});
}

}  // namespace
}  // namespace statecut::cuts
