// The window that the engine shows its pictures in, on platforms where it hands them over.
#include <QWindow>
#include <QtTest>
#include <thread>

#include "console/GWidgetAspectBox.h"
#include "console/GWidgetVideoPreview.h"

class VideoPreviewTest : public QObject {
  Q_OBJECT

 private slots:
  void isANativeWindow() {
    QWidget frame;
    GWidgetVideoPreview preview(&frame);
    frame.show();
    QVERIFY(preview.internalWinId() != 0);
    QCOMPARE(QWidget::find(preview.winId()), &preview);
  }

  void windowFollowsTheWidgetsAroundIt() {
    QWidget frame;
    QWidget page(&frame);
    auto* box = new QWidget(&page);
    GWidgetVideoPreview preview(box);
    frame.resize(300, 200);
    page.setGeometry(10, 20, 200, 150);
    box->setGeometry(5, 6, 100, 80);
    preview.setGeometry(1, 2, 50, 40);
    frame.show();
    QCOMPARE(preview.windowHandle()->position(), QPoint(16, 28));
    box->move(30, 40);
    QCOMPARE(preview.windowHandle()->position(), QPoint(41, 62));
    page.move(0, 0);
    QCOMPARE(preview.windowHandle()->position(), QPoint(31, 42));
  }

  void isBlackUntilAPictureComes() {
    GWidgetVideoPreview preview;
    preview.resize(40, 30);
    const QImage image = preview.grab().toImage();
    QCOMPARE(image.pixelColor(0, 0), QColor(Qt::black));
    QCOMPARE(image.pixelColor(20, 15), QColor(Qt::black));
  }

  void showsThePictureInTheMiddle() {
    GWidgetVideoPreview preview;
    preview.resize(40, 30);
    QImage red(20, 10, QImage::Format_RGB32);
    red.fill(Qt::red);
    std::thread engine([&preview, &red] { preview.setMonitorImage(red); });
    engine.join();
    const QImage image = preview.grab().toImage();
    QCOMPARE(image.pixelColor(20, 15), QColor(Qt::red));
    QCOMPARE(image.pixelColor(10, 10), QColor(Qt::red));
    QCOMPARE(image.pixelColor(9, 15), QColor(Qt::black));
    QCOMPARE(image.pixelColor(20, 9), QColor(Qt::black));
    QCOMPARE(image.pixelColor(30, 15), QColor(Qt::black));
  }

  void pictureComesByName() {
    GWidgetVideoPreview preview;
    preview.resize(10, 10);
    QImage blue(10, 10, QImage::Format_RGB32);
    blue.fill(Qt::blue);
    QVERIFY(QMetaObject::invokeMethod(&preview, "setMonitorImage", Q_ARG(QImage, blue)));
    QCOMPARE(preview.grab().toImage().pixelColor(5, 5), QColor(Qt::blue));
  }

  void boxKeepsItsChildAtSixteenToNine() {
    GWidgetAspectBox box;
    QWidget child(&box);
    box.setBorder(2);
    box.resize(324, 400);
    box.show();
    QCOMPARE(child.geometry(), QRect(0, 108, 324, 184));
    box.resize(1000, 94);
    QCOMPARE(child.geometry(), QRect(418, 0, 164, 94));
  }
};

QTEST_MAIN(VideoPreviewTest)
#include "tst_video_preview.moc"
