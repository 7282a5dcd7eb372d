#include "cuts/signals.h"

#include <poll.h>
#include <sys/signalfd.h>

namespace statecut::cuts {

Signals::Signals() {
  sigset_t ours;
  sigemptyset(&ours);
  // A run that ignores the ends of its children, as it may have inherited, never learns of them.
  (void)::signal(SIGCHLD, SIG_DFL);
  sigaddset(&ours, SIGCHLD);
  // What whoever started this run wants it to ignore stays ignored, as by nohup.
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_IGN)
      sigaddset(&ours, signal);
  }
  ::sigprocmask(SIG_BLOCK, &ours, &before_);
  queue_ = Descriptor(::signalfd(-1, &ours, SFD_CLOEXEC | SFD_NONBLOCK));
}

Signals::~Signals() { ::sigprocmask(SIG_SETMASK, &before_, nullptr); }

void Signals::wait(int milliseconds) {
  // Without a queue, for want of descriptors, the children are looked at now and then.
  constexpr int kNowAndThen = 50;
  pollfd one{queue_.get(), POLLIN, 0};
  (void)::poll(&one, queue_ ? 1 : 0, queue_ ? milliseconds : kNowAndThen);
  signalfd_siginfo info{};
  while (queue_ && ::read(queue_.get(), &info, sizeof info) == sizeof info)
    if (info.ssi_signo != SIGCHLD) asked_ = static_cast<int>(info.ssi_signo);
}

}  // namespace statecut::cuts
