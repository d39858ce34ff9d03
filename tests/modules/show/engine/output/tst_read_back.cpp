// A recording that is read back from the disk while it grows: how far it is whole, and what is found when it
// is not.
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <cstdio>

#include "RecordRig.h"
#include "engine/output/ReadBack.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{320, 180};
constexpr int kFinishMs = 12'000;
constexpr int kFrames = 110;

RecordingSettings settingsFor(const QString& folder, int encapsulation) {
  RecordingSettings settings;
  settings.file.folder = folder;
  settings.file.name = QStringLiteral("take");
  settings.file.container = RecordContainer::of(encapsulation);
  settings.encoder.label = QStringLiteral("the recording");
  settings.encoder.picture.size = kSize;
  settings.encoder.picture.kbps = 2000;
  settings.encoder.soundKbps = 128;
  return settings;
}

/// A recording that is checked ten times a second, and frames for it.
class GuardedRecording {
 public:
  explicit GuardedRecording(RecordingSettings settings) : recording_(guarded(std::move(settings))) {}

  Recording& operator*() { return recording_; }
  tagKorviaShowOutputReport report() { return recording_.slot().report(); }
  int pushed() const { return pushed_; }
  /// Feeds one frame after the other until the condition holds.
  template <typename Condition>
  bool feedUntil(Condition condition, int timeoutMs = kFinishMs) {
    return QTest::qWaitFor([&] { return feedFrames(recording_.slot(), pool_, pushed_++, 1) && condition(); },
                           timeoutMs);
  }

 private:
  static RecordingSettings guarded(RecordingSettings settings) {
    settings.file.guardInterval = std::chrono::milliseconds(100);
    return settings;
  }

  Recording recording_;
  FramePool pool_{kSize};
  int pushed_ = 0;
};

void append(const QString& fileName, const QByteArray& bytes) {
  QFile file(fileName);
  QVERIFY(file.open(QIODevice::Append));
  file.write(bytes);
}

}  // namespace

class ReadBackTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { gst_init(nullptr, nullptr); }

  void recordingIsVerifiedWhileItGrows_data() {
    QTest::addColumn<int>("encapsulation");
    QTest::newRow("ts") << int(EncapsulationTs);
    QTest::newRow("flv") << int(EncapsulationFlv);
    QTest::newRow("mkv") << int(EncapsulationMkv);
    QTest::newRow("mp4") << int(EncapsulationMp4);
    QTest::newRow("mov") << int(EncapsulationMov);
  }
  void recordingIsVerifiedWhileItGrows() {
    QFETCH(int, encapsulation);
    QTemporaryDir folder;
    GuardedRecording recording(settingsFor(folder.path(), encapsulation));
    QCOMPARE(recording.report().verifiedMs, qint64(-1));
    for (const qint64 ms : {1000, 3000})
      QVERIFY(recording.feedUntil([&] { return recording.report().verifiedMs >= ms; }));
    const tagKorviaShowOutputReport report = recording.report();
    QCOMPARE(report.warning, QString());
    QVERIFY(report.verifiedMs <= recording.pushed() * 40);
    (*recording).finish();
    QVERIFY((*recording).waitFinished(kFinishMs));
    QCOMPARE(recording.report().warning, QString());
  }

  void allFilesOfARecordingAreVerified() {
    QTemporaryDir folder;
    RecordingSettings settings = settingsFor(folder.path(), EncapsulationMp4);
    settings.file.cutNs = 2'000'000'000;
    GuardedRecording recording(settings);
    qint64 verifiedMs = -1;
    bool grows = true;
    const auto isFarEnough = [&] {
      const qint64 now = recording.report().verifiedMs;
      grows = grows && now >= verifiedMs;
      verifiedMs = now;
      return verifiedMs >= 5000;
    };
    QVERIFY(recording.feedUntil(isFarEnough, 2 * kFinishMs));
    QVERIFY(grows);
    QVERIFY(verifiedMs <= recording.pushed() * 40);
    QVERIFY(QDir(folder.path()).entryList(QDir::Files).size() >= 3);
    QCOMPARE(recording.report().warning, QString());
  }

  void fileThatIsGoneIsReported() {
    QTemporaryDir folder;
    GuardedRecording recording(settingsFor(folder.path(), EncapsulationTs));
    QVERIFY(recording.feedUntil([&] { return recording.report().verifiedMs > 0; }));
    QTest::ignoreMessage(
        QtWarningMsg,
        QRegularExpression("what was written to \".*take.ts\" cannot be read back : the file cannot"));
    QVERIFY(QFile::remove((*recording).fileName()));
    QVERIFY(recording.feedUntil([&] { return !recording.report().warning.isEmpty(); }));
    // The recording itself goes on.
    QCOMPARE(recording.report().state, KorviaShowOutputState::Running);
  }

  void fileThatStandsStillIsReported() {
    QTemporaryDir folder;
    GuardedRecording recording(settingsFor(folder.path(), EncapsulationMkv));
    QVERIFY(recording.feedUntil([&] { return recording.report().verifiedMs > 0; }));
    // Nothing more is fed, so the copy is as long as what was read.
    const auto fileSize = [&] { return QFileInfo((*recording).fileName()).size(); };
    for (qint64 size = -1; size != fileSize();) {
      size = fileSize();
      QTest::qWait(200);
    }
    const QString copy = folder.filePath("copy");
    QVERIFY(QFile::copy((*recording).fileName(), copy));
    QTest::ignoreMessage(
        QtWarningMsg, QRegularExpression(
                          "what was written to \".*take.mkv\" cannot be read back : the file does not grow"));
    // The copy takes the name at once. The recording goes on in the file that lost it.
    QCOMPARE(std::rename(qPrintable(copy), qPrintable((*recording).fileName())), 0);
    QVERIFY(recording.feedUntil([&] { return !recording.report().warning.isEmpty(); }, 2 * kFinishMs));
    QCOMPARE(recording.report().warning, QString("the file does not grow"));
  }

  void damagedFragmentsAreFound_data() {
    QTest::addColumn<QString>("damage");
    QTest::newRow("noise") << "noise";
    QTest::newRow("pictures") << "pictures";
    QTest::newRow("index") << "index";
  }
  void damagedFragmentsAreFound() {
    QFETCH(QString, damage);
    QTemporaryDir folder;
    const RecordingSettings settings = settingsFor(folder.path(), EncapsulationMp4);
    QByteArray bytes;
    {
      Recording recording(settings);
      FramePool pool(kSize);
      QVERIFY(feedFrames(recording.slot(), pool, 0, 420));
      const auto readFile = [&] {
        QFile file(recording.fileName());
        bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        return bytes.count("moof") >= 60;
      };
      QVERIFY(QTest::qWaitFor(readFile, kFinishMs));
    }
    const QString copy = folder.filePath("copy");
    ReadBack reader(copy, settings.file.container);
    const int second = bytes.indexOf("moof", bytes.indexOf("moof") + 4) - 4;
    append(copy, bytes.left(second));
    QVERIFY2(reader.readOn(), qPrintable(reader.failure()));
    const qint64 wholeNs = reader.lengthNs();
    QVERIFY(wholeNs >= 400'000'000);
    // Half of a fragment is no damage.
    append(copy, bytes.mid(second, 20));
    QVERIFY2(reader.readOn(), qPrintable(reader.failure()));
    QCOMPARE(reader.lengthNs(), wholeNs);
    QByteArray rest = bytes.mid(second + 20);
    if (damage == "noise") {
      rest.fill('\x55');
    } else if (damage == "pictures") {
      // The heads of both IDR slices of each key frame, which begin at macroblocks 0 and 120; a decoder
      // conceals what is missing further down.
      for (const char* head : {"\x65\x88", "\x65\x03\xc8"}) {
        for (int at = rest.indexOf(head); at >= 0; at = rest.indexOf(head, at + 1))
          rest.replace(at + 1, 40, QByteArray(40, '\0'));
      }
    } else {
      rest.replace("trun", "xxxx");
      rest += rest;
    }
    append(copy, rest);
    QVERIFY(!reader.readOn());
    QVERIFY(!reader.failure().isEmpty());
  }

  void damageIsFound_data() {
    QTest::addColumn<int>("encapsulation");
    QTest::addColumn<QString>("damage");
    QTest::newRow("no container") << int(EncapsulationMkv) << "noise";
    QTest::newRow("no pictures") << int(EncapsulationTs) << "stuffing";
    QTest::newRow("shorter") << int(EncapsulationTs) << "shorter";
    QTest::newRow("gone") << int(EncapsulationTs) << "gone";
  }
  void damageIsFound() {
    QFETCH(int, encapsulation);
    QFETCH(QString, damage);
    QTemporaryDir folder;
    const RecordingSettings settings = settingsFor(folder.path(), encapsulation);
    QString original;
    {
      Recording recording(settings);
      FramePool pool(kSize);
      QVERIFY(feedFrames(recording.slot(), pool, 0, kFrames));
      recording.finish();
      QVERIFY(recording.waitFinished(kFinishMs));
      original = recording.fileName();
    }
    QFile file(original);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray bytes = file.readAll();
    const QString copy = folder.filePath("copy");
    const int half = bytes.size() / 2 / 188 * 188;
    ReadBack reader(copy, settings.file.container);
    append(copy, bytes.left(half));
    QVERIFY2(reader.readOn(), qPrintable(reader.failure()));
    QVERIFY(reader.lengthNs() > 500'000'000);
    if (damage == "noise") {
      append(copy, QByteArray(9'000'000, '\x55'));
    } else if (damage == "stuffing") {
      // Null packets carry nothing.
      const QByteArray stuffing = QByteArray("\x47\x1f\xff\x10", 4) + QByteArray(184, '\xff');
      append(copy, stuffing.repeated(50'000));
    } else if (damage == "shorter") {
      QVERIFY(QFile::resize(copy, half - 188));
    } else {
      QVERIFY(QFile::remove(copy));
    }
    QVERIFY(!reader.readOn());
    QVERIFY(!reader.failure().isEmpty());
  }
};

QTEST_GUILESS_MAIN(ReadBackTest)
#include "tst_read_back.moc"
