// The life of the paint pad, and what its sink hears.
#include <QtTest>

#include "GWhitePadObject.h"
#include "IGWhitePadSink.h"

namespace {

class RecordingSink final : public IGWhitePadSink {
 public:
  void onCommitWhitePadImage(const QImage&) override { calls.append("commit"); }
  void onSetWhitePadValid(bool valid) override { calls.append(valid ? "valid" : "invalid"); }
  void onPauseWhitePad(bool pause) override { calls.append(pause ? "pause" : "go on"); }
  void onSelectWhitePadChannel(int index) override { calls.append("channel " + QString::number(index)); }
  void onWhitePadShown() override { calls.append("shown"); }
  void onWhitePadHidden() override { calls.append("hidden"); }

  QStringList calls;
};

}  // namespace

class WhitePadTest : public QObject {
  Q_OBJECT

 private slots:
  void creationIsChecked() {
    RecordingSink sink;
    GWhitePadObject pad;
    QVERIFY(!pad.start(QSize(1280, 720)));
    QVERIFY(!pad.create(nullptr, "PaitPad", 8, nullptr, 100));
    QVERIFY(!pad.create(&sink, "PaitPad", 0, nullptr, 100));
    QVERIFY(!pad.create(&sink, "PaitPad", 8, nullptr, 0));
    QVERIFY(pad.create(&sink, "PaitPad", 8, nullptr, 100));
    QVERIFY(!pad.create(&sink, "PaitPad", 8, nullptr, 100));
    QVERIFY(!pad.start(QSize()));
    QVERIFY(!pad.start(QSize(0, 720)));
    QVERIFY(!pad.start(QSize(8193, 720)));
    QVERIFY(pad.start(QSize(1280, 720)));
    QCOMPARE(sink.calls, QStringList());
  }

  void showingSpringsBack() {
    RecordingSink sink;
    GWhitePadObject pad;
    QVERIFY(pad.create(&sink, "PaitPad", 8, nullptr, 100));
    pad.setVisible(true);
    QCOMPARE(sink.calls, QStringList());
    QVERIFY(pad.start(QSize(1280, 720)));
    pad.setVisible(false, false);
    QCOMPARE(sink.calls, QStringList());
    QTest::ignoreMessage(QtInfoMsg, "paint pad \"PaitPad\" has no drawing surface yet");
    pad.setVisible(true);
    QCOMPARE(sink.calls, QStringList{"invalid"});
  }

  void nothingIsHeardAfterTheEnd() {
    RecordingSink sink;
    GWhitePadObject pad;
    QVERIFY(pad.create(&sink, "PaitPad", 8, nullptr, 100));
    QVERIFY(pad.start(QSize(1280, 720)));
    pad.destory();
    pad.setVisible(true);
    pad.updateBackground();
    pad.destory();
    QCOMPARE(sink.calls, QStringList());
    QVERIFY(pad.create(&sink, "PaitPad", 8, nullptr, 100));
  }

  void backgroundFromAnotherThread() {
    RecordingSink sink;
    GWhitePadObject pad;
    QVERIFY(pad.create(&sink, "PaitPad", 8, nullptr, 100));
    QVERIFY(pad.start(QSize(1280, 720)));
    bool lent = false;
    std::thread engine([&] {
      for (int n = 0; n < 1000; ++n) {
        const QImage image = pad.lockBackground();
        lent = lent || !image.isNull();
        pad.unlockBackground(image);
      }
    });
    for (int n = 0; n < 1000; ++n)
      pad.updateBackground();
    pad.destory();
    engine.join();
    QVERIFY(!lent);
    pad.unlockBackground(QImage(16, 16, QImage::Format_ARGB32));
    QVERIFY(pad.lockBackground().isNull());
  }
};

QTEST_GUILESS_MAIN(WhitePadTest)
#include "tst_GWhitePadObject.moc"
