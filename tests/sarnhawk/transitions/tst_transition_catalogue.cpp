// The catalogue's numbers and names, and the random draw of a take.
#include <QtTest>
#include <set>

#include "console/tagKorviaTakeButton.h"
#include "transitions/TakeRules.h"
#include "transitions/TransitionCatalogue.h"

class TransitionCatalogueTest : public QObject {
  Q_OBJECT

 private slots:
  void catalogsHaveTheirNamesAndSizes() {
    TransitionCatalogue catalogue;
    const struct {
      const char* name;
      int size;
      int first;
      int last;
    } expected[] = {{"Sys", 2, 0, 65535},       {"Erase", 20, 1, 20},   {"Fade", 2, 22, 23},
                    {"Glide", 20, 25, 44},      {"Stretch", 6, 46, 51}, {"Blur", 8, 53, 60},
                    {"Distortion", 11, 62, 72}, {"Color", 6, 74, 79}};
    for (int i = 0; i < 8; ++i) {
      const QList<GListWidgetItemInfo>* list = catalogue.effectList(i);
      QCOMPARE(TransitionCatalogue::catalogName(i), QString(expected[i].name));
      QCOMPARE(list->size(), expected[i].size);
      QCOMPARE(list->first().id, expected[i].first);
      QCOMPARE(list->last().id, expected[i].last);
    }
    QCOMPARE(catalogue.effectList(8)->size(), 75);
    QVERIFY(!catalogue.effectList(9));
    QVERIFY(!catalogue.effectList(-1));
    QCOMPARE(TransitionCatalogue::catalogName(8), QString());
  }

  void listsAreFilledOnceAndKept() {
    TransitionCatalogue catalogue;
    QCOMPARE(catalogue.effectList(8), catalogue.effectList(8));
    QCOMPARE(catalogue.effectList(8)->size(), 75);
  }

  void numbersAreDistinctAndSixStayUnused() {
    TransitionCatalogue catalogue;
    std::set<int> numbers;
    for (const GListWidgetItemInfo& item : *catalogue.effectList(8))
      QVERIFY2(numbers.insert(item.id).second, qPrintable(item.name));
    for (const int unused : {21, 24, 45, 52, 61, 73}) {
      QVERIFY(numbers.count(unused) == 0);
      QVERIFY(!catalogue.find(unused));
    }
    QVERIFY(!catalogue.find(80));
  }

  void entriesHaveLabelAndThumbnail() {
    TransitionCatalogue catalogue;
    const QString folder = QCoreApplication::applicationDirPath() + "/res/switchKind/";
    QCOMPARE(catalogue.find(22)->name, QString("Normal"));
    QCOMPARE(catalogue.find(22)->thumbPath, folder + "fade_Normal.jpg");
    QCOMPARE(catalogue.find(66)->name, QString("Disolve"));
    QCOMPARE(catalogue.find(72)->name, QString("ApplyTextureMap"));
    QCOMPARE(catalogue.find(79)->name, QString("ApplyTextureMap"));
    QCOMPARE(catalogue.find(77)->thumbPath, folder + "color_TransparentAlternatingPixelsMultiplied.jpg");
    QCOMPARE(catalogue.find(65535)->name, QString("Random"));
  }

  void easingCodesAreThePlacesInTheList() {
    const QList<GListWidgetItemInfo> curves = TransitionCatalogue::easingList();
    QCOMPARE(curves.size(), 29);
    for (int code = 0; code < 29; ++code)
      QCOMPARE(curves[code].id, code);
    QCOMPARE(curves[0].name, QString("Linear"));
    QCOMPARE(curves[4].name, QString("OutInQuad"));
    QCOMPARE(curves[17].name, QString("InSine"));
    QCOMPARE(curves[28].name, QString("OutInCirc"));
    QCOMPARE(curves[28].thumbPath, QCoreApplication::applicationDirPath() + "/res/easing/28.png");
  }

  void plainSlotSendsItsNumber() {
    QCOMPARE(TakeRules::effectToSend({.effect = 0}, 1), 0);
    QCOMPARE(TakeRules::effectToSend({.effect = 24}, 1), 24);
  }

  void randomSlotMaySendAnyNumberBelowEighty() {
    const tagKorviaTakeButton slot{.effect = 65535};
    std::set<int> drawn;
    for (qint64 second = 0; second < 20000; ++second)
      drawn.insert(TakeRules::effectToSend(slot, second));
    QCOMPARE(*drawn.begin(), 0);
    QCOMPARE(*drawn.rbegin(), 79);
    QVERIFY(drawn.count(21) == 1);
  }

  void twoRandomTakesInOneSecondAreTheSame() {
    const tagKorviaTakeButton slot{.effect = 65535};
    QCOMPARE(TakeRules::effectToSend(slot, 1234567890), TakeRules::effectToSend(slot, 1234567890));
  }
};

QTEST_MAIN(TransitionCatalogueTest)
#include "tst_transition_catalogue.moc"
