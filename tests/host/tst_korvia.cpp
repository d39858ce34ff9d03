#include <fcntl.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>

namespace {

/// A program whose standard input and error may be on a terminal of its own, which can be closed.
class TerminalProcess : public QProcess {
 public:
  ~TerminalProcess() override { closeTerminal(); }

  bool openTerminal() {
    if (openpty(&_master, &_slave, nullptr, nullptr, nullptr) != 0)
      return false;
    ::fcntl(_master, F_SETFD, FD_CLOEXEC);
    return true;
  }
  void closeTerminal() {
    for (int* end : {&_master, &_slave}) {
      if (*end >= 0)
        ::close(*end);
      *end = -1;
    }
  }

 protected:
  void setupChildProcess() override {
    if (_slave < 0)
      return;
    ::setsid();
    ::dup2(_slave, STDIN_FILENO);
    ::dup2(_slave, STDERR_FILENO);
    ::ioctl(STDERR_FILENO, TIOCSCTTY, 0);
    ::close(_slave);
    ::close(_master);
  }

 private:
  int _master = -1;
  int _slave = -1;
};

}  // namespace

class TestKorvia : public QObject {
  Q_OBJECT

 private slots:
  void init();
  void cleanup();

  void refusesBadOptionsWithoutADisplay();
  void helpNeedsNoDisplay();
  void missingLibrary();
  void brokenLibrary();
  void libraryWithoutFactory();
  void failingFactory_data();
  void failingFactory();
  void rootThatCannotBeMade();
  void tellsTheConsoleWhatWasAsked();
  void nothingButTheSwitchOpensTheMachine();
  void keyOfPublishersComesFromItsFileAlone();
  void closesInOrderAfterTheTimeLimit();
  void takesAPictureAtTheExit();
  void refusedCloseLeavesThePictureToTheNext();
  void pictureThatCannotBeWrittenIsAFailure();
  void signalsCloseInOrder_data();
  void signalsCloseInOrder();
  void hangUpClosesInOrder();
  void hangUpEndsNoRecording();
  void fillsTheShowDataFolder();
  void missingDisplayIsOneSentence_data();
  void missingDisplayIsOneSentence();
  void channelThatTheShowDoesNotHave_data();
  void channelThatTheShowDoesNotHave();
  void logsToAFileBesideTheConfiguration();
  void standardErrorThatNobodyReadsHoldsNobodyUp();
  void standardErrorThatIsClosedHarmsNobody();
  void fatalMessageIsInTheLog();

