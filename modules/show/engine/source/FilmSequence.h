// The films that a FilmTransport plays, one or a list. A film is a path; when the path of the present film
// follows itself, the film loops. Called on the film's control thread.
#pragma once
#include <QString>

namespace korvia {

class FilmSequence {
 public:
  virtual ~FilmSequence() = default;
  virtual QString present() const = 0;
  /// The film after the present one and after `skipped` more that cannot be opened; empty when none follows.
  virtual QString following(int skipped) const = 0;
  /// Makes following(skipped) the present film, because it is on show now or the present film has looped.
  virtual void advance(int skipped) = 0;
};

}  // namespace korvia
