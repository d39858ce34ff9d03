#include <pwd.h>
#include <unistd.h>

#include <QDir>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QtTest>

#include "HostOptions.h"

using Outcome = HostCommandLine::Outcome;

class TestHostOptions : public QObject {
  Q_OBJECT

 private slots:
  void hasDefaults();
  void readsEverything();
  void rootIsTheUsersWithoutAHomeInTheEnvironment();
  void channelsMustBeOfTheShow();
  void rootEndsInOneSeparator_data();
  void rootEndsInOneSeparator();
  void openIsRepeatableAndTheLastOneWins();
  void openTakesNamesWithAnEqualsSign();
  void publishKeyIsTheFirstLineOfItsFile_data();
  void publishKeyIsTheFirstLineOfItsFile();
  void informs_data();
  void informs();
  void refusesBadValues_data();
  void refusesBadValues();

 private:
  static HostCommandLine parse(QStringList arguments) {
    arguments.prepend("korvia");
    return HostCommandLine::parse(arguments);
  }
};

void TestHostOptions::hasDefaults() {
  const HostCommandLine line = parse({});
  QCOMPARE(line.outcome, Outcome::Run);
  QCOMPARE(line.options.rootPath, QDir::homePath() + "/Korvia/");
  QCOMPARE(line.options.engine, QString());
  QCOMPARE(line.options.traceFile, QString());
  QVERIFY(line.options.openFiles.isEmpty());
  QVERIFY(!line.options.exitAfterS);
  QCOMPARE(line.options.screenshotFile, QString());
  QVERIFY(!line.options.size.isValid());
  QCOMPARE(line.options.listenAddress, QString());
  QCOMPARE(line.options.publishKey, QByteArray());
}

void TestHostOptions::readsEverything() {
  QTemporaryDir folder;
  const HostCommandLine line =
      parse({"--root", folder.path() + "/new", "--engine", "silent", "--trace", folder.filePath("t.jsonl"),
             "--open", "0=/films/a.mp4", "--open", "7=b.png", "--exit-after", "2.5", "--screenshot",
             folder.filePath("shot.PNG"), "--size", "1920x1080", "--listen", "192.0.2.7"});
  QCOMPARE(line.text, QString());
  QCOMPARE(line.outcome, Outcome::Run);
  QCOMPARE(line.options.rootPath, folder.path() + "/new/");
  QVERIFY(!QFileInfo::exists(folder.path() + "/new"));
  QCOMPARE(line.options.engine, QStringLiteral("silent"));
  QCOMPARE(line.options.traceFile, folder.filePath("t.jsonl"));
  QCOMPARE(line.options.openFiles.size(), 2);
  QCOMPARE(line.options.openFiles.value("0").toString(), QStringLiteral("/films/a.mp4"));
  QCOMPARE(line.options.openFiles.value("7").toString(), QDir::currentPath() + "/b.png");
  QCOMPARE(*line.options.exitAfterS, 2.5);
  QCOMPARE(line.options.screenshotFile, folder.filePath("shot.PNG"));
  QCOMPARE(line.options.size, QSize(1920, 1080));
  QCOMPARE(line.options.listenAddress, QStringLiteral("192.0.2.7"));
}

void TestHostOptions::rootIsTheUsersWithoutAHomeInTheEnvironment() {
  const QByteArray home = qgetenv("HOME");
  qunsetenv("HOME");
  const QString root = parse({}).options.rootPath;
  qputenv("HOME", home);
  QCOMPARE(root, QFile::decodeName(getpwuid(getuid())->pw_dir) + "/Korvia/");
}

