// Texts: drawn with the look of the record in the size of its format, transparent around; from the record or
// from a file.
#include <QTemporaryDir>
#include <QtTest>

#include "KorviaShowUtil.h"
#include "SourceRig.h"
#include "support/TestFile.h"

using namespace korvia;
using namespace korvia::test;

class TextSourceTest : public QObject {
  Q_OBJECT

  QTemporaryDir folder_;

  QString write(const QByteArray& bytes, const QString& name) { return writeTestFile(folder_, name, bytes); }

  static tagKorviaShowSourceInfo infoOf(const QString& text) {
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindText;
    info.textParam.text = text;
    info.textParam.fontName = QStringLiteral("DejaVu Sans");
    info.textParam.fontSize = 200;
    info.textParam.gradientBeginColor = 0xFFFFFFFF;
    info.textParam.gradientEndColor = 0xFFFFFFFF;
    return info;
  }

  static tagKorviaFormatInfo formatOf(int width, int height) {
    tagKorviaFormatInfo format;
    format.video.secondWidth = width;
    format.video.secondHeight = height;
    return format;
  }

  /// What toImage draws, as alpha in the size of the frame.
  static QByteArray expectedAlpha(const tagKorviaShowRenderTextParam& param, int width, int height) {
    const QImage image = KorviaShowUtil::toImage(width, height, param);
    QByteArray alpha;
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x)
        alpha += static_cast<char>(qAlpha(image.pixel(x, y)));
    }
    return alpha;
  }

  static QByteArray alphaOf(const FrameRef& frame) {
    QByteArray alpha;
    for (int y = 0; y < frame->height(); ++y)
      alpha.append(reinterpret_cast<const char*>(frame->plane(Frame::A)) + y * frame->stride(Frame::A),
                   frame->width());
    return alpha;
  }

 private slots:
  void textIsDrawnOnTransparency() {
    const tagKorviaShowSourceInfo info = infoOf("M");
    SourceRig rig({320, 180});
    rig.open(info, formatOf(320, 180));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    const FrameRef frame = rig->pullFrame(1);
    QVERIFY(frame->hasAlpha());
    const QByteArray alpha = alphaOf(frame);
    QCOMPARE(alpha, expectedAlpha(info.textParam, 320, 180));
    QVERIFY(alpha.contains('\xff'));
    QVERIFY(alpha.contains('\0'));
    // The colours are premultiplied: black where nothing is drawn.
    const int drawn = alpha.indexOf('\xff');
    QCOMPARE(codesAt(frame, drawn % 320, drawn / 320)[0], 235);
    QCOMPARE(codesAt(frame, 319, 179), (QVector<int>{16, 128, 128}));
    QCOMPARE(rig->getItemCount(), 1);
    QCOMPARE(rig.durationMs(), qint64(0));
  }

  void sizesAreThoseOfTheFormat() {
    // The text is drawn in a picture of 640 x 360 and then halved.
    SourceRig rig({320, 180});
    rig.open(infoOf("M"), formatOf(640, 360));
    SourceRig half({320, 180});
    tagKorviaShowSourceInfo info = infoOf("M");
    info.textParam.fontSize = 100;
    half.open(info, formatOf(320, 180));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QTRY_COMPARE(half->getPlayState(), int(Playing));
    const QByteArray alpha = alphaOf(rig->pullFrame(1));
    const QByteArray expected = alphaOf(half->pullFrame(1));
    int different = 0;
    for (int i = 0; i < alpha.size(); ++i)
      different += qAbs(quint8(alpha[i]) - quint8(expected[i])) > 128 ? 1 : 0;
    QVERIFY2(different < expected.count('\xff') / 50, qPrintable(QString::number(different)));
  }

  void textOfTheRecordWinsOverTheFile() {
    tagKorviaShowSourceInfo info = infoOf("M");
    info.textPath = write("something else", "else.txt");
    SourceRig rig({320, 180});
    rig.open(info, formatOf(320, 180));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QCOMPARE(alphaOf(rig->pullFrame(1)), expectedAlpha(info.textParam, 320, 180));
    QCOMPARE(rig->figures().description, QString("else.txt"));
  }

  void fileIsReadWithoutATextOfTheRecord_data() {
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("sample") << tagKorviaShowRenderTextParam().text;
  }

  void fileIsReadWithoutATextOfTheRecord() {
    QFETCH(QString, text);
    tagKorviaShowSourceInfo info = infoOf(text);
    info.textPath = write("M", "m.txt");
    SourceRig rig({320, 180});
    rig.open(info, formatOf(320, 180));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    info.textParam.text = "M";
    QCOMPARE(alphaOf(rig->pullFrame(1)), expectedAlpha(info.textParam, 320, 180));
  }

  void sampleTextIsShownWithoutAFile() {
    const tagKorviaShowSourceInfo info = infoOf(tagKorviaShowRenderTextParam().text);
    SourceRig rig({320, 180});
    rig.open(info, formatOf(320, 180));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QCOMPARE(alphaOf(rig->pullFrame(1)), expectedAlpha(info.textParam, 320, 180));
  }

  void errorAndALine_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << folder_.filePath("none.txt") << "no such file";
    QTest::newRow("folder") << folder_.path() << "is no file";
    QTest::newRow("long") << write(QByteArray(4 * 1024 * 1024 + 1, 'a'), "long.txt") << "longer than 4 MiB";
  }

  void errorAndALine() {
    QFETCH(QString, path);
    QFETCH(QString, reason);
    WarningKeeper log;
    tagKorviaShowSourceInfo info = infoOf(QString());
    info.textPath = path;
    SourceRig rig({64, 36});
    rig.open(info);
    QTRY_COMPARE(rig->getPlayState(), int(Error));
    QVERIFY(!rig->pullFrame(1));
    QCOMPARE(log.lines(), QStringList{"text cannot be shown : " + path + " : " + reason});
    tagKorviaSourceLinkState state;
    rig->getState(state);
    QCOMPARE(state.reason, reason);
  }

  void longestFileIsShown() {
    tagKorviaShowSourceInfo info = infoOf(QString());
    info.textPath = write(QByteArray(4 * 1024 * 1024, 'a'), "longest.txt");
    SourceRig rig({64, 36});
    rig.open(info);
    QTRY_COMPARE_WITH_TIMEOUT(rig->getPlayState(), int(Playing), 30'000);
  }

  void sizeOfTheFormatIsLimited_data() {
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::newRow("nothing") << 0 << 0;
    QTest::newRow("negative") << -5 << 7;
    QTest::newRow("wide") << 2'000'000'000 << 4;
  }

  void sizeOfTheFormatIsLimited() {
    QFETCH(int, width);
    QFETCH(int, height);
    SourceRig rig({64, 36});
    rig.open(infoOf("M"), formatOf(width, height));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QVERIFY(rig->pullFrame(1));
  }
};

QTEST_MAIN(TextSourceTest)
#include "tst_text_source.moc"
