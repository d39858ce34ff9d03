#include "TransitionCatalog.h"

#include <array>
#include <memory>

#include "Colors.h"
#include "CrossFade.h"

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
  for (std::size_t i = 62; i <= 72; ++i)
    catalog[i] = make<CrossFade>();
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
