// How snapshots are named and shown.
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QToolTip>
#include <QtTest>

#include "ConsoleDesk.h"
#include "console/Snapshots.h"

class SnapshotsTest : public QObject {
  Q_OBJECT

 private slots:
  void pictureIsNamedByItsSecond() {
    Snapshots names(nullptr);
    QCOMPARE(names.nextPath(folder(), _time), file("2026-03-04 050607.png"));
  }

  void laterOnesOfASecondAreNumbered() {
    Snapshots names(nullptr);
    names.nextPath(folder(), _time);
    QCOMPARE(names.nextPath(folder(), _time.addMSecs(300)), file("2026-03-04 050607-1.png"));
    QCOMPARE(names.nextPath(folder(), _time.addMSecs(600)), file("2026-03-04 050607-2.png"));
    QCOMPARE(names.nextPath(folder(), _time.addSecs(1)), file("2026-03-04 050608.png"));
    QCOMPARE(names.nextPath(folder(), _time.addSecs(1)), file("2026-03-04 050608-1.png"));
  }

  void fileThatIsThereIsNotOverwritten() {
    for (const char* name : {"2026-03-04 050607.png", "2026-03-04 050607-1.png"}) {
      QFile there(file(name));
      QVERIFY(there.open(QIODevice::WriteOnly));
    }
    Snapshots names(nullptr);
    QCOMPARE(names.nextPath(folder(), _time), file("2026-03-04 050607-2.png"));
    QCOMPARE(names.nextPath(folder(), _time), file("2026-03-04 050607-3.png"));
  }

  void pathIsShownAtTheLowerLeftCornerOfTheFrame() {
    QStandardPaths::setTestModeEnabled(true);
    ConsoleDesk desk;
    QVERIFY(desk.start());
    // The tip of Qt stands beside the point that it is asked for, so the point is told by a second tip.
    desk.frame.setGeometry(40, 60, 500, 400);
    desk.console->takeSnapshot();
    const QString path = QToolTip::text();
    QVERIFY(path.endsWith(".png"));
    const QPoint shown = tipPosition();
    QToolTip::hideText();
    QVERIFY(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
    const QRect frame = desk.frame.geometry();
    QToolTip::showText(QPoint(frame.left() + 8, frame.bottom() - 52), path, &desk.frame);
    QCOMPARE(shown, tipPosition());
    QToolTip::hideText();
  }

  void init() { _folder = std::make_unique<QTemporaryDir>(); }

 private:
  static QPoint tipPosition() {
    for (const QWidget* window : QApplication::topLevelWidgets()) {
      if (window->inherits("QTipLabel") && window->isVisible())
        return window->pos();
    }
    return QPoint(-1, -1);
  }
  QString folder() const { return _folder->path(); }
  QString file(const char* name) const { return _folder->filePath(QLatin1String(name)); }

  const QDateTime _time{QDate(2026, 3, 4), QTime(5, 6, 7)};
  std::unique_ptr<QTemporaryDir> _folder;
};

QTEST_MAIN(SnapshotsTest)
#include "tst_snapshots.moc"
