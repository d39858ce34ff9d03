// A page is shown as a browser shows it: with alpha, evenly, with sound, and without the machine's files.
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <cmath>

#include "CaptureRig.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr QSize kSize{320, 180};
constexpr QRgb kGreen = qRgba(0, 255, 0, 255);

CaptureRequest pageRequest(const QString& address) {
  CaptureRequest request;
  request.kind = CaptureKind::Page;
  request.address = address;
  request.width = kSize.width();
  request.height = kSize.height();
  request.mostMemoryBytes = 4'000'000'000;
  return request;
}

/// A document whose background becomes green when the script calls good(), and red by bad().
QByteArray document(const QByteArray& script) {
  return "<!doctype html><body style='margin:0;background:#00f'><script>"
         "const good = () => document.body.style.background = '#0f0';"
         "const bad = () => document.body.style.background = '#f00';" +
         script + "</script></body>";
}

/// Answers every request with the same document, those of "tone.wav" with a tone.
class OnePageServer {
 public:
  explicit OnePageServer(const QByteArray& page, const QByteArray& tone = {}) {
    server_.listen(QHostAddress::LocalHost);
    QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this, page, tone] {
      QTcpSocket* socket = server_.nextPendingConnection();
      QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket, page, tone] {
        const QByteArray request = socket->readAll();
        if (!request.contains("\r\n\r\n"))
          return;
        const bool isTone = request.startsWith("GET /tone.wav ");
        const QByteArray& content = isTone ? tone : page;
        socket->write(QByteArray("HTTP/1.0 200 OK\r\nContent-Type: ") + (isTone ? "audio/wav" : "text/html") +
                      "\r\nContent-Length: " + QByteArray::number(content.size()) + "\r\n\r\n" + content);
        socket->disconnectFromHost();
      });
    });
  }
  QString address() const { return QStringLiteral("http://127.0.0.1:%1/").arg(server_.serverPort()); }

 private:
  QTcpServer server_;
};

}  // namespace

class tst_page_capture : public QObject {
  Q_OBJECT

 private slots:
  void colorsAreMultipliedByAlpha() {
    const CaptureRig rig(pageRequest(file(
        "<!doctype html><body style='margin:0'>"
        "<div style='position:absolute;width:100px;height:100px;background:rgba(255,0,0,0.5)'></div>"
        "<div style='position:absolute;left:100px;width:100px;height:100px;background:#04c'></div></body>")));
    QVERIFY(rig.waitForPixel({50, 50}, qRgba(128, 0, 0, 128)));
    QVERIFY(rig.waitForPixel({150, 50}, qRgba(0, 0x44, 0xCC, 255)));
    QVERIFY(rig.waitForPixel({50, 150}, qRgba(0, 0, 0, 0)));
    QCOMPARE(rig.picture().size(), kSize);
  }

  // Each picture is one step of the animation, so that motion is as even as the show's.
  void animationMovesOncePerPicture() {
    CaptureRig rig(pageRequest(
        file("<!doctype html><body style='margin:0'><div id=box style='position:absolute;width:20px;"
             "height:20px;background:#0f0'></div><script>let n = 0; const step = () => {"
             "box.style.left = n++ % 100 * 3 + 'px'; requestAnimationFrame(step); };"
             "requestAnimationFrame(step);</script></body>")));
    rig.watchBoxIn(10);
    QVERIFY(rig.waitForPixel({0, 10}, 0) || rig.pictures() > 0);
    QVERIFY(rig.waitForPictures(60));
    const std::vector<int> boxes = rig.boxes();
    int even = 0;
    for (std::size_t i = boxes.size() - 50; i < boxes.size(); ++i)
      even += (boxes[i] - boxes[i - 1] + 300) % 300 == 3 ? 1 : 0;
    QVERIFY2(even >= 40, qPrintable(QString::number(even)));
  }

  void soundComes() {
    const QString folder = folder_.path();
    writeTone(folder + QStringLiteral("/tone.wav"));
    const CaptureRig rig(pageRequest(file("<!doctype html><audio autoplay loop src='tone.wav'></audio>")));
    QVERIFY(QTest::qWaitFor([&] { return rig.samples() > 24000; }, kWaitMs));
    QVERIFY(std::abs(rig.peak() - 0.5F) < 0.05F);
  }

