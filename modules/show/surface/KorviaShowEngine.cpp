#include "KorviaShowEngine.h"

#include "KorviaMetaType.h"
#include "backend/ShowBackendFactory.h"
#include "trace/BlackBox.h"
#include "trace/TracedSource.h"

using korvia::BlackBox;

class KorviaShowEngine::Host final : public korvia::IShowBackendHost {
 public:
  explicit Host(KorviaShowEngine& engine) : engine_(engine) {}

  void postResult(quint64 eventId, const QVariant& a1, const QVariant& a2, const QVariant& a3,
                  const QVariant& a4) override {
    engine_.KorviaShowThread::postResult(eventId, 0, a1, a2, a3, a4);
  }
  void setFrameRate(korvia::FrameRate rate) override { engine_.KorviaShowThread::setFrameRate(rate); }
  IKorviaShowEngineSink* engineSink() override {
    IKorviaShowThreadSink* sink = engine_.threadSink();
    if (!sink)
      return nullptr;
    return static_cast<IKorviaShowEngineSink*>(
        sink->queryInterface(&kIKorviaShowEngineSinkId, kInterfaceVersion));
  }

 private:
  KorviaShowEngine& engine_;
};

KorviaShowEngine::KorviaShowEngine()
    : host_(std::make_unique<Host>(*this)), backend_(korvia::createShowBackend()) {}

KorviaShowEngine::~KorviaShowEngine() {
  KorviaShowEngine::stop();
}

void KorviaShowEngine::start(IKorviaShowThreadSink* sink, KorviaShowThreadMode mode) {
  KorviaShowThread::start(sink, mode);
}

void KorviaShowEngine::stop() {
  KorviaShowThread::stop();
  BlackBox::instance().flush();
}

void KorviaShowEngine::onThreadBegin() {
  backend_->begin(*host_);
}
void KorviaShowEngine::onThreadEnd() {
  backend_->end();
}
void KorviaShowEngine::onThreadEvent(const korvia::ShowEvent& event) {
  backend_->handleEvent(event);
}
void KorviaShowEngine::doFrameStep(const korvia::FrameTick& tick) {
  backend_->frameStep(tick);
}

IKorviaShowSource* KorviaShowEngine::openSource(KorviaShowObjectID id, tagKorviaShowSourceInfo& info,
                                                tagKorviaFormatInfo& format, IUnknownEx* host) {
  BlackBox::instance().call("openSource", id, {toVariant(info), toVariant(format)});
  return traced(id, backend_->openSource(id, info, format, host));
}

void KorviaShowEngine::closeSource(KorviaShowObjectID id) {
  BlackBox::instance().call("closeSource", id);
  backend_->closeSource(id);
}

IKorviaShowSource* KorviaShowEngine::getSource(KorviaShowObjectID id) {
  return traced(id, backend_->getSource(id));
}

korvia::TracedSource* KorviaShowEngine::traced(KorviaShowObjectID id, IKorviaShowSource* source) {
  if (!source)
    return nullptr;
  const int index = korvia::sourceIndexOf(id);
  if (!tracedSources_[index])
    tracedSources_[index] = std::make_unique<korvia::TracedSource>();
  tracedSources_[index]->setTarget(source);
  return tracedSources_[index].get();
}

void KorviaShowEngine::getSourceState(KorviaShowObjectID id, tagKorviaSourceState& state) {
  backend_->getSourceState(id, state);
}

void KorviaShowEngine::getSourceState(tagKorviaShowSourceStatisticsItem* items) {
  backend_->getSourceState(items);
}

void KorviaShowEngine::getOutputState(tagKorviaOutputStatistics* statistics) {
  backend_->getOutputState(statistics);
}

tagKorviaShowAudioLevel& KorviaShowEngine::getAudioLevel() {
  backend_->getAudioLevel(levels_);
  return levels_;
}

void KorviaShowEngine::getFigures(tagKorviaShowEngineFigures& figures) {
  backend_->getFigures(figures);
}

void KorviaShowEngine::commitGrabImage(const QImage& image) {
  BlackBox::instance().call("commitGrabImage", 0, {image});
  backend_->commitGrabImage(image);
}

void KorviaShowEngine::setGrabImageValid(bool valid) {
  BlackBox::instance().call("setGrabImageValid", 0, {valid});
  backend_->setGrabImageValid(valid);
}

void KorviaShowEngine::commitPaintPadImage(const QImage& image) {
  BlackBox::instance().call("commitPaintPadImage", 0, {image});
  backend_->commitPaintPadImage(image);
}

void KorviaShowEngine::setPaintPadValid(bool valid) {
  BlackBox::instance().call("setPaintPadValid", 0, {valid});
  backend_->setPaintPadValid(valid);
}

void KorviaShowEngine::pausePGMImage(bool pause) {
  BlackBox::instance().call("pausePGMImage", PGMObject, {pause});
  backend_->pausePGMImage(pause);
}

void KorviaShowEngine::setIncomeServer(int port, const QString& publishSecret) {
  BlackBox::instance().call("setIncomeServer", 0, {port});
  backend_->setIncomeServer(port, publishSecret);
}

void KorviaShowEngine::setPictureSink(IKorviaShowPictureSink* sink) {
  backend_->setPictureSink(sink);
}
