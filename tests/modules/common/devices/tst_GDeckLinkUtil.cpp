// Cards of a machine that has none.
#include <gst/gst.h>

#include <QtTest>

#include "GDeckLinkUtil.h"
#include "KorviaCommonUtil.h"

class DeckLinkUtilTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { gst_init(nullptr, nullptr); }

  void listsWithinTheLimit_data() {
    QTest::addColumn<bool>("isInput");
    QTest::newRow("capture") << true;
    QTest::newRow("play out") << false;
  }
  void listsWithinTheLimit() {
    QFETCH(bool, isInput);
    QElapsedTimer timer;
    timer.start();
    QList<tagGDecklinkCardInfo> cards;
    GDeckLinkUtil::enumDecklink(cards, isInput);
    QVERIFY(timer.elapsed() < 2500);
    for (const tagGDecklinkCardInfo& card : std::as_const(cards)) {
      QVERIFY(!card.name.isEmpty());
      QVERIFY(card.formats.contains("1080p25"));
      QVERIFY(!card.formats.contains("auto"));
    }
  }

  void devicesHaveNamesAndIdentifiers() {
    for (const bool isVideo : {true, false}) {
      std::vector<std::pair<QString, QString>> devices;
      if (!KorviaCommonUtil::enumDShowDeviceList(isVideo, devices))
        QVERIFY(devices.empty());
      for (const auto& [name, id] : devices) {
        QVERIFY(!name.isEmpty());
        QVERIFY(id.contains(':'));
      }
    }
  }
};

QTEST_GUILESS_MAIN(DeckLinkUtilTest)
#include "tst_GDeckLinkUtil.moc"
