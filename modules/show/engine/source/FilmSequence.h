// Says which film comes next: the seam between the transport and whoever has one film or a list of them.
// Films are paths; the same path again is a loop of the present film. Called on the film's control thread.
#pragma once
#include <QString>

namespace korvia {

class FilmSequence {
 public:
  virtual ~FilmSequence() = default;
  virtual QString present() const = 0;
  /// The film after the present one and after `skipped` more that cannot be played; empty when none follows.
  virtual QString following(int skipped) const = 0;
  /// following(skipped) is on show, or the present film has begun to loop into it: it is the present one now.
  virtual void advance(int skipped) = 0;
};

}  // namespace korvia
