#include <QApplication>
#include <QFile>
#include <QFrame>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QStringList>
#include <QVBoxLayout>
#include <QtTest>

#include "ConsoleLook.h"

namespace {

QStringList caughtMessages;

void catchMessage(QtMsgType, const QMessageLogContext&, const QString& text) {
  caughtMessages.append(text);
}

// Gathers what Qt logs while it lives.
class MessageTrap {
 public:
  MessageTrap() {
    caughtMessages.clear();
    previous_ = qInstallMessageHandler(catchMessage);
  }
  ~MessageTrap() { qInstallMessageHandler(previous_); }
  MessageTrap(const MessageTrap&) = delete;
  MessageTrap& operator=(const MessageTrap&) = delete;

 private:
  QtMessageHandler previous_ = nullptr;
};

QString sheetText() {
  QFile file(QStringLiteral(":/KorviaSarnhawk/Resources/style/console.qss"));
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// What Qt says when the application takes `text` as its sheet, which it reads at the next polishing.
QStringList messagesOfSheet(const QString& text) {
  const MessageTrap trap;
  qApp->setStyleSheet(text);
  QFrame frame;
  frame.ensurePolished();
  return caughtMessages;
}

int opaquePixels(const QImage& image) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (qAlpha(image.pixel(x, y)) > 128) {
        ++count;
      }
    }
  }
  return count;
}

}  // namespace

