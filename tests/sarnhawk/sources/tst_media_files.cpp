// What the console makes of files that come without a kind.
#include <QtTest>

#include "sources/MediaFiles.h"
#include "tagKorviaShowChannelSlot.h"

class MediaFilesTest : public QObject {
  Q_OBJECT

 private slots:
  void documentsAndTextsHaveTheirKinds() {
    const QTemporaryDir folder;
    tagKorviaShowChannelSlot slot;
    MediaFiles::fillSlot("/a.PDF", slot);
    QCOMPARE(slot.source.kind, qint32{SourceKindPdf});
    QCOMPARE(slot.source.pdfPath, QString("/a.PDF"));
    QFile file(folder.filePath("a.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("read");
    file.close();
    MediaFiles::fillSlot(file.fileName(), slot);
    QCOMPARE(slot.source.kind, qint32{SourceKindText});
    QCOMPARE(slot.source.textPath, file.fileName());
    QCOMPARE(slot.source.textParam.text, QString("read"));
    QCOMPARE(slot.name, QString("a.txt"));
  }

  void addressesAreStreams() {
    tagKorviaShowChannelSlot slot;
    MediaFiles::fillSlot("srt://127.0.0.1:9000", slot);
    QCOMPARE(slot.source.kind, qint32{SourceKindUrl});
    QCOMPARE(slot.source.url, QString("srt://127.0.0.1:9000"));
    QVERIFY(!MediaFiles::isFilm("rtmp://host/live/0"));
    QVERIFY(MediaFiles::isFilm("d:/films/a.mp4"));
  }

  void severalBecomeAListOfTheFirstKind() {
    tagKorviaShowChannelSlot slot;
    MediaFiles::fillSlot(QStringList{"/a.mp4", "/x.png", "/b.mkv"}, slot);
    QCOMPARE(slot.source.kind, qint32{SourceKindMovieList});
    QCOMPARE(slot.source.movieList, (QStringList{"/a.mp4", "/b.mkv"}));
    MediaFiles::fillSlot(QStringList{"/x.png", "/a.mp4"}, slot);
    QCOMPARE(slot.source.kind, qint32{SourceKindImage});
    QCOMPARE(slot.source.imagePath, QString("/x.png"));
    MediaFiles::fillSlot(QStringList{"/x.png", "/y.jpg"}, slot);
    QCOMPARE(slot.source.kind, qint32{SourceKindImageList});
    MediaFiles::fillSlot(QStringList(), slot);
    QCOMPARE(slot.source.kind, qint32{SourceKindImageList});
  }

  void dragsGiveTheirLocalFiles() {
    const QTemporaryDir folder;
    QFile file(folder.filePath("a.mp4"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QMimeData data;
    data.setUrls({QUrl("http://example.org/a.mp4"), QUrl::fromLocalFile(folder.path()),
                  QUrl::fromLocalFile(file.fileName())});
    QCOMPARE(MediaFiles::filesOf(&data), QStringList{file.fileName()});
    QMimeData text;
    text.setText("/a.mp4");
    QCOMPARE(MediaFiles::filesOf(&text), QStringList());
  }
};

QTEST_MAIN(MediaFilesTest)
#include "tst_media_files.moc"
