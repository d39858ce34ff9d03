#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include "engine/output/FragmentedFile.h"

using korvia::addDefaultSizes;
using korvia::dropPartialBox;

namespace {

const QByteArray kFtyp = QByteArray::fromHex("0000000c") + "ftypisom";
const QByteArray kMoof = QByteArray::fromHex("00000010") + "moof" + "12345678";
const QByteArray kLongMdat =
    QByteArray::fromHex("00000001") + "mdat" + QByteArray::fromHex("0000000000000014") + "data";
const QByteArray kOpenMdat = QByteArray::fromHex("00000000") + "mdat" + "anything";

QByteArray number(quint32 value) {
  QByteArray bytes(4, 0);
  qToBigEndian<quint32>(value, bytes.data());
  return bytes;
}

QByteArray box(const char* kind, const QByteArray& inside) {
  return number(static_cast<quint32>(inside.size() + 8)) + kind + inside;
}

/// A fragment of one track with a base, a duration and the flags that are left of its defaults, and a run
/// with sizes and one without.
QByteArray fragment(quint32 trackFlags, quint32 lastDefault) {
  const QByteArray head = box(
      "tfhd", number(trackFlags) + number(1) + number(0) + number(4903) + number(100) + number(lastDefault));
  const QByteArray sizes = box("trun", number(0x305) + number(2) + number(44) + number(0xc0) + number(1024) +
                                           number(6) + number(1024) + number(7));
  const QByteArray none = box("trun", number(0x1) + number(1) + number(478));
  return box("moof", box("mfhd", number(0) + number(1)) + box("traf", head + sizes + none)) + "what follows";
}

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

  void runsWithoutSizeGetTheFirstOne() {
    QByteArray bytes = fragment(0x29, 0x100c0);
    QCOMPARE(addDefaultSizes(reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()), 1);
    QCOMPARE(bytes, fragment(0x19, 6));
    // A track that has its default is left as it is, and so are other data.
    QCOMPARE(addDefaultSizes(reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()), 0);
    QCOMPARE(bytes, fragment(0x19, 6));
    QByteArray other = kLongMdat;
    QCOMPARE(addDefaultSizes(reinterpret_cast<std::uint8_t*>(other.data()), other.size()), 0);
    QCOMPARE(other, kLongMdat);
  }

  void damagedFragmentsAreNotReadBeyond() {
    for (int size = 0; size < fragment(0x29, 1).size(); ++size) {
      QByteArray bytes = fragment(0x29, 1).left(size);
      bytes.squeeze();
      addDefaultSizes(reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size());
    }
  }
};

QTEST_APPLESS_MAIN(TestFragmentedFile)
#include "tst_fragmented_file.moc"
