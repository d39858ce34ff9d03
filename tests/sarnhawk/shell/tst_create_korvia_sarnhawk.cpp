#include <dlfcn.h>

#include <QApplication>
#include <QWidget>
#include <QtTest>
#include <string>

#include "shell/IKorviaSarnhawk.h"
#include "shell/IMainFrame.h"

class TestCreateKorviaSarnhawk : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase();
  void cleanup() { qDeleteAll(QApplication::topLevelWidgets()); }
  void givesTheConsoleInterface();
  void givesTheFrameInterface();
  void throwsAPlainWideString_data();
  void throwsAPlainWideString();

 private:
  CreateKorviaSarnhawkFunction _create = nullptr;
};

void TestCreateKorviaSarnhawk::initTestCase() {
  void* library = dlopen(CONSOLE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  QVERIFY2(library, dlerror());
  _create = reinterpret_cast<CreateKorviaSarnhawkFunction>(dlsym(library, "CreateKorviaSarnhawk"));
  QVERIFY(_create);
}

void TestCreateKorviaSarnhawk::givesTheConsoleInterface() {
  auto* console = static_cast<IKorviaSarnhawk*>(_create(&kIKorviaSarnhawkId, 0x010101FF));
  QVERIFY(console);
  QCOMPARE(console->queryInterface(&kIKorviaSarnhawkId, kInterfaceVersion), static_cast<void*>(console));
  console->close();
  QVERIFY(console->release());
  QVERIFY(QApplication::topLevelWidgets().isEmpty());
}

void TestCreateKorviaSarnhawk::givesTheFrameInterface() {
  auto* frame = static_cast<IMainFrame*>(_create(&kIMainFrameId, kInterfaceVersion));
  QCOMPARE(QApplication::topLevelWidgets(), QWidgetList{frame->getWidget()});
  QVERIFY(frame->release());
}

void TestCreateKorviaSarnhawk::throwsAPlainWideString_data() {
  QTest::addColumn<bool>("root");
  QTest::addColumn<unsigned>("version");
  QTest::newRow("version") << false << 0x01010200u;
  QTest::newRow("root") << true << 0x01010100u;
}

void TestCreateKorviaSarnhawk::throwsAPlainWideString() {
  QFETCH(bool, root);
  QFETCH(unsigned, version);
  std::wstring reason;
  try {
    _create(root ? &kIUnknownExId : &kIKorviaSarnhawkId, version);
  } catch (wchar_t* text) {
    reason = text;
  }
  QCOMPARE(QString::fromStdWString(reason), QStringLiteral("failed to query interface"));
  // The frame is left as it is.
  QCOMPARE(QApplication::topLevelWidgets().size(), 1);
}

QTEST_MAIN(TestCreateKorviaSarnhawk)
#include "tst_create_korvia_sarnhawk.moc"