class TestResources : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { applyConsoleLook(*qApp); }

  void iconExistsInBothScales_data() {
    QTest::addColumn<int>("size");
    const char* const captionAndDesk[] = {"main_menu",
                                          "output_config",
                                          "stream_status",
                                          "take_snapshot",
                                          "program_list",
                                          "mix_auto",
                                          "mix_all",
                                          "minimize_window",
                                          "maximize_window",
                                          "close_window",
                                          "sound",
                                          "mute",
                                          "config",
                                          "close",
                                          "play",
                                          "pause",
                                          "stop",
                                          "prev",
                                          "next",
                                          "record",
                                          "stream",
                                          "screen_cut",
                                          "paint_pad",
                                          "mix_manual"};
    for (const char* name : captionAndDesk) {
      QTest::newRow(name) << 24;
    }
    QTest::newRow("openSource") << 32;
  }

  void iconExistsInBothScales() {
    QFETCH(int, size);
    const QString base =
        QStringLiteral(":/KorviaSarnhawk/Resources/icons/") + QString::fromLatin1(QTest::currentDataTag());
    const QImage normal(base + QStringLiteral(".png"));
    const QImage dense(base + QStringLiteral("@2x.png"));
    QCOMPARE(normal.size(), QSize(size, size));
    QCOMPARE(dense.size(), QSize(size * 2, size * 2));
    QVERIFY(normal.hasAlphaChannel());
    // A drawing, neither blank nor a filled box; the thinnest one is a single short line.
    QVERIFY(opaquePixels(normal) >= 12);
    QVERIFY(opaquePixels(normal) < size * size * 3 / 4);
    QVERIFY(opaquePixels(dense) >= 48);
  }

  void applicationIconLiesBesideTheProgram_data() {
    QTest::addColumn<int>("size");
    QTest::newRow("icon.png") << 32;
    QTest::newRow("icon@2x.png") << 64;
    QTest::newRow("icon-256.png") << 256;
  }

  void applicationIconLiesBesideTheProgram() {
    QFETCH(int, size);
    const QImage image(QStringLiteral(APP_ICON_DIR "/") + QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(image.size(), QSize(size, size));
    QVERIFY(opaquePixels(image) > size * size / 2);
  }

  // Guards the next test: a sheet that Qt refuses does come out as a message.
  void brokenSheetIsNoticed() {
    const QStringList messages = messagesOfSheet(QStringLiteral("QFrame { color: red"));
    QCOMPARE(messages, QStringList{QStringLiteral("Could not parse application stylesheet")});
  }

  void sheetParsesWithoutComplaint() {
    const QString text = sheetText();
    QVERIFY(text.size() > 1000);
    QCOMPARE(messagesOfSheet(text), QStringList());
  }

  void everyPictureOfTheSheetExists() {
    static const QRegularExpression url(QStringLiteral("url\\(([^)]+)\\)"));
    QRegularExpressionMatchIterator matches = url.globalMatch(sheetText());
    int count = 0;
    while (matches.hasNext()) {
      const QString path = matches.next().captured(1);
      QVERIFY2(!QImage(path).isNull(), qPrintable(path));
      ++count;
    }
    QVERIFY(count >= 8);
  }

  // The desk rebuilt in small: a border that a bus brings must not move the picture inside.
  void borderOfABusMovesNothing() {
    QWidget window;
    auto* windowLayout = new QVBoxLayout(&window);
    auto* frame = new QFrame;
    frame->setObjectName(QStringLiteral("_stripHolder"));
    windowLayout->addWidget(frame);
    auto* strip = new QFrame(frame);
    strip->setObjectName(QStringLiteral("_mainFrame"));
    auto* frameLayout = new QVBoxLayout(frame);
    frameLayout->addWidget(strip);
    auto* stripLayout = new QVBoxLayout(strip);
    auto* picture = new QLabel;
    stripLayout->addWidget(picture);
    // The rules of the sheet are bound to the strip's class, which the resources do not know.
    QString rules = sheetText();
    rules.replace(QStringLiteral("GWidgetDisplayObject"), QStringLiteral("QWidget"));
    window.setStyleSheet(rules);
    window.resize(400, 300);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QRect before(picture->mapTo(&window, QPoint()), picture->size());

    strip->setStyleSheet(QStringLiteral("#_mainFrame{border: 2px solid rgb(9, 124, 37);}"));
    QCoreApplication::processEvents();
    QCOMPARE(QRect(picture->mapTo(&window, QPoint()), picture->size()), before);
    const QImage shown = window.grab().toImage();
    const QPoint edge = strip->mapTo(&window, QPoint(1, strip->height() / 2));
    QCOMPARE(QColor(shown.pixel(edge)), QColor(9, 124, 37));

    strip->setStyleSheet(QString());
    QCoreApplication::processEvents();
    QCOMPARE(QRect(picture->mapTo(&window, QPoint()), picture->size()), before);
  }

  void recordButtonTurnsRedWhenChecked() {
    QPushButton record;
    record.setObjectName(QStringLiteral("_startRecordPushButton"));
    record.setCheckable(true);
    record.resize(60, 30);
    const QPoint inside(30, 4);
    const QColor off(record.grab().toImage().pixel(inside));
    record.setChecked(true);
    const QColor on(record.grab().toImage().pixel(inside));
    QCOMPARE(off, QColor(0x24, 0x2a, 0x33));
    QCOMPARE(on, QColor(0x8f, 0x1b, 0x1e));
  }

  void disabledIconsAreFaded() {
    const QIcon icon(QStringLiteral(":/KorviaSarnhawk/Resources/icons/program_list.png"));
    const auto strongest = [&icon](QIcon::Mode mode) {
      const QImage image = icon.pixmap(16, 16, mode).toImage();
      int alpha = 0;
      for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
          alpha = std::max(alpha, image.pixelColor(x, y).alpha());
      return alpha;
    };
    QVERIFY(strongest(QIcon::Normal) > 200);
    QVERIFY(strongest(QIcon::Disabled) > 40);
    QVERIFY(strongest(QIcon::Disabled) < 100);
  }

  void callingTwiceDoesNothing() {
    initSarnhawkResources();
    initSarnhawkResources();
    QVERIFY(QFile::exists(QStringLiteral(":/KorviaSarnhawk/Resources/icons/play.png")));
  }
};

QTEST_MAIN(TestResources)
#include "tst_resources.moc"
