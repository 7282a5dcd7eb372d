// What ends a process that has no memory left.

#include <gtest/gtest.h>

#include <csignal>
#include <exception>

#include "run/process.h"

namespace {

using namespace statecut;

void throwOne() { throw 1; }

TEST(ProcessDeathTest, EndWithoutAnExceptionIsWantOfMemory) {
  EXPECT_EXIT(
      {
        prepareProcess();
        std::terminate();
      },
      testing::ExitedWithCode(255), "^statecut: out of memory\n$");
}

TEST(ProcessDeathTest, ExceptionThatNobodyCatchesIsToldAsBefore) {
  EXPECT_EXIT(
      {
        prepareProcess();
        []() noexcept { throwOne(); }();
      },
      testing::KilledBySignal(SIGABRT), "terminate called after throwing an instance of 'int'");
}

}  // namespace
