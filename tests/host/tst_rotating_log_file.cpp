#include <QTemporaryDir>
#include <QtTest>

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

 private:
  QString in(const QString& name) const { return folder_->filePath(name); }
  QByteArray content(const QString& name) const {
    QFile file(in(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }

  std::unique_ptr<QTemporaryDir> folder_;
};

QTEST_APPLESS_MAIN(TestRotatingLogFile)
#include "tst_rotating_log_file.moc"
