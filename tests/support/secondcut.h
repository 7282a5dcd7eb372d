#pragma once
// A second, naive derivation of the state cut: the same result as the program, byte for byte and
// line for line, reached by code that shares nothing with it but the little-endian leaf header.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace statecut::secondcut {

using Bytes = std::vector<unsigned char>;

// Everything that decides a run. Absent files are files that do not exist.
struct Inputs {
  std::optional<Bytes> ref;
  std::optional<Bytes> rng;
  std::optional<std::string> stateFileName;  // none: the list comes from standard input
  std::optional<std::string> stateText;      // none: the named state file does not exist
  std::string program = "statecut";
  std::string logName = "tolvlog.txt";
  std::string refName = "city.dir";
  std::string rngName = "zip4us.dir";
  std::string outRefName = "city.sc";
  std::string outRngName = "zip4us.sc";
  int logLevel = 3;
  std::uint32_t stamp = 0;  // the state cut time stamp
};

// A named stretch of an output file, to say where a difference lies.
struct Region {
  std::string name;
  std::size_t begin = 0;
  std::size_t end = 0;
};

// An expected output file: created (perhaps only partly written), or never created.
struct OutputFile {
  bool created = false;
  Bytes bytes;
  std::vector<Region> regions;

  void append(const std::string& name, const unsigned char* data, std::size_t count);
  [[nodiscard]] std::string regionAt(std::size_t offset) const;
};

// What the run must leave behind. Lines are patterns (see linepattern.h) without their new line.
struct Outcome {
  int exitStatus = 0;  // low eight bits
  OutputFile ref;
  OutputFile rng;
  bool logCreated = false;
  std::vector<std::string> out;
  std::vector<std::string> err;
  std::vector<std::string> log;
};

// Derives the whole run. Times are shown as UTC: the run compared with must have TZ=UTC0.
Outcome deriveCut(const Inputs& inputs);

}  // namespace statecut::secondcut
