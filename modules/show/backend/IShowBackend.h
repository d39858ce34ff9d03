// The engine behind the show facade: real, silent or scripted.
#pragma once
#include <QImage>
#include <QVariant>

#include "IKorviaShowEngineSink.h"
#include "IKorviaShowPictureSink.h"
#include "IKorviaShowSource.h"
#include "KorviaShowThread.h"
#include "tagKorviaOutputStatistics.h"
#include "tagKorviaShowAudioLevel.h"
#include "tagKorviaShowEngineFigures.h"
#include "tagKorviaShowSourceInfo.h"
#include "tagKorviaShowSourceStatisticsItem.h"
#include "tagKorviaSourceState.h"

namespace korvia {

/// The services of the facade for a backend. Engine thread.
class IShowBackendHost {
 public:
  virtual void postResult(quint64 eventId, const QVariant& a1 = {}, const QVariant& a2 = {},
                          const QVariant& a3 = {}, const QVariant& a4 = {}) = 0;
  virtual void setFrameRate(FrameRate rate) = 0;
  /// Null when there is no listener.
  virtual IKorviaShowEngineSink* engineSink() = 0;

 protected:
  ~IShowBackendHost() = default;
};

class IShowBackend {
 public:
  // Engine thread.
  virtual void begin(IShowBackendHost& host) = 0;
  virtual void end() = 0;
  virtual void handleEvent(const ShowEvent& event) = 0;
  virtual void frameStep(const FrameTick& tick) = 0;

  // Console thread. Sources belong to the backend.
  virtual IKorviaShowSource* openSource(KorviaShowObjectID id, const tagKorviaShowSourceInfo& info,
                                        const tagKorviaFormatInfo& format, IUnknownEx* host) = 0;
  virtual void closeSource(KorviaShowObjectID id) = 0;
  virtual IKorviaShowSource* getSource(KorviaShowObjectID id) = 0;
  virtual void getSourceState(KorviaShowObjectID id, tagKorviaSourceState& state) = 0;
  virtual void getSourceState(tagKorviaShowSourceStatisticsItem* items) = 0;
  virtual void getOutputState(tagKorviaOutputStatistics* statistics) = 0;
  /// Copies the newest levels.
  virtual void getAudioLevel(tagKorviaShowAudioLevel& levels) = 0;
  virtual void getFigures(tagKorviaShowEngineFigures& figures) = 0;
  virtual void commitGrabImage(const QImage& image) = 0;
  virtual void setGrabImageValid(bool valid) = 0;
  virtual void commitPaintPadImage(const QImage& image) = 0;
  virtual void setPaintPadValid(bool valid) = 0;
  virtual void pausePGMImage(bool pause) = 0;
  virtual void setIncomeServer(int port, const QString& publishSecret) = 0;
  virtual void setPictureSink(IKorviaShowPictureSink* sink) = 0;

  virtual ~IShowBackend() = default;
};

}  // namespace korvia