  void soundOfAServerComes() {
    const QString name = folder_.filePath(QStringLiteral("tone.wav"));
    writeTone(name);
    QFile tone(name);
    QVERIFY(tone.open(QIODevice::ReadOnly));
    const OnePageServer server("<!doctype html><audio autoplay loop src='tone.wav'></audio>", tone.readAll());
    const CaptureRig rig(pageRequest(server.address()));
    QVERIFY(QTest::qWaitFor([&] { return rig.samples() > 24000; }, kWaitMs));
    QVERIFY(std::abs(rig.peak() - 0.5F) < 0.05F);
  }

  void operatorWorksOnThePage() {
    CaptureRig rig(pageRequest(
        file(document("onclick = e => e.clientX == 100 && e.clientY == 50 && good();"
                      "onkeydown = e => e.key == 'a' && (document.body.style.background = '#fff');"))));
    QVERIFY(rig.waitForPixel({10, 10}, qRgba(0, 0, 255, 255)));
    rig.process().sendMouseMove(100, 50);
    rig.process().sendMouseButton(100, 50, 1, CaptureProcess::Press::Down);
    rig.process().sendMouseButton(100, 50, 1, CaptureProcess::Press::Up);
    QVERIFY(rig.waitForPixel({10, 10}, kGreen));
    rig.process().sendKey(QStringLiteral("a"), CaptureProcess::Press::Down);
    rig.process().sendKey(QStringLiteral("a"), CaptureProcess::Press::Up);
    QVERIFY(rig.waitForPixel({10, 10}, qRgba(255, 255, 255, 255)));
  }

  void anotherSizeKeepsThePage() {
    CaptureRig rig(pageRequest(file(document("onclick = good;"))));
    QVERIFY(rig.waitForPixel({10, 10}, qRgba(0, 0, 255, 255)));
    rig.process().sendMouseButton(100, 50, 1, CaptureProcess::Press::Down);
    rig.process().sendMouseButton(100, 50, 1, CaptureProcess::Press::Up);
    QVERIFY(rig.waitForPixel({10, 10}, kGreen));
    rig.process().resize(640, 360);
    QVERIFY(QTest::qWaitFor([&] { return rig.picture().size() == QSize(640, 360); }, kWaitMs));
    QVERIFY(rig.waitForPixel({600, 300}, kGreen));
    // Without a change of the size the picture is told whole too.
    const int pictures = rig.pictures();
    rig.process().resize(640, 360);
    QVERIFY(rig.waitForPictures(pictures + 1));
  }

  void anotherPageIsLoaded() {
    CaptureRig rig(pageRequest(file(document(""))));
    QVERIFY(rig.waitForPixel({10, 10}, qRgba(0, 0, 255, 255)));
    rig.process().load(file(document("good();"), QStringLiteral("other.html")));
    QVERIFY(rig.waitForPixel({10, 10}, kGreen));
  }

  // It is the address that counts when a source takes the page over.
  void anotherPageIsLoadedBeforeTheFirstOneRuns() {
    const QString first = file(document(""));
    CaptureRig rig(pageRequest(first));
    rig.process().load(file(document("good();"), QStringLiteral("other.html")));
    QVERIFY(rig.waitForPixel({10, 10}, kGreen));
  }

  // The console has all memory of the program's pictures, and cannot tell at once that it is free again.
  void picturesGoOnWhenTheProgramDidNotRead() {
    class Gate final : public CaptureListener {
     public:
      void onCapturePicture(const CapturePicture&) override {
        const MutexLock lock(mutex);
        ++pictures;
      }
      void onCaptureSound(const float*, int, std::int64_t) override {}
      void onCaptureEnded(const QString&) override {}
      Mutex mutex;
      std::atomic<int> pictures{0};
    } gate;
    CaptureProcess process(gate);
    QString reason;
    QVERIFY2(process.start(pageRequest(file("<!doctype html><body><script>let n = 0; const step = () => {"
                                            "document.body.style.background = ++n % 2 ? '#f00' : '#00f';"
                                            "requestAnimationFrame(step); }; step();</script></body>")),
                           reason),
             qPrintable(reason));
    QTRY_VERIFY_WITH_TIMEOUT(gate.pictures > 10, kWaitMs);
    const auto program = static_cast<pid_t>(process.processId());
    {
      const MutexLock lock(gate.mutex);
      // Long enough for the program to use up its memory; less would only test less.
      QTest::qWait(500);
      ::kill(program, SIGSTOP);
      for (int i = 0; i < 10000; ++i)
        process.sendMouseMove(1, 1);
    }
    // The console gives the memory back to a program that does not read; more time than that takes.
    QTest::qWait(200);
    const int before = gate.pictures;
    ::kill(program, SIGCONT);
    QTRY_VERIFY_WITH_TIMEOUT(gate.pictures > before + 10, kWaitMs);
  }

