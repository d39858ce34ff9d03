// Files that are no good on two channels, while the film on the third is on air.
#include <sys/stat.h>

#include <QtTest>
#include <csignal>

#include "Desk.h"
#include "support/PictureStats.h"

using namespace korvia::test;

namespace {

struct Input {
  QString file;  // in the test's folder
  QString log;   // what the log says of it, "%1" is its path; empty for nothing
  bool hasPicture = false;
};

bool runs(const QString& program, const QStringList& arguments) {
  QProcess process;
  process.start(program, arguments);
  return process.waitForFinished(60000) && process.exitCode() == 0;
}

bool write(const QString& file, const QByteArray& content) {
  QFile target(file);
  return target.open(QIODevice::WriteOnly) && target.write(content) == content.size();
}

QByteArray headOf(const QString& file, qint64 size) {
  QFile source(file);
  return source.open(QIODevice::ReadOnly) ? source.read(size) : QByteArray();
}

}  // namespace

Q_DECLARE_METATYPE(Input)

class TestBadInput : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase();
  void costsOnlyItsOwnChannel_data();
  void costsOnlyItsOwnChannel();
  void blackOnProgramAndBack();

 private:
  QString in(const QString& name) const { return folder_.filePath(name); }
  QJsonObject channel(const KorviaProcess& korvia, int index) const {
    return korvia.status()["channels"].toObject()[QString("Media-%1").arg(index)].toObject();
  }
  bool closeStrip(KorviaProcess& korvia, Desk& desk, int index);

  QTemporaryDir folder_;
  VirtualDisplay display_;
};

void TestBadInput::initTestCase() {
  QVERIFY(display_.start(kDeskSize));
  const QString demo = QStringLiteral(KORVIA_DEMO_FOLDER "/demo2.mp4");
  QVERIFY(write(in("text.mp4"), "this is no film\n"));
  QVERIFY(write(in("empty.mp4"), ""));
  QVERIFY(write(in("cut.mp4"), headOf(demo, 300000)));
  QVERIFY(runs("ffmpeg", {"-v", "error", "-i", demo, "-t", "4", "-c", "copy", in("whole.mkv")}));
  QVERIFY(write(in("cut.mkv"), headOf(in("whole.mkv"), 150000)));
  QVERIFY(runs("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "sine=d=5", in("sound.mp4")}));
  QImage one(1, 1, QImage::Format_RGB32);
  one.fill(QColor(200, 40, 40));
  QVERIFY(one.save(in("one.png")));
  QVERIFY(runs("convert", {"-size", "8192x8192", "gradient:red-yellow", in("huge.png")}));
  QVERIFY(QDir(folder_.path()).mkdir("folder.mp4"));
  QCOMPARE(::mkfifo(QFile::encodeName(in("pipe.mp4")).constData(), 0600), 0);
}

bool TestBadInput::closeStrip(KorviaProcess& korvia, Desk& desk, int index) {
  const int from = korvia.blackBox().lines().size();
  const auto isClosing = [index](const BlackBoxLine& call) {
    return call.name == "closeSource" && call.object == index + 1;
  };
  return display_.click(place::kStripCloseButtons[static_cast<std::size_t>(index)]) && desk.answerYes() &&
         korvia.blackBox().waitFor(isClosing, from, 5000) >= 0 &&
         QTest::qWaitFor([&] { return !channel(korvia, index)["inUse"].toBool(true); }, 5000);
}

void TestBadInput::costsOnlyItsOwnChannel_data() {
  QTest::addColumn<Input>("first");
  QTest::addColumn<Input>("second");
  QTest::newRow("missing path, text") << Input{"missing.mp4", "film does not play : %1 : no such file"}
                                      << Input{"text.mp4", "film does not play : %1 : "};
  QTest::newRow("no bytes, sound only") << Input{"empty.mp4", "film does not play : %1 : file is empty"}
                                        << Input{"sound.mp4", "film does not play : %1 : no picture in"};
  QTest::newRow("cut short") << Input{"cut.mp4", "film ends early : %1", true}
                             << Input{"cut.mkv", "film ends early : %1", true};
  QTest::newRow("1 x 1, 8192 x 8192") << Input{"one.png", "", true} << Input{"huge.png", "", true};
  QTest::newRow("folder, pipe without a writer")
      << Input{"folder.mp4", "film does not play : %1 : is a folder"} << Input{"pipe.mp4", "film opens : %1"};
}

void TestBadInput::costsOnlyItsOwnChannel() {
  QFETCH(Input, first);
  QFETCH(Input, second);
  KorviaProcess korvia(display_);
  Desk desk(display_, korvia);
  QVERIFY(korvia.startShow({"--open", "1=" + in(first.file), "--open", "2=" + in(second.file)}));
  int index = 0;
  for (const Input& input : {first, second}) {
    ++index;
    const QString text = input.log.contains("%1") ? input.log.arg(in(input.file)) : input.log;
    QVERIFY2(korvia.waitForLog(text, 20000), qPrintable(text + '\n' + korvia.log()));
    if (input.hasPicture)
      QVERIFY(desk.showsPicture(desk.strip(index), 20000));
    else
      QVERIFY(statsOf(display_.grabWindow(desk.strip(index))).mean < 2);
  }
  QVERIFY(desk.isMoving(desk.program()));
  QVERIFY(desk.runsOn(25));
  for (const int strip : {1, 2})
    QVERIFY2(closeStrip(korvia, desk, strip), qPrintable(QString::number(strip)));
  QVERIFY(desk.isMoving(desk.program()));
  korvia.sendSignal(SIGTERM);
  QVERIFY(korvia.waitForExit());
  QCOMPARE(korvia.trouble(), QString());
}

void TestBadInput::blackOnProgramAndBack() {
  KorviaProcess korvia(display_);
  Desk desk(display_, korvia);
  QVERIFY(korvia.startShow({"--open", "1=" + in("text.mp4"), "--open", "2=" + in("pipe.mp4")}));
  QVERIFY(desk.showsPicture(desk.program()));
  QVERIFY(display_.clickWindow(desk.strip(1), 3));
  QTRY_VERIFY_WITH_TIMEOUT(statsOf(display_.grabWindow(desk.program())).mean < 2, 10000);
  QVERIFY(display_.clickWindow(desk.strip(0), 3));
  QVERIFY(desk.showsPicture(desk.program()));
  // The pipe is given up in time and says so.
  QVERIFY2(korvia.waitForLog("film does not play : " + in("pipe.mp4"), 20000), qPrintable(korvia.log()));
  QCOMPARE(channel(korvia, 2)["inUse"].toBool(), true);
  korvia.sendSignal(SIGTERM);
  QVERIFY(korvia.waitForExit());
  QCOMPARE(korvia.trouble(), QString());
}

QTEST_GUILESS_MAIN(TestBadInput)
#include "tst_bad_input.moc"
