// Pages drawn in time, and left behind when they are not.
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>
#include <thread>

#include "engine/source/PdfRenderer.h"
#include "engine/source/SourceThreads.h"
#include "support/PdfBytes.h"
#include "support/TestFile.h"

using namespace korvia;
using namespace korvia::test;

class PdfRendererTest : public QObject {
  Q_OBJECT

  QTemporaryDir folder_;

  QString file(const QString& name, const QByteArray& bytes) { return writeTestFile(folder_, name, bytes); }

 private slots:
  void pagesAreDrawn() {
    PdfRenderer renderer(file("two.pdf", pdfBytes({pdfGrey(1), pdfGrey(0)}, {200, 100})), 60'000);
    QString reason;
    QCOMPARE(renderer.open(reason), 2);
    for (int i = 0; i < 2; ++i) {
      const QImage page = renderer.page(i, {64, 64}, reason);
      QCOMPARE(page.size(), QSize(64, 64));
      QCOMPARE(page.pixelColor(32, 32), QColor(i == 0 ? Qt::white : Qt::black));
      QCOMPARE(page.pixelColor(32, 5), QColor(Qt::black));
    }
    QCOMPARE(reason, QString());
  }

  void slowPageIsLeftAndTheNextOneDrawn() {
    PdfRenderer renderer(file("slow.pdf", pdfBytes({pdfSlow(), pdfGrey(1)}, {2000, 2000})), 1000);
    QString reason;
    QCOMPARE(renderer.open(reason), 2);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(renderer.page(0, {2000, 2000}, reason).isNull());
    QVERIFY(timer.elapsed() >= 990);
    QCOMPARE(reason, QString("takes longer than 1 s"));
    QCOMPARE(renderer.page(1, {64, 64}, reason).pixelColor(32, 32), QColor(Qt::white));
    // The thread that was left behind ends, because the drawing asks whether it is still wanted.
    QVERIFY(waitForClosedSources(60'000));
  }

  void cancelEndsACallThatWaits() {
    PdfRenderer renderer(file("slow.pdf", pdfBytes({pdfSlow()}, {2000, 2000})), 600'000);
    QString reason;
    QCOMPARE(renderer.open(reason), 1);
    QImage page(1, 1, QImage::Format_RGB32);
    std::thread drawing([&] { page = renderer.page(0, {2000, 2000}, reason); });
    renderer.cancel();
    drawing.join();
    QVERIFY(page.isNull());
    QVERIFY(renderer.page(0, {2000, 2000}, reason).isNull());
  }

  void reasons_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("reason");
    const QByteArray whole = pdfBytes({pdfGrey(1)}, {200, 100});
    QTest::newRow("missing") << folder_.filePath("missing.pdf") << "no such file";
    QTest::newRow("folder") << folder_.path() << "is no file";
    QTest::newRow("empty") << file("empty.pdf", "") << "no pdf document, or a broken one";
    QTest::newRow("text") << file("text.pdf", "this is no document") << "no pdf document, or a broken one";
    QTest::newRow("truncated") << file("truncated.pdf", whole.left(60)) << "no pdf document, or a broken one";
    QTest::newRow("locked") << file("locked.pdf", pdfBytes({pdfGrey(1)}, {200, 100}, PdfLock::Password))
                            << "locked by a password";
    QTest::newRow("no page") << file("none.pdf", pdfBytes({}, {200, 100})) << "no page in the document";
  }

  void reasons() {
    QFETCH(QString, path);
    QFETCH(QString, reason);
    PdfRenderer renderer(path, 60'000);
    QString told;
    QCOMPARE(renderer.open(told), 0);
    QCOMPARE(told, reason);
    QVERIFY(renderer.page(0, {10, 10}, told).isNull());
    QCOMPARE(told, reason);
  }

  void errorsInADocumentDoNotFillTheLog() {
    static std::atomic<int> lines;
    lines = 0;
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { ++lines; });
    PdfRenderer renderer(file("damaged.pdf", pdfBytes({"nonsense " + pdfGrey(1)}, {100, 100})), 60'000);
    QString reason;
    renderer.open(reason);
    const QImage page = renderer.page(0, {64, 64}, reason);
    qInstallMessageHandler(previous);
    QCOMPARE(page.pixelColor(32, 32), QColor(Qt::white));
    QCOMPARE(lines.load(), 0);
  }

  void mostPages() {
    PdfRenderer renderer(file("many.pdf", pdfBytes(QVector<QByteArray>(2100, "0 g"), {10, 10})), 60'000);
    QString reason;
    QCOMPARE(renderer.open(reason), 2000);
  }

  void cleanupTestCase() { QTRY_VERIFY_WITH_TIMEOUT(noDrawingIsLeft(), 60'000); }
};

QTEST_GUILESS_MAIN(PdfRendererTest)
#include "tst_pdf_renderer.moc"
