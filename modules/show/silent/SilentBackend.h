// An engine that acknowledges all events that the console waits for, and shows, plays and sends nothing.
// Threads as in IShowBackend.
#pragma once
#include <memory>

#include "ThreadSafety.h"
#include "backend/BusSelection.h"
#include "backend/IShowBackend.h"
#include "silent/SilentSource.h"

namespace korvia {

class SilentBackend final : public IShowBackend {
 public:
  void begin(IShowBackendHost& host) override { host_ = &host; }
  void end() override { host_ = nullptr; }
  void handleEvent(const ShowEvent& event) override;
  void frameStep(const FrameTick& tick) override;

  IKorviaShowSource* openSource(KorviaShowObjectID id, const tagKorviaShowSourceInfo& info,
                                const tagKorviaFormatInfo& format, IUnknownEx* host) override;
  void closeSource(KorviaShowObjectID id) override;
  IKorviaShowSource* getSource(KorviaShowObjectID id) override;
  void getSourceState(KorviaShowObjectID id, tagKorviaSourceState& state) override;
  void getSourceState(tagKorviaShowSourceStatisticsItem* items) override;
  void getOutputState(tagKorviaOutputStatistics* statistics) override;
  void getAudioLevel(tagKorviaShowAudioLevel& levels) override { levels = {}; }
  void getFigures(tagKorviaShowEngineFigures& figures) override;
  void commitGrabImage(const QImage&) override {}
  void setGrabImageValid(bool) override {}
  void commitPaintPadImage(const QImage&) override {}
  void setPaintPadValid(bool) override {}
  void pausePGMImage(bool) override {}
  void setIncomeServer(int, const QString&) override {}
  // There are no pictures.
  void setPictureSink(IKorviaShowPictureSink*) override {}

 private:
  void take(int channel);
  void select(const ShowEvent& event);

  IShowBackendHost* host_ = nullptr;                         // engine thread
  BusSelection buses_;                                       // engine thread
  std::unique_ptr<SilentSource> sources_[kSourceSlotCount];  // console thread
  Mutex figuresMutex_;
  tagKorviaShowEngineFigures figures_ GUARDED_BY(figuresMutex_);
};

}  // namespace korvia
