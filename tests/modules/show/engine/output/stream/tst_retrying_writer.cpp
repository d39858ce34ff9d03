// When a lost connection is tried again, and where the stream then begins.
#include <QtTest>

#include "../PacketRig.h"
#include "engine/output/stream/RetryingWriter.h"

using namespace korvia;
using namespace korvia::test;

namespace {

/// Takes packets, fails or hangs, as the test says.
struct Peer {
  int opened = 0;
  int closed = 0;
  bool refuses = false;
  bool accepts = true;
  bool hangs = false;
  QVector<qint64> ptsNs;  // that the newest writer got
};

class PeerWriter : public TargetWriter {
 public:
  explicit PeerWriter(Peer& peer) : peer_(peer) {}

  bool open(Wake) override {
    ++peer_.opened;
    peer_.ptsNs.clear();
    return true;
  }
  QString location() const override { return {}; }
  bool hasRoom() const override { return !peer_.hangs; }
  void write(const Packet& packet) override {
    peer_.ptsNs.append(packet.ptsNs);
    if (peer_.accepts && !peer_.refuses)
      bytes_ += packet.bytes;
  }
  void end() override {}
  Progress progress() const override { return peer_.refuses ? Progress::Failed : Progress::Open; }
  QString failure() const override { return QStringLiteral("refused"); }
  qint64 bytesWritten() const override { return bytes_; }
  void close(const TargetOutcome&) override { ++peer_.closed; }

 private:
  Peer& peer_;
  qint64 bytes_ = 0;
};

}  // namespace

class RetryingWriterTest : public QObject {
  Q_OBJECT

 private:
  Peer peer_;
  std::unique_ptr<RetryingWriter> writer_;
  qint64 index_ = 0;

  void make(RetrySettings settings) {
    peer_ = {};
    index_ = 0;
    settings.label = QStringLiteral("the push");
    writer_ =
        std::make_unique<RetryingWriter>(settings, [this] { return std::make_unique<PeerWriter>(peer_); });
    QVERIFY(writer_->open([] {}));
  }
  void write(bool keyFrame) { writer_->write(packetOf(index_++, keyFrame)); }
  /// Writes until a next writer is opened, and returns the time that took.
  qint64 untilNextTry() {
    const int opened = peer_.opened;
    QElapsedTimer timer;
    timer.start();
    while (peer_.opened == opened && !timer.hasExpired(5000)) {
      write(false);
      QThread::usleep(500);
    }
    return timer.elapsed();
  }

 private slots:
  void initTestCase() { gst_init(nullptr, nullptr); }

  void isUpWhenDataWereTaken() {
    make({});
    QCOMPARE(writer_->link().state, TargetLink::State::Connecting);
    peer_.accepts = false;
    write(true);
    QCOMPARE(writer_->link().state, TargetLink::State::Connecting);
    peer_.accepts = true;
    write(false);
    QCOMPARE(writer_->link().state, TargetLink::State::Up);
  }

  void beginsAt0WithAKeyFrameAgain() {
    RetrySettings settings;
    settings.firstMs = 20;
    make(settings);
    write(true);
    write(false);
    peer_.refuses = true;
    write(false);
    QCOMPARE(writer_->link().state, TargetLink::State::Lost);
    QCOMPARE(writer_->link().reason, QString("refused"));
    QCOMPARE(peer_.closed, 1);
    peer_.refuses = false;
    QVERIFY(!writer_->takeKeyRequest());
    untilNextTry();
    QCOMPARE(peer_.opened, 2);
    QVERIFY(writer_->takeKeyRequest());
    QVERIFY(!writer_->takeKeyRequest());
    write(false);
    QCOMPARE(peer_.ptsNs, QVector<qint64>());
    QCOMPARE(writer_->link().state, TargetLink::State::Lost);
    write(true);
    write(false);
    QCOMPARE(peer_.ptsNs, (QVector<qint64>{0, kFrameNs}));
    QCOMPARE(writer_->link().state, TargetLink::State::Up);
    QCOMPARE(writer_->link().reason, QString());
    QCOMPARE(writer_->bytesWritten(), qint64(400));
  }

  void waitsGrowAndAreBounded() {
    RetrySettings settings;
    settings.firstMs = 40;
    settings.growth = 2;
    settings.longestMs = 150;
    make(settings);
    peer_.refuses = true;
    QVector<qint64> waits;
    for (int i = 0; i < 5; ++i) {
      write(true);
      waits.append(writer_->link().retryMs);
      untilNextTry();
    }
    const QVector<int> longest{40, 80, 150, 150, 150};
    for (int i = 0; i < longest.size(); ++i) {
      QVERIFY2(waits[i] <= longest[i], qPrintable(QString::number(waits[i])));
      QVERIFY2(waits[i] >= longest[i] * 3 / 4 - 5, qPrintable(QString::number(waits[i])));
    }
  }

  void theWaitGoesBackAfterASteadyConnection_data() {
    QTest::addColumn<int>("steadyMs");
    QTest::addColumn<bool>("back");
    QTest::newRow("steady") << 0 << true;
    QTest::newRow("broke at once") << 60'000 << false;
  }
  void theWaitGoesBackAfterASteadyConnection() {
    QFETCH(int, steadyMs);
    QFETCH(bool, back);
    RetrySettings settings;
    settings.firstMs = 20;
    settings.growth = 20;
    settings.longestMs = 400;
    settings.steadyMs = steadyMs;
    make(settings);
    peer_.refuses = true;
    write(true);
    untilNextTry();
    write(true);
    QVERIFY(writer_->link().retryMs > 200);
    peer_.refuses = false;
    untilNextTry();
    write(true);
    QCOMPARE(writer_->link().state, TargetLink::State::Up);
    QElapsedTimer sinceUp;
    sinceUp.start();
    QTRY_VERIFY(sinceUp.elapsed() > 2);  // longer than steady
    peer_.refuses = true;
    write(false);
    QCOMPARE(writer_->link().retryMs <= 20, back);
  }

  void aConnectionThatStallsIsGivenUp() {
    RetrySettings settings;
    settings.stallMs = 50;
    make(settings);
    write(true);
    peer_.hangs = true;
    QVERIFY(writer_->mayGoOn());
    QCOMPARE(writer_->link().state, TargetLink::State::Up);
    QTRY_VERIFY((writer_->mayGoOn(), writer_->link().state == TargetLink::State::Lost));
    QCOMPARE(writer_->link().reason, QString("the server takes no data"));
    QVERIFY(writer_->hasRoom());
  }

  void theFirstWaitIsShorterThanASecond() {
    make({});
    peer_.refuses = true;
    write(true);
    QVERIFY(writer_->link().retryMs > 500);
    QVERIFY(writer_->link().retryMs < 1000);
  }

  void endsAtOnceWhileItIsLost() {
    make({});
    peer_.refuses = true;
    write(true);
    QCOMPARE(writer_->progress(), TargetWriter::Progress::Open);
    writer_->end();
    QCOMPARE(writer_->progress(), TargetWriter::Progress::Ended);
  }
};

QTEST_GUILESS_MAIN(RetryingWriterTest)
#include "tst_retrying_writer.moc"
