// A film file, or a list of them, in any container and codec that the installed plugins read. It plays by
// itself once it is open. Time, duration and position are those of the present film of a list. Console
// thread, except pullFrame, pullSound and setDecodeRate: engine thread. No call waits for the film.
#pragma once
#include <memory>

#include "FilmTransport.h"
#include "Source.h"
#include "SourceThreads.h"

namespace korvia {

class FilmSource final : public Source {
 public:
  /// Opens `info.moviePath`, the films of `info.movieList` one after the other, or the local file of
  /// `info.url`, by the kind of the record. The states go from Opening to Playing, or to Error with a line in
  /// the log.
  FilmSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
             const tagKorviaFormatInfo& format);
  ~FilmSource() override;

  FrameRef pullFrame(int ticks) override;
  bool pullSound(StereoSpan out) override;
  std::int64_t framesHeld() const override { return transport_->framesHeld(); }
  void setDecodeRate(DecodeRate rate) override { transport_->setDecodeRate(rate); }
  void close() override;
  SourceFigures figures() override;

  void getState(tagKorviaSourceLinkState& state) override;
  void play() override;
  void stop() override;
  void pause() override;
  void setHold(bool hold) override;
  /// Of a list only: the film before and the film after, round the ends of the list.
  void prev() override;
  void next() override;
  void getDuration(qint64& duration) override;
  void getTime(qint64& time) override;
  void getFrameCount(qint64& frames) override;
  void getPosition(qint64& position) override;
  void setPosition(qint64 position) override;
  int getPlayState() override;
  int getItemCount() override;
  int getItemIndex() override;

 private:
  bool isList() const { return info().kind == SourceKindMovieList; }

  const QStringList paths_;
  const std::shared_ptr<FilmTransport> transport_;
  quint64 thread_ = 0;
  bool closed_ = false;
  bool held_ = false;
};

}  // namespace korvia
