#include "TransitionCatalog.h"

#include <array>
#include <memory>

#include "engine/mix/blurs/Blurs.h"
#include "engine/mix/colors/Colors.h"
#include "engine/mix/distortions/Distortions.h"
#include "engine/mix/fades/CrossFade.h"
#include "engine/mix/fades/DropFade.h"
#include "engine/mix/glides/Glides.h"
#include "engine/mix/glides/Stretches.h"
#include "engine/mix/wipes/BandWipe.h"
#include "engine/mix/wipes/CellWipes.h"
#include "engine/mix/wipes/FrontWipes.h"
#include "engine/mix/wipes/RoundWipes.h"

namespace korvia {

namespace {

using Catalog = std::array<std::unique_ptr<const Transition>, kEffectCount>;

template <typename T, typename... Arguments>
std::unique_ptr<const Transition> make(Arguments... arguments) {
  return std::make_unique<T>(arguments...);
}

void addWipes(Catalog& catalog) {
  catalog[1] = make<BandWipe>(fromStart, everywhere);
  catalog[2] = make<BandWipe>(fromEnd, everywhere);
  catalog[3] = make<BandWipe>(everywhere, fromStart);
  catalog[4] = make<BandWipe>(everywhere, fromEnd);
  catalog[5] = make<CornerWipe>(Corner::TopLeft);
  catalog[6] = make<CornerWipe>(Corner::TopRight);
  catalog[7] = make<CornerWipe>(Corner::BottomRight);
  catalog[8] = make<CornerWipe>(Corner::BottomLeft);
  catalog[9] = make<BandWipe>(fromMiddle, everywhere);
  catalog[10] = make<BandWipe>(everywhere, fromMiddle);
  catalog[11] = make<BandWipe>(fromMiddle, fromMiddle);
  catalog[12] = make<CheckerboardWipe>();
  catalog[13] = make<CircleWipe>();
  catalog[14] = make<DiagonalSquaresWipe>();
  catalog[15] = make<DissolveWipe>();
  catalog[16] = make<BandWipe>(inRandomBars, everywhere);
  catalog[17] = make<BandWipe>(fromBothEnds, everywhere);
  catalog[18] = make<BandWipe>(everywhere, inSlats);
  catalog[19] = make<BloodWipe>();
  catalog[20] = make<WheelWipe>();
}

void addFades(Catalog& catalog) {
  catalog[22] = make<CrossFade>();
  catalog[23] = make<DropFade>();
}

void addGlides(Catalog& catalog) {
  catalog[25] = make<Glide>(Glide::In, PictureSide::Left);
  catalog[26] = make<Glide>(Glide::In, PictureSide::Right);
  catalog[27] = make<Glide>(Glide::In, PictureSide::Top);
  catalog[28] = make<Glide>(Glide::In, PictureSide::Bottom);
  catalog[29] = make<Glide>(Glide::In, PictureSide::TopLeft);
  catalog[30] = make<Glide>(Glide::In, PictureSide::TopRight);
  catalog[31] = make<Glide>(Glide::In, PictureSide::BottomRight);
  catalog[32] = make<Glide>(Glide::In, PictureSide::BottomLeft);
  catalog[33] = make<Glide>(Glide::Out, PictureSide::Left);
  catalog[34] = make<Glide>(Glide::Out, PictureSide::Right);
  catalog[35] = make<Glide>(Glide::Out, PictureSide::Top);
  catalog[36] = make<Glide>(Glide::Out, PictureSide::Bottom);
  catalog[37] = make<Glide>(Glide::Out, PictureSide::TopLeft);
  catalog[38] = make<Glide>(Glide::Out, PictureSide::TopRight);
  catalog[39] = make<Glide>(Glide::Out, PictureSide::BottomRight);
  catalog[40] = make<Glide>(Glide::Out, PictureSide::BottomLeft);
  catalog[41] = make<Glide>(Glide::Push, PictureSide::Left);
  catalog[42] = make<Glide>(Glide::Push, PictureSide::Right);
  catalog[43] = make<Glide>(Glide::Push, PictureSide::Top);
  catalog[44] = make<Glide>(Glide::Push, PictureSide::Bottom);
}

void addStretches(Catalog& catalog) {
  catalog[46] = make<SideStretch>(PictureSide::Left);
  catalog[47] = make<SideStretch>(PictureSide::Right);
  catalog[48] = make<SideStretch>(PictureSide::Top);
  catalog[49] = make<SideStretch>(PictureSide::Bottom);
  catalog[50] = make<CenterStretch>(CenterStretch::OldOut);
  catalog[51] = make<CenterStretch>(CenterStretch::NewIn);
}

void addBlurs(Catalog& catalog) {
  catalog[53] = make<CircularBlur>();
  catalog[54] = make<RadialBlur>();
  catalog[55] = make<Pixelate>();
  catalog[56] = make<DirectionalBlur>();
  catalog[57] = make<GrowablePoissonDisk>();
  catalog[58] = make<Sharpen>();
  catalog[59] = make<TelescopicBlur>();
  catalog[60] = make<ZoomBlur>();
}

void addDistortions(Catalog& catalog) {
  catalog[62] = make<BandedSwirl>();
  catalog[63] = make<CircleStretch>();
  catalog[64] = make<CloudReveal>();
  catalog[65] = make<Crumble>();
  catalog[66] = make<GrainDissolve>();
  catalog[67] = make<RadialWiggle>();
  catalog[68] = make<RandomCircleReveal>();
  catalog[69] = make<Ripple>();
  catalog[70] = make<Wave>();
  catalog[71] = make<MagnifySmooth>();
  catalog[72] = make<WovenGlass>();
}

void addColors(Catalog& catalog) {
  catalog[74] = make<MostBright>();
  catalog[75] = make<BrightExtract>();
  catalog[76] = make<InvertColor>();
  catalog[77] = make<PixelsMultiplied>();
  catalog[78] = make<Scanlines>();
  catalog[79] = make<LinenFade>();
}

Catalog made() {
  Catalog catalog;
  addWipes(catalog);
  addFades(catalog);
  addGlides(catalog);
  addStretches(catalog);
  addBlurs(catalog);
  addDistortions(catalog);
  addColors(catalog);
  return catalog;
}

}  // namespace

const Transition* transitionFor(int effect) {
  static const Catalog catalog = made();
  return effect >= 0 && effect < kEffectCount ? catalog[static_cast<std::size_t>(effect)].get() : nullptr;
}

}  // namespace korvia
