// The films that a FilmTransport plays, a single one or a list, and which of them is the present one. A
// single film is a list of one. A film is a path; when the path of the present film follows itself, the film
// loops. The film's control thread; a plain object.
#pragma once
#include <QStringList>

namespace korvia {

class FilmSequence {
 public:
  /// What follows the last film.
  enum class AfterLast { Nothing, First };

  FilmSequence(const QStringList& paths, AfterLast afterLast) : paths_(paths), afterLast_(afterLast) {}

  int count() const { return paths_.size(); }
  /// Of the present film, from 0.
  int index() const { return index_; }
  /// Empty when the sequence is.
  QString present() const { return paths_.value(index_); }
  /// The film after the present one and after `skipped` more that cannot be opened; empty when none is left.
  /// The present film itself follows when all others are skipped and the sequence goes round.
  QString following(int skipped) const;
  /// Makes following(skipped) the present film, because it is on show now or the present film has looped.
  void advance(int skipped) { step(1 + skipped); }
  /// Goes on by `films`, back when negative; the first film follows the last one here in any case.
  void step(int films);
  void goToFirst() { index_ = 0; }

 private:
  const QStringList paths_;
  const AfterLast afterLast_;
  int index_ = 0;
};

}  // namespace korvia
