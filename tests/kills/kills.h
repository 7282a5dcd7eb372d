#pragma once
// What the kill suites share.

#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include "dbbuilder/model.h"
#include "dbbuilder/profiles.h"
#include "dbbuilder/writer.h"
#include "support/counts.h"
#include "support/process.h"
#include "verify/verify.h"

namespace statecut::test {

// The status of `statedb verify`: 0 nothing wrong, 1 findings, 2 it cannot run.
struct Verdict {
  int status = 0;
  std::string text;
};

inline Verdict verdictOf(const verify::Options& options) {
  std::ostringstream out, err;
  Verdict verdict;
  verdict.status = verify::run(options, out, err);
  verdict.text = out.str() + err.str();
  return verdict;
}

inline const char* signalName(int signal) { return signal == SIGKILL ? "SIGKILL" : "SIGTERM"; }

}  // namespace statecut::test
