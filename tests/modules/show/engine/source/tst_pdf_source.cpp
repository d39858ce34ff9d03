// Pages of a document as a source: on black, one after another by the buttons alone.
#include <QTemporaryDir>
#include <QtTest>

#include "SourceRig.h"
#include "support/PdfBytes.h"
#include "support/TestFile.h"

using namespace korvia;
using namespace korvia::test;

class PdfSourceTest : public QObject {
  Q_OBJECT

  QTemporaryDir folder_;

  QString file(const QString& name, const QByteArray& bytes) { return writeTestFile(folder_, name, bytes); }

  static void open(SourceRig& rig, const QString& path) {
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindPdf;
    info.pdfPath = path;
    rig.open(info);
  }

  static int lumaOf(SourceRig& rig, int ticks = 1) {
    const FrameRef frame = rig->pullFrame(ticks);
    return frame ? codesAt(frame, 32, 18)[0] : -1;
  }

 private slots:
  void pageKeepsItsAspectRatioOnBlack() {
    SourceRig rig({64, 36});
    open(rig, file("square.pdf", pdfBytes({pdfGrey(1)}, {100, 100})));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    const FrameRef frame = rig->pullFrame(1);
    QCOMPARE(frame->width(), 64);
    QCOMPARE(frame->height(), 36);
    QVERIFY(!frame->hasAlpha());
    QCOMPARE(codesAt(frame, 32, 18), (QVector<int>{235, 128, 128}));
    QCOMPARE(codesAt(frame, 15, 1), (QVector<int>{235, 128, 128}));
    QCOMPARE(codesAt(frame, 48, 34), (QVector<int>{235, 128, 128}));
    QCOMPARE(codesAt(frame, 12, 18), (QVector<int>{16, 128, 128}));
    QCOMPARE(codesAt(frame, 51, 18), (QVector<int>{16, 128, 128}));
    QCOMPARE(rig->figures().description, QString("square.pdf"));
  }

  void buttonsTurnThePages() {
    SourceRig rig({64, 36});
    open(rig, file("three.pdf", pdfBytes({pdfGrey(1), pdfGrey(0), pdfGrey(1)}, {160, 90})));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QCOMPARE(rig->getItemCount(), 3);
    QCOMPARE(rig->getItemIndex(), 0);
    QCOMPARE(lumaOf(rig), 235);
    rig->prev();
    QCOMPARE(rig->getItemIndex(), 0);
    rig->next();
    QTRY_COMPARE(lumaOf(rig), 16);
    rig->next();
    QTRY_COMPARE(lumaOf(rig), 235);
    QCOMPARE(rig->getItemIndex(), 2);
    rig->next();
    QCOMPARE(rig->getItemIndex(), 2);
    rig->setPosition(50);
    QTRY_COMPARE(lumaOf(rig), 16);
    QCOMPARE(rig.position(), qint64(50));
  }

  void pagesDoNotTurnByThemselves() {
    SourceRig rig({64, 36});
    open(rig, file("two.pdf", pdfBytes({pdfGrey(1), pdfGrey(0)}, {160, 90})));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QCOMPARE(lumaOf(rig, 100'000), 235);
    QCOMPARE(lumaOf(rig), 235);
    QCOMPARE(rig->getItemIndex(), 0);
    QCOMPARE(rig.durationMs(), qint64(0));
    QCOMPARE(rig.timeMs(), qint64(0));
  }

  void errorAndALine_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << folder_.filePath("missing.pdf") << "no such file";
    QTest::newRow("broken") << file("broken.pdf", "%PDF-1.4 nothing") << "no pdf document, or a broken one";
    QTest::newRow("locked") << file("locked.pdf", pdfBytes({pdfGrey(1)}, {200, 100}, PdfLock::Password))
                            << "locked by a password";
  }

  void errorAndALine() {
    QFETCH(QString, path);
    QFETCH(QString, reason);
    WarningKeeper log;
    SourceRig rig({64, 36});
    open(rig, path);
    QTRY_COMPARE(rig->getPlayState(), int(Error));
    QVERIFY(!rig->pullFrame(1));
    QCOMPARE(log.lines(), QStringList{"document cannot be shown : " + path + " : " + reason});
    tagKorviaSourceLinkState state;
    rig->getState(state);
    QCOMPARE(state.reason, reason);
    rig->play();
    rig->next();
    QCOMPARE(rig->getPlayState(), int(Error));
  }

  void closeWhileASlowPageIsDrawn() {
    WarningKeeper log;
    SourceRig rig({1920, 1080});
    open(rig, file("slow.pdf", pdfBytes({pdfGrey(1), pdfSlow()}, {1600, 900})));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QElapsedTimer timer;
    timer.start();
    rig.close();
    QVERIFY(timer.elapsed() < 1000);
    rig.drop();
    QVERIFY(waitForClosedSources(60'000));
    QCOMPARE(log.lines(), QStringList());
  }

  void slowPageLeavesThePageBefore() {
    WarningKeeper log;
    const QString path = file("slow.pdf", pdfBytes({pdfGrey(1), pdfSlow(), pdfGrey(0)}, {1600, 900}));
    SourceRig rig({1920, 1080});
    open(rig, path);
    QTRY_COMPARE_WITH_TIMEOUT(rig->getPlayState(), int(Playing), 30'000);
    rig->next();
    QTRY_COMPARE_WITH_TIMEOUT(
        log.lines(), QStringList{"page 2 cannot be shown : " + path + " : takes longer than 10 s"}, 60'000);
    QCOMPARE(lumaOf(rig), 235);
    QCOMPARE(rig->getPlayState(), int(Playing));
    rig->next();
    QTRY_COMPARE_WITH_TIMEOUT(lumaOf(rig), 16, 30'000);
    QCOMPARE(rig->getItemIndex(), 2);
  }

  void cleanupTestCase() { QTRY_VERIFY_WITH_TIMEOUT(noDrawingIsLeft(), 60'000); }
};

QTEST_GUILESS_MAIN(PdfSourceTest)
#include "tst_pdf_source.moc"