 private:
  void setEnvironment(const QString& name, const QString& value) {
    QProcessEnvironment environment = _program->processEnvironment();
    environment.insert(name, value);
    _program->setProcessEnvironment(environment);
  }
  QStringList log() {
    QFile file(in("home/.config/korvia/korvia.log"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split('\n') : QStringList();
  }
  void useFakeConsole() { QVERIFY(QFile::copy(FAKE_CONSOLE_LIBRARY, in("bin/libKorviaSarnhawk.so"))); }
  QString in(const QString& name) const { return _folder->filePath(name); }
  void start(const QStringList& arguments);
  int run(const QStringList& arguments);
  QStringList said() { return QString::fromUtf8(_program->readAllStandardOutput()).split('\n'); }
  QString complaint() { return QString::fromUtf8(_program->readAllStandardError()); }

  std::unique_ptr<QTemporaryDir> _folder;
  std::unique_ptr<TerminalProcess> _program;
};

void TestKorvia::init() {
  _folder = std::make_unique<QTemporaryDir>();
  QVERIFY(QDir().mkpath(in("bin")));
  QVERIFY(QFile::copy(KORVIA_PROGRAM, in("bin/korvia")));
  QVERIFY(QFile::copy(COMMON_MODULE, in("bin/" + QFileInfo(COMMON_MODULE).fileName())));
  _program = std::make_unique<TerminalProcess>();
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("KORVIA_DRIVE_D", in("d"));
  environment.insert("HOME", in("home"));
  environment.remove("XDG_CONFIG_HOME");
  environment.remove("KORVIA_ENGINE");
  environment.remove("KORVIA_TRACE");
  _program->setProcessEnvironment(environment);
}

void TestKorvia::cleanup() {
  if (_program->state() != QProcess::NotRunning) {
    _program->kill();
    _program->waitForFinished();
  }
}

void TestKorvia::start(const QStringList& arguments) {
  _program->start(in("bin/korvia"), QStringList{"--root", in("root")} + arguments);
  QVERIFY(_program->waitForStarted());
}

int TestKorvia::run(const QStringList& arguments) {
  start(arguments);
  if (!_program->waitForFinished())
    return -1;
  return _program->exitStatus() == QProcess::NormalExit ? _program->exitCode() : -2;
}

void TestKorvia::refusesBadOptionsWithoutADisplay() {
  QProcessEnvironment environment = _program->processEnvironment();
  environment.remove("DISPLAY");
  environment.insert("QT_QPA_PLATFORM", "xcb");
  _program->setProcessEnvironment(environment);
  QCOMPARE(run({"--engine", "warp"}), 2);
  QVERIFY(complaint().startsWith("korvia: --engine: there is no engine \"warp\""));
}

void TestKorvia::helpNeedsNoDisplay() {
  QProcessEnvironment environment = _program->processEnvironment();
  environment.remove("DISPLAY");
  environment.insert("QT_QPA_PLATFORM", "xcb");
  _program->setProcessEnvironment(environment);
  QCOMPARE(run({"--help"}), 0);
  QVERIFY(said().join('\n').contains("--exit-after <SECONDS>"));
}

void TestKorvia::missingLibrary() {
  QCOMPARE(run({}), 1);
  const QString text = complaint();
  QVERIFY2(text.contains("korvia: failed to load the console") && text.contains("libKorviaSarnhawk.so"),
           qPrintable(text));
}

void TestKorvia::brokenLibrary() {
  QFile library(in("bin/libKorviaSarnhawk.so"));
  QVERIFY(library.open(QIODevice::WriteOnly));
  library.write("no library");
  library.close();
  QCOMPARE(run({}), 1);
  QVERIFY(complaint().contains("korvia: failed to load the console"));
}

void TestKorvia::libraryWithoutFactory() {
  // Any library will do that is loaded anyway.
  QFile maps("/proc/self/maps");
  QVERIFY(maps.open(QIODevice::ReadOnly));
  QString core;
  for (const QByteArray& line : maps.readAll().split('\n')) {
    if (line.contains("/libQt5Test.so"))
      core = QString::fromUtf8(line.mid(line.indexOf('/')));
  }
  QVERIFY(!core.isEmpty());
  QVERIFY(QFile::copy(core, in("bin/libKorviaSarnhawk.so")));
  QCOMPARE(run({}), 1);
  QVERIFY(complaint().contains("korvia: no console in"));
}

void TestKorvia::failingFactory_data() {
  QTest::addColumn<QString>("fault");
  QTest::addColumn<QString>("message");
  QTest::newRow("throws") << "throw"
                          << "korvia: the console's factory failed : failed to create module";
  QTest::newRow("throws const") << "throw const"
                                << "korvia: the console's factory failed : failed to create module";
  QTest::newRow("null") << "null"
                        << "korvia: the console's factory gave nothing";
}

void TestKorvia::failingFactory() {
  QFETCH(QString, fault);
  QFETCH(QString, message);
  useFakeConsole();
  QProcessEnvironment environment = _program->processEnvironment();
  environment.insert("FAKE_CONSOLE", fault);
  _program->setProcessEnvironment(environment);
  QCOMPARE(run({}), 1);
  const QString text = complaint();
  QVERIFY2(text.contains(message), qPrintable(text));
}

void TestKorvia::rootThatCannotBeMade() {
  _program->start(in("bin/korvia"), {"--root", "/proc/korvia"});
  QVERIFY(_program->waitForFinished());
  QCOMPARE(_program->exitCode(), 2);
  QVERIFY(complaint().contains("korvia: the folder /proc/korvia/ cannot be made"));
}

void TestKorvia::tellsTheConsoleWhatWasAsked() {
  useFakeConsole();
  QCOMPARE(run({"--engine", "silent", "--trace", in("t.jsonl"), "--open", "0=/a.mp4", "--open", "2=/b.png",
                "--exit-after", "0"}),
           0);
  const QStringList lines = said();
  QCOMPARE(lines.value(0), "root " + in("root") + "/");
  QCOMPARE(lines.value(1), QStringLiteral("title Korvia Sarnhawk"));
  QCOMPARE(lines.value(2), QStringLiteral("engine silent"));
  QCOMPARE(lines.value(3), "trace " + in("t.jsonl"));
  QCOMPARE(lines.value(4), QStringLiteral("open 0 /a.mp4"));
  QCOMPARE(lines.value(5), QStringLiteral("open 2 /b.png"));
  QVERIFY(QFileInfo(in("root")).isDir());
}

void TestKorvia::nothingButTheSwitchOpensTheMachine() {
  useFakeConsole();
  setEnvironment("KORVIA_LISTEN", "0.0.0.0");
  QCOMPARE(run({"--exit-after", "0"}), 0);
  QCOMPARE(said().filter("listen"), QStringList());
  QVERIFY(!log().join('\n').contains("listening on"));

  QCOMPARE(run({"--exit-after", "0", "--listen", "0.0.0.0"}), 0);
  QCOMPARE(said().filter("listen"), QStringList("listen 0.0.0.0"));
  QCOMPARE(log().filter("warning").filter("listening on 0.0.0.0, other machines reach the servers").size(),
           1);

  QCOMPARE(run({"--exit-after", "0", "--listen", "127.0.0.2"}), 0);
  QCOMPARE(log().filter("info").filter("listening on 127.0.0.2, which only this machine reaches").size(), 1);

  QCOMPARE(run({"--exit-after", "0", "--listen", "198.51.100.77"}), 2);
  QVERIFY(complaint().contains("--listen: this machine has no address 198.51.100.77"));
}

void TestKorvia::keyOfPublishersComesFromItsFileAlone() {
  useFakeConsole();
  setEnvironment("KORVIA_PUBLISH_KEY", "of-the-environment");
  QCOMPARE(run({"--exit-after", "0"}), 0);
  QCOMPARE(said().filter("key"), QStringList());

  QFile file(in("key"));
  QVERIFY(file.open(QIODevice::WriteOnly));
  file.write("s3cret\nnote\n");
  file.close();
  QCOMPARE(run({"--exit-after", "0", "--publish-key-file", in("key")}), 0);
  QCOMPARE(said().filter("key"), QStringList("key s3cret"));
  QVERIFY(!log().join('\n').contains("s3cret"));

  QCOMPARE(run({"--publish-key-file", in("missing")}), 2);
}

void TestKorvia::closesInOrderAfterTheTimeLimit() {
  useFakeConsole();
  QCOMPARE(run({"--exit-after", "0.2", "--size", "500x350"}), 0);
  QCOMPARE(said().mid(4), QStringList({"created", "closing 500x350", "close", "release", ""}));
}

void TestKorvia::takesAPictureAtTheExit() {
  useFakeConsole();
  QCOMPARE(run({"--exit-after", "0.2", "--screenshot", in("shot.png")}), 0);
  const QImage picture(in("shot.png"));
  QCOMPARE(picture.size(), QSize(400, 300));
  QCOMPARE(picture.pixelColor(200, 150), QColor(200, 100, 50));
}

void TestKorvia::refusedCloseLeavesThePictureToTheNext() {
  useFakeConsole();
  QProcessEnvironment environment = _program->processEnvironment();
  environment.insert("FAKE_CONSOLE", "refuse once");
  _program->setProcessEnvironment(environment);
  start({"--screenshot", in("shot.png")});
  QTRY_VERIFY(_program->peek(4096).contains("created"));
  ::kill(static_cast<pid_t>(_program->processId()), SIGTERM);
  QTRY_VERIFY(_program->peek(4096).contains("refused"));
  QVERIFY(QFile::remove(in("shot.png")));
  ::kill(static_cast<pid_t>(_program->processId()), SIGTERM);
  QVERIFY(_program->waitForFinished());
  QCOMPARE(_program->exitCode(), 0);
  QVERIFY(QFile::exists(in("shot.png")));
}

void TestKorvia::pictureThatCannotBeWrittenIsAFailure() {
  useFakeConsole();
  start({"--exit-after", "60", "--screenshot", in("gone/shot.png")});
  QVERIFY(_program->waitForFinished());
  QCOMPARE(_program->exitCode(), 2);

  QVERIFY(QDir().mkpath(in("soon")));
  start({"--screenshot", in("soon/shot.png")});
  QTRY_VERIFY(_program->peek(4096).contains("created"));
  QVERIFY(QDir(in("soon")).removeRecursively());
  ::kill(static_cast<pid_t>(_program->processId()), SIGTERM);
  QVERIFY(_program->waitForFinished());
  QCOMPARE(_program->exitCode(), 1);
  QVERIFY(said().contains("release"));
}

void TestKorvia::signalsCloseInOrder_data() {
  QTest::addColumn<int>("number");
  QTest::newRow("SIGINT") << SIGINT;
  QTest::newRow("SIGTERM") << SIGTERM;
}

void TestKorvia::signalsCloseInOrder() {
  QFETCH(int, number);
  useFakeConsole();
  start({});
  QTRY_VERIFY(_program->peek(4096).contains("created"));
  ::kill(static_cast<pid_t>(_program->processId()), number);
  ::kill(static_cast<pid_t>(_program->processId()), number);
  QVERIFY(_program->waitForFinished());
  QCOMPARE(_program->exitStatus(), QProcess::NormalExit);
  QCOMPARE(_program->exitCode(), 0);
  QCOMPARE(said().mid(4), QStringList({"created", "closing 400x300", "close", "release", ""}));
}

void TestKorvia::fillsTheShowDataFolder() {
  useFakeConsole();
  QVERIFY(QDir().mkpath(in("showdata/Common")));
  QFile file(in("showdata/Common/a.txt"));
  QVERIFY(file.open(QIODevice::WriteOnly));
  file.write("demo");
  file.close();
  QCOMPARE(run({"--exit-after", "0"}), 0);
  QVERIFY(QFile::exists(in("d/KorviaVR/code/output/ShowData/Common/a.txt")));
}

void TestKorvia::hangUpClosesInOrder() {
  useFakeConsole();
  QVERIFY(_program->openTerminal());
  start({});
  QTRY_VERIFY(_program->peek(4096).contains("created"));
  _program->closeTerminal();
  QVERIFY(_program->waitForFinished());
  QCOMPARE(_program->exitStatus(), QProcess::NormalExit);
  QCOMPARE(_program->exitCode(), 0);
  QCOMPARE(said().mid(4), QStringList({"created", "closing 400x300", "close", "release", ""}));
  QVERIFY(log().join('\n').contains("the terminal is gone, closing"));
}

void TestKorvia::hangUpEndsNoRecording() {
  useFakeConsole();
  setEnvironment("FAKE_CONSOLE", "recording");
  QVERIFY(_program->openTerminal());
  start({});
  QTRY_VERIFY(_program->peek(4096).contains("created"));
  _program->closeTerminal();
  QTRY_VERIFY(log().join('\n').contains("the terminal is gone, going on without it while recording"));
  // None of its streams is on the terminal any more.
  const QString descriptors = QString("/proc/%1/fd/").arg(_program->processId());
  QCOMPARE(QFile::symLinkTarget(descriptors + "2"), QStringLiteral("/dev/null"));
  QCOMPARE(_program->state(), QProcess::Running);
  ::kill(static_cast<pid_t>(_program->processId()), SIGTERM);
  QVERIFY(_program->waitForFinished());
  QCOMPARE(_program->exitCode(), 0);
  QCOMPARE(said().mid(4), QStringList({"created", "closing 400x300", "close", "release", ""}));
}

void TestKorvia::missingDisplayIsOneSentence_data() {
  QTest::addColumn<QString>("platform");
  QTest::addColumn<QString>("display");
  QTest::addColumn<QString>("sentence");
  QTest::newRow("no display")
      << "xcb"
      << ""
      << "korvia: there is no display, DISPLAY is not set; ./run brings a virtual one\n";
  QTest::newRow("dead display")
      << "xcb"
      << ":4711"
      << "korvia: the display \":4711\" cannot be reached; ./run brings a virtual one\n";
  QTest::newRow("no platform")
      << "cinema"
      << ""
      << "korvia: the window system \"cinema\" cannot be used; ./run brings a virtual "
         "one\n";
}

void TestKorvia::missingDisplayIsOneSentence() {
  QFETCH(QString, platform);
  QFETCH(QString, display);
  QFETCH(QString, sentence);
  useFakeConsole();
  setEnvironment("QT_QPA_PLATFORM", platform);
  setEnvironment("DISPLAY", display);
  setEnvironment("QT_LOGGING_RULES", "");
  QCOMPARE(run({}), 1);
  QCOMPARE(complaint(), sentence);
}

void TestKorvia::channelThatTheShowDoesNotHave_data() {
  QTest::addColumn<QString>("channel");
  for (const char* channel : {"5", "9", "4294967296"})
    QTest::newRow(channel) << channel;
}

void TestKorvia::channelThatTheShowDoesNotHave() {
  QFETCH(QString, channel);
  useFakeConsole();
  QCOMPARE(run({"--open", channel + "=/a.mp4"}), 2);
  QCOMPARE(complaint(),
           QStringLiteral("korvia: --open: there is no media channel %1, the show has the channels 0 to 2\n")
               .arg(channel));
  QVERIFY(!QFileInfo::exists(in("root")));
}

void TestKorvia::logsToAFileBesideTheConfiguration() {
  useFakeConsole();
  setEnvironment("FAKE_CONSOLE", "chatter");
  QCOMPARE(run({"--exit-after", "0"}), 0);
  static const QRegularExpression form(
      "^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} debug default : line 0$");
  QCOMPARE(log().filter(form).size(), 1);
  QVERIFY(complaint().contains(log().filter(form).value(0)));
}

void TestKorvia::standardErrorThatNobodyReadsHoldsNobodyUp() {
  useFakeConsole();
  setEnvironment("FAKE_CONSOLE", "chatter");
  const QByteArray pipe = QFile::encodeName(in("pipe"));
  QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
  const int unread = ::open(pipe.constData(), O_RDWR | O_CLOEXEC);
  QVERIFY(unread >= 0);
  _program->setStandardErrorFile(in("pipe"));
  QCOMPARE(run({"--exit-after", "0"}), 0);
  ::close(unread);
  QCOMPARE(said().mid(4), QStringList({"created", "closing 400x300", "close", "release", ""}));

  // Each line is in the file in its order, or counted at the place where it is missing.
  int next = 0;
  for (const QString& line : log()) {
    const int number = line.section(" debug default : line ", 1).toInt();
    if (line.contains(" debug default : line ")) {
      QCOMPARE(number, next);
      ++next;
    } else if (line.endsWith(" lines dropped")) {
      next += line.section(" : ", 1).section(' ', 0, 0).toInt();
    }
  }
  QCOMPARE(next, 100000);
}

void TestKorvia::standardErrorThatIsClosedHarmsNobody() {
  useFakeConsole();
  setEnvironment("FAKE_CONSOLE", "chatter");
  const QByteArray pipe = QFile::encodeName(in("pipe"));
  QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
  const int reader = ::open(pipe.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  QVERIFY(reader >= 0);
  _program->setStandardErrorFile(in("pipe"));
  start({"--exit-after", "0"});
  ::close(reader);
  QVERIFY(_program->waitForFinished());
  QCOMPARE(_program->exitStatus(), QProcess::NormalExit);
  QCOMPARE(_program->exitCode(), 0);
}

void TestKorvia::fatalMessageIsInTheLog() {
  useFakeConsole();
  setEnvironment("FAKE_CONSOLE", "fatal");
  start({});
  QVERIFY(_program->waitForFinished());
  QCOMPARE(_program->exitStatus(), QProcess::CrashExit);
  const QString text = log().join('\n');
  QVERIFY2(text.contains("warning default : last words\n") && text.contains("fatal default : the end\n"),
           qPrintable(text));
  const QString complained = complaint();
  QVERIFY2(complained.contains("fatal default : the end\n"), qPrintable(complained));
}

QTEST_GUILESS_MAIN(TestKorvia)
#include "tst_korvia.moc"
