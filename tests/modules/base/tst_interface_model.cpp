// Identifiers, version test, and the life of the object behind a helper.
#include <QtTest>

#include "CTempldateHelper.h"
#include "IUnknownEx.h"

namespace {

class CountedObject : public IUnknownEx {
 public:
  explicit CountedObject(int& alive) : alive_(alive) { ++alive_; }
  virtual ~CountedObject() { --alive_; }
  bool isValid() override { return true; }
  bool release() override {
    if (isValid())
      delete this;
    return true;
  }
  void* queryInterface(const Identifier*, unsigned) override { return nullptr; }

 private:
  int& alive_;
};

class CountedHelper : public CTempldateHelper<CountedObject> {
 public:
  CountedHelper(const wchar_t* moduleName, const char* entry) {
    _moduleName = moduleName;
    _entryName = entry;
    _identifier = &kIUnknownExId;
  }
};

}  // namespace

class InterfaceModelTest : public QObject {
  Q_OBJECT

 private slots:
  void versions() {
    QVERIFY(isAcceptedVersion(0x01010000));
    QVERIFY(isAcceptedVersion(0x01010100));
    QVERIFY(isAcceptedVersion(0x010101FF));
    QVERIFY(!isAcceptedVersion(0x01010200));
    QVERIFY(!isAcceptedVersion(0x01000100));
    QVERIFY(!isAcceptedVersion(0x02010100));
  }

  void identifiersDiffer() {
    QVERIFY(!(kIKorviaSarnhawkId == kIKorviaSarnhawkPrivId));
    QVERIFY(!(kIKorviaSarnhawkPrivId == kIMainFrameId));
    QVERIFY(!(kIKorviaShowThreadSinkId == kIKorviaShowEngineSinkId));
    QVERIFY(kIKorviaWebServerId == kIKorviaRTMPIncomeServerId);
    const quint64 words[2] = {0x49D5A23642312429, 0x17A6A2480D1DA681};
    QCOMPARE(memcmp(&kIKorviaSarnhawkId, words, sizeof words), 0);
  }

  void requestNeedsIdentifierAndVersion() {
    QVERIFY(isRequestFor(kIMainFrameId, &kIMainFrameId, 0x01010100));
    QVERIFY(!isRequestFor(kIMainFrameId, &kIMainFrameId, 0x01010200));
    QVERIFY(!isRequestFor(kIMainFrameId, &kIKorviaSarnhawkId, 0x01010100));
    QVERIFY(!isRequestFor(kIMainFrameId, nullptr, 0x01010100));
  }

  void moduleNames() {
    QCOMPARE(korvia::modules::machineFileName("KorviaCommonModule.dll"), QString("libKorviaCommonModule.so"));
    QCOMPARE(korvia::modules::ownFolder(), QCoreApplication::applicationDirPath());
  }

  void missingModuleLeavesTheHandleNull() {
    CountedHelper helper(L"NoSuchModule.dll", "CreateNothing");
    QVERIFY(!helper.create());
    QVERIFY(!helper._module);
    QVERIFY(!helper.create());
  }

  void helperReleasesItsObject() {
    int alive = 0;
    {
      CountedHelper helper(L"NoSuchModule.dll", "CreateNothing");
      helper._interface = new CountedObject(alive);
      QCOMPARE(alive, 1);
      QVERIFY(!helper.create());
      QCOMPARE(alive, 0);
      QVERIFY(!helper._interface);
      helper._interface = new CountedObject(alive);
    }
    QCOMPARE(alive, 0);
  }
};

QTEST_GUILESS_MAIN(InterfaceModelTest)
#include "tst_interface_model.moc"
