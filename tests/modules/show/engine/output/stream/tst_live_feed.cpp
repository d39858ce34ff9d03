// What viewers at different paces get of a live stream.
#include <QtTest>

#include "engine/output/stream/LiveFeed.h"

using korvia::LiveFeed;
using korvia::LiveReader;

namespace {

class Viewer final : public LiveReader {
 public:
  void sleep() override { asleep = true; }
  void wake() override {
    asleep = false;
    ++wakes;
  }

  /// All that there is to read now.
  QByteArray read(LiveFeed& feed) {
    QByteArray all;
    QByteArray chunk;
    while ((last = feed.next(place, chunk, *this)) == LiveFeed::Next::Chunk)
      all += chunk;
    return all;
  }

  LiveFeed::Place place;
  LiveFeed::Next last = LiveFeed::Next::Wait;
  bool asleep = false;
  int wakes = 0;
};

}  // namespace

class LiveFeedTest : public QObject {
  Q_OBJECT

 private slots:
  void beginsWithTheHeaderAndTheNewestKeyFrame() {
    LiveFeed feed;
    feed.push("H", "a", false);
    Viewer early;
    QCOMPARE(early.read(feed), QByteArray());
    QVERIFY(early.asleep);
    feed.push("H", "K1", true);
    feed.push("H", "b", false);
    QVERIFY(!early.asleep);
    QCOMPARE(early.read(feed), QByteArray("HK1b"));
    feed.push("H", "K2", true);
    feed.push("H", "c", false);
    QCOMPARE(early.read(feed), QByteArray("K2c"));
    Viewer late;
    QCOMPARE(late.read(feed), QByteArray("HK2c"));
  }

  void memoryIsBoundedAndTheSlowGoOnAtAKeyFrame() {
    LiveFeed feed(100);
    Viewer slow;
    feed.push("H", "K0", true);
    QCOMPARE(slow.read(feed), QByteArray("HK0"));
    for (int i = 1; i < 40; ++i) {
      feed.push("H", QByteArray(10, static_cast<char>('a' + i % 26)), i % 5 == 0);
      QVERIFY(feed.bytes() <= 100);
    }
    const QByteArray rest = slow.read(feed);
    QCOMPARE(rest.size(), 50);  // from number 35 on, the newest key frame
    QCOMPARE(rest.left(1), QByteArray(1, static_cast<char>('a' + 35 % 26)));
  }

  void fewGroupsAreKept() {
    LiveFeed feed;
    Viewer slow;
    feed.push({}, "0", true);
    QCOMPARE(slow.read(feed), QByteArray("0"));
    for (const char* key : {"1", "2", "3", "4", "5", "6"})
      feed.push({}, key, true);
    QCOMPARE(feed.bytes(), qint64(4));
    QCOMPARE(slow.read(feed), QByteArray("6"));
  }

  void anEndWakesAndEndsAll() {
    LiveFeed feed;
    Viewer viewer;
    viewer.read(feed);
    QVERIFY(viewer.asleep);
    feed.close();
    QVERIFY(!viewer.asleep);
    viewer.read(feed);
    QCOMPARE(viewer.last, LiveFeed::Next::End);
  }

  void whoIsForgottenIsNotWoken() {
    LiveFeed feed;
    Viewer viewer;
    viewer.read(feed);
    feed.forget(viewer);
    feed.push({}, "K", true);
    QCOMPARE(viewer.wakes, 0);
  }
};

QTEST_APPLESS_MAIN(LiveFeedTest)
#include "tst_live_feed.moc"
