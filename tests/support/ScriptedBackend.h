// An engine that does nothing by itself: it records what the console posts and calls, answers as a test told
// it, and offers sources whose states the test sets. Install it before the console opens its engine.
#pragma once
#include <QImage>
#include <QVariant>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "backend/IShowBackend.h"

/// A source whose answers are plain members. Console thread.
class ScriptedSource final : public IKorviaShowSource {
 public:
  explicit ScriptedSource(KorviaShowObjectID objectId, const tagKorviaShowSourceInfo& sourceInfo)
      : id(objectId), info(sourceInfo) {}

  bool isValid() override { return true; }
  bool release() override { return true; }
  void* queryInterface(const Identifier*, unsigned) override { return nullptr; }
  KorviaShowObjectID getObjectId() override { return id; }
  int* getSourceInfo() override { return &info.kind; }
  const tagKorviaFormatInfo* getFormat() override { return &format; }
  void getState(tagKorviaSourceLinkState& state) override {
    state.rate = rate;
    state.reason = reason;
    state.pictureDuration = pictureDuration;
  }
  void play() override { calls.append(QStringLiteral("play")); }
  void stop() override { calls.append(QStringLiteral("stop")); }
  void pause() override { calls.append(QStringLiteral("pause")); }
  void setHold(bool hold) override {
    calls.append(hold ? QStringLiteral("hold") : QStringLiteral("release"));
  }
  void prev() override { calls.append(QStringLiteral("prev")); }
  void next() override { calls.append(QStringLiteral("next")); }
  void getDuration(qint64& value) override { value = duration; }
  void getTime(qint64& value) override { value = time; }
  void getFrameCount(qint64& value) override { value = frameCount; }
  void getPosition(qint64& value) override { value = position; }
  void setPosition(qint64 value) override { calls.append(QStringLiteral("seek %1").arg(value)); }
  int getPlayState() override { return playState; }
  int getItemCount() override { return itemCount; }
  int getItemIndex() override { return itemIndex; }

  /// What was done to the source, in order.
  QStringList calls;
  KorviaShowObjectID id;
  tagKorviaShowSourceInfo info;
  tagKorviaFormatInfo format;
  float rate = 25.0F;
  QString reason;
  qint64 pictureDuration = 0;
  qint64 frameCount = 0;
  qint64 duration = 0;
  qint64 time = 0;
  qint64 position = 0;
  int playState = Playing;
  int itemCount = 1;
  int itemIndex = 0;
};

/// What the test keeps in its hands while the console owns the engine. Events are recorded on the engine
/// thread and may be read on any thread; the rest belongs to the console thread.
class ScriptedShow {
 public:
  struct Event {
    quint64 id;
    QVariant args[4];
  };

  /// Answered and never recorded: who waits for its result knows that all events before it were handled.
  static constexpr quint64 kMarker = 9999;

  /// Makes every engine from now on play this script; the destructor restores the real choice.
  ScriptedShow();
  ~ScriptedShow();
  ScriptedShow(const ScriptedShow&) = delete;
  ScriptedShow& operator=(const ScriptedShow&) = delete;

  std::vector<Event> events() const;
  std::vector<Event> eventsOf(quint64 id) const;
  int count(quint64 id) const { return static_cast<int>(eventsOf(id).size()); }
  void clearEvents();
  /// Ids of all events, in order.
  QList<quint64> eventIds() const;

  /// Reports a result to the console, as the engine thread would; delivered when the event loop runs.
  void report(quint64 eventId, const QVariant& a1 = {}, const QVariant& a2 = {});
  /// When set, the engine answers each event with what the function returns: (a1, a2), or nothing.
  void answer(quint64 eventId, std::function<std::pair<QVariant, QVariant>(const Event&)> reply);
  /// Answers of a healthy engine: 0, and 7 with its own arguments.
  void answerLikeAnEngine();

  /// The source of media channel `index`, null when none is open.
  ScriptedSource* source(int index) const;
  /// Opens a source behind the console's back.
  ScriptedSource* addSource(int index, const tagKorviaShowSourceInfo& info = {});
  void removeSource(int index);

  /// Synchronous calls that change the engine, by name.
  QStringList calls;
  tagKorviaShowAudioLevel levels;
  tagKorviaShowEngineFigures figures;
  tagKorviaOutputStatistics outputStatistics;
  IUnknownEx* lastHost = nullptr;
  QImage paintPadImage;
  int enginesAlive = 0;
  IKorviaShowEngineSink* engineSink() const;

 private:
  friend class ScriptedBackend;

  mutable std::mutex mutex_;
  std::vector<Event> events_;  // guarded by mutex_
  std::map<quint64, std::function<std::pair<QVariant, QVariant>(const Event&)>>
      replies_;                               // guarded by mutex_
  korvia::IShowBackendHost* host_ = nullptr;  // guarded by mutex_
  std::array<std::unique_ptr<ScriptedSource>, kMediaChannelMax> sources_;
};
