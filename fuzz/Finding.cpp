#include "Finding.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace fuzz {
namespace {

// Runs after GoogleTest's own listener, so the text of the failure is already printed.
class Reporter : public testing::EmptyTestEventListener {
  void OnTestPartResult(const testing::TestPartResult& result) override {
    if (result.failed()) Report("a failed assertion");
  }
};

}  // namespace

void Report(const std::string& finding) {
  std::fflush(stdout);
  std::fprintf(stderr, "FINDING: %s\n", finding.c_str());
  std::abort();
}

void ReportFailedAssertions() {
  testing::UnitTest::GetInstance()->listeners().Append(new Reporter);
}

}  // namespace fuzz
