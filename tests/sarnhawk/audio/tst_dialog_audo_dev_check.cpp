#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

#include "audio/GDialogAudoDevCheck.h"

class TestDialogAudoDevCheck : public QObject {
  Q_OBJECT

 private slots:
  void init();

  void showsWhatIsMissing();
  void namesAreComparedExactly();
  void acceptsInTheConstructorWhenBothAreThere();
  void execEndsAtTheNextTickWhenBothAreThere();
  void acceptsWhenTheDeviceIsPluggedIn();
  void emptyNameIsNeverFound();
  void lostDeviceClearsItsFlag();
  void givesUpAfterSixtyOneTicks();
  void okEndsTheWait();

 private:
  GDialogAudoDevCheck::DeviceLister lister() {
    return [this] {
      ++_listings;
      return _devices;
    };
  }
  static QString text(const QDialog& dialog, const char* label) {
    return dialog.findChild<QLabel*>(label)->text();
  }
  static QString style(const QDialog& dialog, const char* label) {
    return dialog.findChild<QLabel*>(label)->styleSheet();
  }

  QStringList _devices;
  int _listings = 0;
};

void TestDialogAudoDevCheck::init() {
  _devices = QStringList{"Desk", "Phones"};
  _listings = 0;
}

void TestDialogAudoDevCheck::showsWhatIsMissing() {
  GDialogAudoDevCheck dialog("Desk", "Booth", lister(), nullptr);
  QCOMPARE(dialog.windowTitle(), QStringLiteral("Audio Device Check"));
  QVERIFY(dialog.windowFlags() & Qt::WindowStaysOnTopHint);
  QCOMPARE(_listings, 1);
  QVERIFY(dialog.pgmFound());
  QVERIFY(!dialog.pvmFound());
  QCOMPARE(text(dialog, "_pgmNameLabel"), QStringLiteral("Desk"));
  QCOMPARE(text(dialog, "_pvmNameLabel"), QStringLiteral("Booth"));
  QCOMPARE(text(dialog, "_pgmResultLabel"), QStringLiteral("Found"));
  QCOMPARE(style(dialog, "_pgmResultLabel"), QString());
  QCOMPARE(text(dialog, "_pvmResultLabel"), QStringLiteral("No Found"));
  QCOMPARE(style(dialog, "_pvmResultLabel"), QStringLiteral("color: rgb(180, 10, 10);"));
}

void TestDialogAudoDevCheck::namesAreComparedExactly() {
  GDialogAudoDevCheck dialog("desk", "Phones ", lister(), nullptr);
  QVERIFY(!dialog.pgmFound());
  QVERIFY(!dialog.pvmFound());
}

void TestDialogAudoDevCheck::acceptsInTheConstructorWhenBothAreThere() {
  GDialogAudoDevCheck dialog("Desk", "Phones", lister(), nullptr);
  QCOMPARE(dialog.result(), int(QDialog::Accepted));
  QVERIFY(dialog.pgmFound());
  QVERIFY(dialog.pvmFound());
}

void TestDialogAudoDevCheck::execEndsAtTheNextTickWhenBothAreThere() {
  GDialogAudoDevCheck dialog("Desk", "Phones", lister(), nullptr);
  QCOMPARE(dialog.exec(), int(QDialog::Accepted));
  QCOMPARE(_listings, 2);
}

void TestDialogAudoDevCheck::acceptsWhenTheDeviceIsPluggedIn() {
  _devices = QStringList{"Desk"};
  GDialogAudoDevCheck dialog("Desk", "Phones", lister(), nullptr);
  const QSignalSpy accepted(&dialog, &QDialog::accepted);
  dialog.onTimer();
  QCOMPARE(accepted.count(), 0);
  _devices << "Phones";
  dialog.onTimer();
  QCOMPARE(accepted.count(), 1);
}

void TestDialogAudoDevCheck::emptyNameIsNeverFound() {
  _devices << "";
  GDialogAudoDevCheck dialog("", "Phones", lister(), nullptr);
  QVERIFY(!dialog.pgmFound());
  QVERIFY(dialog.pvmFound());
  QCOMPARE(dialog.result(), int(QDialog::Rejected));
}

void TestDialogAudoDevCheck::lostDeviceClearsItsFlag() {
  GDialogAudoDevCheck dialog("Desk", "Booth", lister(), nullptr);
  QVERIFY(dialog.pgmFound());
  _devices.clear();
  dialog.onTimer();
  QVERIFY(!dialog.pgmFound());
  QCOMPARE(text(dialog, "_pgmResultLabel"), QStringLiteral("No Found"));
}

void TestDialogAudoDevCheck::givesUpAfterSixtyOneTicks() {
  GDialogAudoDevCheck dialog("Desk", "Booth", lister(), nullptr);
  const QSignalSpy rejected(&dialog, &QDialog::rejected);
  for (int tick = 0; tick < 61; ++tick)
    dialog.onTimer();
  QCOMPARE(rejected.count(), 0);
  QCOMPARE(_listings, 62);
  dialog.onTimer();
  QCOMPARE(rejected.count(), 1);
  QCOMPARE(_listings, 62);
}

void TestDialogAudoDevCheck::okEndsTheWait() {
  GDialogAudoDevCheck dialog("Desk", "Booth", lister(), nullptr);
  const QSignalSpy rejected(&dialog, &QDialog::rejected);
  dialog.findChild<QPushButton*>("_okPushButton")->click();
  QCOMPARE(rejected.count(), 1);
  QVERIFY(dialog.pgmFound());
}

QTEST_MAIN(TestDialogAudoDevCheck)
#include "tst_dialog_audo_dev_check.moc"
