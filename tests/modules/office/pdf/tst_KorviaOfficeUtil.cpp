// Pages of documents as pictures.
#include <sys/stat.h>

#include <QPainter>
#include <QPdfWriter>
#include <QtTest>

#include "KorviaOfficeUtil.h"

class OfficeUtilTest : public QObject {
  Q_OBJECT

 private slots:
  void givesPageSizeAndPages() {
    double width = 0;
    double height = 0;
    KorviaPdfDocument* document = KorviaOfficeUtil::loadPDF(pdf({400, 200}, 3), width, height);
    QVERIFY(document);
    QCOMPARE(qRound(width), 400);
    QCOMPARE(qRound(height), 200);
    const QList<QImage> pages = KorviaOfficeUtil::pdfToImage(document, 200, 100);
    QCOMPARE(pages.size(), 3);
    for (const QImage& page : pages)
      QCOMPARE(page.size(), QSize(200, 100));
    QCOMPARE(pages[0].pixelColor(100, 50), QColor(Qt::red));
    QCOMPARE(pages[0].pixelColor(3, 3), QColor(Qt::red));
    KorviaOfficeUtil::closePDF(document);
  }

  void pageKeepsItsAspectRatioOnBlack() {
    double width = 0;
    double height = 0;
    KorviaPdfDocument* document = KorviaOfficeUtil::loadPDF(pdf({100, 200}, 1), width, height);
    const QList<QImage> pages = KorviaOfficeUtil::pdfToImage(document, 200, 200);
    QCOMPARE(pages.size(), 1);
    QCOMPARE(pages[0].pixelColor(20, 100), QColor(Qt::black));
    QCOMPARE(pages[0].pixelColor(100, 100), QColor(Qt::red));
    QCOMPARE(pages[0].pixelColor(180, 100), QColor(Qt::black));
    KorviaOfficeUtil::closePDF(document);
  }

  void allPagesTogetherStayWithinTheirMemory() {
    double width = 0;
    double height = 0;
    KorviaPdfDocument* document = KorviaOfficeUtil::loadPDF(pdf({400, 200}, 8), width, height);
    const QList<QImage> pages = KorviaOfficeUtil::pdfToImage(document, 8192, 4096);
    KorviaOfficeUtil::closePDF(document);
    QCOMPARE(pages.size(), 8);
    qint64 bytes = 0;
    for (const QImage& page : pages) {
      QCOMPARE(page.size(), pages[0].size());
      bytes += page.sizeInBytes();
    }
    QVERIFY(bytes <= qint64{512} * 1024 * 1024);
    QVERIFY(bytes > qint64{500} * 1024 * 1024);
    QVERIFY(qAbs(pages[0].width() - 2 * pages[0].height()) <= 2);
  }

  void cancelledDrawingStops() {
    double width = 0;
    double height = 0;
    KorviaPdfDocument* document = KorviaOfficeUtil::loadPDF(pdf({400, 200}, 3), width, height);
    const std::atomic<bool> isCancelled{true};
    QCOMPARE(KorviaOfficeUtil::pdfToImage(document, 100, 100, &isCancelled).size(), 0);
    QCOMPARE(KorviaOfficeUtil::pdfToImage(document, 0, 100).size(), 0);
    QCOMPARE(KorviaOfficeUtil::pdfToImage(document, 100, -1).size(), 0);
    KorviaOfficeUtil::closePDF(document);
  }

  void refusesWhatIsNoDocument() {
    QFile text(_folder.filePath("no.pdf"));
    QVERIFY(text.open(QIODevice::WriteOnly));
    text.write("%PDF-1.4 nothing");
    text.close();
    const QByteArray fifo = QFile::encodeName(_folder.filePath("fifo"));
    QCOMPARE(mkfifo(fifo.constData(), 0600), 0);
    double width = 1;
    double height = 2;
    for (const QString& path :
         {text.fileName(), _folder.filePath("missing"), _folder.path(), _folder.filePath("fifo"), QString()})
      QVERIFY2(!KorviaOfficeUtil::loadPDF(path, width, height), qPrintable(path));
    QCOMPARE(width, 1.0);
    QCOMPARE(height, 2.0);
    QCOMPARE(KorviaOfficeUtil::pdfToImage(nullptr, 100, 100).size(), 0);
    KorviaOfficeUtil::closePDF(nullptr);
  }

 private:
  QString pdf(const QSizeF& points, int pages) const {
    QPdfWriter writer(_folder.filePath("made.pdf"));
    writer.setPageSize(QPageSize(points, QPageSize::Point, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF());
    QPainter painter(&writer);
    for (int page = 0; page < pages; ++page) {
      if (page > 0)
        writer.newPage();
      painter.fillRect(QRect(0, 0, writer.width(), writer.height()), Qt::red);
    }
    return _folder.filePath("made.pdf");
  }

  const QTemporaryDir _folder;
};

QTEST_MAIN(OfficeUtilTest)
#include "tst_KorviaOfficeUtil.moc"
