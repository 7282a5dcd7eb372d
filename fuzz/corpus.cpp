// Writes the seeds of every fuzz target below a folder: the same files each time.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "basepair.h"
#include "calls.h"
#include "dbbuilder/random.h"
#include "dbbuilder/writer.h"
#include "dbfiles/controlrec.h"
#include "format/directory.h"

namespace statecut::fuzz {

namespace {

class Seeds {
 public:
  Seeds(const std::filesystem::path& root, const std::string& target) : folder_(root / target) {
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
  }

  void add(const std::string& name, const Bytes& bytes) const {
    std::ofstream out(folder_ / name, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
    if (!out.flush()) throw std::runtime_error("cannot write a seed into " + folder_.string());
  }
  void add(const std::string& name, std::string_view text) const {
    add(name, Bytes(text.begin(), text.end()));
  }

 private:
  std::filesystem::path folder_;
};

Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

unsigned char byte(std::size_t value) { return static_cast<unsigned char>(value); }

struct NamedEdit {
  std::string name;
  Bytes bytes;  // without the header, with the number of edits
};

// The word of each table's RBA and count, and of the range file's areas, set to each kind of value.
std::vector<NamedEdit> wordEdits(std::size_t step) {
  std::vector<NamedEdit> edits;
  std::size_t number = 0;
  const auto add = [&](EditKind kind, std::size_t at, std::size_t value) {
    if (number++ % step != 0) return;
    edits.push_back(
        {"word-" + std::to_string(kind) + "-" + std::to_string(at) + "-" + std::to_string(value),
         {1, byte(kind), byte(at / 4), byte(value), 7, 3, 1, 0}});
  };
  for (const format::TableDef& table : format::tableDefs())
    for (std::size_t value = 0; value < kValueKinds; ++value) {
      add(kRefWord, table.rbaAt, value);
      if (table.countAt != 0) add(kRefWord, table.countAt, value);
    }
  for (std::size_t at = 32; at < 108; at += 4)
    for (std::size_t value = 0; value < kValueKinds; ++value) add(kRngWord, at, value);
  return edits;
}

// Fields of the first, middle and last record of each table; file lengths at each table's edges.
std::vector<NamedEdit> tableEdits(std::size_t step) {
  std::vector<NamedEdit> edits;
  std::size_t number = 0;
  for (std::size_t table = 0; table < format::kTables; ++table) {
    const std::string of = std::to_string(table);
    for (const unsigned char record : Bytes{0, 1, 254, 255})
      for (const unsigned char at : Bytes{0, 2, 3, 4, 30})
        for (const unsigned char value : {kZero, kAllOnes, kOneMore, kByteLiteral})
          if (number++ % step == 0)
            edits.push_back(
                {"record-" + of + "-" + std::to_string(record) + "-" + std::to_string(at) + "-" +
                     std::to_string(value),
                 {1, kRecord, byte(table), record, at, byte(at == 0 ? 1 : 2), value, 200}});
    for (const unsigned char behind : Bytes{0, 1, 50})
      edits.push_back(
          {"length-" + of + "-" + std::to_string(behind), {1, kLength, 0, byte(table), behind}});
    edits.push_back({"bit-" + of, {1, kBit, byte(table), 3, 0, 4}});
    edits.push_back({"copy-" + of, {1, kCopyRecord, byte(table), 1, 2}});
  }
  return edits;
}

std::vector<NamedEdit> allEdits(std::size_t step) {
  std::vector<NamedEdit> edits = wordEdits(step);
  for (NamedEdit& edit : tableEdits(step)) edits.push_back(std::move(edit));
  return edits;
}

// Bytes that choose arguments.
Bytes someBytes(std::size_t count, builder::Random& random) {
  Bytes bytes(count);
  for (unsigned char& b : bytes) b = byte(random.below(256));
  return bytes;
}

// Each operation once, with arguments from the tables where the bytes say so.
Bytes everyOperation(bool kindBytes, builder::Random& random) {
  Bytes calls;
  for (std::size_t op = 0; op < operationCount(); ++op) {
    if (kindBytes) calls.push_back(0);
    calls = calls + Bytes{byte(op)} + someBytes(6, random);
  }
  return calls;
}

void lookupSeeds(const Seeds& seeds, bool onDisk) {
  builder::Random random(onDisk ? 2 : 1);
  // Settings: bits of memory.cpp; of disk.cpp with block size and entries of the cache.
  const std::vector<Bytes> settings =
      onDisk ? std::vector<Bytes>{{0, 0, 0}, {4, 3, 2}, {12, 4, 3}, {7, 0, 0}, {14, 7, 1}}
             : std::vector<Bytes>{{0}, {1}, {4}, {5}, {31}, {0xE8}};
  for (std::size_t set = 0; set < settings.size(); ++set)
    for (std::size_t op = 0; op < operationCount(); ++op)
      for (const BaseKind kind : {kWhole, kCutPair}) {
        Bytes call = {byte(op)};
        if (onDisk) call.insert(call.begin(), 0);
        seeds.add(
            "op-" + std::to_string(op) + "-" + std::to_string(set) + "-" + std::to_string(kind),
            Bytes{header(kind), 0} + settings[set] + call + someBytes(24, random));
      }
  std::size_t number = 0;
  for (const NamedEdit& edit : allEdits(5))
    seeds.add(edit.name, Bytes{header(kWhole)} + edit.bytes + settings[number++ % settings.size()] +
                             everyOperation(onDisk, random));
  if (!onDisk) return;
  for (unsigned char way = 224; way != 0; ++way)
    seeds.add("cache-" + std::to_string(way),
              Bytes{header(kWhole), 0, 12, byte(way % 10), byte(way % 7), 9, 0, way} +
                  someBytes(90, random));
}

// Each way to open and ask a Database, each damage with some calls.
void databaseSeeds(const Seeds& seeds) {
  constexpr unsigned char kDatabase = 0x20;  // of memory.cpp
  builder::Random random(4);
  for (unsigned char ways = 0; ways < 64; ++ways)
    for (const BaseKind kind : {kWhole, kCutPair})
      seeds.add("database-" + std::to_string(ways) + "-" + std::to_string(kind),
                Bytes{header(kind), 0, kDatabase, ways} + someBytes(400, random));
  unsigned char ways = 0;
  for (const NamedEdit& edit : allEdits(3)) {
    const BaseKind kind = ways % 4 == 0 ? kCutPair : kWhole;
    seeds.add("database-" + edit.name,
              Bytes{header(kind)} + edit.bytes + Bytes{kDatabase, ways} + someBytes(120, random));
    ++ways;
  }
}

void cutSeeds(const Seeds& seeds) {
  const Bytes lists[] = {{1, 0},        {1, 1},    {3, 0, 1, 2},   {0},
                         {2, 200, 250}, {2, 1, 1}, {4, 0, 1, 2, 3}};
  for (std::size_t list = 0; list < std::size(lists); ++list)
    for (const unsigned char bits : Bytes{0x1D, 0x03})
      for (const BaseKind kind : {kWhole, kShortIndex, kCutPair})
        seeds.add("states-" + std::to_string(list) + "-" + std::to_string(bits) + "-" +
                      std::to_string(kind),
                  Bytes{header(kind), 0, bits} + lists[list]);
  std::size_t number = 0;
  for (const NamedEdit& edit : allEdits(11)) {
    const unsigned char bits = number % 4 == 0 ? 0x1B : 0x03;
    seeds.add(edit.name, Bytes{header(number % 3 == 0 ? kShortIndex : kWhole)} + edit.bytes +
                             Bytes{bits} + lists[number % std::size(lists)]);
    ++number;
  }
}

void controlSeeds(const Seeds& seeds) {
  for (const BaseKind kind : {kWhole, kShortIndex, kCutPair}) {
    seeds.add("pair-" + std::to_string(kind), Bytes{header(kind), 0});
    Input input(nullptr, 0);
    const unsigned char first = header(kind);
    Input chosen(&first, 1);
    const DamagedPair pair(chosen);
    Bytes raw = {header(kind, true), 0x4C, 0x03};
    raw.insert(raw.end(), pair.ref().bytes().begin(), pair.ref().bytes().begin() + 844);
    raw = raw + Bytes{0x70, 0x02};
    raw.insert(raw.end(), pair.rng().bytes().begin(), pair.rng().bytes().begin() + 624);
    seeds.add("raw-" + std::to_string(kind), raw);
  }
  for (const NamedEdit& edit : allEdits(3))
    seeds.add(edit.name, Bytes{header(kShortIndex)} + edit.bytes);
}

void hashSeeds(const Seeds& seeds) {
  builder::Random random(3);
  const auto text = [](std::string_view name) {
    return Bytes{byte(name.size())} + Bytes(name.begin(), name.end());
  };
  for (const unsigned char slots : Bytes{0, 128, 129, 130, 136, 200, 255}) {
    for (const unsigned char damages : Bytes{0, 3}) {
      Bytes names = {slots, 12};
      for (unsigned char type = 0; type < 6; ++type)
        names = names + Bytes{type} + text("ADDISON") + Bytes{type} + text("ELM");
      seeds.add("slots-" + std::to_string(slots) + "-" + std::to_string(damages),
                names + Bytes{damages} + someBytes(40, random));
    }
  }
  for (int i = 0; i < 40; ++i) seeds.add("any-" + std::to_string(i), someBytes(300, random));
}

void commandlineSeeds(const Seeds& seeds) {
  constexpr unsigned char kWord = 200;  // the first of the words of commandline.cpp
  constexpr unsigned char kFile = kWord + 25;
  const Bytes lists[] = {{'T', 'X', '\n', 'o', 'k', '\n'},       {},     {'Q', 'Q', '\n'},
                         {'T', 'X', '\r', '\n', '\n', 'O', 'K'}, {'\n'}, {'v', 't'}};
  for (std::size_t list = 0; list < std::size(lists); ++list) {
    const std::string name = "list-" + std::to_string(list);
    seeds.add(name + "-input", Bytes{0} + lists[list]);
    seeds.add(name + "-file", Bytes{2, kWord + 3, kFile} + lists[list]);
    seeds.add(name + "-wait", Bytes{3, kWord + 7, kWord + 3, kFile} + lists[list]);
  }
  Bytes many = {0};
  for (int i = 0; i < 70; ++i) many = many + Bytes{'T', 'X', '\n'};
  seeds.add("list-too-long", many);
  for (unsigned char word = 0; word < 26; ++word)
    seeds.add("word-" + std::to_string(word), Bytes{2, byte(kWord + word), 3, 'a', 'b', 'c'});
  for (const unsigned char option : Bytes{0, 1, 2, 3, 4, 5, 12})
    for (const unsigned char length : Bytes{0, 1})  // 1024 and 1025 bytes
      seeds.add("long-" + std::to_string(option) + "-" + std::to_string(length),
                Bytes{2, byte(kWord + option), 199, length, 4});
}

void csvSeeds(const Seeds& seeds) {
  const std::string head = "zip,state,city,county\n";
  const std::string row = "75001,TX,ADDISON,DALLAS\n";
  seeds.add("rows", head + row + "05401,VT,SAINT ALBANS,CHITTENDEN\n501,NY,A,B\n");
  seeds.add("head", head);
  seeds.add("more-columns", "zip,state,city,county,note\r\n75001,TX,ADDISON,DALLAS,x\r\n");
  seeds.add("no-county", head + "75001,TX,ADDISON,\n");
  seeds.add("twice", head + row + row);
  seeds.add("short-row", head + "75001,TX\n");
  seeds.add("bad-state", head + "75001,tx,ADDISON,DALLAS\n");
  seeds.add("long-city", head + "75001,TX," + std::string(29, 'A') + ",DALLAS\n");
  seeds.add("no-end", head + "75001,TX,MT. O'NEIL & B/C-1,DALLAS");
  seeds.add("nothing", "");
  seeds.add("zero", head + "00000,TX,ADDISON,DALLAS\n");
  // A size that a model is made of.
  std::string model = head + row + "75002,TX,SAINT ALBANS,DALLAS\n00501,NY,HOLTSVILLE,SUFFOLK\n";
  model.append((32 - model.size() % 32) % 32, '\n');
  seeds.add("model", model);
}

}  // namespace

void writeSeeds(const std::string& root) {
  quietProcess();
  controlSeeds(Seeds(root, "control"));
  const Seeds memory(root, "memory");
  lookupSeeds(memory, false);
  databaseSeeds(memory);
  lookupSeeds(Seeds(root, "disk"), true);
  hashSeeds(Seeds(root, "hash"));
  cutSeeds(Seeds(root, "cut"));
  commandlineSeeds(Seeds(root, "commandline"));
  csvSeeds(Seeds(root, "csv"));
}

}  // namespace statecut::fuzz

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: fuzz_corpus FOLDER\n", stderr);
    return 2;
  }
  statecut::fuzz::writeSeeds(argv[1]);
  return 0;
}
