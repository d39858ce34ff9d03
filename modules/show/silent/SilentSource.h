// A source that obeys its transport buttons and has neither pictures nor a length. Console thread.
#pragma once
#include "IKorviaShowSource.h"
#include "tagKorviaShowSourceInfo.h"

namespace korvia {

class SilentSource final : public IKorviaShowSource {
 public:
  SilentSource(KorviaShowObjectID id, const tagKorviaShowSourceInfo& info, const tagKorviaFormatInfo& format)
      : id_(id), info_(info), format_(format) {}

  bool isValid() override { return true; }
  bool release() override { return true; }
  void* queryInterface(const Identifier*, unsigned) override { return nullptr; }
  KorviaShowObjectID getObjectId() override { return id_; }
  int* getSourceInfo() override { return &info_.kind; }
  const tagKorviaFormatInfo* getFormat() override { return &format_; }
  /// Reports a frame rate, so that the watchdog does not restart it.
  void getState(tagKorviaSourceLinkState& state) override { state.rate = 25.0F; }
  void play() override { state_ = Playing; }
  void stop() override { state_ = Stopped; }
  void pause() override { state_ = Paused; }
  void setHold(bool) override {}
  void prev() override {}
  void next() override {}
  void getDuration(qint64& duration) override { duration = 0; }
  void getTime(qint64& time) override { time = 0; }
  /// Reports a new picture each time, so that it does not count as frozen.
  void getFrameCount(qint64& frames) override { frames = ++framesClaimed_; }
  void getPosition(qint64& position) override { position = position_; }
  void setPosition(qint64 position) override { position_ = position; }
  int getPlayState() override { return state_; }
  int getItemCount() override { return 1; }
  int getItemIndex() override { return 0; }

 private:
  KorviaShowObjectID id_;
  tagKorviaShowSourceInfo info_;
  tagKorviaFormatInfo format_;
  int state_ = Playing;
  qint64 position_ = 0;
  qint64 framesClaimed_ = 0;
};

}  // namespace korvia