void TestHostOptions::channelsMustBeOfTheShow() {
  const HostOptions options = parse({"--open", "0=/a.mp4", "--open", "5=/b.mp4"}).options;
  QCOMPARE(options.channelRefusal(6), QString());
  QCOMPARE(options.channelRefusal(3),
           QStringLiteral("--open: there is no media channel 5, the show has the channels 0 to 2"));
  QCOMPARE(HostOptions().channelRefusal(3), QString());
  for (const QString& channel : {QStringLiteral("8"), QStringLiteral("9"), QStringLiteral("4294967296")}) {
    const HostCommandLine line = parse({"--open", channel + "=/a.mp4"});
    QCOMPARE(line.outcome, Outcome::Run);
    QCOMPARE(line.options.channelRefusal(3),
             QStringLiteral("--open: there is no media channel %1, the show has the channels 0 to 2")
                 .arg(channel));
  }
}

void TestHostOptions::rootEndsInOneSeparator_data() {
  QTest::addColumn<QString>("value");
  QTest::addColumn<QString>("root");
  QTest::newRow("plain") << "/data/show"
                         << "/data/show/";
  QTest::newRow("separator") << "/data/show/"
                             << "/data/show/";
  QTest::newRow("crooked") << "/data//x/../show//"
                           << "/data/show/";
  QTest::newRow("top") << "/"
                       << "/";
  QTest::newRow("relative") << "show" << QDir::currentPath() + "/show/";
}

void TestHostOptions::rootEndsInOneSeparator() {
  QFETCH(QString, value);
  QFETCH(QString, root);
  QCOMPARE(parse({"--root", value}).options.rootPath, root);
}

void TestHostOptions::openIsRepeatableAndTheLastOneWins() {
  const HostCommandLine line = parse({"--open", "1=/a", "--open", "2=/b", "--open=1=/c"});
  QCOMPARE(line.options.openFiles, QVariantMap({{"1", "/c"}, {"2", "/b"}}));
}

void TestHostOptions::openTakesNamesWithAnEqualsSign() {
  QCOMPARE(parse({"--open", "3=/a=b.mp4"}).options.openFiles, QVariantMap({{"3", "/a=b.mp4"}}));
  QCOMPARE(parse({"--open", "3=udp://@:7000"}).options.openFiles, QVariantMap({{"3", "udp://@:7000"}}));
}

