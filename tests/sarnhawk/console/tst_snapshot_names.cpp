// How snapshots are named: by the second, and apart within it.
#include <QTemporaryDir>
#include <QtTest>

#include "console/SnapshotNames.h"

class SnapshotNamesTest : public QObject {
  Q_OBJECT

 private slots:
  void pictureIsNamedByItsSecond() {
    SnapshotNames names;
    QCOMPARE(names.next(folder(), _time), file("2026-03-04 050607.png"));
  }

  void laterOnesOfASecondAreNumbered() {
    SnapshotNames names;
    names.next(folder(), _time);
    QCOMPARE(names.next(folder(), _time.addMSecs(300)), file("2026-03-04 050607-1.png"));
    QCOMPARE(names.next(folder(), _time.addMSecs(600)), file("2026-03-04 050607-2.png"));
    QCOMPARE(names.next(folder(), _time.addSecs(1)), file("2026-03-04 050608.png"));
    QCOMPARE(names.next(folder(), _time.addSecs(1)), file("2026-03-04 050608-1.png"));
  }

  void fileThatIsThereIsNotOverwritten() {
    for (const char* name : {"2026-03-04 050607.png", "2026-03-04 050607-1.png"}) {
      QFile there(file(name));
      QVERIFY(there.open(QIODevice::WriteOnly));
    }
    SnapshotNames names;
    QCOMPARE(names.next(folder(), _time), file("2026-03-04 050607-2.png"));
    QCOMPARE(names.next(folder(), _time), file("2026-03-04 050607-3.png"));
  }

  void init() { _folder = std::make_unique<QTemporaryDir>(); }

 private:
  QString folder() const { return _folder->path(); }
  QString file(const char* name) const { return _folder->filePath(QLatin1String(name)); }

  const QDateTime _time{QDate(2026, 3, 4), QTime(5, 6, 7)};
  std::unique_ptr<QTemporaryDir> _folder;
};

QTEST_GUILESS_MAIN(SnapshotNamesTest)
#include "tst_snapshot_names.moc"