  void pageOfAServerReadsNoFile() {
    OnePageServer server(
        document("let left = 2; const refused = () => --left == 0 && good();"
                 "fetch('file:///etc/hostname').then(bad, refused);"
                 "const frame = new XMLHttpRequest(); frame.onload = bad; frame.onerror = refused;"
                 "try { frame.open('GET', 'file:///etc/passwd'); frame.send(); } catch (e) { refused(); }"));
    const CaptureRig rig(pageRequest(server.address()));
    QVERIFY(rig.waitForPixel({10, 10}, kGreen));
  }

  void pageOfAFileReadsItsFolderOnly() {
    const QByteArray image = "<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8'/>";
    QTemporaryDir elsewhere;
    write(folder_.filePath(QStringLiteral("near.svg")), image);
    write(elsewhere.filePath(QStringLiteral("far.svg")), image);
    const CaptureRig rig(pageRequest(file(
        document("const near = new Image(), far = new Image();"
                 "near.onerror = bad; far.onload = bad;"
                 "near.onload = () => { far.src = 'file://" +
                 elsewhere.path().toUtf8() + "/far.svg'; }; far.onerror = good; near.src = 'near.svg';"))));
    QVERIFY(rig.waitForPixel({10, 10}, kGreen));
  }

  void pageThatDoesNotLoadEnds_data() {
    QTest::addColumn<QString>("address");
    QTest::newRow("no host") << QStringLiteral("http://host.invalid/");
    // A port that was free a moment ago.
    QTcpServer closed;
    closed.listen(QHostAddress::LocalHost);
    QTest::newRow("no server") << QStringLiteral("http://127.0.0.1:%1/").arg(closed.serverPort());
    QTest::newRow("refused port") << QStringLiteral("http://127.0.0.1:1/");
    QTest::newRow("no file") << QStringLiteral("file:///nonexistent/page.html");
  }
  void pageThatDoesNotLoadEnds() {
    QFETCH(QString, address);
    const CaptureRig rig(pageRequest(address));
    QCOMPARE(rig.waitForEnd(), QStringLiteral("page cannot be loaded"));
  }

  void crashOfThePageEnds() {
    const CaptureRig rig(pageRequest(file(document(""))));
    QVERIFY(rig.waitForPictures(1));
    bool killed = false;
    for (const QString& process : sessionOf(rig.processId())) {
      QFile name(QStringLiteral("/proc/%1/comm").arg(process));
      if (name.open(QIODevice::ReadOnly) && name.readAll().contains("WebProcess"))
        killed = ::kill(process.toInt(), SIGKILL) == 0;
    }
    QVERIFY(killed);
    QVERIFY(rig.waitForEnd() != QStringLiteral("still running"));
  }

 private:
  QString file(const QByteArray& content, const QString& name = QStringLiteral("page.html")) {
    write(folder_.filePath(name), content);
    return QStringLiteral("file://") + folder_.filePath(name);
  }
  static void write(const QString& path, const QByteArray& content) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
  }
  /// A second of 1 kHz with half the amplitude, 16 bits, stereo.
  static void writeTone(const QString& path) {
    constexpr quint32 kRate = 48000;
    QByteArray samples;
    for (quint32 i = 0; i < kRate; ++i) {
      const auto value = static_cast<qint16>(16384 * std::sin(2 * M_PI * 1000 * i / kRate));
      for (int side = 0; side < 2; ++side)
        samples.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    const auto number = [](quint32 value, int bytes) {
      return QByteArray(reinterpret_cast<const char*>(&value), bytes);
    };
    const auto bytes = static_cast<quint32>(samples.size());
    write(path, "RIFF" + number(36 + bytes, 4) + "WAVEfmt " + number(16, 4) + number(1, 2) + number(2, 2) +
                    number(kRate, 4) + number(kRate * 4, 4) + number(4, 2) + number(16, 2) + "data" +
                    number(bytes, 4) + samples);
  }

  QTemporaryDir folder_;
};

QTEST_GUILESS_MAIN(tst_page_capture)
#include "tst_page_capture.moc"
