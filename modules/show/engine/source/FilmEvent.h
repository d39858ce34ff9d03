// What happens to a film outside of its control thread, told to that thread.
#pragma once
#include <QString>

namespace korvia {

struct FilmEvent {
  enum class Kind {
    Picture,      ///< the first picture of a segment is decoded
    NearEnd,      ///< time to open the film that follows
    EndOfStream,  ///< all pictures of a segment were pushed
    Facts,        ///< duration or picture size may be new
    Failure,
    Shown,    ///< pictures of another film are on show now
    Drained,  ///< the last picture has lasted its time
  };

  Kind kind;
  int film = 0;  ///< FilmDecoder::number
  int segment = 0;
  QString reason;  ///< of a failure

  friend bool operator==(const FilmEvent&, const FilmEvent&) = default;
};

class FilmEventSink {
 public:
  virtual ~FilmEventSink() = default;
  /// Any thread; returns at once.
  virtual void onFilmEvent(FilmEvent event) = 0;
};

}  // namespace korvia
