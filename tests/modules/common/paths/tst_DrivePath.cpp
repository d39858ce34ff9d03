// Drive paths, foreign paths, and file names made of foreign texts.
#include <pwd.h>
#include <unistd.h>

#include <QtTest>

#include "DrivePath.h"
#include "HomeFolder.h"

using korvia::DrivePath;

class DrivePathTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    qputenv("KORVIA_DRIVE_D", "/srv/show d");
    qunsetenv("KORVIA_DRIVE_E");
    qputenv("KORVIA_DRIVE_Z", "/mnt/z/");
  }

  void resolves_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("resolved");
    const auto row = [](const char* name, const char* path, const char* resolved) {
      QTest::newRow(name) << QString(path) << QString(resolved);
    };
    row("show data", R"(D:\KorviaVR\code\output\ShowData\)", "/srv/show d/KorviaVR/code/output/ShowData/");
    row("records", R"(d:\records\vod\0\)", "/srv/show d/records/vod/0/");
    row("no separator at the end", R"(d:\records\vod)", "/srv/show d/records/vod");
    row("slashes", "d:/records//vod/x.ts", "/srv/show d/records/vod/x.ts");
    row("doubled separators", R"(D:\KorviaVR\code\output\ShowData\\Common\TextTexture\)",
        "/srv/show d/KorviaVR/code/output/ShowData/Common/TextTexture/");
    row("mixed separators", R"(D:\ShowData\/Common/Component/)", "/srv/show d/ShowData/Common/Component/");
    row("drive alone", "d:", "/srv/show d");
    row("drive root", "d:\\", "/srv/show d/");
    row("climbing stays on the drive", R"(d:\..\..\etc\passwd)", "/srv/show d/etc/passwd");
    row("parent inside the drive", R"(d:\a\..\b\.\c)", "/srv/show d/b/c");
    row("another drive", R"(z:\film.mp4)", "/mnt/z/film.mp4");
    row("another drive's root", "Z:\\", "/mnt/z/");
    row("drive without a folder", R"(e:\film.mp4)", R"(e:\film.mp4)");
    row("relative to a drive", "d:film.mp4", "d:film.mp4");
    row("two letters", R"(dd:\film.mp4)", "dd:/film.mp4");
    row("not a letter", R"(1:\film.mp4)", "1:/film.mp4");
    row("url", "rtmp://127.0.0.1/income/0", "rtmp://127.0.0.1/income/0");
    row("unix path", "/home/a/film.mp4", "/home/a/film.mp4");
    row("unix path with doubled slash", "/home//film.mp4", "/home//film.mp4");
    row("back-slashes that are not there", R"(html\pages\index.html)", "html/pages/index.html");
    row("empty", "", "");
  }

  void resolves() {
    QFETCH(QString, path);
    QTEST(DrivePath::resolve(path), "resolved");
  }

  void defaultFolderOfDriveD() {
    qunsetenv("KORVIA_DRIVE_D");
    QCOMPARE(DrivePath::resolve("D:\\x"), QDir::homePath() + "/Korvia/d/x");
    QCOMPARE(DrivePath::driveFolder('d'), QDir::homePath() + "/Korvia/d");
    QCOMPARE(DrivePath::driveFolder('e'), QString());
    QCOMPARE(DrivePath::driveFolder('1'), QString());
  }

  void homeComesFromTheUserWhenTheEnvironmentHasNone() {
    const QByteArray home = qgetenv("HOME");
    const QString entry = QFile::decodeName(getpwuid(getuid())->pw_dir);
    qunsetenv("KORVIA_DRIVE_D");
    for (const char* value : {"", "/", "here"}) {
      qputenv("HOME", value);
      QCOMPARE(korvia::homeFolder(), entry);
      QCOMPARE(DrivePath::driveFolder('d'), entry + "/Korvia/d");
    }
    qunsetenv("HOME");
    QCOMPARE(DrivePath::driveFolder('d'), entry + "/Korvia/d");
    qputenv("HOME", "/srv/operator/");
    QCOMPARE(korvia::homeFolder(), QStringLiteral("/srv/operator"));
    qputenv("HOME", home);
  }

  void fileWithBackSlashInItsNameStaysReachable() {
    QTemporaryDir folder;
    const QString path = folder.filePath("a\\b.txt");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(DrivePath::resolve(path), path);
    QVERIFY(file.remove());
    QCOMPARE(DrivePath::resolve(path), folder.filePath("a/b.txt"));
  }

  void safeNames_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("name");
    const auto row = [](const char* name, const QString& text, const char* expected) {
      QTest::newRow(name) << text << QString::fromUtf8(expected);
    };
    row("plain", "programName", "programName");
    row("blanks inside", "Evening show 2", "Evening show 2");
    row("other scripts", QString::fromUtf8("节目 été"), "节目 été");
    row("separators", "../../etc/passwd", "etcpasswd");
    row("back-slashes", R"(..\..\x)", "x");
    row("dots inside", "a..b...c", "a.b.c");
    row("dots that come together by cleaning", "a./.b", "a.b");
    row("dots only", "....", "unnamed");
    row("empty", "", "unnamed");
    row("blanks only", "  \t", "unnamed");
    row("control characters", QString("a\nb\x01") + QChar(0) + "c" + QChar(0x7F), "abc");
    row("turned reading direction", QString::fromUtf8("a\u202Egpj.exe"), "agpj.exe");
    row("refused elsewhere", "12:30 <live> \"a\"|b?*", "1230 live ab");
    row("hidden", ".bashrc", "bashrc");
    row("option", "-rf", "rf");
    row("dot and blank at the end", "name. .", "name");
  }

  void safeNames() {
    QFETCH(QString, text);
    QTEST(DrivePath::safeFileName(text), "name");
  }

  void safeNameIsCapped() {
    QCOMPARE(DrivePath::safeFileName(QString(5000, 'x')), QString(200, 'x'));
    // Three bytes each: 66 of them are 198 bytes.
    QCOMPARE(DrivePath::safeFileName(QString(5000, QChar(0x8282))), QString(66, QChar(0x8282)));
    // Four bytes each, two code units: none is cut in half.
    const QString face = QString::fromUcs4(U"\U0001F600", 1);
    QCOMPARE(DrivePath::safeFileName(face.repeated(500)), face.repeated(50));
    QCOMPARE(DrivePath::safeFileName(QString("x") + face.repeated(500)), QString("x") + face.repeated(49));
  }

  void brokenTextGivesAName() {
    const QString broken = QString(QChar(0xD800)) + "a" + QChar(0xDC00);
    const QString name = DrivePath::safeFileName(broken);
    QVERIFY(name.contains('a'));
    QVERIFY(!name.contains(QChar(0xD800)));
    QVERIFY(!name.contains(QChar(0xDC00)));
  }
};

QTEST_GUILESS_MAIN(DrivePathTest)
#include "tst_DrivePath.moc"
