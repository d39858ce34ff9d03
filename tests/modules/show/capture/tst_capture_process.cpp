// The program ends with the console and is ended by it, has nothing of the console's, and stays within its
// memory.
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <QTemporaryDir>
#include <cstddef>
#include <cstdio>

#include "CaptureRig.h"
#include "CaptureShelf.h"
#include "support/VirtualDisplay.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr const char* kHold = "--hold";
constexpr const char* kShowUnconfined = "--show-unconfined";

CaptureRequest screenRequest() {
  CaptureRequest request;
  request.kind = CaptureKind::Screen;
  return request;
}

CaptureRequest pageRequest() {
  CaptureRequest request;
  request.kind = CaptureKind::Page;
  request.address = QStringLiteral("about:blank");
  request.width = 64;
  request.height = 48;
  request.mostMemoryBytes = 4'000'000'000;
  return request;
}

/// The other end of a test: shows a page until it is killed.
int holdPage() {
  const CaptureRig rig(pageRequest());
  if (!rig.waitForPictures(1))
    return 1;
  std::printf("%lld\n", static_cast<long long>(rig.processId()));
  std::fflush(stdout);
  for (;;)
    ::pause();
}

/// The other end of a test: shows a screen twice, as on a kernel that does not have Landlock.
int showUnconfined() {
  sock_filter steps[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_landlock_create_ruleset, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog filter = {static_cast<unsigned short>(std::size(steps)), steps};
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0)
    return 1;
  for (int run = 0; run < 2; ++run) {
    const CaptureRig rig(screenRequest());
    if (!rig.waitForPictures(1))
      return 2;
  }
  return 0;
}

QByteArray contentOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool isGone(pid_t process) {
  return QTest::qWaitFor([process] { return sessionOf(process).isEmpty(); }, kWaitMs);
}

QStringList captureFolders() {
  return QDir(QDir::tempPath()).entryList({QStringLiteral("korvia-capture-*")}, QDir::Dirs);
}

}  // namespace

