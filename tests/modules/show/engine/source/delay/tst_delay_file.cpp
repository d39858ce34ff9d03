// The file of a delay: what it keeps, what it leaves, and how it fails.
#include <sys/resource.h>

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>
#include <vector>

#include "engine/source/delay/DelayFile.h"

using namespace korvia;

class DelayFileTest : public QObject {
  Q_OBJECT

 private slots:
  void keepsWhatIsWritten() {
    QTemporaryDir folder;
    DelayFile file;
    QString reason;
    QVERIFY2(file.open(folder.path() + "/new/folder", 8192, 0, reason), qPrintable(reason));
    const std::vector<std::uint8_t> bytes{1, 2, 3, 250};
    QVERIFY(file.write(4096, bytes.data(), 4));
    std::vector<std::uint8_t> read(4);
    QVERIFY(file.read(4096, read.data(), 4));
    QCOMPARE(read, bytes);
  }

  void readsNothingBehindItsEnd() {
    QTemporaryDir folder;
    DelayFile file;
    QString reason;
    QVERIFY(file.open(folder.path(), 4096, 0, reason));
    std::uint8_t byte = 0;
    QVERIFY(!file.read(1 << 20, &byte, 1));
  }

  void leavesNoNameBehind() {
    QTemporaryDir folder;
    DelayFile file;
    QString reason;
    QVERIFY(file.open(folder.path(), 4096, 0, reason));
    QVERIFY(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
  }

  void removesWhatAKilledProcessLeft() {
    QTemporaryDir folder;
    for (const char* name : {"/korvia-delay-Xy12Ab", "/other"}) {
      QFile left(folder.path() + QLatin1String(name));
      QVERIFY(left.open(QIODevice::WriteOnly));
    }
    DelayFile file;
    QString reason;
    QVERIFY(file.open(folder.path(), 4096, 0, reason));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList{"other"});
  }

  void leavesTheReserveFree() {
    QTemporaryDir folder;
    DelayFile file;
    QString reason;
    QVERIFY(!file.open(folder.path(), 4096, std::int64_t{1} << 60, reason));
    QCOMPARE(reason, QString("disk has no room"));
  }

  void tellsOfAFolderThatCannotBeMade() {
    QTemporaryDir folder;
    QFile inTheWay(folder.path() + "/file");
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    DelayFile file;
    QString reason;
    QVERIFY(!file.open(folder.path() + "/file/folder", 4096, 0, reason));
    QVERIFY2(reason.startsWith("file cannot be made : "), qPrintable(reason));
  }

  void tellsOfADiskThatIsFull() {
    rlimit former{};
    getrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{4096, former.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    QTemporaryDir folder;
    QString reason;
    DelayFile tooLarge;
    const bool opened = tooLarge.open(folder.path(), 8192, 0, reason);
    DelayFile fitting;
    QString other;
    const bool otherOpened = fitting.open(folder.path(), 4096, 0, other);
    const std::vector<std::uint8_t> bytes(100);
    const bool written = fitting.write(0, bytes.data(), 100);
    const bool overfull = fitting.write(4050, bytes.data(), 100);
    setrlimit(RLIMIT_FSIZE, &former);
    QVERIFY(!opened);
    QVERIFY2(reason.startsWith("disk has no room : "), qPrintable(reason));
    QVERIFY(otherOpened);
    QVERIFY(written);
    QVERIFY(!overfull);
  }
};

QTEST_GUILESS_MAIN(DelayFileTest)
#include "tst_delay_file.moc"
