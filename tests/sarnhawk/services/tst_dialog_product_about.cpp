#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <string_view>

#include "services/GDialogProductAbout.h"
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