class tst_capture_process : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    // The folders of other runs do not lie in this one.
    qputenv("TMPDIR", folder_.path().toLocal8Bit());
    QVERIFY(display_.start({320, 240}));
    qputenv("DISPLAY", display_.name().toLatin1());
  }

  void killedProgramIsToldAtOnce() {
    const CaptureRig rig(screenRequest());
    QVERIFY(rig.waitForPictures(1));
    ::kill(rig.processId(), SIGKILL);
    QCOMPARE(rig.waitForEnd(), QStringLiteral("capture program was killed by signal 9"));
  }

  void stoppedProgramIsEnded() {
    pid_t process = 0;
    {
      const CaptureRig rig(screenRequest());
      QVERIFY(rig.waitForPictures(1));
      process = rig.processId();
      ::kill(process, SIGSTOP);
    }
    QVERIFY(isGone(process));
  }

  void processesOfAPageEndWithIt() {
    pid_t process = 0;
    {
      const CaptureRig rig(pageRequest());
      QVERIFY(rig.waitForPictures(1));
      process = rig.processId();
      QVERIFY(sessionOf(process).size() > 1);
    }
    QVERIFY(isGone(process));
    QCOMPARE(captureFolders(), QStringList());
  }

  void processesOfAPageEndWhenTheProgramIsKilled() {
    const CaptureRig rig(pageRequest());
    QVERIFY(rig.waitForPictures(1));
    QVERIFY(sessionOf(rig.processId()).size() > 1);
    ::kill(rig.processId(), SIGKILL);
    QVERIFY(rig.waitForEnd() != QStringLiteral("still running"));
    QVERIFY(isGone(rig.processId()));
  }

  void everythingEndsWhenTheConsoleIsKilled() {
    QProcess console;
    console.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    console.start(QCoreApplication::applicationFilePath(), {QLatin1String(kHold)});
    QVERIFY(console.waitForReadyRead(kWaitMs));
    const pid_t process = console.readLine().trimmed().toInt();
    QVERIFY(process > 0);
    QVERIFY(sessionOf(process).size() > 1);
    console.kill();
    QVERIFY(console.waitForFinished(kWaitMs));
    QVERIFY(isGone(process));
    QTRY_COMPARE_WITH_TIMEOUT(captureFolders(), QStringList(), kWaitMs);
  }

  void missingConfinementIsWarnedOfOnce() {
    QProcess console;
    console.start(QCoreApplication::applicationFilePath(), {QLatin1String(kShowUnconfined)});
    QVERIFY(console.waitForFinished(2 * kWaitMs));
    QCOMPARE(console.exitCode(), 0);
    QCOMPARE(console.readAllStandardError().count("the kernel has no landlock"), 1);
  }

  void memoryIsLimited() {
    CaptureRequest request = screenRequest();
    request.mostMemoryBytes = 1024 * 1024;
    const CaptureRig rig(request);
    QCOMPARE(rig.waitForEnd(), QStringLiteral("too much memory was used"));
    QVERIFY(isGone(rig.processId()));
  }

  void memoryIsLimitedWhenTheProgramHangs() {
    CaptureRequest request = screenRequest();
    request.mostMemoryBytes = 1;
    const CaptureRig rig(request);
    // Before its own guard looks for the first time.
    QVERIFY(QTest::qWaitFor([&] { return !sessionOf(rig.processId()).isEmpty(); }, kWaitMs));
    ::kill(rig.processId(), SIGSTOP);
    QCOMPARE(rig.waitForEnd(), QStringLiteral("capture program does not keep its memory limit"));
    QVERIFY(isGone(rig.processId()));
  }

  void anotherListenerTakesOver() {
    CaptureRig rig(screenRequest());
    QVERIFY(rig.waitForPictures(3));
    class Counter final : public CaptureListener {
     public:
      void onCapturePicture(const CapturePicture&) override { ++calls; }
      void onCaptureRepeat(std::int64_t) override { ++calls; }
      void onCaptureSound(const float*, int, std::int64_t) override {}
      void onCaptureEnded(const QString&) override { ended = true; }
      std::atomic<int> calls{0};
      std::atomic<bool> ended{false};
    } counter;
    QVERIFY(rig.process().setListener(&counter));
    const int before = rig.pictures() + rig.repeats();
    QTRY_VERIFY(counter.calls > 3);
    QCOMPARE(rig.pictures() + rig.repeats(), before);
    ::kill(rig.processId(), SIGKILL);
    QTRY_VERIFY(counter.ended);
    QVERIFY(!rig.process().setListener(nullptr));
  }

  void aRunIsTakenByTheSameRequestOnly() {
    class Nobody final : public CaptureListener {
      void onCapturePicture(const CapturePicture&) override {}
      void onCaptureSound(const float*, int, std::int64_t) override {}
      void onCaptureEnded(const QString&) override {}
    } nobody;
    CaptureShelf shelf;
    const CaptureRequest request = pageRequest();
    const auto start = [&nobody](const CaptureRequest& wanted) {
      auto process = std::make_unique<CaptureProcess>(nobody);
      QString reason;
      if (!process->start(wanted, reason))
        qWarning("%s", qPrintable(reason));
      process->setListener(nullptr);
      return process;
    };
    shelf.offer(start(request), request);
    CaptureRequest other = request;
    other.address = QStringLiteral("about:other");
    QVERIFY(!shelf.take(other, nobody));
    other = request;
    other.rateNumerator = 50;
    QVERIFY(!shelf.take(other, nobody));
    other = request;
    other.width = 128;
    const auto taken = shelf.take(other, nobody);
    QVERIFY(taken);
    QVERIFY(!shelf.take(request, nobody));
    // What has died on the shelf is of no use.
    auto dying = start(request);
    const auto process = static_cast<pid_t>(dying->processId());
    shelf.offer(std::move(dying), request);
    ::kill(process, SIGKILL);
    QVERIFY(isGone(process));
    QTRY_VERIFY(!shelf.take(request, nobody));
  }

  void aRunThatNobodyTakesEnds() {
    class Nobody final : public CaptureListener {
      void onCapturePicture(const CapturePicture&) override {}
      void onCaptureSound(const float*, int, std::int64_t) override {}
      void onCaptureEnded(const QString&) override {}
    } nobody;
    constexpr std::chrono::milliseconds kShort{1500};
    CaptureShelf shelf(kShort);
    QElapsedTimer sinceOffer;
    pid_t processes[2] = {};
    for (pid_t& process : processes) {
      auto run = std::make_unique<CaptureProcess>(nobody);
      QString reason;
      QVERIFY(run->start(screenRequest(), reason));
      run->setListener(nullptr);
      process = static_cast<pid_t>(run->processId());
      if (&process == &processes[0]) {
        sinceOffer.start();
        shelf.offer(std::move(run), screenRequest());
      } else {
        shelf.end(std::move(run));
      }
    }
    QVERIFY(isGone(processes[1]));
    QVERIFY(isGone(processes[0]));
    QVERIFY(sinceOffer.hasExpired(kShort.count()));
  }

  void environmentIsClean_data() {
    QTest::addColumn<bool>("page");
    QTest::newRow("screen") << false;
    QTest::newRow("page") << true;
  }
  void environmentIsClean() {
    QFETCH(bool, page);
    qputenv("KORVIA_PUBLISH_KEY", "secret");
    qputenv("LD_PRELOAD_OF_THE_CONSOLE", "secret");
    const CaptureRig rig(page ? pageRequest() : screenRequest());
    QVERIFY(rig.waitForPictures(1));
    for (const QString& process : sessionOf(rig.processId())) {
      const QByteArray environment = contentOf(QStringLiteral("/proc/%1/environ").arg(process));
      QVERIFY(environment.contains("HOME=" + folder_.path().toLocal8Bit()));
      QVERIFY(!environment.contains("secret"));
      QCOMPARE(environment.contains("DISPLAY="), !page);
    }
    qunsetenv("KORVIA_PUBLISH_KEY");
  }

  void descriptorsAreNotInherited() {
    QTemporaryDir folder;
    const QByteArray name = QFile::encodeName(folder.filePath(QStringLiteral("secret")));
    // Without O_CLOEXEC.
    const FileDescriptor open(::open(name.constData(), O_RDWR | O_CREAT, 0600));
    QVERIFY(open.isOpen());
    const CaptureRig rig(pageRequest());
    QVERIFY(rig.waitForPictures(1));
    for (const QString& process : sessionOf(rig.processId())) {
      QDir descriptors(QStringLiteral("/proc/%1/fd").arg(process));
      QVERIFY(!descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).isEmpty());
      for (const QFileInfo& entry : descriptors.entryInfoList(QDir::AllEntries | QDir::System))
        QVERIFY2(!entry.symLinkTarget().contains(folder.path()), qPrintable(entry.symLinkTarget()));
    }
  }

  void rightsCannotGrow() {
    const CaptureRig rig(pageRequest());
    QVERIFY(rig.waitForPictures(1));
    for (const QString& process : sessionOf(rig.processId()))
      QVERIFY(contentOf(QStringLiteral("/proc/%1/status").arg(process)).contains("NoNewPrivs:\t1"));
  }

 private:
  QTemporaryDir folder_;
  VirtualDisplay display_;
};

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  if (application.arguments().contains(QLatin1String(kHold)))
    return holdPage();
  if (application.arguments().contains(QLatin1String(kShowUnconfined)))
    return showUnconfined();
  tst_capture_process test;
  return QTest::qExec(&test, argc, argv);
}

#include "tst_capture_process.moc"
