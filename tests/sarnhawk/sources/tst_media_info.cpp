// Sizes and tags of files, with and without the library that reads them.
#include <sys/stat.h>

#include <QImage>
#include <QtTest>

#include "sources/MediaInfo.h"
#include "tagKorviaFormatInfo.h"

class MediaInfoTest : public QObject {
  Q_OBJECT

 private slots:
  void init() { MediaInfo::setLibrary("libmediainfo.so.0"); }

  void readsTheSizeOfAPicture() {
    QImage image(320, 180, QImage::Format_RGB32);
    image.fill(Qt::red);
    const QString path = _folder.filePath(QString::fromUtf8("Bild \u00e4 \u4e2d.png"));
    QVERIFY(image.save(path));
    tagKorviaFormatInfo format;
    QVERIFY(readMediaSize(path, format));
    QCOMPARE(sizeOf(format), QSize(320, 180));
    const MediaInfo info(path);
    QCOMPARE(info.count(MediaInfo::Stream::General), std::size_t{1});
    QCOMPARE(info.text(MediaInfo::Stream::Image, 0, L"Width"), QString("320"));
    QCOMPARE(info.text(MediaInfo::Stream::Image, 0, L"No such parameter"), QString());
  }

  void leavesTheFormatAloneWithoutASize() {
    QFile file(_folder.filePath("a.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("text");
    file.close();
    const QByteArray fifo = QFile::encodeName(_folder.filePath("fifo"));
    QCOMPARE(mkfifo(fifo.constData(), 0600), 0);
    for (const QString& path : {file.fileName(), _folder.filePath("missing"), _folder.path(),
                                _folder.filePath("fifo"), QString()}) {
      tagKorviaFormatInfo format;
      QVERIFY2(!readMediaSize(path, format), qPrintable(path));
      QVERIFY(format == tagKorviaFormatInfo());
    }
  }

  void missingLibraryAnswersNothing() {
    MediaInfo::setLibrary("libnosuchmediainfo.so");
    QVERIFY(!mediaInfoLoad());
    const MediaInfo info(QCoreApplication::applicationFilePath());
    QCOMPARE(info.count(MediaInfo::Stream::General), std::size_t{0});
    QCOMPARE(info.text(MediaInfo::Stream::General, 0, L"Duration"), QString());
    tagKorviaFormatInfo format;
    QVERIFY(!readMediaSize(QCoreApplication::applicationFilePath(), format));
  }

  void incompleteLibraryIsRefused() {
    MediaInfo::setLibrary("libm.so.6");
    QVERIFY(!mediaInfoLoad());
    MediaInfo::setLibrary("libmediainfo.so.0");
    QVERIFY(mediaInfoLoad());
  }

 private:
  static QSize sizeOf(const tagKorviaFormatInfo& format) {
    const qint32 width = format.video.secondWidth;
    const qint32 height = format.video.secondHeight;
    return {width, height};
  }

  const QTemporaryDir _folder;
};

QTEST_MAIN(MediaInfoTest)
#include "tst_media_info.moc"
