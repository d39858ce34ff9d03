// Which engine stands behind the facade.
#include <QtTest>

#include "backend/ShowBackendFactory.h"
#include "engine/SoftwareBackend.h"
#include "silent/SilentBackend.h"

using namespace korvia;

class ShowBackendFactoryTest : public QObject {
  Q_OBJECT

 private slots:
  void cleanup() {
    qunsetenv("KORVIA_ENGINE");
    setShowBackendFactory({});
  }

  void theSoftwareEngineIsTheDefault() {
    qunsetenv("KORVIA_ENGINE");
    QVERIFY(dynamic_cast<SoftwareBackend*>(createShowBackend().get()));
    qputenv("KORVIA_ENGINE", "software");
    QVERIFY(dynamic_cast<SoftwareBackend*>(createShowBackend().get()));
  }

  void theSilentEngineIsChosenByName() {
    qputenv("KORVIA_ENGINE", "silent");
    QVERIFY(dynamic_cast<SilentBackend*>(createShowBackend().get()));
  }

  void anUnknownNameIsLoggedAndGivesTheDefault() {
    qputenv("KORVIA_ENGINE", "steam");
    QTest::ignoreMessage(QtWarningMsg, "unknown engine \"steam\", taking the software engine");
    QVERIFY(dynamic_cast<SoftwareBackend*>(createShowBackend().get()));
  }

  void testsPutTheirOwnIn() {
    qputenv("KORVIA_ENGINE", "software");
    setShowBackendFactory([] { return std::make_unique<SilentBackend>(); });
    QVERIFY(dynamic_cast<SilentBackend*>(createShowBackend().get()));
  }
};

QTEST_GUILESS_MAIN(ShowBackendFactoryTest)
#include "tst_show_backend_factory.moc"
