#include <QElapsedTimer>
#include <QScopeGuard>
#include <QtTest>

#include "PacketRig.h"
#include "engine/output/TargetList.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kFinishMs = 5000;

struct NotedTarget {
  explicit NotedTarget(TargetSettings settings = {QStringLiteral("the test")})
      : target(std::make_shared<Target>(settings, std::make_unique<MemoryWriter>(notes))) {}

  std::shared_ptr<WriterNotes> notes = std::make_shared<WriterNotes>();
  std::shared_ptr<Target> target;
};

QVector<qint64> framesAt(std::initializer_list<int> indices) {
  QVector<qint64> stamps;
  for (const int index : indices)
    stamps.append(index * kFrameNs);
  return stamps;
}

}  // namespace

class TestTarget : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { gst_init(nullptr, nullptr); }

  void beginsAt0WithAKeyFrame() {
    NotedTarget noted;
    for (int i = 7; i < 13; ++i)
      QVERIFY(noted.target->push(packetOf(i, i == 10)));
    noted.target->finish();
    QVERIFY(noted.target->waitFinished(kFinishMs));
    QCOMPARE(noted.notes->ptsNs(), framesAt({0, 1, 2}));
    QCOMPARE(noted.notes->keyFrames(), QVector<bool>({true, false, false}));
    const TargetFigures figures = noted.target->figures();
    QCOMPARE(figures.state, TargetState::Finished);
    QCOMPARE(figures.framesWritten, qint64(3));
    QCOMPARE(figures.framesDropped, qint64(0));
    QCOMPARE(figures.framesSkipped, qint64(0));
    QCOMPARE(figures.bytesWritten, qint64(300));
  }

  void statesFromTheFirstKeyFrameToTheEnd() {
    NotedTarget noted;
    QVERIFY(noted.target->push(packetOf(0, false)));
    QCOMPARE(noted.target->figures().state, TargetState::Waiting);
    QVERIFY(noted.target->push(packetOf(1, true)));
    QTRY_COMPARE(noted.target->figures().bytesWritten, qint64(100));
    QCOMPARE(noted.target->figures().state, TargetState::Up);
    noted.notes->block();
    QVERIFY(noted.target->push(packetOf(2, false)));
    QVERIFY(noted.notes->waitBlocked());
    noted.target->finish();
    QCOMPARE(noted.target->figures().state, TargetState::Finishing);
    QVERIFY(!noted.target->push(packetOf(3, false)));
    noted.notes->release();
    QVERIFY(noted.target->waitFinished(kFinishMs));
    QCOMPARE(noted.target->figures().state, TargetState::Finished);
    QCOMPARE(noted.notes->ptsNs(), framesAt({0, 1}));
  }

  void hangingWriterDropsWithinBoundsAndResumes_data() {
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<qint64>("ns");
    QTest::newRow("bytes") << qint64(550) << 1000 * kFrameNs;
    QTest::newRow("time") << qint64(1'000'000) << 5 * kFrameNs;
  }
  void hangingWriterDropsWithinBoundsAndResumes() {
    QFETCH(qint64, bytes);
    QFETCH(qint64, ns);
    TargetSettings settings{QStringLiteral("the test")};
    settings.queueBytes = bytes;
    settings.queueNs = ns;
    NotedTarget noted(settings);
    const auto opener = qScopeGuard([&noted] { noted.notes->release(); });
    noted.notes->block();
    QVERIFY(noted.target->push(packetOf(0, true)));
    QVERIFY(noted.notes->waitBlocked());
    QElapsedTimer timer;
    timer.start();
    for (int i = 1; i < 100; ++i) {
      QVERIFY(noted.target->push(packetOf(i, i % 10 == 0)));
      const TargetFigures figures = noted.target->figures();
      QVERIFY(figures.queuedBytes <= bytes);
      QVERIFY(figures.queuedNs <= ns);
    }
    QVERIFY(timer.elapsed() < 5000);
    QCOMPARE(noted.target->figures().framesDropped, qint64(94));
    noted.notes->release();
    QTRY_COMPARE(noted.target->figures().queuedBytes, qint64(0));
    for (int i = 105; i < 113; ++i)
      QVERIFY(noted.target->push(packetOf(i, i % 10 == 0)));
    noted.target->finish();
    QVERIFY(noted.target->waitFinished(kFinishMs));
    QCOMPARE(noted.notes->ptsNs(), framesAt({0, 1, 2, 3, 4, 5, 110, 111, 112}));
    QCOMPARE(noted.target->figures().framesDropped, qint64(99));
    QCOMPARE(noted.target->figures().framesSkipped, qint64(5));  // 100 to 104 never came
    QCOMPARE(noted.notes->outcome().framesDropped, qint64(104));
  }

  void droppedFramesAreReported() {
    TargetSettings settings{QStringLiteral("the test")};
    settings.queueBytes = 250;
    NotedTarget noted(settings);
    const auto opener = qScopeGuard([&noted] { noted.notes->release(); });
    noted.notes->block();
    QVERIFY(noted.target->push(packetOf(0, true)));
    QVERIFY(noted.notes->waitBlocked());
    for (int i = 1; i < 10; ++i)
      QVERIFY(noted.target->push(packetOf(i, false)));
    QTest::ignoreMessage(QtWarningMsg, "the test cannot keep up, 7 frames dropped");
    noted.notes->release();
    QTRY_VERIFY(noted.notes->checks() >= 2);  // the first one has told it by then
    QCOMPARE(noted.notes->ptsNs().size(), 3);
  }

  void failureIsTold() {
    NotedTarget noted;
    noted.notes->failAt(2);
    for (int i = 0; i < 5; ++i)
      noted.target->push(packetOf(i, i == 0));
    QVERIFY(noted.target->waitFinished(kFinishMs));
    QVERIFY(!noted.target->push(packetOf(5, true)));
    const TargetFigures figures = noted.target->figures();
    QCOMPARE(figures.state, TargetState::Failed);
    QCOMPARE(figures.reason, QString("no memory is left"));
    QVERIFY(noted.notes->outcome().failed);
    QCOMPARE(noted.notes->outcome().reason, QString("no memory is left"));
  }

  void hangingWriterIsLeftBehindInTime() {
    TargetSettings settings{QStringLiteral("the test")};
    settings.finishTimeoutMs = 100;
    NotedTarget noted(settings);
    noted.notes->block();
    QVERIFY(noted.target->push(packetOf(0, true)));
    QVERIFY(noted.notes->waitBlocked());
    QTest::ignoreMessage(QtWarningMsg, "the test does not end, left behind");
    QElapsedTimer timer;
    timer.start();
    noted.target.reset();
    QVERIFY(timer.elapsed() < 5000);
    noted.notes->release();
    // The detached thread still ends its writer.
    QTRY_VERIFY(noted.notes->outcome().failed);
    QCOMPARE(noted.notes->outcome().reason, QString("the end was not written in time"));
  }

  void joinsAtOnceAskForOneKeyFrame() {
    Janitor janitor;
    TargetList list(janitor);
    QVERIFY(!list.takeKeyRequest());
    NotedTarget first;
    NotedTarget second;
    list.join(first.target);
    list.join(second.target);
    QVERIFY(list.takeKeyRequest());
    NotedTarget third;
    list.join(third.target);
    QVERIFY(!list.takeKeyRequest());  // the one that comes will do for the third too
    list.deliver(packetOf(0, true));
    QVERIFY(!list.takeKeyRequest());
    NotedTarget fourth;
    list.join(fourth.target);
    QVERIFY(list.takeKeyRequest());
    list.finishAll();
    QVERIFY(list.isEmpty());
    for (const NotedTarget* noted : {&first, &second, &third}) {
      QVERIFY(noted->target->waitFinished(kFinishMs));
      QCOMPARE(noted->notes->ptsNs(), framesAt({0}));
    }
    QVERIFY(fourth.target->waitFinished(kFinishMs));
    QCOMPARE(fourth.notes->ptsNs(), framesAt({}));
  }

  void nobodyJoinsAfterTheEnd() {
    Janitor janitor;
    TargetList list(janitor);
    list.finishAll();
    NotedTarget late;
    list.join(late.target);
    QVERIFY(list.isEmpty());
    QVERIFY(late.target->waitFinished(kFinishMs));
  }
};

QTEST_APPLESS_MAIN(TestTarget)
#include "tst_target.moc"
