#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "ShowDataSetup.h"

namespace {

void write(const QString& path, const QByteArray& content) {
  QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
  QFile file(path);
  QVERIFY(file.open(QIODevice::WriteOnly));
  file.write(content);
}

QByteArray contentOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("not there");
}

}  // namespace

class TestShowDataSetup : public QObject {
  Q_OBJECT

 private slots:
  void init() { _folder = std::make_unique<QTemporaryDir>(); }
  void copiesFoldersWhole();
  void leavesFilesThatAreThere();
  void copiesNothingTwice();
  void missingSourceIsNoFailure();
  void targetThatCannotBeWrittenIsSurvived();
  void theProductBringsShowDataAlone();

 private:
  QString at(const QString& name) const { return _folder->filePath(name); }

  std::unique_ptr<QTemporaryDir> _folder;
};

void TestShowDataSetup::copiesFoldersWhole() {
  write(at("from/a.txt"), "a");
  write(at("from/Common/Demo/b.mp4"), "b");
  QCOMPARE(korvia::copyMissingFiles(at("from"), at("to/deep/down")), 2);
  QCOMPARE(contentOf(at("to/deep/down/a.txt")), QByteArray("a"));
  QCOMPARE(contentOf(at("to/deep/down/Common/Demo/b.mp4")), QByteArray("b"));
}

void TestShowDataSetup::leavesFilesThatAreThere() {
  write(at("from/a.txt"), "new");
  write(at("from/b.txt"), "b");
  write(at("to/a.txt"), "the operator's");
  QCOMPARE(korvia::copyMissingFiles(at("from"), at("to")), 1);
  QCOMPARE(contentOf(at("to/a.txt")), QByteArray("the operator's"));
  QCOMPARE(contentOf(at("to/b.txt")), QByteArray("b"));
}

void TestShowDataSetup::copiesNothingTwice() {
  write(at("from/a.txt"), "a");
  QCOMPARE(korvia::copyMissingFiles(at("from"), at("to")), 1);
  QCOMPARE(korvia::copyMissingFiles(at("from"), at("to")), 0);
}

void TestShowDataSetup::missingSourceIsNoFailure() {
  QCOMPARE(korvia::copyMissingFiles(at("nowhere"), at("to")), 0);
}

void TestShowDataSetup::targetThatCannotBeWrittenIsSurvived() {
  write(at("from/a.txt"), "a");
  write(at("to"), "a file where the folder should be");
  QTest::ignoreMessage(QtWarningMsg, qPrintable("failed to copy show data : " + at("to/a.txt")));
  QCOMPARE(korvia::copyMissingFiles(at("from"), at("to")), 0);
}

void TestShowDataSetup::theProductBringsShowDataAlone() {
  const QDir folder(QStringLiteral(SHOW_DATA_FOLDER));
  QCOMPARE(folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList{"Common"});
  QVERIFY(folder.exists("Common/Demo/demo.mp4"));
  QVERIFY(folder.exists("Common/TextTexture/gold.tga"));
}

QTEST_GUILESS_MAIN(TestShowDataSetup)
#include "tst_show_data_setup.moc"
