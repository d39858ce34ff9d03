// An event of a film, which any thread sends to the film's control thread.
#pragma once
#include <QString>

namespace korvia {

struct FilmEvent {
  enum class Kind {
    Picture,      ///< the first picture of a segment is decoded
    NearEnd,      ///< the film that follows has to be opened now
    EndOfStream,  ///< all pictures of a segment are in the queue
    Facts,        ///< duration or picture size may have changed
    Failure,
    Shown,    ///< the picture on show belongs to another film than the one before
    Drained,  ///< the last picture was shown for its whole duration
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
