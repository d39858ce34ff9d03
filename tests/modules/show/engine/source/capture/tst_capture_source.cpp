// Pages, windows and screens as sources of the show: their pictures, and that they come back.
#include <QColor>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <csignal>

#include "modules/show/capture/PaintedWindow.h"
#include "modules/show/engine/source/SourceRig.h"
#include "support/VirtualDisplay.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr double kSeconds = 20;
constexpr quint32 kBlue = 0x0000FF;
constexpr quint32 kGreen = 0x00FF00;
// Limited range of BT.709.
const QVector<int> kBlueCodes{32, 240, 118};
const QVector<int> kGreenCodes{173, 42, 26};
constexpr int kTolerance = 2;

tagKorviaShowSourceInfo windowInfo(const PaintedWindow& window) {
  tagKorviaShowSourceInfo info;
  info.kind = SourceKindWindow;
  info.windowInfo = {QStringLiteral("title"), window.id(), QStringLiteral("Program")};
  return info;
}

/// The process that captures for this one; 0 when there is none.
pid_t captureProcess() {
  for (const QString& entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(entry));
    if (!entry.at(0).isDigit() || !file.open(QIODevice::ReadOnly))
      continue;
    const QByteArray text = file.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    if (text.contains("(korvia-capture)") && fields.value(0) != "Z" && fields.value(1).toInt() == ::getpid())
      return entry.toInt();
  }
  return 0;
}

bool showsAt(SourceRig& rig, int x, int y, const QVector<int>& codes) {
  return rig.tickUntil([&] { return isNear(codesAt(rig.last(), x, y), codes, kTolerance); }, kSeconds);
}

}  // namespace

class tst_capture_source : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    display_ = std::make_unique<VirtualDisplay>();
    QVERIFY(display_->start({640, 360}));
    qputenv("DISPLAY", display_->name().toLatin1());
  }

  void screenFillsThePicture() {
    const PaintedWindow window({0, 0, 320, 360}, kBlue, "title", "Program");
    SourceRig rig;
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindScreen;
    rig.open(info);
    QVERIFY(showsAt(rig, 80, 90, kBlueCodes));
    QCOMPARE(codesAt(rig.last(), 240, 90), (QVector<int>{16, 128, 128}));
    QCOMPARE(rig.last()->size(), (FrameSize{320, 180}));
    QVERIFY(!rig.last()->hasAlpha());
    QCOMPARE(rig->getPlayState(), int(Playing));
  }

  void windowKeepsItsShape() {
    const PaintedWindow window({100, 50, 100, 100}, kGreen, "title", "Program");
    SourceRig rig;
    rig.open(windowInfo(window));
    QVERIFY(showsAt(rig, 160, 90, kGreenCodes));
    QCOMPARE(codesAt(rig.last(), 20, 90), (QVector<int>{16, 128, 128}));
  }

  void killedProgramIsReplacedWithinASecond() {
    PaintedWindow window({0, 0, 320, 180}, kBlue, "title", "Program");
    SourceRig rig;
    rig.open(windowInfo(window));
    QVERIFY(showsAt(rig, 160, 90, kBlueCodes));
    const pid_t first = captureProcess();
    QVERIFY(first > 0);
    QElapsedTimer time;
    time.start();
    ::kill(first, SIGKILL);
    // Only another program can show this colour.
    window.setColor(kGreen);
    QVERIFY(showsAt(rig, 160, 90, kGreenCodes));
    QVERIFY(captureProcess() != first);
    QVERIFY2(time.elapsed() < 3000, qPrintable(QString::number(time.elapsed())));
  }

  void closedWindowStaysAndComesBack() {
    auto window = std::make_unique<PaintedWindow>(QRect{0, 0, 320, 180}, kBlue, "title", "Program");
    SourceRig rig;
    rig.open(windowInfo(*window));
    QVERIFY(showsAt(rig, 160, 90, kBlueCodes));
    window.reset();
    QVERIFY(rig.tickUntil([&] { return rig->getPlayState() == int(Error); }, kSeconds));
    QVERIFY(isNear(codesAt(rig.last(), 160, 90), kBlueCodes, kTolerance));
    window = std::make_unique<PaintedWindow>(QRect{0, 0, 320, 180}, kGreen, "title", "Program");
    QVERIFY(showsAt(rig, 160, 90, kGreenCodes));
  }

  void aWindowWithTheNumberOfAClosedOneIsNotShown() {
    auto window = std::make_unique<PaintedWindow>(QRect{0, 0, 320, 180}, kBlue, "title", "Program");
    const QString number = window->id();
    SourceRig rig;
    rig.open(windowInfo(*window));
    QVERIFY(showsAt(rig, 160, 90, kBlueCodes));
    window.reset();
    QVERIFY(rig.tickUntil([&] { return rig->getPlayState() == int(Error); }, kSeconds));
    window = std::make_unique<PaintedWindow>(QRect{0, 0, 320, 180}, kGreen, "private", "Program");
    QCOMPARE(window->id(), number);  // the server gives it to the next client
    QVERIFY(!rig.tickUntil([&] { return isNear(codesAt(rig.last(), 160, 90), kGreenCodes, kTolerance); }, 3));
    const PaintedWindow again({0, 0, 320, 180}, kGreen, "title", "Program");
    QVERIFY(showsAt(rig, 160, 90, kGreenCodes));
  }

  void deadDisplayIsTold() {
    SourceRig rig;
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindScreen;
    rig.open(info);
    QVERIFY(rig.tickUntil([&] { return bool(rig.last()); }, kSeconds));
    display_.reset();
    QVERIFY(rig.tickUntil([&] { return rig->getPlayState() == int(Error); }, kSeconds));
    QVERIFY(rig.tickUntil([&] { return rig.failureReason() == QStringLiteral("no x display"); }, kSeconds));
    QVERIFY(bool(rig.last()));
  }

  void pageHasAlpha() {
    QFile page(folder_.filePath(QStringLiteral("page.html")));
    QVERIFY(page.open(QIODevice::WriteOnly));
    page.write(
        "<!doctype html><body style='margin:0'><div style='position:absolute;width:160px;height:180px;"
        "background:rgba(255,0,0,0.5)'></div></body>");
    page.close();
    SourceRig rig;
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindWeb;
    info.webUrl = QStringLiteral("file://") + page.fileName();
    tagKorviaFormatInfo format;
    format.video.secondWidth = 320;
    format.video.secondHeight = 180;
    rig.open(info, format);
    // Half of red: the colours are multiplied by alpha once, not twice.
    QVERIFY(showsAt(rig, 80, 90, {39, 115, 184}));
    const FrameRef frame = rig.last();
    QVERIFY(frame->hasAlpha());
    QVERIFY(std::abs(frame->plane(Frame::A)[90 * frame->stride(Frame::A) + 80] - 128) <= 1);
    QCOMPARE(int(frame->plane(Frame::A)[90 * frame->stride(Frame::A) + 240]), 0);
    QVERIFY(isNear(codesAt(frame, 240, 90), {16, 128, 128}, 0));
  }

 private:
  std::unique_ptr<VirtualDisplay> display_;
  QTemporaryDir folder_;
};

QTEST_GUILESS_MAIN(tst_capture_source)
#include "tst_capture_source.moc"
