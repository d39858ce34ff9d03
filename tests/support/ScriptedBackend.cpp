#include "support/ScriptedBackend.h"

#include "KorviaShowEvents.h"
#include "backend/ShowBackendFactory.h"

class ScriptedBackend final : public korvia::IShowBackend {
 public:
  explicit ScriptedBackend(ScriptedShow& show) : show_(show) { ++show_.enginesAlive; }
  ~ScriptedBackend() override {
    for (auto& source : show_.sources_)
      source.reset();
    --show_.enginesAlive;
  }

  void begin(korvia::IShowBackendHost& host) override {
    std::lock_guard lock(show_.mutex_);
    show_.host_ = &host;
  }
  void end() override {
    std::lock_guard lock(show_.mutex_);
    show_.host_ = nullptr;
  }
  void handleEvent(const korvia::ShowEvent& event) override {
    const ScriptedShow::Event recorded{event.id,
                                       {event.args[0], event.args[1], event.args[2], event.args[3]}};
    std::lock_guard lock(show_.mutex_);
    if (event.id == ScriptedShow::kMarker) {
      show_.host_->postResult(event.id, {}, {}, {}, {});
      return;
    }
    show_.events_.push_back(recorded);
    const auto reply = show_.replies_.find(event.id);
    if (reply == show_.replies_.end())
      return;
    const auto [a1, a2] = reply->second(recorded);
    show_.host_->postResult(event.id, a1, a2);
  }
  void frameStep(const korvia::FrameTick&) override {}

  IKorviaShowSource* openSource(KorviaShowObjectID id, const tagKorviaShowSourceInfo& info,
                                const tagKorviaFormatInfo& format, IUnknownEx* host) override {
    show_.calls.append(QStringLiteral("openSource %1").arg(id));
    show_.lastHost = host;
    const int index = indexOf(id);
    if (index < 0)
      return nullptr;
    show_.sources_[static_cast<std::size_t>(index)] = std::make_unique<ScriptedSource>(id, info);
    show_.sources_[static_cast<std::size_t>(index)]->format = format;
    return show_.source(index);
  }
  void closeSource(KorviaShowObjectID id) override {
    show_.calls.append(QStringLiteral("closeSource %1").arg(id));
    show_.removeSource(indexOf(id));
  }
  IKorviaShowSource* getSource(KorviaShowObjectID id) override { return show_.source(indexOf(id)); }
  void getSourceState(KorviaShowObjectID, tagKorviaSourceState&) override {}
  void getSourceState(tagKorviaShowSourceStatisticsItem*) override {
    show_.calls.append(QStringLiteral("getSourceState"));
  }
  void getOutputState(tagKorviaOutputStatistics* statistics) override {
    show_.calls.append(QStringLiteral("getOutputState"));
    *statistics = show_.outputStatistics;
  }
  void getAudioLevel(tagKorviaShowAudioLevel& levels) override { levels = show_.levels; }
  void getFigures(tagKorviaShowEngineFigures& figures) override { figures = show_.figures; }
  void commitGrabImage(const QImage&) override { show_.calls.append(QStringLiteral("commitGrabImage")); }
  void setGrabImageValid(bool valid) override { note("setGrabImageValid", valid); }
  void commitPaintPadImage(const QImage& image) override {
    show_.calls.append(QStringLiteral("commitPaintPadImage"));
    show_.paintPadImage = image;
  }
  void setPaintPadValid(bool valid) override { note("setPaintPadValid", valid); }
  void pausePGMImage(bool pause) override { note("pausePGMImage", pause); }
  void setIncomeServer(int port, const QString& publishSecret) override {
    show_.calls.append(QStringLiteral("setIncomeServer %1 %2").arg(port).arg(publishSecret));
  }
  void setPictureSink(IKorviaShowPictureSink*) override {}

 private:
  static int indexOf(int id) {
    if (id >= SourceObject && id < SourceObject + kMediaChannelMax)
      return id - SourceObject;
    if (id >= MediaChannel && id < MediaChannel + kMediaChannelMax)
      return id - MediaChannel;
    return -1;
  }
  void note(const char* name, bool flag) {
    show_.calls.append(QStringLiteral("%1 %2").arg(QLatin1String(name)).arg(flag ? 1 : 0));
  }

  ScriptedShow& show_;
};

ScriptedShow::ScriptedShow() {
  korvia::setShowBackendFactory([this] { return std::make_unique<ScriptedBackend>(*this); });
}

ScriptedShow::~ScriptedShow() {
  korvia::setShowBackendFactory({});
}

std::vector<ScriptedShow::Event> ScriptedShow::events() const {
  std::lock_guard lock(mutex_);
  return events_;
}

std::vector<ScriptedShow::Event> ScriptedShow::eventsOf(quint64 id) const {
  std::vector<Event> found;
  for (const Event& event : events()) {
    if (event.id == id)
      found.push_back(event);
  }
  return found;
}

QList<quint64> ScriptedShow::eventIds() const {
  QList<quint64> ids;
  for (const Event& event : events())
    ids.append(event.id);
  return ids;
}

void ScriptedShow::clearEvents() {
  std::lock_guard lock(mutex_);
  events_.clear();
}

void ScriptedShow::report(quint64 eventId, const QVariant& a1, const QVariant& a2) {
  std::lock_guard lock(mutex_);
  if (host_)
    host_->postResult(eventId, a1, a2);
}

void ScriptedShow::answer(quint64 eventId, std::function<std::pair<QVariant, QVariant>(const Event&)> reply) {
  std::lock_guard lock(mutex_);
  replies_[eventId] = std::move(reply);
}

void ScriptedShow::answerLikeAnEngine() {
  answer(ShowEventOpen, [](const Event&) { return std::pair<QVariant, QVariant>(); });
  answer(ShowEventSelectChannel, [](const Event& event) {
    return std::pair<QVariant, QVariant>(event.args[0].toULongLong(), event.args[1]);
  });
}

ScriptedSource* ScriptedShow::source(int index) const {
  return index >= 0 && index < kMediaChannelMax ? sources_[static_cast<std::size_t>(index)].get() : nullptr;
}

ScriptedSource* ScriptedShow::addSource(int index, const tagKorviaShowSourceInfo& info) {
  sources_[static_cast<std::size_t>(index)] =
      std::make_unique<ScriptedSource>(static_cast<KorviaShowObjectID>(SourceObject + index), info);
  return source(index);
}

void ScriptedShow::removeSource(int index) {
  if (source(index))
    sources_[static_cast<std::size_t>(index)].reset();
}

IKorviaShowEngineSink* ScriptedShow::engineSink() const {
  std::lock_guard lock(mutex_);
  return host_ ? host_->engineSink() : nullptr;
}
