// Runs the test of kernels once with each instruction set that the machine has and the kernels know: by
// themselves they take the widest only.
#pragma once
#include <hwy/highway.h>

#include <QCoreApplication>
#include <QtTest>

namespace korvia::test {

template <typename Test>
int runWithEveryInstructionSet(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  int failures = 0;
  for (const auto instructions : hwy::SupportedAndGeneratedTargets()) {
    hwy::GetChosenTarget().Update(instructions);
    qInfo("with %s", hwy::TargetName(instructions));
    Test test;
    failures += QTest::qExec(&test, argc, argv);
  }
  return failures;
}

}  // namespace korvia::test
