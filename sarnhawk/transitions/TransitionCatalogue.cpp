#include "transitions/TransitionCatalogue.h"

#include <QCoreApplication>

namespace {

constexpr const char* kContext = "TransitionCatalogue";

constexpr const char* kCatalogNames[TransitionCatalogue::kCatalogCount] = {
    QT_TRANSLATE_NOOP("TransitionCatalogue", "Sys"),        QT_TRANSLATE_NOOP("TransitionCatalogue", "Erase"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "Fade"),       QT_TRANSLATE_NOOP("TransitionCatalogue", "Glide"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "Stretch"),    QT_TRANSLATE_NOOP("TransitionCatalogue", "Blur"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "Distortion"), QT_TRANSLATE_NOOP("TransitionCatalogue", "Color"),
};

struct EffectEntry {
  int catalog;
  qint32 effect;
  const char* label;
  const char* thumb;
};

// In the order in which the pickers show them. A number that is missing here is unused.
constexpr EffectEntry kEffects[] = {
    {0, 0, QT_TRANSLATE_NOOP("TransitionCatalogue", "None"), "none.jpg"},
    {0, 65535, QT_TRANSLATE_NOOP("TransitionCatalogue", "Random"), "random.jpg"},
    {1, 1, QT_TRANSLATE_NOOP("TransitionCatalogue", "Left"), "erase_Left.jpg"},
    {1, 2, QT_TRANSLATE_NOOP("TransitionCatalogue", "Right"), "erase_Right.jpg"},
    {1, 3, QT_TRANSLATE_NOOP("TransitionCatalogue", "Top"), "erase_Top.jpg"},
    {1, 4, QT_TRANSLATE_NOOP("TransitionCatalogue", "Bottom"), "erase_Bottom.jpg"},
    {1, 5, QT_TRANSLATE_NOOP("TransitionCatalogue", "TopLeft"), "erase_TopLeft.jpg"},
    {1, 6, QT_TRANSLATE_NOOP("TransitionCatalogue", "TopRight"), "erase_TopRight.jpg"},
    {1, 7, QT_TRANSLATE_NOOP("TransitionCatalogue", "BottomRight"), "erase_BottomRight.jpg"},
    {1, 8, QT_TRANSLATE_NOOP("TransitionCatalogue", "BottomLeft"), "erase_BottomLeft.jpg"},
    {1, 9, QT_TRANSLATE_NOOP("TransitionCatalogue", "HCenter"), "erase_HCenter.jpg"},
    {1, 10, QT_TRANSLATE_NOOP("TransitionCatalogue", "VCenter"), "erase_VCenter.jpg"},
    {1, 11, QT_TRANSLATE_NOOP("TransitionCatalogue", "Box"), "erase_Box.jpg"},
    {1, 12, QT_TRANSLATE_NOOP("TransitionCatalogue", "Checkerboard"), "erase_Checkerboard.jpg"},
    {1, 13, QT_TRANSLATE_NOOP("TransitionCatalogue", "Circle"), "erase_Circle.jpg"},
    {1, 14, QT_TRANSLATE_NOOP("TransitionCatalogue", "DiagonalSquares"), "erase_DiagonalSquares.jpg"},
    {1, 15, QT_TRANSLATE_NOOP("TransitionCatalogue", "DissolveIn"), "erase_DissolveIn.jpg"},
    {1, 16, QT_TRANSLATE_NOOP("TransitionCatalogue", "RandomBars"), "erase_RandomBars.jpg"},
    {1, 17, QT_TRANSLATE_NOOP("TransitionCatalogue", "Split"), "erase_Split.jpg"},
    {1, 18, QT_TRANSLATE_NOOP("TransitionCatalogue", "VenetianBlinds"), "erase_VenetianBlinds.jpg"},
    {1, 19, QT_TRANSLATE_NOOP("TransitionCatalogue", "Blood"), "erase_Blood.jpg"},
    {1, 20, QT_TRANSLATE_NOOP("TransitionCatalogue", "Wheel"), "erase_Wheel.jpg"},
    {2, 22, QT_TRANSLATE_NOOP("TransitionCatalogue", "Normal"), "fade_Normal.jpg"},
    {2, 23, QT_TRANSLATE_NOOP("TransitionCatalogue", "Drop"), "fade_Drop.jpg"},
    {3, 25, QT_TRANSLATE_NOOP("TransitionCatalogue", "InLeft"), "glide_In_Left.jpg"},
    {3, 26, QT_TRANSLATE_NOOP("TransitionCatalogue", "InRight"), "glide_In_Right.jpg"},
    {3, 27, QT_TRANSLATE_NOOP("TransitionCatalogue", "InTop"), "glide_In_Top.jpg"},
    {3, 28, QT_TRANSLATE_NOOP("TransitionCatalogue", "InBottom"), "glide_In_Bottom.jpg"},
    {3, 29, QT_TRANSLATE_NOOP("TransitionCatalogue", "InTopLeft"), "glide_In_TopLeft.jpg"},
    {3, 30, QT_TRANSLATE_NOOP("TransitionCatalogue", "InTopRight"), "glide_In_TopRight.jpg"},
    {3, 31, QT_TRANSLATE_NOOP("TransitionCatalogue", "InBottomRight"), "glide_In_BottomRight.jpg"},
    {3, 32, QT_TRANSLATE_NOOP("TransitionCatalogue", "InBottomLeft"), "glide_In_BottomLeft.jpg"},
    {3, 33, QT_TRANSLATE_NOOP("TransitionCatalogue", "OutLeft"), "glide_Out_Left.jpg"},
    {3, 34, QT_TRANSLATE_NOOP("TransitionCatalogue", "OutRight"), "glide_Out_Right.jpg"},
    {3, 35, QT_TRANSLATE_NOOP("TransitionCatalogue", "OutTop"), "glide_Out_Top.jpg"},
    {3, 36, QT_TRANSLATE_NOOP("TransitionCatalogue", "OutBottom"), "glide_Out_Bottom.jpg"},
    {3, 37, QT_TRANSLATE_NOOP("TransitionCatalogue", "OutTopLeft"), "glide_Out_TopLeft.jpg"},
    {3, 38, QT_TRANSLATE_NOOP("TransitionCatalogue", "OutTopRight"), "glide_Out_TopRight.jpg"},
    {3, 39, QT_TRANSLATE_NOOP("TransitionCatalogue", "OutBottomRight"), "glide_Out_BottomRight.jpg"},
    {3, 40, QT_TRANSLATE_NOOP("TransitionCatalogue", "OutBottomLeft"), "glide_Out_BottomLeft.jpg"},
    {3, 41, QT_TRANSLATE_NOOP("TransitionCatalogue", "PushLeft"), "glide_Push_Left.jpg"},
    {3, 42, QT_TRANSLATE_NOOP("TransitionCatalogue", "PushRight"), "glide_Push_Right.jpg"},
    {3, 43, QT_TRANSLATE_NOOP("TransitionCatalogue", "PushTop"), "glide_Push_Top.jpg"},
    {3, 44, QT_TRANSLATE_NOOP("TransitionCatalogue", "PushBottom"), "glide_Push_Bottom.jpg"},
    {4, 46, QT_TRANSLATE_NOOP("TransitionCatalogue", "Left"), "stretch_Left.jpg"},
    {4, 47, QT_TRANSLATE_NOOP("TransitionCatalogue", "Right"), "stretch_Right.jpg"},
    {4, 48, QT_TRANSLATE_NOOP("TransitionCatalogue", "Top"), "stretch_Top.jpg"},
    {4, 49, QT_TRANSLATE_NOOP("TransitionCatalogue", "Bottom"), "stretch_Bottom.jpg"},
    {4, 50, QT_TRANSLATE_NOOP("TransitionCatalogue", "CenterInnerAOut"), "stretch_Center_Inner_AOut.jpg"},
    {4, 51, QT_TRANSLATE_NOOP("TransitionCatalogue", "CenterInnerBIn"), "stretch_Center_Inner_BIn.jpg"},
    {5, 53, QT_TRANSLATE_NOOP("TransitionCatalogue", "Circular"), "blur_CircularBlur.jpg"},
    {5, 54, QT_TRANSLATE_NOOP("TransitionCatalogue", "Radial"), "blur_RadialBlur.jpg"},
    {5, 55, QT_TRANSLATE_NOOP("TransitionCatalogue", "Pixelate"), "blur_Pixelate.jpg"},
    {5, 56, QT_TRANSLATE_NOOP("TransitionCatalogue", "Directional"), "blur_Directional.jpg"},
    {5, 57, QT_TRANSLATE_NOOP("TransitionCatalogue", "GrowablePoissonDisk"), "blur_GrowablePoissonDisk.jpg"},
    {5, 58, QT_TRANSLATE_NOOP("TransitionCatalogue", "Sharpen"), "blur_Sharpen.jpg"},
    {5, 59, QT_TRANSLATE_NOOP("TransitionCatalogue", "Telescopic"), "blur_Telescopic.jpg"},
    {5, 60, QT_TRANSLATE_NOOP("TransitionCatalogue", "Zoom"), "blur_Zoom.jpg"},
    {6, 62, QT_TRANSLATE_NOOP("TransitionCatalogue", "BandedSwirl"), "distortion_BandedSwirl.jpg"},
    {6, 63, QT_TRANSLATE_NOOP("TransitionCatalogue", "CircleStretch"), "distortion_CircleStretch.jpg"},
    {6, 64, QT_TRANSLATE_NOOP("TransitionCatalogue", "CloudReveal"), "distortion_CloudReveal.jpg"},
    {6, 65, QT_TRANSLATE_NOOP("TransitionCatalogue", "Crumble"), "distortion_Crumble.jpg"},
    {6, 66, QT_TRANSLATE_NOOP("TransitionCatalogue", "Disolve"), "distortion_Disolve.jpg"},
    {6, 67, QT_TRANSLATE_NOOP("TransitionCatalogue", "RadialWiggle"), "distortion_RadialWiggle.jpg"},
    {6, 68, QT_TRANSLATE_NOOP("TransitionCatalogue", "RandomCircleReveal"),
     "distortion_RandomCircleReveal.jpg"},
    {6, 69, QT_TRANSLATE_NOOP("TransitionCatalogue", "Ripple"), "distortion_Ripple.jpg"},
    {6, 70, QT_TRANSLATE_NOOP("TransitionCatalogue", "Wave"), "distortion_Wave.jpg"},
    {6, 71, QT_TRANSLATE_NOOP("TransitionCatalogue", "MagnifySmooth"), "distortion_MagnifySmooth.jpg"},
    {6, 72, QT_TRANSLATE_NOOP("TransitionCatalogue", "ApplyTextureMap"), "distortion_ApplyTextureMap.jpg"},
    {7, 74, QT_TRANSLATE_NOOP("TransitionCatalogue", "MostBright"), "color_MostBright.jpg"},
    {7, 75, QT_TRANSLATE_NOOP("TransitionCatalogue", "BrightExtract"), "color_BrightExtract.jpg"},
    {7, 76, QT_TRANSLATE_NOOP("TransitionCatalogue", "InvertColor"), "color_InvertColor.jpg"},
    {7, 77, QT_TRANSLATE_NOOP("TransitionCatalogue", "PixelsMultiplied"),
     "color_TransparentAlternatingPixelsMultiplied.jpg"},
    {7, 78, QT_TRANSLATE_NOOP("TransitionCatalogue", "Scanlines"),
     "color_TransparentAlternatingScanlines.jpg"},
    {7, 79, QT_TRANSLATE_NOOP("TransitionCatalogue", "ApplyTextureMap"), "color_ApplyTextureMap.jpg"},
};

constexpr const char* kEasings[] = {
    QT_TRANSLATE_NOOP("TransitionCatalogue", "Linear"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "InQuad"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "OutQuad"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "InOutQuad"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "OutInQuad"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "InCubic"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "OutCubic"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "InOutCubic"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "OutInCubic"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "InQuart"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "OutQuart"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "InOutQuart"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "OutInQuart"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "InQuint"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "OutQuint"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "InOutQuint"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "OutInQuint"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "InSine"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "OutSine"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "InOutSine"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "OutInSine"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "InExpo"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "OutExpo"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "InOutExpo"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "OutInExpo"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "InCirc"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "OutCirc"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "InOutCirc"),
    QT_TRANSLATE_NOOP("TransitionCatalogue", "OutInCirc"),
};

QString translated(const char* text) {
  return QCoreApplication::translate(kContext, text);
}

QString resourceFolder(const QString& name) {
  return QStringLiteral("%1/res/%2/").arg(QCoreApplication::applicationDirPath(), name);
}

}  // namespace

