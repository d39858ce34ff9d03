#include <QTemporaryDir>
#include <QtTest>

#include "engine/output/FragmentedFile.h"

using korvia::dropPartialBox;

namespace {

const QByteArray kFtyp = QByteArray::fromHex("0000000c") + "ftypisom";
const QByteArray kMoof = QByteArray::fromHex("00000010") + "moof" + "12345678";
const QByteArray kLongMdat =
    QByteArray::fromHex("00000001") + "mdat" + QByteArray::fromHex("0000000000000014") + "data";
const QByteArray kOpenMdat = QByteArray::fromHex("00000000") + "mdat" + "anything";

}  // namespace

class TestFragmentedFile : public QObject {
  Q_OBJECT

 private slots:
  void endOfFile_data() {
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    const QByteArray whole = kFtyp + kMoof + kLongMdat;
    QTest::newRow("whole") << whole << whole;
    QTest::newRow("open data") << whole + kOpenMdat << whole + kOpenMdat;
    QTest::newRow("half an index") << whole + kMoof.left(12) << whole;
    QTest::newRow("half a head") << whole + kMoof.left(5) << whole;
    QTest::newRow("half a long head") << whole + kLongMdat.left(12) << whole;
    QTest::newRow("half a long box") << whole + kLongMdat.left(18) << whole;
    QTest::newRow("size too small") << whole + QByteArray::fromHex("00000007") + "moof" << whole;
    QTest::newRow("another file") << QByteArray("precious text") << QByteArray("precious text");
    QTest::newRow("empty") << QByteArray() << QByteArray();
  }
  void endOfFile() {
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QTemporaryDir folder;
    QFile file(folder.filePath("a.mp4"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(before);
    file.close();
    QCOMPARE(dropPartialBox(file.fileName()), qint64(before.size() - after.size()));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), after);
  }

  void missingFile() { QCOMPARE(dropPartialBox("/nowhere/a.mp4"), qint64(0)); }
};

QTEST_APPLESS_MAIN(TestFragmentedFile)
#include "tst_fragmented_file.moc"
