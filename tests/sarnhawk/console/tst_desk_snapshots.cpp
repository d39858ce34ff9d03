// Snapshots of the program: where their files lie and how they are named.
#include <QStandardPaths>
#include <QToolTip>
#include <QtTest>

#include "ControlsDesk.h"
#include "KorviaShowEvents.h"

class DeskSnapshotsTest : public QObject {
  Q_OBJECT

 private slots:
  void snapshotGoesToThePicturesFolder() {
    ControlsDesk desk;
    QStandardPaths::setTestModeEnabled(true);
    desk.console->takeSnapshot();
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventSnapshot);
    QCOMPARE(posted.size(), std::size_t{1});
    QCOMPARE(posted[0].args[0].toInt(), 0x1002);
    const QString path = posted[0].args[1].toString();
    const QRegularExpression name("^" + QRegularExpression::escape(folder) +
                                  "/\\d{4}-\\d\\d-\\d\\d \\d{6}\\.png$");
    QVERIFY2(name.match(path).hasMatch(), qPrintable(path));
    QVERIFY(QDir(folder).exists());
    QCOMPARE(QToolTip::text(), path);
  }

  void snapshotsInARowHaveFilesOfTheirOwn() {
    ControlsDesk desk;
    QStandardPaths::setTestModeEnabled(true);
    for (int shot = 0; shot < 3; ++shot)
      desk.console->takeSnapshot();
    desk.settle();
    QSet<QString> paths;
    QString last;
    for (const auto& event : desk.show.eventsOf(ShowEventSnapshot)) {
      last = event.args[1].toString();
      paths.insert(last);
    }
    QCOMPARE(paths.size(), 3);
    QCOMPARE(QToolTip::text(), last);
  }
};

QTEST_MAIN(DeskSnapshotsTest)
#include "tst_desk_snapshots.moc"
