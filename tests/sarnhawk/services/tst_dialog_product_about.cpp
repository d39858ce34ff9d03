#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <string_view>

#include "WebDesk.h"
#include "services/GDialogProductAbout.h"
#include "services/qrCode.h"
#include "shell/tagKorviaProductInfo.h"

namespace {

template <std::size_t N>
void setText(char16_t (&field)[N], std::u16string_view text) {
  std::copy(text.begin(), text.end(), field);
}

}  // namespace

class TestDialogProductAbout : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase();
  void versionLosesItsLastCharacter_data();
  void versionLosesItsLastCharacter();
  void missingFileGivesNoVersion();
  void showsTheRecord();
  void fieldsWithoutEndAreCutAtTheirEnd();
  void looksAsItShould();
  void pageIsShownWhenOthersReachIt();
  void qrCodeHasItsFinderPatterns();
  void okAccepts();
  void checkForUpdatesDoesNothing();

 private:
  tagKorviaProductInfo _product;
};

void TestDialogProductAbout::initTestCase() {
  setText(_product.title, u"Desk");
  setText(_product.description, u"A <b>plain</b> text");
  setText(_product.versionPrefix, u"Pro");
  setText(_product.linkText, u"The makers");
  setText(_product.linkTarget, u"https://desk.example/%2");
}

void TestDialogProductAbout::versionLosesItsLastCharacter_data() {
  QTest::addColumn<QByteArray>("content");
  QTest::addColumn<QString>("version");
  QTest::newRow("line end") << QByteArray("1.2.3\n") << "1.2.3";
  QTest::newRow("carriage return stays") << QByteArray("1.2.3\r\n") << "1.2.3\r";
  QTest::newRow("no line end") << QByteArray("1.2.3") << "1.2.";
  QTest::newRow("line end only") << QByteArray("\n") << "";
  QTest::newRow("empty") << QByteArray() << "";
  QTest::newRow("not ASCII") << QByteArray("1.2 \xce\xb2\n") << QString::fromUtf8("1.2 \xce\xb2");
}

void TestDialogProductAbout::versionLosesItsLastCharacter() {
  QFETCH(QByteArray, content);
  QFETCH(QString, version);
  QTemporaryDir folder;
  QFile file(folder.filePath("ver.txt"));
  QVERIFY(file.open(QIODevice::WriteOnly));
  file.write(content);
  file.close();
  QCOMPARE(GDialogProductAbout::versionText(folder.path()), version);
}

void TestDialogProductAbout::missingFileGivesNoVersion() {
  QTemporaryDir folder;
  QCOMPARE(GDialogProductAbout::versionText(folder.path()), QString());
}

void TestDialogProductAbout::showsTheRecord() {
  GDialogProductAbout dialog("/data/", &_product);
  const auto text = [&dialog](const char* name) { return dialog.findChild<QLabel*>(name)->text(); };
  QCOMPARE(text("_productNameLabel"), QStringLiteral("Desk"));
  QCOMPARE(text("_productDescLabel"), QStringLiteral("A <b>plain</b> text"));
  QCOMPARE(text("_productCopyrightLabel"),
           QStringLiteral("<a href=\"https://desk.example/%2\">The makers</a>"));
  QCOMPARE(
      text("_productVersionLabel"),
      QStringLiteral("Pro  ") + GDialogProductAbout::versionText(QCoreApplication::applicationDirPath()));
}

void TestDialogProductAbout::fieldsWithoutEndAreCutAtTheirEnd() {
  tagKorviaProductInfo product;
  std::fill(std::begin(product.title), std::end(product.title), u'x');
  GDialogProductAbout dialog(QString(), &product);
  QCOMPARE(dialog.findChild<QLabel*>("_productNameLabel")->text(), QString(256, 'x'));
}

void TestDialogProductAbout::looksAsItShould() {
  GDialogProductAbout dialog("/data/", &_product);
  QCOMPARE(dialog.windowTitle(), QStringLiteral("Prodcut About"));
  QVERIFY(dialog.windowFlags() & Qt::WindowStaysOnTopHint);
  QCOMPARE(dialog.size(), QSize(578, 146));
  const auto groups = dialog.findChildren<QGroupBox*>();
  QCOMPARE(groups.size(), 1);
  QCOMPARE(groups.first()->title(), QStringLiteral("Product Info"));
  QCOMPARE(dialog.findChild<QPushButton*>("_checkUpdatesPushButton")->text(),
           QStringLiteral("Check for Updates"));
}

void TestDialogProductAbout::pageIsShownWhenOthersReachIt() {
  const auto isPageShown = [this] {
    GDialogProductAbout dialog("/data/", &_product);
    return dialog.findChild<QGroupBox*>("_pageGroupBox") != nullptr;
  };
  korvia::WebDesk& desk = korvia::WebDesk::instance();
  desk.setPort(8800);
  QVERIFY(!isPageShown());
  qputenv("KORVIA_LISTEN", "192.0.2.7");
  const auto reset = qScopeGuard([&desk] {
    qunsetenv("KORVIA_LISTEN");
    desk.setPort(0);
  });
  QVERIFY(isPageShown());
  GDialogProductAbout dialog("/data/", &_product);
  const QString address = dialog.findChild<QLabel*>("_pageAddressLabel")->text();
  QCOMPARE(address, QStringLiteral("http://192.0.2.7:8800/#") + desk.token());
  const QImage code = dialog.findChild<QLabel*>("_pageCodeLabel")->pixmap(Qt::ReturnByValue).toImage();
  QCOMPARE(code.convertToFormat(QImage::Format_RGB32), qrCode(address, 5));
  desk.setPort(0);
  QVERIFY(!isPageShown());
}

// A finder pattern stands in three corners, behind a quiet zone of four modules.
void TestDialogProductAbout::qrCodeHasItsFinderPatterns() {
  const QImage code = qrCode("http://192.0.2.7:8800/", 1);
  QVERIFY(code.width() == code.height() && (code.width() - 8 - 17) % 4 == 0);
  const int last = code.width() - 1;
  const char* const rows[] = {"1111111", "1000001", "1011101", "1011101", "1011101", "1000001", "1111111"};
  for (int y = 0; y < 7; ++y) {
    for (int x = 0; x < 7; ++x) {
      const QRgb expected = rows[y][x] == '1' ? qRgb(0, 0, 0) : qRgb(255, 255, 255);
      QCOMPARE(code.pixel(4 + x, 4 + y), expected);
      QCOMPARE(code.pixel(last - 4 - x, 4 + y), expected);
      QCOMPARE(code.pixel(4 + x, last - 4 - y), expected);
    }
  }
  for (int at = 0; at <= last; ++at)
    QCOMPARE(code.pixel(at, 3), qRgb(255, 255, 255));
  QVERIFY(qrCode(QString(), 5).isNull());
  QVERIFY(qrCode(QString(5000, 'x'), 5).isNull());
}

void TestDialogProductAbout::okAccepts() {
  GDialogProductAbout dialog("/data/", &_product);
  dialog.findChild<QPushButton*>("_okPushButton")->click();
  QCOMPARE(dialog.result(), int(QDialog::Accepted));
}

void TestDialogProductAbout::checkForUpdatesDoesNothing() {
  GDialogProductAbout dialog("/data/", &_product);
  const QSignalSpy finished(&dialog, &QDialog::finished);
  dialog.findChild<QPushButton*>("_checkUpdatesPushButton")->click();
  QCOMPARE(finished.count(), 0);
}

QTEST_MAIN(TestDialogProductAbout)
#include "tst_dialog_product_about.moc"