void TestHostOptions::publishKeyIsTheFirstLineOfItsFile_data() {
  QTest::addColumn<QByteArray>("content");
  QTest::addColumn<QByteArray>("key");
  const auto row = [](const char* name, const QByteArray& content, const QByteArray& key) {
    QTest::newRow(name) << content << key;
  };
  row("plain", "s3cret", "s3cret");
  row("line end", "s3cret\n", "s3cret");
  row("blanks around", "  s3cret \t\r\nsecond line\n", "s3cret");
  row("marks", "a%+=!~\"'\\:;,@", "a%+=!~\"'\\:;,@");
  row("longest", QByteArray(128, 'k') + "\n", QByteArray(128, 'k'));
  row("too long", QByteArray(129, 'k'), "");
  row("far too long", QByteArray(100'000, 'k'), "");
  row("empty", "", "");
  row("empty first line", "\ns3cret\n", "");
  row("blank inside", "s3 cret", "");
  row("another argument", "s3&cret", "");
  row("question mark", "s3?cret", "");
  row("hash", "s3#cret", "");
  row("slash", "s3/cret", "");
  row("other script", "cret\xc3\xbc", "");
  row("control character",
      "s3\x01"
      "cret",
      "");
  row("NUL", QByteArray("s3\0cret", 7), "");
}

void TestHostOptions::publishKeyIsTheFirstLineOfItsFile() {
  QFETCH(QByteArray, content);
  QFETCH(QByteArray, key);
  QTemporaryFile file;
  QVERIFY(file.open());
  file.write(content);
  file.close();
  const HostCommandLine line = parse({"--publish-key-file", file.fileName()});
  QCOMPARE(line.outcome, key.isEmpty() ? Outcome::Refuse : Outcome::Run);
  QCOMPARE(line.options.publishKey, key);
  QVERIFY(!line.text.contains("cret"));
}

void TestHostOptions::informs_data() {
  QTest::addColumn<QString>("argument");
  QTest::addColumn<QString>("text");
  QTest::newRow("help") << "--help"
                        << "--screenshot <FILE>";
  QTest::newRow("short help") << "-h"
                              << "--open <N=FILE>";
  QTest::newRow("version") << "--version"
                           << "korvia " KORVIA_VERSION "\n";
}

void TestHostOptions::informs() {
  QFETCH(QString, argument);
  QFETCH(QString, text);
  const HostCommandLine line = parse({argument});
  QCOMPARE(line.outcome, Outcome::Inform);
  QVERIFY2(line.text.contains(text), qPrintable(line.text));
}

void TestHostOptions::refusesBadValues_data() {
  QTest::addColumn<QStringList>("arguments");
  QTest::addColumn<QString>("reason");
  const auto row = [](const char* name, const QStringList& arguments, const char* reason) {
    QTest::newRow(name) << arguments << QString(reason);
  };
  row("unknown option", {"--loud"}, "loud");
  row("stray argument", {"film.mp4"}, "unexpected argument \"film.mp4\"");
  row("missing value", {"--engine"}, "engine");
  row("engine", {"--engine", "warp"}, "--engine: there is no engine \"warp\"");
  row("root is a file", {"--root", "/etc/passwd"}, "--root: \"/etc/passwd\" is no folder");
  row("root is empty", {"--root", ""}, "--root");
  row("trace in no folder", {"--trace", "/not/there/t"}, "--trace: no file can be written");
  row("trace is a folder", {"--trace", "/tmp"}, "--trace: no file can be written");
  row("open without channel", {"--open", "/a.mp4"}, "--open: \"/a.mp4\" is not N=FILE");
  row("open without file", {"--open", "0="}, "--open");
  row("open on a negative channel", {"--open", "-1=/a.mp4"}, "--open");
  row("exit after nothing", {"--exit-after", ""}, "--exit-after");
  row("exit after a word", {"--exit-after", "soon"}, "--exit-after: \"soon\" is no number");
  row("exit in the past", {"--exit-after", "-1"}, "--exit-after");
  row("exit never", {"--exit-after", "inf"}, "--exit-after");
  row("exit after no number", {"--exit-after", "nan"}, "--exit-after");
  row("screenshot of no format", {"--screenshot", "/tmp/shot.txt"}, "--screenshot");
  row("screenshot in no folder", {"--screenshot", "/not/there/s.png"}, "--screenshot: no file");
  row("size of one number", {"--size", "1280"}, "--size: \"1280\" is no size");
  row("size of nothing", {"--size", "0x720"}, "--size");
  row("size too large", {"--size", "99999x99999"}, "--size");
  row("listen on a name", {"--listen", "localhost"}, "--listen: \"localhost\" is no IPv4 address");
  row("listen on nothing", {"--listen", ""}, "--listen");
  row("listen on a part", {"--listen", "192.168.1"}, "--listen");
  row("listen on IPv6", {"--listen", "::"}, "--listen");
  row("listen on a port", {"--listen", "0.0.0.0:80"}, "--listen");
  row("key in no file", {"--publish-key-file", "/not/there"},
      "--publish-key-file: \"/not/there\" cannot be read");
  row("key in a folder", {"--publish-key-file", "/tmp"}, "--publish-key-file: \"/tmp\" cannot be read");
  row("size with more", {"--size", "1280x720x2"}, "--size");
}

void TestHostOptions::refusesBadValues() {
  QFETCH(QStringList, arguments);
  QFETCH(QString, reason);
  const HostCommandLine line = parse(arguments);
  QCOMPARE(line.outcome, Outcome::Refuse);
  QVERIFY2(line.text.contains(reason), qPrintable(line.text));
}

QTEST_GUILESS_MAIN(TestHostOptions)
#include "tst_host_options.moc"
