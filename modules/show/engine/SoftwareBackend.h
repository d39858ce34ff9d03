// The engine that works on the processor: sources, two buses, the switch between them, monitors, outputs.
// The frame loop is frameStep(). Threads as IShowBackend says.
#pragma once
#include <array>
#include <atomic>
#include <memory>
#include <mutex>

#include "backend/BusSelection.h"
#include "backend/IShowBackend.h"
#include "engine/Janitor.h"
#include "engine/StageClock.h"
#include "engine/frame/FramePool.h"
#include "engine/items/PaintLayer.h"
#include "engine/mix/ProgramSwitch.h"
#include "engine/mix/TransitionScratch.h"
#include "engine/monitor/MonitorHub.h"
#include "engine/output/OutputRack.h"
#include "engine/output/SnapshotWriter.h"
#include "engine/source/SourceSet.h"

namespace korvia {

class SoftwareBackend final : public IShowBackend {
 public:
  SoftwareBackend();
  ~SoftwareBackend() override;

  void begin(IShowBackendHost& host) override;
  void end() override;
  void handleEvent(const ShowEvent& event) override;
  void frameStep(const FrameTick& tick) override;

  IKorviaShowSource* openSource(KorviaShowObjectID id, const tagKorviaShowSourceInfo& info,
                                const tagKorviaFormatInfo& format, IUnknownEx* host) override;
  void closeSource(KorviaShowObjectID id) override;
  IKorviaShowSource* getSource(KorviaShowObjectID id) override;
  void getSourceState(KorviaShowObjectID id, tagKorviaSourceState& state) override;
  void getSourceState(tagKorviaShowSourceStatisticsItem* items) override;
  void getOutputState(tagKorviaOutputStatistics* statistics) override;
  tagKorviaShowAudioLevel& getAudioLevel() override { return levels_; }
  void getFigures(tagKorviaShowEngineFigures& figures) override;
  void commitGrabImage(const QImage& image) override;
  void setGrabImageValid(bool valid) override;
  void commitPaintPadImage(const QImage& image) override;
  void setPaintPadValid(bool valid) override;
  void pausePGMImage(bool pause) override;

 private:
  /// The render set-up; written at open, read by both threads.
  struct Show {
    FrameSize size{1920, 1080};
    FrameRate rate;
  };

  // Events. Engine thread.
  void open(const ShowEvent& event);
  void closeShow();
  void resizeWindow(const ShowEvent& event);
  void snapshot(const ShowEvent& event);
  void moveLever(const ShowEvent& event);
  void take(const ShowEvent& event);
  void selectChannel(const ShowEvent& event);
  void startOutput(const ShowEvent& event);

  // The frame. Engine thread.
  void pullSources(int ticks);
  FrameRef inRenderSize(FrameRef picture) const;
  FrameRef channelFrame(int channel) const;
  FrameRef mixProgram();
  void showMonitors();
  void reportDoneTake();
  void reportSwitch();
  void keepFigures(const FrameTick& tick);
  Show show() const;
  void closeSources();

  IShowBackendHost* host_ = nullptr;  // engine thread
  std::atomic<IKorviaShowEngineSink*> sink_{nullptr};
  bool open_ = false;  // engine thread

  mutable std::mutex showMutex_;
  Show show_;  // guarded by showMutex_

  SourceSet sources_;
  SourceArray active_;                             // engine thread: what sources_ held at the last change
  quint64 sourcesVersion_ = 0;                     // engine thread
  std::array<FrameRef, kSourceSlotCount> frames_;  // engine thread

  std::unique_ptr<FramePool> pool_;  // engine thread
  BusSelection buses_;               // engine thread
  ProgramSwitch switch_;             // engine thread
  TransitionScratch scratch_;        // engine thread
  FrameRef mixed_;                   // engine thread: program without the drawing over it
  FrameRef program_;                 // engine thread
  std::atomic<bool> programPaused_{false};
  PaintLayer paint_;
  StageClock stages_;
  Janitor janitor_;
  MonitorHub monitors_;
  OutputRack outputs_;
  SnapshotWriter snapshots_;

  mutable std::mutex figuresMutex_;
  tagKorviaShowEngineFigures figures_;                // guarded by figuresMutex_
  std::chrono::steady_clock::time_point firstFrame_;  // engine thread
  tagKorviaShowAudioLevel levels_;                    // silent until the mixer has sound
};

}  // namespace korvia
