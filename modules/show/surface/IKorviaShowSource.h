// A source as the console sees it. Owned by the engine, valid only during the call. Called on the console
// thread; all calls return at once, slow work is done on the threads of the source.
#pragma once
#include <QtGlobal>

#include "IUnknownEx.h"
#include "KorviaShowObjectID.h"
#include "tagKorviaFormatInfo.h"
#include "tagKorviaSourceLinkState.h"

enum KorviaShowPlayState : int {
  NothingSpecial = 0,
  Opening,
  Buffering,
  Playing,
  Paused,
  Stopped,
  Ended,
  Error,
};

class IKorviaShowSource : public IUnknownEx {
 public:
  virtual KorviaShowObjectID getObjectId() = 0;
  /// The source's record, read through its first field, the KorviaShowSourceKind.
  virtual int* getSourceInfo() = 0;
  virtual const tagKorviaFormatInfo* getFormat() = 0;
  virtual void getState(tagKorviaSourceLinkState& state) = 0;
  /// Starts or resumes; after the end it starts again from the beginning.
  virtual void play() = 0;
  /// Stops and rewinds; the channel keeps the first picture.
  virtual void stop() = 0;
  virtual void pause() = 0;
  /// On hold the source keeps its picture and its position until released.
  virtual void setHold(bool hold) = 0;
  virtual void prev() = 0;
  virtual void next() = 0;
  /// Tenths of a millisecond; 0 when unknown.
  virtual void getDuration(qint64& duration) = 0;
  virtual void getTime(qint64& time) = 0;
  /// Pictures shown since the source was opened.
  virtual void getFrameCount(qint64& frames) = 0;
  /// Position on the seek scale, 0 to 100.
  virtual void getPosition(qint64& position) = 0;
  virtual void setPosition(qint64 position) = 0;
  virtual int getPlayState() = 0;
  virtual int getItemCount() = 0;
  virtual int getItemIndex() = 0;

 protected:
  ~IKorviaShowSource() = default;
};
