// Answers from several threads, and takes in a new release without a stop: service city.dir 4
//
// A line "TX SPRING" asks for the ZIP codes of a city; its answer is "TX SPRING: 76103 77373". On
// SIGHUP the file is opened anew. Threads that are answering keep the release that they have.

#include <statecut/database.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Release = std::shared_ptr<const statecut::Database>;

std::atomic<Release> release;  // the one in force
std::atomic<bool> finished = false;
std::mutex input;
std::mutex output;

Release opened(const char* path) {
  statecut::OpenOptions options;
  options.indexNames = true;
  options.indexCityZips = true;
  statecut::Error error;
  Release made = statecut::Database::open(path, options, error);
  if (made == nullptr) std::cerr << "service: " + error.text + '\n';
  return made;
}

// A file that cannot be used changes nothing.
void reloadOnHangup(const char* path, const sigset_t& hangup) {
  int signal = 0;
  while (sigwait(&hangup, &signal) == 0 && !finished) {
    if (Release made = opened(path)) {
      release.store(std::move(made));
      std::cerr << "service: reloaded\n";
    }
  }
}

std::string answer(const statecut::Database& db, const std::string& line) {
  std::string text = line + ':';
  if (line.size() < 4) return text + " no city";
  const statecut::CityName name = db.findCity(line.substr(0, 2), line.substr(3));
  if (!name) return text + " no city";
  const auto zips = db.zipsOfCity(name->get(statecut::CityNameRow::cityKey));
  if (!zips) return text + " no memory";
  for (const std::uint16_t key : *zips) {
    const unsigned code = db.zipOfKey(key)->get(statecut::ZipDataRow::zip);
    char digits[16];
    std::snprintf(digits, sizeof digits, " %05u", code);
    text += digits;
  }
  return text;
}

void serve() {
  std::string line;
  for (;;) {
    {
      const std::lock_guard<std::mutex> lock(input);
      if (!std::getline(std::cin, line)) return;
    }
    const Release mine = release.load();
    const std::string text = answer(*mine, line);
    const std::lock_guard<std::mutex> lock(output);
    std::cout << text << std::endl;
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: service REFERENCE THREADS\n";
    return 2;
  }
  // Blocked in every thread: the one that waits for it takes it.
  sigset_t hangup;
  sigemptyset(&hangup);
  sigaddset(&hangup, SIGHUP);
  pthread_sigmask(SIG_BLOCK, &hangup, nullptr);
  Release first = opened(argv[1]);
  if (first == nullptr) return 1;
  release.store(std::move(first));

  std::thread reloader(reloadOnHangup, argv[1], std::cref(hangup));
  std::vector<std::thread> servers(static_cast<std::size_t>(std::max(1, std::atoi(argv[2]))));
  for (std::thread& server : servers) server = std::thread(serve);
  for (std::thread& server : servers) server.join();
  finished = true;
  pthread_kill(reloader.native_handle(), SIGHUP);
  reloader.join();
  return 0;
}