QString TransitionCatalogue::catalogName(int catalog) {
  if (catalog < 0 || catalog >= kCatalogCount)
    return QString();
  return translated(kCatalogNames[catalog]);
}

QList<GListWidgetItemInfo> TransitionCatalogue::easingList() {
  QList<GListWidgetItemInfo> curves;
  for (const char* label : kEasings) {
    const int code = curves.size();
    curves.append({translated(label), easingThumbPath(code), code, QString(), QVariant()});
  }
  return curves;
}

QString TransitionCatalogue::easingThumbPath(int code) {
  return QStringLiteral("%1%2.png").arg(resourceFolder(QStringLiteral("easing"))).arg(code);
}

QList<GListWidgetItemInfo>* TransitionCatalogue::effectList(int catalog) {
  if (catalog < 0 || catalog > kAllCatalog)
    return nullptr;
  fill();
  return &_lists[static_cast<std::size_t>(catalog)];
}

const GListWidgetItemInfo* TransitionCatalogue::find(qint32 effect) {
  for (const GListWidgetItemInfo& item : *effectList(kAllCatalog)) {
    if (item.id == effect)
      return &item;
  }
  return nullptr;
}

void TransitionCatalogue::fill() {
  if (!_lists[kAllCatalog].isEmpty())
    return;
  const QString folder = resourceFolder(QStringLiteral("switchKind"));
  for (const EffectEntry& entry : kEffects) {
    const GListWidgetItemInfo item{translated(entry.label), folder + QLatin1String(entry.thumb), entry.effect,
                                   QString(), QVariant()};
    _lists[static_cast<std::size_t>(entry.catalog)].append(item);
    _lists[kAllCatalog].append(item);
  }
}
