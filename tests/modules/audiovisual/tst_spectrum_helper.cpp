// The helper of the spectrum widget: what it asks for, with and without its module.
#include <QtTest>

#include "CGWidgetAudioSpectrumHelper.h"

class SpectrumHelperTest : public QObject {
  Q_OBJECT

 private slots:
  void namesModuleEntryAndIdentifier() {
    const CGWidgetAudioSpectrumHelper helper;
    QCOMPARE(QString::fromWCharArray(helper._moduleName), QStringLiteral("GAudioVisualModule.dll"));
    QCOMPARE(QByteArray(helper._entryName), QByteArray("CreateGWidgetAudioSpectrum"));
    QVERIFY(*helper._identifier == (Identifier{0x49D5A23612311752, 0x27A6A2180D1DA611}));
    QCOMPARE(helper._version, 0x01010100U);
    QCOMPARE(korvia::modules::machineFileName(QString::fromWCharArray(helper._moduleName)),
             QStringLiteral("libGAudioVisualModule.so"));
  }

  void missingModuleIsTriedAgain() {
    CGWidgetAudioSpectrumHelper helper;
    helper._moduleName = L"NoSuchSpectrum.dll";
    QVERIFY(!helper.create());
    QVERIFY(!helper._module);
    const std::wstring module = QStringLiteral(FAKE_SPECTRUM_MODULE).mid(3).toStdWString();
    helper._moduleName = module.c_str();
    QVERIFY(helper.create());
    QVERIFY(helper._interface->isValid());
    helper._interface->attach(nullptr, 0);
    helper._interface->detach();
  }

  void wrongVersionGivesNothing() {
    CGWidgetAudioSpectrumHelper helper;
    const std::wstring module = QStringLiteral(FAKE_SPECTRUM_MODULE).mid(3).toStdWString();
    helper._moduleName = module.c_str();
    helper._version = 0x01010200;
    QVERIFY(!helper.create());
    QVERIFY(helper._module);
  }
};

QTEST_APPLESS_MAIN(SpectrumHelperTest)
#include "tst_spectrum_helper.moc"
