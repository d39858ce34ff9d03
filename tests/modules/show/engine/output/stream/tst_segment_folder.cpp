// The list of segments and the files of a folder, segment by segment.
#include <signal.h>
#include <sys/resource.h>

#include <QTemporaryDir>
#include <QtTest>

#include "engine/output/stream/SegmentFolder.h"

using korvia::HlsPlaylist;
using korvia::SegmentFolder;

namespace {

constexpr qint64 kSecondNs = 1'000'000'000;

QByteArray contents(const QString& fileName) {
  QFile file(fileName);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList namedIn(const QByteArray& list) {
  QStringList names;
  for (const QByteArray& line : list.split('\n')) {
    if (!line.isEmpty() && !line.startsWith('#'))
      names.append(line);
  }
  return names;
}

/// No file grows beyond the limit, as on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    handler_ = ::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    ::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit before_{};
  sighandler_t handler_ = nullptr;
};

}  // namespace

class SegmentFolderTest : public QObject {
  Q_OBJECT

 private:
  std::unique_ptr<QTemporaryDir> root_;

  QString path() const { return root_->filePath("a/b"); }
  QByteArray list() const { return contents(path() + "/index.m3u8"); }
  QStringList segments() const { return QDir(path()).entryList({"*.ts"}, QDir::Files, QDir::Name); }

 private slots:
  void init() { root_ = std::make_unique<QTemporaryDir>(); }

  void theListNamesFinishedSegments() {
    SegmentFolder folder(path(), 3, 2 * kSecondNs);
    QVERIFY(folder.prepare());
    QVERIFY(folder.begin(0));
    QVERIFY(folder.write("one"));
    QVERIFY(folder.write("two"));
    QCOMPARE(list(), QByteArray());
    QCOMPARE(segments(), QStringList());
    QVERIFY(folder.begin(2 * kSecondNs));
    QCOMPARE(segments().size(), 1);
    QCOMPARE(contents(path() + '/' + segments()[0]), QByteArray("onetwo"));
    QCOMPARE(list(),
             QByteArray("#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:2\n#EXT-X-MEDIA-SEQUENCE:0\n"
                        "#EXT-X-DISCONTINUITY-SEQUENCE:0\n#EXTINF:2.000,\n") +
                 segments()[0].toUtf8() + '\n');
    QVERIFY(folder.write("three"));
    QVERIFY(folder.interrupt(3 * kSecondNs));
    QVERIFY(folder.finish());
    QVERIFY(list().endsWith("#EXT-X-ENDLIST\n"));
    QCOMPARE(namedIn(list()), segments());
    QCOMPARE(QDir(path()).entryList({"*.tmp"}, QDir::Files), QStringList());
  }

  void listedFilesExistAndOldOnesGo() {
    SegmentFolder folder(path(), 2, kSecondNs);
    QVERIFY(folder.prepare());
    for (int i = 0; i < 12; ++i) {
      QVERIFY(folder.begin(i * kSecondNs));
      const QStringList named = namedIn(list());
      QCOMPARE(named.size(), std::min(i, 2));
      for (const QString& name : named)
        QVERIFY(QFile::exists(path() + '/' + name));
      // A segment stays for the length of a list and its own after it has left.
      QCOMPARE(segments().size(), std::min(i, 5));
      QVERIFY(i < 2 || list().contains("#EXT-X-MEDIA-SEQUENCE:" + QByteArray::number(i - 2) + '\n'));
    }
  }

  void aBreakIsMarkedAndCounted() {
    HlsPlaylist list(2, kSecondNs);
    list.add("a", kSecondNs, HlsPlaylist::Join::Continues);
    list.add("b", kSecondNs, HlsPlaylist::Join::Breaks);
    QVERIFY(list.text().contains("a\n#EXT-X-DISCONTINUITY\n#EXTINF:1.000,\nb\n"));
    QVERIFY(list.text().contains("#EXT-X-DISCONTINUITY-SEQUENCE:0\n"));
    for (const char* name : {"c", "d", "e", "f", "g"})
      list.add(name, kSecondNs, HlsPlaylist::Join::Continues);
    QVERIFY(list.text().contains("#EXT-X-DISCONTINUITY-SEQUENCE:1\n"));
    QCOMPARE(list.takeOutdated(), (QStringList{"a", "b"}));
    QVERIFY(list.text().contains("#EXT-X-DISCONTINUITY-SEQUENCE:1\n"));
    QVERIFY(list.text().contains("#EXT-X-MEDIA-SEQUENCE:5\n"));
  }

  void anInterruptedStreamGoesOnBehindABreak() {
    SegmentFolder folder(path(), 3, kSecondNs);
    QVERIFY(folder.prepare());
    QVERIFY(folder.begin(0));
    QVERIFY(folder.interrupt(kSecondNs));
    QVERIFY(folder.prepare());  // keeps what is there
    QVERIFY(folder.begin(0));
    QVERIFY(folder.interrupt(kSecondNs));
    QCOMPARE(namedIn(list()).size(), 2);
    QCOMPARE(list().count("#EXT-X-DISCONTINUITY\n"), 1);
  }

