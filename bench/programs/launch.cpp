// launch FILE COMMAND ARG...: runs the command and writes its largest resident size, in KiB, to
// FILE. A process starts with the size of the one that started it, so this one is linked
// statically and stays small.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const pid_t child = vfork();
  if (child == 0) {
    execvp(argv[2], argv + 2);
    _exit(127);
  }
  int status = 0;
  rusage used{};
  if (child < 0 || wait4(child, &status, 0, &used) != child) return 2;
  char text[32];
  const int length = std::snprintf(text, sizeof text, "%ld\n", used.ru_maxrss);
  const int file = open(argv[1], O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (file < 0 || write(file, text, static_cast<std::size_t>(length)) != length) return 2;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
