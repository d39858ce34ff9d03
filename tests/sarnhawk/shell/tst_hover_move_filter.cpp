#include <QHoverEvent>
#include <QtTest>

#include "shell/HoverMoveFilter.h"
#include "shell/MainFrame.h"

class TestHoverMoveFilter : public QObject {
  Q_OBJECT

 private slots:
  void handsHoverMovesToTheFrame();
  void leavesOtherEventsAlone();
};

void TestHoverMoveFilter::handsHoverMovesToTheFrame() {
  MainFrame frame;
  frame.setGeometry(0, 0, 800, 600);
  HoverMoveFilter filter(&frame);
  QHoverEvent move(QEvent::HoverMove, QPointF(2, 300), QPointF(9, 300));
  QVERIFY(!filter.eventFilter(&frame, &move));
  QCOMPARE(frame.cursor().shape(), Qt::SizeHorCursor);
}

void TestHoverMoveFilter::leavesOtherEventsAlone() {
  MainFrame frame;
  frame.setGeometry(0, 0, 800, 600);
  HoverMoveFilter filter(&frame);
  QHoverEvent enter(QEvent::HoverEnter, QPointF(2, 300), QPointF(9, 300));
  QVERIFY(!filter.eventFilter(&frame, &enter));
  QCOMPARE(frame.cursor().shape(), Qt::ArrowCursor);
}

QTEST_MAIN(TestHoverMoveFilter)
#include "tst_hover_move_filter.moc"
