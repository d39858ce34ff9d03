// The order in which the packets of two encoders reach the targets, what they are told of the tracks, and
// what happens when one encoder stalls or ends.
#include <QtTest>

#include "PacketRig.h"
#include "engine/output/PacketInterleaver.h"

using namespace korvia;
using namespace korvia::test;

namespace {

using Sound = PacketInterleaver::Sound;

constexpr qint64 kMs = 1'000'000;

Track trackOf(Track::Kind kind) {
  Track track;
  track.kind = kind;
  track.caps =
      holdCaps(gst_caps_new_empty_simple(kind == Track::Kind::Picture ? "video/x-h264" : "audio/mpeg"));
  return track;
}

class Rig {
 public:
  explicit Rig(Sound sound = Sound::Yes)
      : interleaver_(sound, [this](const Packet& packet) { delivered_ << packet; }) {}

  void picture(qint64 ms) { interleaver_.pushPicture(picture_, packetAt(ms, 40)); }
  void sound(qint64 ms) { interleaver_.pushSound(sound_, packetAt(ms, 20)); }
  PacketInterleaver* operator->() { return &interleaver_; }

  /// "p0 s20 ...": kind and ms of what was delivered.
  QString delivered() const {
    QStringList texts;
    for (const Packet& packet : delivered_)
      texts << (packet.endsTrack     ? QString("end")
                : packet.isPicture() ? "p" + QString::number(packet.ptsNs / kMs)
                                     : "s" + QString::number(packet.ptsNs / kMs));
    return texts.join(' ');
  }
  QVector<int> trackCounts() const {
    QVector<int> counts;
    for (const Packet& packet : delivered_)
      counts << static_cast<int>(packet.tracks->size());
    return counts;
  }

 private:
  static Packet packetAt(qint64 ms, qint64 durationMs) {
    Packet packet = packetOf(0, false);
    packet.tracks.reset();
    packet.ptsNs = packet.dtsNs = ms * kMs;
    packet.durationNs = durationMs * kMs;
    return packet;
  }

  const Track picture_ = trackOf(Track::Kind::Picture);
  const Track sound_ = trackOf(Track::Kind::Sound);
  QVector<Packet> delivered_;
  PacketInterleaver interleaver_;
};

}  // namespace

class PacketInterleaverTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { gst_init(nullptr, nullptr); }

  void packetsComeInTheOrderOfTheirTimes() {
    Rig rig;
    for (int ms : {0, 20, 40, 60})
      rig.sound(ms);
    QCOMPARE(rig.delivered(), QString());
    rig.picture(0);
    // Nothing is known of the next picture, so the sound behind it waits.
    QCOMPARE(rig.delivered(), QString("p0"));
    rig.picture(40);
    QCOMPARE(rig.delivered(), QString("p0 s0 s20 p40"));
    rig.picture(80);
    QCOMPARE(rig.delivered(), QString("p0 s0 s20 p40 s40 s60"));
    QCOMPARE(rig.trackCounts(), QVector<int>(6, 2));
  }

  void picturesWaitForTheSoundBeforeThem() {
    Rig rig;
    rig.picture(0);
    rig.picture(40);
    QCOMPARE(rig.delivered(), QString());
    rig.sound(0);
    QCOMPARE(rig.delivered(), QString("p0 s0"));
  }

  void withoutSoundNothingWaits() {
    Rig rig(Sound::No);
    rig.picture(0);
    rig.sound(0);
    rig.picture(40);
    QCOMPARE(rig.delivered(), QString("p0 p40"));
    QCOMPARE(rig.trackCounts(), QVector<int>(2, 1));
  }

  void soundThatNeverComesIsGivenUp() {
    Rig rig;
    for (int ms = 0; ms <= 2'000; ms += 40)
      rig.picture(ms);
    QCOMPARE(rig.delivered(), QString());
    rig.picture(2'040);
    QVERIFY(rig.delivered().endsWith("p1960 p2000 p2040"));
    // The head of a file is written, so it gets no track any more.
    rig.sound(0);
    rig.picture(2'080);
    QVERIFY(rig.delivered().endsWith("p2040 p2080"));
    QCOMPARE(rig.trackCounts(), QVector<int>(53, 1));
  }

  void soundThatFailsLeavesThePicture() {
    Rig rig;
    rig.picture(0);
    rig.sound(0);
    rig.picture(40);
    rig->endSound();
    rig.picture(80);
    QCOMPARE(rig.delivered(), QString("p0 s0 end p40 p80"));
    // A target that joins now has no track of sound, for which its muxer would wait.
    QCOMPARE(rig.trackCounts(), QVector<int>({2, 2, 2, 1, 1}));
  }

  void soundEndsWithThePicture_data() {
    QTest::addColumn<bool>("soundEndsFirst");
    QTest::newRow("picture first") << false;
    QTest::newRow("sound first") << true;
  }
  void soundEndsWithThePicture() {
    QFETCH(bool, soundEndsFirst);
    Rig rig;
    for (int ms : {0, 20, 40, 60, 70, 80, 100})
      rig.sound(ms);
    rig.picture(0);
    rig.picture(40);
    if (soundEndsFirst)
      rig->endSound();
    rig->endPicture();
    rig->endSound();
    QCOMPARE(rig.delivered(), QString("p0 s0 s20 p40 s40 s60 s70"));
  }
};

QTEST_APPLESS_MAIN(PacketInterleaverTest)
#include "tst_packet_interleaver.moc"
