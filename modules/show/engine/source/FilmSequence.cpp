#include "FilmSequence.h"

namespace korvia {

QString FilmSequence::following(int skipped) const {
  if (skipped >= count())
    return {};
  const int index = index_ + 1 + skipped;
  if (index < count())
    return paths_[index];
  return afterLast_ == AfterLast::First ? paths_[index % count()] : QString();
}

void FilmSequence::step(int films) {
  if (count() > 0)
    index_ = ((index_ + films) % count() + count()) % count();
}

}  // namespace korvia
