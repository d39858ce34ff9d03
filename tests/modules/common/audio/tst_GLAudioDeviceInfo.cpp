// The list of sound outputs, also when the sound server does not answer.
#include <gst/gst.h>

#include <QLocalServer>
#include <QtTest>

#include "GLAudioDeviceInfo.h"
#include "support/Holdings.h"

class GLAudioDeviceInfoTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    qputenv("PULSE_SERVER", "unix:/nonexistent/pulse");
    // The first start reads all plug-ins, which may take longer than a listing may.
    gst_init(nullptr, nullptr);
  }

  void listsWithinTheLimit() {
    QElapsedTimer timer;
    timer.start();
    const QStringList names = GLAudioDeviceInfo::enumAudioDeviceList("dsound");
    QVERIFY(timer.elapsed() < 2500);
    QCOMPARE(QSet<QString>(names.begin(), names.end()).size(), names.size());
    QVERIFY(!names.contains(QString()));
    QCOMPARE(GLAudioDeviceInfo::enumAudioDeviceList(""), names);
    QCOMPARE(GLAudioDeviceInfo::enumAudioDeviceList("DSound"), names);
  }

  void unknownInterfaceHasNoDevices() {
    QCOMPARE(GLAudioDeviceInfo::enumAudioDeviceList("no such interface"), QStringList());
  }

  void listingsWithoutASoundServerKeepNothing() {
    QTemporaryDir folder;
    qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(folder.filePath("pulse")));
    const auto listTwice = [] {
      for (int n = 0; n < 2; ++n)
        GLAudioDeviceInfo::enumAudioDeviceList("dsound");
    };
    const int threads = holdingsNow().threads;
    listTwice();
    QTRY_COMPARE(holdingsNow().threads, threads);
    const int descriptors = holdingsNow().descriptors;
    listTwice();
    QTRY_COMPARE(holdingsNow().threads, threads);
    QCOMPARE(holdingsNow().descriptors, descriptors);
    qputenv("PULSE_SERVER", "unix:/nonexistent/pulse");
  }

  void hangingSoundServer() {
    QTemporaryDir folder;
    const QString path = folder.filePath("pulse");
    auto server = std::make_unique<QLocalServer>();
    QVERIFY(server->listen(path));
    qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(path));

    QElapsedTimer timer;
    timer.start();
    QCOMPARE(GLAudioDeviceInfo::enumAudioDeviceList("dsound"), QStringList());
    if (!server->hasPendingConnections() && !server->waitForNewConnection(0))
      QSKIP("the sound server is not asked on this machine");
    QVERIFY(timer.elapsed() >= 1900);
    QVERIFY(timer.elapsed() < 2500);
    // Who asks again meanwhile does not wait once more.
    timer.start();
    QCOMPARE(GLAudioDeviceInfo::enumAudioDeviceList("dsound"), QStringList());
    QVERIFY(timer.elapsed() < 500);

    server.reset();
    qputenv("PULSE_SERVER", "unix:/nonexistent/pulse");
    QTRY_VERIFY(listsAgain());
  }

 private:
  /// A fresh listing asks for a quick answer; the one that hung answers at once with nothing.
  static bool listsAgain() {
    static QString last;
    QtMessageHandler old = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { last = text; });
    last.clear();
    GLAudioDeviceInfo::enumAudioDeviceList("dsound");
    qInstallMessageHandler(old);
    return !last.contains("no answer");
  }
};

QTEST_GUILESS_MAIN(GLAudioDeviceInfoTest)
#include "tst_GLAudioDeviceInfo.moc"
