// A wrapper around a source that notes every call that changes it in the black box. Console thread.
#pragma once
#include <QVariantList>

#include "IKorviaShowSource.h"

namespace korvia {

class TracedSource final : public IKorviaShowSource {
 public:
  void setTarget(IKorviaShowSource* target) { target_ = target; }

  bool isValid() override { return target_->isValid(); }
  bool release() override { return target_->release(); }
  void* queryInterface(const Identifier* id, unsigned version) override {
    return target_->queryInterface(id, version);
  }
  KorviaShowObjectID getObjectId() override { return target_->getObjectId(); }
  int* getSourceInfo() override { return target_->getSourceInfo(); }
  const tagKorviaFormatInfo* getFormat() override { return target_->getFormat(); }
  void getState(tagKorviaSourceLinkState& state) override { target_->getState(state); }
  void play() override;
  void stop() override;
  void pause() override;
  void setHold(bool hold) override;
  void prev() override;
  void next() override;
  void getDuration(qint64& duration) override { target_->getDuration(duration); }
  void getTime(qint64& time) override { target_->getTime(time); }
  void getFrameCount(qint64& frames) override { target_->getFrameCount(frames); }
  void getPosition(qint64& position) override { target_->getPosition(position); }
  void setPosition(qint64 position) override;
  int getPlayState() override { return target_->getPlayState(); }
  int getItemCount() override { return target_->getItemCount(); }
  int getItemIndex() override { return target_->getItemIndex(); }

 private:
  void note(const char* call, const QVariantList& args = {});

  IKorviaShowSource* target_ = nullptr;
};

}  // namespace korvia
