#include <sys/resource.h>

#include <QTemporaryDir>
#include <QtTest>
#include <csignal>

#include "RotatingLogFile.h"

using korvia::RotatingLogFile;

class TestRotatingLogFile : public QObject {
  Q_OBJECT

 private slots:
  void init() { folder_ = std::make_unique<QTemporaryDir>(); }

  void makesItsFolderAndAppends() {
    for (const char* text : {"one\n", "two\n"}) {
      RotatingLogFile file(in("a/b/korvia.log"));
      QVERIFY(file.isOpen());
      file.write(text);
    }
    QCOMPARE(content("a/b/korvia.log"), QByteArray("one\ntwo\n"));
    QVERIFY(!(QFile::permissions(in("a/b/korvia.log")) & QFile::ReadOther));
  }

  void keepsTheNewestFiles() {
    RotatingLogFile file(in("korvia.log"), 20, 3);
    for (int n = 0; n < 10; ++n)
      file.write("line " + QByteArray::number(n) + "...\n");
    QCOMPARE(QDir(folder_->path()).entryList(QDir::Files),
             QStringList({"korvia.1.log", "korvia.2.log", "korvia.log"}));
    QCOMPARE(content("korvia.log"), QByteArray("line 8...\nline 9...\n"));
    QCOMPARE(content("korvia.1.log"), QByteArray("line 6...\nline 7...\n"));
    QCOMPARE(content("korvia.2.log"), QByteArray("line 4...\nline 5...\n"));
  }

  void usualSizesAreFiveMegabytesFiveTimes() {
    RotatingLogFile file(in("korvia.log"));
    const QByteArray mega(1024 * 1024, 'x');
    for (int n = 0; n < 31; ++n)
      file.write(mega);
    const QDir folder(folder_->path());
    QCOMPARE(folder.entryList(QDir::Files).size(), 5);
    for (const QFileInfo& info : folder.entryInfoList(QDir::Files))
      QVERIFY(info.size() <= 5 * 1024 * 1024);
  }

  void twoProgramsShareAFile() {
    RotatingLogFile first(in("korvia.log"), 20, 3);
    RotatingLogFile second(in("korvia.log"), 20, 3);
    first.write("one line...\n");
    second.write("a second line...\n");
    first.write("a third...\n");
    QCOMPARE(content("korvia.log"), QByteArray("a third...\n"));
    QCOMPARE(content("korvia.1.log"), QByteArray("a second line...\n"));
    QCOMPARE(content("korvia.2.log"), QByteArray("one line...\n"));
  }

  void folderThatCannotBeMadeIsNoHarm() {
    RotatingLogFile file("/proc/korvia/korvia.log");
    QVERIFY(!file.isOpen());
    file.write("nothing\n");
  }

  void linesLostOnAFullDiskAreCounted() {
    QVERIFY(QFile::link("/dev/full", in("korvia.log")));
    RotatingLogFile file(in("korvia.log"), 1000, 3, clock());
    file.write("one\ntwo\n");
    QVERIFY(QFile::remove(in("korvia.log")));
    file.write("three\n");
    QVERIFY(!QFile::exists(in("korvia.log")));  // tried again after a second
    now_ += std::chrono::milliseconds(1000);
    file.write("four\n");
    file.write("five\n");
    const QByteArrayList lines = content("korvia.log").split('\n');
    QCOMPARE(lines.size(), 4);
    QVERIFY2(lines[0].contains("korvia.host.log") && lines[0].endsWith("3 lines lost"), lines[0].constData());
    QCOMPARE(lines.mid(1), QByteArrayList({"four", "five", ""}));
  }

  void lineThatWasCutOffStandsAlone() {
    // A file that may not grow stands for a disk that is full: write() fails in the same place.
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit little{6, before.rlim_max};
    RotatingLogFile file(in("korvia.log"), 1000, 3, clock());
    setrlimit(RLIMIT_FSIZE, &little);
    file.write("one\ntwo\nthree\n");
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    now_ += std::chrono::milliseconds(1000);
    file.write("four\n");
    const QByteArrayList lines = content("korvia.log").split('\n');
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines.mid(0, 2), QByteArrayList({"one", "tw"}));
    QVERIFY2(lines[2].endsWith("2 lines lost"), lines[2].constData());
    QCOMPARE(lines[3], QByteArray("four"));
  }

  void folderThatCameLaterIsUsed() {
    QVERIFY(QFile(in("a")).open(QIODevice::WriteOnly));  // a file in the folder's place
    RotatingLogFile file(in("a/korvia.log"), 1000, 3, clock());
    file.write("one\n");
    QVERIFY(QFile::remove(in("a")));
    now_ += std::chrono::milliseconds(1000);
    file.write("two\n");
    QVERIFY2(content("a/korvia.log").contains("1 lines lost\ntwo\n"), content("a/korvia.log").constData());
  }

 private:
  QString in(const QString& name) const { return folder_->filePath(name); }
  QByteArray content(const QString& name) const {
    QFile file(in(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }

  RotatingLogFile::Clock clock() {
    return [this] { return now_; };
  }

  std::unique_ptr<QTemporaryDir> folder_;
  std::chrono::steady_clock::time_point now_{std::chrono::hours(1)};
};

QTEST_APPLESS_MAIN(TestRotatingLogFile)
#include "tst_rotating_log_file.moc"
