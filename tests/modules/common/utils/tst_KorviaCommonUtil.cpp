// Folders, files and the address of the machine, by drive paths.
#include <sys/stat.h>

#include <QHostAddress>
#include <QNetworkInterface>
#include <QScopeGuard>
#include <QtTest>

#include "KorviaCommonUtil.h"

class KorviaCommonUtilTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    drive_ = std::make_unique<QTemporaryDir>();
    QVERIFY(drive_->isValid());
    qputenv("KORVIA_DRIVE_D", QFile::encodeName(drive_->path()));
  }

  void makesAFolderWithItsParents() {
    QVERIFY(KorviaCommonUtil::makesureExistDir(R"(d:\records\vod\0\)", true));
    QVERIFY(QFileInfo(drive_->filePath("records/vod/0")).isDir());
    QVERIFY(KorviaCommonUtil::makesureExistDir(R"(d:\records\vod\0\)", true));
  }

  void withoutParentsOnlyTheLast() {
    QVERIFY(!KorviaCommonUtil::makesureExistDir(R"(d:\a\b)", false));
    QVERIFY(!QFileInfo::exists(drive_->filePath("a")));
    QVERIFY(KorviaCommonUtil::makesureExistDir(R"(d:\a)", false));
    QVERIFY(QFileInfo(drive_->filePath("a")).isDir());
  }

  void aFileInTheWayIsNoFolder() {
    write("file", "x");
    QVERIFY(!KorviaCommonUtil::makesureExistDir(R"(d:\file)", true));
    QVERIFY(!KorviaCommonUtil::makesureExistDir(R"(d:\file\below)", true));
    QVERIFY(!KorviaCommonUtil::makesureExistDir("", true));
  }

  void readsAFile() {
    write("ver.txt", QByteArray("1.2.3\n\0x", 8));
    QByteArray content = "old";
    QVERIFY(KorviaCommonUtil::readFileContent(R"(d:\ver.txt)", content));
    QCOMPARE(content, QByteArray("1.2.3\n\0x", 8));
    write("empty", "");
    QVERIFY(KorviaCommonUtil::readFileContent("d:/empty", content));
    QCOMPARE(content, QByteArray());
  }

  void refusesWhatIsNoFile() {
    QByteArray content = "old";
    QVERIFY(!KorviaCommonUtil::readFileContent(R"(d:\missing)", content));
    QCOMPARE(content, QByteArray());
    QVERIFY(!KorviaCommonUtil::readFileContent("d:\\", content));
    const QByteArray fifo = QFile::encodeName(drive_->filePath("fifo"));
    QCOMPARE(mkfifo(fifo.constData(), 0600), 0);
    QVERIFY(!KorviaCommonUtil::readFileContent(R"(d:\fifo)", content));
  }

  void refusesAHugeFile() {
    QFile file(drive_->filePath("huge"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(64 * 1024 * 1024 + 1));
    QByteArray content;
    QVERIFY(!KorviaCommonUtil::readFileContent(R"(d:\huge)", content));
    QCOMPARE(content, QByteArray());
    QVERIFY(file.resize(64 * 1024 * 1024));
    QVERIFY(KorviaCommonUtil::readFileContent(R"(d:\huge)", content));
    QCOMPARE(content.size(), 64 * 1024 * 1024);
  }

  void addressIsThatOfTheServers() {
    const auto reset = qScopeGuard([] { qunsetenv("KORVIA_LISTEN"); });
    QCOMPARE(KorviaCommonUtil::getIp(), QString("127.0.0.1"));
    qputenv("KORVIA_LISTEN", "127.0.0.2");
    QCOMPARE(KorviaCommonUtil::getIp(), QString("127.0.0.2"));
    // Listening everywhere: an address that another machine can use, when this one has any.
    qputenv("KORVIA_LISTEN", "0.0.0.0");
    const QHostAddress address(KorviaCommonUtil::getIp());
    QCOMPARE(address.protocol(), QAbstractSocket::IPv4Protocol);
    QVERIFY(QNetworkInterface::allAddresses().contains(address));
  }

  void pairIsDefinedForEveryText_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QSizeF>("pair");
    QTest::newRow("padded") << "640  X 480" << QSizeF(640, 480);
    QTest::newRow("tight") << "640X480" << QSizeF(640, 480);
    QTest::newRow("other case") << "640x480" << QSizeF(640, 480);
    QTest::newRow("fractions") << "1.5 X 2.25" << QSizeF(1.5, 2.25);
    QTest::newRow("second is no number") << "640 X 480 X 3" << QSizeF(640, 0);
    QTest::newRow("first is no number") << "wide X 480" << QSizeF(0, 480);
    QTest::newRow("half") << "640 X" << QSizeF(640, 0);
    QTest::newRow("no separator") << "640" << QSizeF(0, 0);
    QTest::newRow("empty") << "" << QSizeF(0, 0);
    QTest::newRow("negative") << "-640 X 480" << QSizeF(0, 480);
    QTest::newRow("not a number") << "nan X 480" << QSizeF(0, 480);
    QTest::newRow("infinite") << "inf X 1e300" << QSizeF(1e9, 1e9);
  }
  void pairIsDefinedForEveryText() {
    QFETCH(QString, text);
    QFETCH(QSizeF, pair);
    QCOMPARE(KorviaCommonUtil::splitePairValue(text, "X"), pair);
  }

  void pairTakesAnySeparator() {
    QCOMPARE(KorviaCommonUtil::splitePairValue("30000 / 1001", "/"), QSizeF(30000, 1001));
    QCOMPARE(KorviaCommonUtil::splitePairValue("30000 / 1001", ""), QSizeF(0, 0));
  }

 private:
  void write(const QString& name, const QByteArray& content) {
    QFile file(drive_->filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
  }

  std::unique_ptr<QTemporaryDir> drive_;

  void filesAreListedByTheirPatterns() {
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath("below/deeper.tga"));
    for (const char* name : {"b.tga", "A.TGA", "c.mp4", "note.txt", ".hidden.tga", "below/d.tga"}) {
      QFile file(folder.filePath(name));
      QVERIFY(file.open(QIODevice::WriteOnly));
    }
    const auto listed = [&folder](const QString& filter, bool withSubFolders, bool withHidden) {
      QFileInfoList files;
      KorviaCommonUtil::collectFileListInExt(folder.path(), filter, files, withSubFolders, withHidden);
      QStringList names;
      for (const QFileInfo& file : files)
        names.append(file.fileName());
      return names;
    };
    QCOMPARE(listed("*.tga", false, false), QStringList({"A.TGA", "b.tga"}));
    QCOMPARE(listed("*.tga;*.mp4", false, false), QStringList({"A.TGA", "b.tga", "c.mp4"}));
    QCOMPARE(listed("*.tga", true, false), QStringList({"A.TGA", "b.tga", "d.tga"}));
    QCOMPARE(listed("*.tga", false, true), QStringList({".hidden.tga", "A.TGA", "b.tga"}));
    QFileInfoList files{QFileInfo("kept")};
    KorviaCommonUtil::collectFileListInExt(folder.filePath("missing"), "*", files, true, true);
    QCOMPARE(files.size(), 1);
  }
};

QTEST_GUILESS_MAIN(KorviaCommonUtilTest)
#include "tst_KorviaCommonUtil.moc"
