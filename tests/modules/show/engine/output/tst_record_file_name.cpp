#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "engine/output/RecordFileName.h"

using korvia::RecordFileName;

namespace {

const QString kNameFormat = QStringLiteral("${PROGRAMNAME}_${TIME}");
const QString kTimeFormat = QStringLiteral("yy-MM-dd/hh_mm_ss");
const QDateTime kTime(QDate(2025, 3, 9), QTime(7, 5, 1));

QString make(const QString& program) {
  return RecordFileName::make(kNameFormat, kTimeFormat, program, kTime);
}

}  // namespace

class TestRecordFileName : public QObject {
  Q_OBJECT

 private slots:
  void fillsInProgramAndTime() { QCOMPARE(make("News"), QString("News_25-03-09/07_05_01")); }

  void expandsEveryPlaceAndKeepsTheRest() {
    QCOMPARE(RecordFileName::make("a ${TIME} b ${PROGRAMNAME} c ${TIME}", "hh:mm", "P", kTime),
             QString("a 07-05 b P c 07-05"));
    QCOMPARE(RecordFileName::make("fixed", kTimeFormat, "P", kTime), QString("fixed"));
  }

  void programNameIsNotExpanded() { QCOMPARE(make("${TIME}"), QString("${TIME}_25-03-09/07_05_01")); }

  void hostileProgramNames_data() {
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("name");
    QTest::newRow("climbs") << "../../etc/x"
                            << ".-.-etc-x_25-03-09/07_05_01";
    QTest::newRow("slash") << "a/b"
                           << "a-b_25-03-09/07_05_01";
    QTest::newRow("back-slash") << "a\\b"
                                << "a-b_25-03-09/07_05_01";
    QTest::newRow("drive") << "c:\\x"
                           << "c--x_25-03-09/07_05_01";
    QTest::newRow("control") << QString("a\nb\tc\x01") + QChar(0) << "abc_25-03-09/07_05_01";
    QTest::newRow("empty") << ""
                           << "unnamed_25-03-09/07_05_01";
    QTest::newRow("dots") << ".."
                          << "unnamed_25-03-09/07_05_01";
  }
  void hostileProgramNames() {
    QFETCH(QString, program);
    const QString name = make(program);
    QVERIFY2(name.count('/') == 1 && !name.contains("..") && !name.startsWith('.'), qPrintable(name));
    if (program.startsWith(".."))
      QVERIFY2(name.endsWith("_25-03-09/07_05_01"), qPrintable(name));
    else
      QTEST(name, "name");
  }

  void longProgramNameKeepsTheTime() {
    const QString name = make(QString(300, QChar(0x00e4)));
    QVERIFY(name.toUtf8().size() <= 200);
    QVERIFY(name.toUtf8().size() >= 198);
    QVERIFY2(name.endsWith("_25-03-09/07_05_01"), qPrintable(name));
  }

  void hostileFormats() {
    QCOMPARE(RecordFileName::make("", "", "", kTime), QString("unnamed"));
    QCOMPARE(RecordFileName::make("x/${TIME}", "'/etc/passwd'", "", kTime), QString("x-/etc/passwd"));
    QCOMPARE(RecordFileName::make("${TIME}", "'/etc/passwd'", "", kTime), QString("etc/passwd"));
    QCOMPARE(RecordFileName::make("a${TIME}", "'/../../x'", "", kTime), QString("a/unnamed/unnamed/x"));
    QCOMPARE(RecordFileName::make("${TIME}", "'///'", "", kTime), QString("unnamed"));
    QVERIFY(RecordFileName::make(QString(500, 'x') + "${PROGRAMNAME}", "", "p", kTime).size() <= 200);
  }

  void neverTakesAFileThatExists() {
    QTemporaryDir folder;
    QString error;
    const QString path = folder.path() + "/deep/er/";
    const QString first = RecordFileName::reserve(path, "n", "mp4", &error);
    QCOMPARE(first, path + "n.mp4");
    QFile file(first);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("precious");
    file.close();
    QCOMPARE(RecordFileName::reserve(path, "n", "mp4", &error), path + "n (2).mp4");
    QCOMPARE(RecordFileName::reserve(path, "n", "mp4", &error), path + "n (3).mp4");
    QCOMPARE(RecordFileName::reserve(path, "n", "ts", &error), path + "n.ts");
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("precious"));
    QCOMPARE(error, QString());
  }

  void timeMakesFolders() {
    QCOMPARE(RecordFileName::make("${TIME} ${PROGRAMNAME}", "yyyy\\MM/dd hh", "P", kTime),
             QString("2025/03/09 07 P"));
    QTemporaryDir folder;
    QString error;
    QCOMPARE(RecordFileName::reserve(folder.path(), make("News"), "ts", &error),
             folder.path() + "/News_25-03-09/07_05_01.ts");
    QCOMPARE(RecordFileName::reserve(folder.path(), make("News"), "ts", &error),
             folder.path() + "/News_25-03-09/07_05_01 (2).ts");
  }

  void mapsDrivePaths() {
    QTemporaryDir folder;
    qputenv("KORVIA_DRIVE_D", folder.path().toLocal8Bit());
    QString error;
    QCOMPARE(RecordFileName::reserve("d:\\records\\vod\\1\\", "n", "mkv", &error),
             folder.path() + "/records/vod/1/n.mkv");
    qunsetenv("KORVIA_DRIVE_D");
  }

  void refusesFoldersThatCannotBe_data() {
    QTest::addColumn<QString>("folder");
    QTest::newRow("missing drive") << "q:\\records\\";
    QTest::newRow("relative") << "records";
    QTest::newRow("empty") << "";
    QTest::newRow("below a file") << "/dev/null/records";
    QTest::newRow("read-only") << "/proc/records";
  }
  void refusesFoldersThatCannotBe() {
    QFETCH(QString, folder);
    QString error;
    QCOMPARE(RecordFileName::reserve(folder, "n", "ts", &error), QString());
    QVERIFY(!error.isEmpty());
  }
};

QTEST_APPLESS_MAIN(TestRecordFileName)
#include "tst_record_file_name.moc"
