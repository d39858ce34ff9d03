// How large a take button shows the picture and the name of its transition.
#include <QtTest>

#include "ConsoleLook.h"
#include "console/TakeButton.h"
#include "transitions/TransitionCatalogue.h"

class TakeButtonTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { applyConsoleLook(*qApp); }

  void pictureTakesTheRoomThatTheTextLeaves() {
    TakeButton button;
    button.setFixedWidth(132);
    button.show();
    const int text = 2 * button.fontMetrics().height();
    int last = 0;
    for (const int height : {60, 77, 89, 120, 140}) {
      button.setFixedHeight(height);
      QCoreApplication::processEvents();
      const QSize picture = button.iconSize();
      QVERIFY2(picture.height() + text < height, qPrintable(QString::number(height)));
      QVERIFY(picture.height() > last || height == 60);
      QCOMPARE(picture.width(), picture.height() * 100 / 84);
      last = picture.height();
    }
  }

  void namesOfTheEffectsAreReadInFull() {
    constexpr int kTextRoom = 108;
    const QStringList tooLong{"GrowablePoissonDisk", "RandomCircleReveal"};
    TakeButton button;
    button.setObjectName("_takeTransitionToolButton_0");
    button.ensurePolished();
    TransitionCatalogue catalogue;
    for (const GListWidgetItemInfo& item : *catalogue.effectList(TransitionCatalogue::kAllCatalog)) {
      const QString shown = button.fontMetrics().elidedText(item.name, Qt::ElideMiddle, kTextRoom);
      QVERIFY2(shown == item.name || tooLong.contains(item.name), qPrintable(shown));
    }
  }

  void pictureStaysBetweenItsLimits() {
    TakeButton button;
    button.show();
    button.setFixedSize(132, 20);
    QCoreApplication::processEvents();
    QCOMPARE(button.iconSize(), QSize(19, 16));
    button.setFixedSize(132, 400);
    QCoreApplication::processEvents();
    QCOMPARE(button.iconSize(), QSize(100, 84));
  }

  void pictureAsksForNoRoom() {
    TakeButton button;
    button.setMinimumSize(132, 48);
    QPixmap picture(100, 84);
    picture.fill(Qt::red);
    button.setIcon(picture);
    button.setIconSize(picture.size());
    QCOMPARE(button.sizeHint(), QSize(132, 48));
  }
};

QTEST_MAIN(TakeButtonTest)
#include "tst_take_button.moc"
