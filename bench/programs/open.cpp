// open REFERENCE COUNT STATE CITY   opens the reference file in memory, finds the city and closes,
//                                   COUNT times
// open REFERENCE COUNT              reads the whole file into fresh memory instead
// Includes the installed headers alone, so that it also builds against another version's library.

#include <fcntl.h>
#include <malloc.h>
#include <statecut/lookup.h>
#include <statecut/session.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace {

bool openAndFind(const char* file, const char* state, const char* city) {
  statecut::SessionSettings settings;
  settings.ref = file;
  statecut::Session session;
  std::string error;
  return session.open(settings, error) &&
         statecut::dbFindCity(state, city, static_cast<std::int32_t>(std::strlen(city))) != nullptr;
}

bool readWhole(const char* path) {
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  struct stat status {};
  if (file < 0 || fstat(file, &status) != 0) return false;
  const auto bytes = static_cast<std::size_t>(status.st_size);
  void* memory = std::malloc(bytes);
  const bool good = memory != nullptr && pread(file, memory, bytes, 0) == status.st_size;
  std::free(memory);
  close(file);
  return good;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3 && argc != 5) return 2;
  mallopt(M_MMAP_THRESHOLD, 128 << 10);  // every opening touches fresh pages, like the first one
  for (int i = std::atoi(argv[2]); i > 0; --i)
    if (!(argc == 5 ? openAndFind(argv[1], argv[3], argv[4]) : readWhole(argv[1]))) return 1;
  return 0;
}
