#include "TransitionCatalog.h"

#include <array>
#include <memory>

#include "BandWipe.h"
#include "CellWipes.h"
#include "CrossFade.h"
#include "FrontWipes.h"
#include "RoundWipes.h"

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
  catalog[23] = make<CrossFade>();
}

void addGlides(Catalog& catalog) {
  for (std::size_t i = 25; i <= 44; ++i)
    catalog[i] = make<CrossFade>();
}

void addStretches(Catalog& catalog) {
  for (std::size_t i = 46; i <= 51; ++i)
    catalog[i] = make<CrossFade>();
}

void addBlurs(Catalog& catalog) {
  for (std::size_t i = 53; i <= 60; ++i)
    catalog[i] = make<CrossFade>();
}

void addDistortions(Catalog& catalog) {
  for (std::size_t i = 62; i <= 72; ++i)
    catalog[i] = make<CrossFade>();
}

void addColors(Catalog& catalog) {
  for (std::size_t i = 74; i <= 79; ++i)
    catalog[i] = make<CrossFade>();
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
