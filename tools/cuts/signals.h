#pragma once
// The signals of a run, taken one by one instead of at any moment.

#include <signal.h>

#include "cuts/descriptor.h"

namespace statecut::cuts {

class Signals {
 public:
  Signals();
  ~Signals();
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

  // Returns when a child has ended, the run is asked to end or so many milliseconds are over (-1:
  // never).
  void wait(int milliseconds);

  // The signal that asked the run to end, 0 = none.
  [[nodiscard]] int asked() const { return asked_; }

 private:
  Descriptor queue_;
  sigset_t before_;
  int asked_ = 0;
};

}  // namespace statecut::cuts
