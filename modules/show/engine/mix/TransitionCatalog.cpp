#include "TransitionCatalog.h"

#include <array>
#include <memory>

#include "CrossFade.h"
#include "Distortions.h"

namespace korvia {

namespace {

using Catalog = std::array<std::unique_ptr<const Transition>, kEffectCount>;

template <typename T, typename... Arguments>
std::unique_ptr<const Transition> make(Arguments... arguments) {
  return std::make_unique<T>(arguments...);
}

void addWipes(Catalog& catalog) {
  for (std::size_t i = 1; i <= 20; ++i)
    catalog[i] = make<CrossFade>();
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
