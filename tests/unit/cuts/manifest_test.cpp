#include "cuts/manifest.h"

#include <gtest/gtest.h>

#include "cuts/digest.h"
#include "support/process.h"

namespace statecut::cuts {
namespace {

Manifest someManifest() {
  Manifest manifest;
  manifest.version = "1.2.3";
  manifest.reference = {{"city.dir", 1000, "aa"}, 77};
  manifest.range = {{"zip4us.dir", 2000, "bb"}, 77};
  ProductRecord product;
  product.states = {"OK", "TX"};
  product.zips = 3;
  product.cities = 2;
  product.partitions = 5;
  product.reference = {"city.sc", 100, "cc"};
  product.range = {"zip4us.sc", 200, "dd"};
  product.time = 1500000000;
  product.warnings = {"one \"two\""};
  manifest.products["SOUTH"] = product;
  manifest.products["A"] = product;
  return manifest;
}

TEST(Manifest, SaysAllOfIt) {
  const auto read = parseManifest(toText(someManifest()));
  ASSERT_TRUE(read.has_value());
  EXPECT_EQ(read->version, "1.2.3");
  EXPECT_EQ(read->reference, someManifest().reference);
  EXPECT_EQ(read->range, someManifest().range);
  ASSERT_TRUE(read->products.contains("SOUTH"));
  const ProductRecord& product = read->products.at("SOUTH");
  EXPECT_EQ(product.states, (std::vector<std::string>{"OK", "TX"}));
  EXPECT_EQ(product.partitions, 5U);
  EXPECT_EQ(product.range, (FileRecord{"zip4us.sc", 200, "dd"}));
  EXPECT_EQ(product.time, 1500000000U);
  EXPECT_EQ(product.warnings, someManifest().products["A"].warnings);
  EXPECT_EQ(toText(*read), toText(someManifest()));
}

TEST(Manifest, HasItsProductsInOrderAndTimesInWords) {
  const std::string text = toText(someManifest());
  EXPECT_LT(text.find("\"A\": {"), text.find("\"SOUTH\": {"));
  EXPECT_NE(text.find("\"time\": \"2017-07-14T02:40:00Z\""), std::string::npos);
}

TEST(Manifest, ThatIsDamagedIsNone) {
  const std::string text = toText(someManifest());
  ASSERT_TRUE(parseManifest(text).has_value());
  for (std::size_t size = 0; size + 2 < text.size(); ++size)
    EXPECT_FALSE(parseManifest(text.substr(0, size)).has_value()) << size;
  const auto changed = [&](const std::string& from, const std::string& to) {
    std::string other = text;
    other.replace(other.find(from), from.size(), to);
    return parseManifest(other).has_value();
  };
  EXPECT_FALSE(changed("\"bytes\": 1000", "\"bytes\": \"x\""));
  EXPECT_FALSE(changed("\"zips\"", "\"zap\""));
  EXPECT_FALSE(changed("2017-07-14", "then"));
}

TEST(Manifest, ReplacesTheOneBeforeIt) {
  const test::TempDir folder;
  std::string error;
  EXPECT_FALSE(loadManifest(folder.path()).has_value());
  ASSERT_TRUE(saveManifest(folder.path(), someManifest(), error)) << error;
  Manifest other = someManifest();
  other.version = "2";
  ASSERT_TRUE(saveManifest(folder.path(), other, error)) << error;
  EXPECT_EQ(loadManifest(folder.path())->version, "2");
  EXPECT_FALSE(saveManifest(folder.file("none"), other, error));
  EXPECT_NE(error, "");
}

TEST(Digest, IsTheSha256OfAFile) {
  const test::TempDir folder;
  std::string error;
  test::writeWholeFile(folder.file("abc"), {'a', 'b', 'c'});
  test::writeWholeFile(folder.file("empty"), {});
  EXPECT_EQ(sha256OfFile(folder.file("abc"), error),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(sha256OfFile(folder.file("empty"), error),
            "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(error, "");
  EXPECT_EQ(sha256OfFile(folder.file("none"), error), "");
  EXPECT_EQ(error, folder.file("none") + ": No such file or directory");
}

}  // namespace
}  // namespace statecut::cuts
