#include "processes/questions.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <stdexcept>

#include "tables/refpointers.h"

namespace statecut::bench {

namespace {

using R = RefControlRec;

// Picks keys and names of the open database.
class Picker {
 public:
  explicit Picker(const R& ref)
      : ref_(ref),
        streets_(offsets(kSlotStreetNames, ref.get(R::streetNamesBytes))),
        firms_(offsets(kSlotFirms, ref.get(R::firmsBytes))) {}

  std::string below(std::uint32_t count) { return std::to_string(1 + random_() % (count - 1)); }
  std::string zipKey() { return below(ref_.get(R::zipDataCount)); }
  std::string cityKey() { return below(ref_.get(R::cityDataCount)); }
  std::string nameNumber() { return below(ref_.get(R::cityNamesCount)); }
  std::string streetOffset() { return std::to_string(streets_[random_() % streets_.size()]); }
  std::string street() { return packed(kSlotStreetNames, streets_); }
  std::string firm() { return packed(kSlotFirms, firms_); }
  std::string zip() {
    const auto key = static_cast<std::int32_t>(1 + random_() % (ref_.get(R::zipDataCount) - 1));
    return std::to_string(dbGetZipDataFromKey(key)->get(ZipDataRow::zip));
  }
  // State and name.
  std::pair<std::string, std::string> city() {
    const auto number =
        static_cast<std::uint32_t>(1 + random_() % (ref_.get(R::cityNamesCount) - 1));
    const CityNameRow& record = *dbGetCityName(&number);
    const auto state = record.get(CityNameRow::state);
    const auto name = record.get(CityNameRow::name);
    const std::string text(name.begin(), name.begin() + record.get(CityNameRow::nameLength));
    return {std::string(state.begin(), state.end()), spoilt(text)};
  }

 private:
  static std::vector<std::uint32_t> offsets(SlotNumber slot, std::uint32_t bytes) {
    std::vector<std::uint32_t> list;
    const unsigned char* table = refPointers[slot].table;
    for (std::uint32_t at = 0; at < bytes; at += 1 + std::uint32_t{table[at]}) list.push_back(at);
    return list;
  }
  std::string packed(SlotNumber slot, const std::vector<std::uint32_t>& offsets) {
    const unsigned char* at = refPointers[slot].table + offsets[random_() % offsets.size()];
    return spoilt({reinterpret_cast<const char*>(at + 1), *at});
  }
  // Every tenth name becomes another one.
  std::string spoilt(std::string name) {
    if (random_() % 10 == 0) name.back() = '0';
    return name;
  }

  const R& ref_;
  std::mt19937 random_{1};
  std::vector<std::uint32_t> streets_;
  std::vector<std::uint32_t> firms_;
};

std::string quoted(const std::string& name) {
  std::string text = "'";
  for (const char c : name) text += c == '\'' ? std::string("''") : std::string(1, c);
  return text + "'";
}

void add(Questions& questions, const char* op, const nlohmann::json& args, const std::string& sql) {
  questions.calls += nlohmann::ordered_json{{"op", op}, {"args", args}}.dump() + "\n";
  questions.statements += "SELECT " + sql + ";\n";
}

void addKeyed(Questions& questions, const char* op, const std::string& key,
              const std::string& sql) {
  add(questions, op, {std::stoul(key)}, sql + key);
}

void addOne(Questions& questions, Picker& pick, int kind) {
  switch (kind) {
    case 0:
      return addKeyed(questions, "dbGetZipData", pick.zip(),
                      "hex(record), key FROM zips WHERE zip=");
    case 1:
      return addKeyed(questions, "dbGetCityKeysPtr", pick.zipKey(),
                      "city FROM zip_cities WHERE zip_key=");
    case 2: {
      const auto [state, name] = pick.city();
      return add(
          questions, "dbFindCity", {state, name},
          "hex(record) FROM city_names WHERE state=" + quoted(state) + " AND name=" + quoted(name));
    }
    case 3:
      return addKeyed(questions, "dbGetCityData", pick.cityKey(),
                      "hex(record) FROM cities WHERE key=");
    case 4:
      return addKeyed(questions, "dbGetCityUSPS", pick.nameNumber(),
                      "hex(record) FROM city_names WHERE number=");
    case 5:
    case 6: {
      const std::string name = kind == 5 ? pick.street() : pick.firm();
      return add(questions, kind == 5 ? "dbFindStreetKey" : "dbFindFirm", {name},
                 std::string("number FROM ") + (kind == 5 ? "streets" : "firms") +
                     " WHERE name=" + quoted(name));
    }
    default:
      return addKeyed(questions, "dbGetStreetNameUSPS", pick.streetOffset(),
                      "name FROM streets WHERE number=");
  }
}

// The lines in which SQL answers what this answer says.
std::vector<std::string> linesFor(const nlohmann::json& answer) {
  std::vector<std::string> lines;
  if (answer.contains("error")) throw std::runtime_error("a call could not be made");
  if (answer.contains("record") && answer["record"].is_string()) {
    std::string record = answer["record"];
    std::transform(record.begin(), record.end(), record.begin(), [](char c) {
      return 'a' <= c && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    lines.push_back(answer.contains("key") ? record + "|" + answer["key"].dump() : record);
  } else if (answer.contains("keys") && answer["keys"].is_array()) {
    for (const auto& key : answer["keys"]) lines.push_back(key.dump());
  } else if (answer.contains("result") && answer["result"] != -1) {
    lines.push_back(answer["result"].dump());
  } else if (answer.contains("name") && answer["name"].is_string()) {
    lines.push_back(answer["name"]);
  }
  return lines;
}

}  // namespace

Questions mixedQuestions(Session& session, int count) {
  Questions questions;
  Picker pick(session.ref());
  questions.statements = "BEGIN;\n";
  for (int i = 0; i < count; ++i) addOne(questions, pick, i % 8);
  questions.statements += "COMMIT;\n";
  return questions;
}

void compareOutputs(const std::string& answers, const std::string& rows) {
  std::istringstream ours(answers);
  std::istringstream theirs(rows);
  std::string row;
  for (std::string line; std::getline(ours, line);)
    for (const std::string& wanted : linesFor(nlohmann::json::parse(line)))
      if (!std::getline(theirs, row) || row != wanted)
        throw std::runtime_error("statedb answers " + line + ", sqlite3 " + row);
  if (std::getline(theirs, row)) throw std::runtime_error("sqlite3 answers more: " + row);
}

}  // namespace statecut::bench
