// That the tests of kernels leave out no instruction set of the machine, in whatever way the engine is built.
#include <QtTest>
#include <bit>

#include "engine/kernels/InstructionSet.h"
#include "support/EveryInstructionSet.h"

using namespace korvia;
using namespace korvia::test;

namespace {

// Both do without vectors. The kernels have one of them: EMU128, or SCALAR where the compiler is known to
// translate EMU128 wrongly.
constexpr std::int64_t kWithoutVectors = HWY_SCALAR | HWY_EMU128;
// AVX-512 with further instructions, which no kernel uses and Highway compiles on request only.
constexpr std::int64_t kNotAskedFor = HWY_AVX3_DL;

}  // namespace

class InstructionSetsTest : public QObject {
  Q_OBJECT

 private slots:
  void allOfTheMachineAreTested() {
    // Highway asks the processor, whichever sets the engine is compiled for.
    const std::int64_t ofTheMachine = hwy::SupportedTargets();
    std::int64_t tested = 0;
    for (const std::int64_t instructions : everyInstructionSet())
      tested |= instructions;
    QCOMPARE(tested & ~kWithoutVectors, ofTheMachine & ~kWithoutVectors & ~kNotAskedFor);
    QCOMPARE(std::popcount(static_cast<std::uint64_t>(tested & kWithoutVectors)), 1);
  }

  void kernelsRunWithTheOneThatIsChosen() {
    for (const std::int64_t instructions : everyInstructionSet()) {
      chooseInstructionSet(instructions);
      QCOMPARE(instructionSetName(), hwy::TargetName(instructions));
    }
  }
};

QTEST_GUILESS_MAIN(InstructionSetsTest)
#include "tst_instruction_sets.moc"
