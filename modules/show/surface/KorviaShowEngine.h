// The engine as the console sees it: events, sources, statistics. A facade over the engine that
// KORVIA_ENGINE selects. Console thread, except what KorviaShowThread says.
#pragma once
#include <QImage>
#include <memory>

#include "IKorviaShowPictureSink.h"
#include "IKorviaShowSource.h"
#include "KorviaShowEvents.h"
#include "KorviaShowObjectID.h"
#include "KorviaShowThread.h"
#include "tagKorviaOutputStatistics.h"
#include "tagKorviaShowAudioLevel.h"
#include "tagKorviaShowEngineFigures.h"
#include "tagKorviaShowSourceInfo.h"
#include "tagKorviaShowSourceStatisticsItem.h"
#include "tagKorviaSourceState.h"

namespace korvia {
class IShowBackend;
class TracedSource;
}  // namespace korvia

class KorviaShowEngine : public KorviaShowThread {
  Q_OBJECT

 public:
  KorviaShowEngine();
  ~KorviaShowEngine() override;

  void start(IKorviaShowThreadSink* sink, KorviaShowThreadMode mode) override;
  void stop() override;

  /// Creates or replaces the source of the object and returns at once; a later failure shows in its state.
  IKorviaShowSource* openSource(KorviaShowObjectID id, tagKorviaShowSourceInfo& info,
                                tagKorviaFormatInfo& format, IUnknownEx* host);
  void closeSource(KorviaShowObjectID id);
  /// Source of a media channel, by 1 + index or 0x10 + index, or of the karaoke. Null when none.
  IKorviaShowSource* getSource(KorviaShowObjectID id);
  void getSourceState(KorviaShowObjectID id, tagKorviaSourceState& state);
  /// `items`: one for each of the eight media channels.
  void getSourceState(tagKorviaShowSourceStatisticsItem* items);
  void getOutputState(tagKorviaOutputStatistics* statistics);
  /// A copy of the newest levels, unchanged until the next call.
  tagKorviaShowAudioLevel& getAudioLevel();
  /// Timing figures of the engine, for the status page and the bench.
  void getFigures(tagKorviaShowEngineFigures& figures);

  void commitGrabImage(const QImage& image);
  void setGrabImageValid(bool valid);
  void commitPaintPadImage(const QImage& image);
  void setPaintPadValid(bool valid);
  void pausePGMImage(bool pause);
  /// The RTMP port that the income server took, for the stream's push to it, 0 while that does not run; and
  /// what the server asks of the program, which is never written down. Counts from the next start of the
  /// stream on.
  void setIncomeServer(int port, const QString& publishSecret);
  /// Who gets small pictures of the running show, with what it wants of them; null for nobody. The sink is
  /// not owned. When this returns, the sink before is not called any more.
  void setPictureSink(IKorviaShowPictureSink* sink);

 protected:
  void onThreadBegin() override;
  void onThreadEnd() override;
  void onThreadEvent(const korvia::ShowEvent& event) override;
  void doFrameStep(const korvia::FrameTick& tick) override;

 private:
  class Host;
  korvia::TracedSource* traced(KorviaShowObjectID id, IKorviaShowSource* source);

  std::unique_ptr<Host> host_;
  std::unique_ptr<korvia::IShowBackend> backend_;
  tagKorviaShowAudioLevel levels_;
  // One for each object that can hold a source; they outlive the calls made on them.
  std::unique_ptr<korvia::TracedSource> tracedSources_[korvia::kSourceSlotCount];
};
