// A page in the picker: its picture, and the operator's mouse, wheel and keys on it.
#include <unistd.h>
#include <QTcpServer>
#include <QTcpSocket>
#include <QWheelEvent>

#include <QDir>
#include <QFile>
#include <QtTest>
#include <csignal>

#include "KorviaShowPageView.h"
#include "modules/show/engine/source/SourceRig.h"

namespace {

// The page tells by its colour what has come last.
constexpr char kPage[] =
    "<html><body style='margin:0;background:#c00000'><script>"
    "const show = color => { document.body.style.background = color; };"
    "addEventListener('mousedown', e => show(e.clientX > 100 && e.clientY < 50 ? '#00c000' : '#404040'));"
    "addEventListener('wheel', e => show('#0000c0'));"
    "addEventListener('keydown', e => show(e.key == 'k' ? '#c0c000' : e.key == 'Enter' ? '#00c0c0' : e.key "
    "== 'Tab' ? "
    "'#c000c0' : e.key == '\\u00e9' ? '#ffffff' : '#202020'));"
    "</script></body></html>";

class PageServer {
 public:
  PageServer() {
    QObject::connect(&server_, &QTcpServer::newConnection, [this] {
      QTcpSocket* socket = server_.nextPendingConnection();
      QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
        visits_ += socket->readAll().startsWith("GET / ") ? 1 : 0;
        socket->write(
            "HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=utf-8\r\nConnection: "
            "close\r\nContent-Length: " +
            QByteArray::number(int(sizeof kPage) - 1) + "\r\n\r\n" + kPage);
        socket->disconnectFromHost();
      });
      QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    });
  }
  bool listen() { return server_.listen(QHostAddress::LocalHost); }
  QString url() const { return QStringLiteral("http://127.0.0.1:%1/").arg(server_.serverPort()); }
  /// How often the page was fetched.
  int visits() const { return visits_; }

 private:
  QTcpServer server_;
  int visits_ = 0;
};

/// The capture programs that this process has started and that run.
QVector<pid_t> captures() {
  QVector<pid_t> found;
  for (const QString& entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(entry));
    if (!entry.at(0).isDigit() || !file.open(QIODevice::ReadOnly))
      continue;
    const QByteArray text = file.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    if (text.contains("(korvia-capture)") && fields.value(0) != "Z" && fields.value(1).toInt() == ::getpid())
      found << entry.toInt();
  }
  return found;
}

}  // namespace

class PageViewTest : public QObject {
  Q_OBJECT

 private:
  static constexpr int kPatienceMs = 30'000;

  /// Where nobody listens.
  static QString closedPort() {
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return QStringLiteral("http://127.0.0.1:%1/").arg(server.serverPort());
  }
  static bool shows(const KorviaShowPageView& view, QRgb color) {
    return QTest::qWaitFor(
        [&] {
          if (view.picture().isNull())
            return false;
          const QColor seen = view.picture().pixelColor(160, 90);
          const QColor wanted(color);
          return std::abs(seen.red() - wanted.red()) < 8 && std::abs(seen.green() - wanted.green()) < 8 &&
                 std::abs(seen.blue() - wanted.blue()) < 8;
        },
        kPatienceMs);
  }

 private slots:
  void thePageTakesMouseWheelAndKeys() {
    PageServer server;
    QVERIFY(server.listen());
    KorviaShowPageView view;
    view.setFixedSize(320, 180);
    view.show();
    view.load(server.url());
    QVERIFY(!view.message().isEmpty());
    QVERIFY(shows(view, 0xc00000));
    QVERIFY(view.message().isEmpty());
    QCOMPARE(view.picture().size(), QSize(320, 180));
    QTest::mouseClick(&view, Qt::LeftButton, Qt::NoModifier, QPoint(200, 20));
    QVERIFY(shows(view, 0x00c000));
    QWheelEvent wheel(QPointF(50, 50), QPointF(50, 50), QPoint(), QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&view, &wheel);
    QVERIFY(wheel.isAccepted());
    QVERIFY(shows(view, 0x0000c0));
    QTest::keyClick(&view, 'k');
    QVERIFY(shows(view, 0xc0c000));
    QTest::keyClick(&view, Qt::Key_Return);
    QVERIFY(shows(view, 0x00c0c0));
    QTest::keyClick(&view, Qt::Key_Tab);
    QVERIFY(shows(view, 0xc000c0));
    QKeyEvent letter(QEvent::KeyPress, Qt::Key_Eacute, Qt::NoModifier, QStringLiteral("\u00e9"));
    QCoreApplication::sendEvent(&view, &letter);
    QVERIFY(shows(view, 0xffffff));
    // Another load of the same page begins anew.
    view.load(server.url());
    QVERIFY(shows(view, 0xc00000));
    // Another size is not another load.
    const int visits = server.visits();
    view.setFixedSize(400, 200);
    QTRY_COMPARE_WITH_TIMEOUT(view.picture().size(), QSize(400, 200), kPatienceMs);
    QCOMPARE(server.visits(), visits);
  }

  // A page that the operator has worked on goes on air as it stands.
  void aSourceTakesThePageOver() {
    PageServer server;
    QVERIFY(server.listen());
    auto view = std::make_unique<KorviaShowPageView>();
    view->setFixedSize(320, 180);
    view->load(server.url());
    QVERIFY(shows(*view, 0xc00000));
    QTest::mouseClick(view.get(), Qt::LeftButton, Qt::NoModifier, QPoint(200, 20));
    QVERIFY(shows(*view, 0x00c000));
    view->handOver();
    QVERIFY(view->picture().isNull());
    view.reset();

    tagKorviaShowSourceInfo info;
    info.kind = SourceKindWeb;
    info.webUrl = server.url();
    tagKorviaFormatInfo format;
    format.video.secondWidth = 640;
    format.video.secondHeight = 360;
    const auto isShown = [](korvia::test::SourceRig& rig, const QVector<int>& codes) {
      return rig.tickUntil(
          [&] {
            QCoreApplication::processEvents();  // the server's
            return korvia::test::isNear(korvia::test::codesAt(rig.last(), 160, 90), codes, 4);
          },
          kPatienceMs / 1000.0);
    };
    // Limited range of BT.709.
    const QVector<int> red{51, 109, 212};
    const QVector<int> green{134, 63, 51};
    korvia::test::SourceRig rig;
    rig.open(info, format);
    QVERIFY(isShown(rig, green));
    QCOMPARE(server.visits(), 1);
    // The page is the source's: when it is lost, the source begins anew, as any other does.
    const QVector<pid_t> programs = captures();
    QCOMPARE(programs.size(), 1);
    ::kill(programs[0], SIGKILL);
    QVERIFY(isShown(rig, red));
    QCOMPARE(server.visits(), 2);
    // So does another source of this page.
    korvia::test::SourceRig second;
    second.open(info, format);
    QVERIFY(isShown(second, red));
    QCOMPARE(server.visits(), 3);
  }

  void aPageThatIsNotThereIsSaid() {
    KorviaShowPageView view;
    view.setFixedSize(320, 180);
    view.load(closedPort());
    QTRY_VERIFY_WITH_TIMEOUT(view.message().startsWith("This page cannot be shown: "), kPatienceMs);
    QVERIFY(view.picture().isNull());
    view.grab();
  }

  void aViewThatGoesWhileItLoadsIsQuiet() {
    for (int round = 0; round < 3; ++round) {
      KorviaShowPageView view;
      view.load(closedPort());
      QTest::qWait(50 * round);
    }
  }
};

QTEST_MAIN(PageViewTest)
#include "tst_page_view.moc"
