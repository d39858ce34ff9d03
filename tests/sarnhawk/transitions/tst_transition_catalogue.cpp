// The catalogue's numbers and names, and the random draw of a take.
#include <QtTest>
#include <set>

#include "console/tagKorviaTakeButton.h"
#include "transitions/TakePanel.h"
#include "transitions/TransitionCatalogue.h"

namespace {

/// Number, label and file of all effects, in their order.
const QStringList kEffects{"0 None none.jpg",
                           "65535 Random random.jpg",
                           "1 Left erase_Left.jpg",
                           "2 Right erase_Right.jpg",
                           "3 Top erase_Top.jpg",
                           "4 Bottom erase_Bottom.jpg",
                           "5 TopLeft erase_TopLeft.jpg",
                           "6 TopRight erase_TopRight.jpg",
                           "7 BottomRight erase_BottomRight.jpg",
                           "8 BottomLeft erase_BottomLeft.jpg",
                           "9 HCenter erase_HCenter.jpg",
                           "10 VCenter erase_VCenter.jpg",
                           "11 Box erase_Box.jpg",
                           "12 Checkerboard erase_Checkerboard.jpg",
                           "13 Circle erase_Circle.jpg",
                           "14 DiagonalSquares erase_DiagonalSquares.jpg",
                           "15 DissolveIn erase_DissolveIn.jpg",
                           "16 RandomBars erase_RandomBars.jpg",
                           "17 Split erase_Split.jpg",
                           "18 VenetianBlinds erase_VenetianBlinds.jpg",
                           "19 Blood erase_Blood.jpg",
                           "20 Wheel erase_Wheel.jpg",
                           "22 Normal fade_Normal.jpg",
                           "23 Drop fade_Drop.jpg",
                           "25 InLeft glide_In_Left.jpg",
                           "26 InRight glide_In_Right.jpg",
                           "27 InTop glide_In_Top.jpg",
                           "28 InBottom glide_In_Bottom.jpg",
                           "29 InTopLeft glide_In_TopLeft.jpg",
                           "30 InTopRight glide_In_TopRight.jpg",
                           "31 InBottomRight glide_In_BottomRight.jpg",
                           "32 InBottomLeft glide_In_BottomLeft.jpg",
                           "33 OutLeft glide_Out_Left.jpg",
                           "34 OutRight glide_Out_Right.jpg",
                           "35 OutTop glide_Out_Top.jpg",
                           "36 OutBottom glide_Out_Bottom.jpg",
                           "37 OutTopLeft glide_Out_TopLeft.jpg",
                           "38 OutTopRight glide_Out_TopRight.jpg",
                           "39 OutBottomRight glide_Out_BottomRight.jpg",
                           "40 OutBottomLeft glide_Out_BottomLeft.jpg",
                           "41 PushLeft glide_Push_Left.jpg",
                           "42 PushRight glide_Push_Right.jpg",
                           "43 PushTop glide_Push_Top.jpg",
                           "44 PushBottom glide_Push_Bottom.jpg",
                           "46 Left stretch_Left.jpg",
                           "47 Right stretch_Right.jpg",
                           "48 Top stretch_Top.jpg",
                           "49 Bottom stretch_Bottom.jpg",
                           "50 CenterInnerAOut stretch_Center_Inner_AOut.jpg",
                           "51 CenterInnerBIn stretch_Center_Inner_BIn.jpg",
                           "53 Circular blur_CircularBlur.jpg",
                           "54 Radial blur_RadialBlur.jpg",
                           "55 Pixelate blur_Pixelate.jpg",
                           "56 Directional blur_Directional.jpg",
                           "57 GrowablePoissonDisk blur_GrowablePoissonDisk.jpg",
                           "58 Sharpen blur_Sharpen.jpg",
                           "59 Telescopic blur_Telescopic.jpg",
                           "60 Zoom blur_Zoom.jpg",
                           "62 BandedSwirl distortion_BandedSwirl.jpg",
                           "63 CircleStretch distortion_CircleStretch.jpg",
                           "64 CloudReveal distortion_CloudReveal.jpg",
                           "65 Crumble distortion_Crumble.jpg",
                           "66 Disolve distortion_Disolve.jpg",
                           "67 RadialWiggle distortion_RadialWiggle.jpg",
                           "68 RandomCircleReveal distortion_RandomCircleReveal.jpg",
                           "69 Ripple distortion_Ripple.jpg",
                           "70 Wave distortion_Wave.jpg",
                           "71 MagnifySmooth distortion_MagnifySmooth.jpg",
                           "72 ApplyTextureMap distortion_ApplyTextureMap.jpg",
                           "74 MostBright color_MostBright.jpg",
                           "75 BrightExtract color_BrightExtract.jpg",
                           "76 InvertColor color_InvertColor.jpg",
                           "77 PixelsMultiplied color_TransparentAlternatingPixelsMultiplied.jpg",
                           "78 Scanlines color_TransparentAlternatingScanlines.jpg",
                           "79 ApplyTextureMap color_ApplyTextureMap.jpg"};

/// The place is the code.
const QStringList kEasings{"Linear",     "InQuad",     "OutQuad",    "InOutQuad",  "OutInQuad",  "InCubic",
                           "OutCubic",   "InOutCubic", "OutInCubic", "InQuart",    "OutQuart",   "InOutQuart",
                           "OutInQuart", "InQuint",    "OutQuint",   "InOutQuint", "OutInQuint", "InSine",
                           "OutSine",    "InOutSine",  "OutInSine",  "InExpo",     "OutExpo",    "InOutExpo",
                           "OutInExpo",  "InCirc",     "OutCirc",    "InOutCirc",  "OutInCirc"};

}  // namespace

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

  void entriesHaveNumberLabelAndThumbnail() {
    const QString folder = QCoreApplication::applicationDirPath() + "/res/switchKind/";
    TransitionCatalogue catalogue;
    const QList<GListWidgetItemInfo>* all = catalogue.effectList(8);
    QCOMPARE(all->size(), kEffects.size());
    for (int i = 0; i < kEffects.size(); ++i) {
      const QStringList words = kEffects[i].split(' ');
      const GListWidgetItemInfo& item = all->at(i);
      QCOMPARE(item.id, words[0].toInt());
      QCOMPARE(item.name, words[1]);
      QCOMPARE(item.thumbPath, folder + words[2]);
      QVERIFY(item.text.isEmpty());
      QVERIFY(!item.data.isValid());
      QCOMPARE(catalogue.find(item.id), &item);
    }
  }

  void easingCodesAreThePlacesInTheList() {
    const QString folder = QCoreApplication::applicationDirPath() + "/res/easing/";
    const QList<GListWidgetItemInfo> curves = TransitionCatalogue::easingList();
    QCOMPARE(curves.size(), 29);
    for (int code = 0; code < 29; ++code) {
      QCOMPARE(curves[code].id, code);
      QCOMPARE(curves[code].name, kEasings[code]);
      QCOMPARE(curves[code].thumbPath, QString("%1%2.png").arg(folder).arg(code));
    }
  }

  void plainSlotSendsItsNumber() {
    QCOMPARE(TakePanel::effectToSend({.effect = 0}, 1), 0);
    QCOMPARE(TakePanel::effectToSend({.effect = 24}, 1), 24);
  }

  void randomSlotMaySendAnyNumberBelowEighty() {
    const tagKorviaTakeButton slot{.effect = 65535};
    std::set<int> drawn;
    for (qint64 second = 0; second < 20000; ++second)
      drawn.insert(TakePanel::effectToSend(slot, second));
    QCOMPARE(*drawn.begin(), 0);
    QCOMPARE(*drawn.rbegin(), 79);
    QVERIFY(drawn.count(21) == 1);
  }

  void twoRandomTakesInOneSecondAreTheSame() {
    const tagKorviaTakeButton slot{.effect = 65535};
    QCOMPARE(TakePanel::effectToSend(slot, 1234567890), TakePanel::effectToSend(slot, 1234567890));
  }
};

QTEST_MAIN(TransitionCatalogueTest)
#include "tst_transition_catalogue.moc"
