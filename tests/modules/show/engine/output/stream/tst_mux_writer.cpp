// What the operator reads when a stream cannot be made.
#include "StreamRig.h"
#include "engine/output/stream/MuxWriter.h"
#include "engine/output/stream/RetryingWriter.h"

using namespace korvia;
using namespace korvia::test;

class MuxWriterTest : public QObject {
  Q_OBJECT

 private slots:
  void anElementThatIsMissingIsNamed() {
    const auto make = [] {
      MuxPlan plan;
      plan.container = MuxPlan::ts();
      plan.sink.element = "nosuchsink";
      return std::make_unique<MuxWriter>(plan);
    };
    RetrySettings retry;
    retry.label = QStringLiteral("the stream");
    LiveSlot live({std::make_shared<Target>(TargetSettings{QStringLiteral("the stream")},
                                            std::make_unique<RetryingWriter>(retry, make))});
    QVERIFY(live.waitFor(KorviaShowTargetState::Lost));
    QCOMPARE(live.report().reason, QString("the element nosuchsink is not installed"));
  }

  void settingsThatCannotWorkAreRefused() {
    MuxPlan plan;
    plan.problem = QStringLiteral("no address");
    MuxWriter writer(plan);
    QVERIFY(!writer.open([] {}));
    QCOMPARE(writer.failure(), QString("no address"));
  }

  void anObstacleIsAFailureOfThisTryAlone() {
    MuxPlan plan;
    plan.obstacle = QStringLiteral("the port is in use");
    MuxWriter writer(plan);
    QVERIFY(writer.open([] {}));
    QCOMPARE(writer.progress(), TargetWriter::Progress::Failed);
    QCOMPARE(writer.failure(), QString("the port is in use"));
  }
};

QTEST_GUILESS_MAIN(MuxWriterTest)
#include "tst_mux_writer.moc"
