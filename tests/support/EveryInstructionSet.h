// Runs the test of kernels once with each instruction set that the machine has and the kernels know: by
// themselves they take the widest only.
#pragma once
#include <hwy/highway.h>

#include <QCoreApplication>
#include <QtTest>
#include <vector>

namespace korvia::test {

/// As bits of HWY_TARGETS, the widest first.
inline std::vector<std::int64_t> everyInstructionSet() {
  return hwy::SupportedAndGeneratedTargets();
}

/// From now on kernels run with this one.
inline void chooseInstructionSet(std::int64_t instructions) {
  hwy::GetChosenTarget().Update(instructions);
}

template <typename Test>
int runWithEveryInstructionSet(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  int failures = 0;
  for (const std::int64_t instructions : everyInstructionSet()) {
    chooseInstructionSet(instructions);
    qInfo("with %s", hwy::TargetName(instructions));
    Test test;
    failures += QTest::qExec(&test, argc, argv);
  }
  return failures;
}

}  // namespace korvia::test
