// The engine that works on the CPU: it owns the parts and runs the frame loop, frameStep(). Events are
// handled by the parts. Threads as in IShowBackend.
#pragma once
#include <atomic>

#include "ThreadSafety.h"
#include "backend/IShowBackend.h"
#include "engine/EventTable.h"
#include "engine/FrameMeter.h"
#include "engine/Janitor.h"
#include "engine/LoadWatch.h"
#include "engine/ShowFormat.h"
#include "engine/StageClock.h"
#include "engine/audio/AudioMixer.h"
#include "engine/audio/LoudnessMeter.h"
#include "engine/audio/SoundDevice.h"
#include "engine/bus/Switcher.h"
#include "engine/channel/ChannelBank.h"
#include "engine/items/ItemStage.h"
#include "engine/monitor/MonitorHub.h"
#include "engine/monitor/PictureTap.h"
#include "engine/output/OutputRack.h"
#include "engine/output/SnapshotWriter.h"
#include "engine/output/device/DeviceRack.h"
#include "engine/placing/ItemPlacing.h"
#include "tagKorviaShowEngineInfo.h"

namespace korvia {

class SoftwareBackend final : public IShowBackend {
 public:
  SoftwareBackend();

  void begin(IShowBackendHost& host) override;
  void end() override;
  void handleEvent(const ShowEvent& event) override { events_.dispatch(event); }
  void frameStep(const FrameTick& tick) override;

  IKorviaShowSource* openSource(KorviaShowObjectID id, const tagKorviaShowSourceInfo& info,
                                const tagKorviaFormatInfo& format, IUnknownEx* host) override;
  void closeSource(KorviaShowObjectID id) override { channels_.closeSource(id); }
  IKorviaShowSource* getSource(KorviaShowObjectID id) override { return channels_.getSource(id); }
  void getSourceState(KorviaShowObjectID id, tagKorviaSourceState& state) override;
  void getSourceState(tagKorviaShowSourceStatisticsItem* items) override;
  void getOutputState(tagKorviaOutputStatistics* statistics) override;
  void getAudioLevel(tagKorviaShowAudioLevel& levels) override { mixer_.getLevels(levels); }
  void getFigures(tagKorviaShowEngineFigures& figures) override;
  // The engine has no layer for screen cuts yet.
  void commitGrabImage(const QImage&) override {}
  void setGrabImageValid(bool) override {}
  void commitPaintPadImage(const QImage& image) override { items_.commitPaintPad(image); }
  void setPaintPadValid(bool valid) override { items_.setPaintPadValid(valid); }
  void pausePGMImage(bool pause) override { programPaused_ = pause; }
  void setIncomeServer(int port, const QString& publishSecret) override {
    outputs_.setIncomeServer({port, publishSecret});
    channels_.setIncomePort(port);
  }
  void setPictureSink(IKorviaShowPictureSink* sink) override { pictures_.setSink(sink); }

 private:
  void fillEventTable();

  // Events. Engine thread.
  void open(const tagKorviaShowEngineInfo& info, const tagKorviaShowWindowPackInfo& windows);
  void closeShow();
  void openDevices(const tagKorviaShowEngineInfo& info);
  void closeDevices();
  void snapshot(int object, const QString& path);

  // The frame. Engine thread.
  void mixSound(const FrameTick& tick);
  void showMonitors(const FrameRef& preview);
  void showPictures();
  void keepFigures(const FrameTick& tick);
  static tagKorviaShowEngineFigures::SoundDevice figuresOf(const SoundDevice* device);
  void watchLoad();

  IShowBackendHost* host_ = nullptr;  // engine thread
  std::atomic<IKorviaShowEngineSink*> sink_{nullptr};
  bool open_ = false;  // engine thread
  ShowFormat format_;  // engine thread
  FrameRef mixed_;     // engine thread; program without its layers
  FrameRef program_;   // engine thread
  std::atomic<bool> programPaused_{false};

  LoadWatch load_;  // engine thread

  // The parts, each after those that it uses.
  StageClock stages_;
  Janitor janitor_;
  ChannelBank channels_;
  Switcher switcher_;
  std::unique_ptr<FramePool> pool_;  // engine thread; pictures with layers over them
  ItemStage items_;
  ItemPlacing placing_;
  AudioMixer mixer_;
  LoudnessMeter loudness_;
  // Engine thread; null for a bus that is not heard.
  std::unique_ptr<SoundDevice> programDevice_;
  std::unique_ptr<SoundDevice> previewDevice_;
  MonitorHub monitors_;
  PictureTap pictures_;
  OutputRack outputs_;
  DeviceRack deviceOutputs_;
  SnapshotWriter snapshots_;
  EventTable events_;

  Mutex figuresMutex_;
  tagKorviaShowEngineFigures figures_ GUARDED_BY(figuresMutex_);
  FrameMeter frameMeter_ GUARDED_BY(figuresMutex_);
};

}  // namespace korvia