  void whatSomebodyRemovesIsListedNoMore() {
    SegmentFolder folder(path(), 3, kSecondNs);
    QVERIFY(folder.prepare());
    for (int i = 0; i < 4; ++i)
      QVERIFY(folder.begin(i * kSecondNs));
    QCOMPARE(namedIn(list()).size(), 3);
    QVERIFY(QFile::remove(path() + '/' + segments()[1]));
    QVERIFY(folder.prepare());
    QVERIFY(folder.interrupt(4 * kSecondNs));
    QCOMPARE(namedIn(list()), segments().mid(1));  // the first was there, and before one that was not
    QVERIFY(list().contains("#EXT-X-MEDIA-SEQUENCE:2\n"));
  }

  void theLongestSegmentIsTold() {
    HlsPlaylist list(3, 2 * kSecondNs);
    list.add("a", 2'400'000'000, HlsPlaylist::Join::Continues);
    QVERIFY(list.text().contains("#EXT-X-TARGETDURATION:2\n"));
    list.add("b", 2'600'000'000, HlsPlaylist::Join::Continues);
    QVERIFY(list.text().contains("#EXT-X-TARGETDURATION:3\n"));
  }

  void aSegmentThatIsNotWholeIsNotListed() {
    SegmentFolder folder(path(), 3, kSecondNs);
    QVERIFY(folder.prepare());
    QVERIFY(folder.begin(0));
    QVERIFY(folder.write("one"));
    QVERIFY(folder.begin(kSecondNs));
    {
      const FileSizeLimit limit(100);
      QVERIFY(folder.write(QByteArray(90, 'x')));
      QVERIFY(!folder.write(QByteArray(90, 'x')));
    }
    QVERIFY(!folder.write("what follows the missing part"));
    QVERIFY(folder.interrupt(2 * kSecondNs));
    QCOMPARE(segments().size(), 1);
    QCOMPARE(namedIn(list()), segments());
    QCOMPARE(QDir(path()).entryList({"*.tmp"}, QDir::Files), QStringList());
    QVERIFY(folder.prepare());
    QVERIFY(folder.begin(0));
    QVERIFY(folder.interrupt(kSecondNs));
    QCOMPARE(namedIn(list()).size(), 2);
    QCOMPARE(list().count("#EXT-X-DISCONTINUITY\n"), 1);
  }

  void aRetryMakesRoom() {
    SegmentFolder folder(path(), 2, kSecondNs);
    QVERIFY(folder.prepare());
    for (int i = 0; i < 6; ++i)
      QVERIFY(folder.begin(i * kSecondNs));
    QVERIFY(folder.interrupt(6 * kSecondNs));
    QCOMPARE(segments().size(), 5);
    QVERIFY(folder.prepare());
    QCOMPARE(segments(), namedIn(list()));
  }

  void anEndIsMarkedInAnyCase() {
    {
      SegmentFolder folder(path(), 3, kSecondNs);
      QVERIFY(folder.prepare());
      QVERIFY(folder.begin(0));
      QVERIFY(folder.interrupt(kSecondNs));
      QVERIFY(!list().contains("#EXT-X-ENDLIST"));
    }
    QVERIFY(list().endsWith("#EXT-X-ENDLIST\n"));
  }

  void aLaterStreamTakesTheFolderOver() {
    auto earlier = std::make_unique<SegmentFolder>(path(), 3, kSecondNs);
    QVERIFY(earlier->prepare());
    QVERIFY(earlier->begin(0));
    QVERIFY(earlier->begin(kSecondNs));
    SegmentFolder later(path(), 3, kSecondNs);
    QVERIFY(later.prepare());
    QVERIFY(later.begin(0));
    QVERIFY(later.interrupt(kSecondNs));
    const QByteArray own = list();
    earlier->interrupt(2 * kSecondNs);
    earlier.reset();
    QCOMPARE(list(), own);
    QCOMPARE(segments(), namedIn(own));
    QVERIFY(later.begin(kSecondNs));
    QVERIFY(later.interrupt(2 * kSecondNs));
    QCOMPARE(namedIn(list()).size(), 2);
  }

  void whatAnEarlierStreamLeftIsRemovedAndNothingElse() {
    QVERIFY(QDir().mkpath(path()));
    for (const char* name : {"segment-1-000001.ts", "segment-1-000002.ts.tmp", "index.m3u8", "film.ts"}) {
      QFile file(path() + '/' + name);
      QVERIFY(file.open(QIODevice::WriteOnly));
    }
    SegmentFolder folder(path(), 3, kSecondNs);
    QVERIFY(folder.prepare());
    QCOMPARE(QDir(path()).entryList(QDir::Files), QStringList{"film.ts"});
  }

  void aFolderThatCannotBeMadeIsRefused() {
    QFile file(root_->filePath("a"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    SegmentFolder folder(path(), 3, kSecondNs);
    QVERIFY(!folder.prepare());
    QVERIFY(!folder.begin(0));
  }
};

QTEST_APPLESS_MAIN(SegmentFolderTest)
#include "tst_segment_folder.moc"
