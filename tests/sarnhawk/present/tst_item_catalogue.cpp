// The tables of animations and presets that the editors of items offer.
#include <QtTest>

#include "present/ItemCatalogue.h"

class ItemCatalogueTest : public QObject {
  Q_OBJECT

 private slots:
  void exitsHaveTheNumbersOfTheEntrancesPlus26() {
    const auto entrances = ItemCatalogue().entrances(ItemCatalogue::Masks::With);
    const auto exits = ItemCatalogue().exits(ItemCatalogue::Masks::With);
    QCOMPARE(entrances.size(), 26);
    QCOMPARE(exits.size(), 26);
    QSet<qint32> ids;
    for (int i = 0; i < entrances.size(); ++i) {
      QCOMPARE(exits[i].id, entrances[i].id + 26);
      ids.insert(entrances[i].id);
    }
    QCOMPARE(ids.size(), 26);
  }

  void namesStandInTheOrderOfDisplay() {
    const auto entrances = ItemCatalogue().entrances(ItemCatalogue::Masks::With);
    const auto exits = ItemCatalogue().exits(ItemCatalogue::Masks::With);
    QCOMPARE(entrances[0].name, QString("Appear"));
    QCOMPARE(entrances[1].name, QString("Box"));
    QCOMPARE(entrances[1].id, 17);
    QCOMPARE(entrances[5].name, QString("Entrance_DissolveIn"));
    QCOMPARE(exits[5].name, QString("Exit_DissolveIn"));
    QCOMPARE(entrances[25].name, QString("Descend"));
    QCOMPARE(entrances[25].id, 16);
    // Two exits have names of entrances.
    QCOMPARE(exits[6].name, QString("FlyInFromTop"));
    QCOMPARE(exits[6].id, 27);
    QCOMPARE(exits[7].name, QString("FlyInFromBottom"));
    QCOMPARE(exits[8].name, QString("FlyOutToLeft"));
    const QString folder = QCoreApplication::applicationDirPath() + "/ProductInfo-tst_item_catalogue/res/";
    QCOMPARE(entrances[8].thumbPath, folder + "overlayAni/entrance/FlyInFromLeft.jpg");
    QCOMPARE(exits[8].thumbPath, folder + "overlayAni/exit/FlyOutToLeft.jpg");
    const QString other = QCoreApplication::applicationDirPath() + "/ProductInfo-korvia/res/";
    QCOMPARE(ItemCatalogue("korvia").textPresets()[0].thumbPath, other + "subtitleStyle/default.jpg");
  }

  void textsDoWithoutMasks() {
    const auto entrances = ItemCatalogue().entrances(ItemCatalogue::Masks::Without);
    const auto exits = ItemCatalogue().exits(ItemCatalogue::Masks::Without);
    QCOMPARE(entrances.size(), 17);
    QCOMPARE(exits.size(), 17);
    for (const GListWidgetItemInfo& tile : entrances)
      QVERIFY(tile.id < 17);
    for (const GListWidgetItemInfo& tile : exits)
      QVERIFY(tile.id >= 26 && tile.id < 43);
  }

  void presetsAreTilesWithoutCaptions() {
    const auto presets = ItemCatalogue().textPresets();
    QCOMPARE(presets.size(), 31);
    for (int i = 0; i < presets.size(); ++i) {
      QCOMPARE(presets[i].id, i);
      QCOMPARE(presets[i].name, QString());
    }
    QVERIFY(presets[0].thumbPath.endsWith("/res/subtitleStyle/default.jpg"));
    QVERIFY(presets[26].thumbPath.endsWith("/res/subtitleStyle/gradient_yellow.jpg"));
    QVERIFY(presets[30].thumbPath.endsWith("/res/subtitleStyle/texture_0004.jpg"));
  }
};

QTEST_GUILESS_MAIN(ItemCatalogueTest)
#include "tst_item_catalogue.moc"
