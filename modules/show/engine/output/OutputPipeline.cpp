#include "OutputPipeline.h"

#include <utility>

#include "engine/HappensBefore.h"
#include "engine/ThreadPriority.h"
#include "engine/source/GstInit.h"

namespace korvia {

OutputPipeline::OutputPipeline(std::function<void()> wake) : wake_(std::move(wake)) {}

OutputPipeline::~OutputPipeline() {
  stop();
}

bool OutputPipeline::create(const char* name) {
  if (!startGStreamer()) {
    setFailure(QStringLiteral("gstreamer does not start"));
    return false;
  }
  pipeline_ = gst_pipeline_new(name);
  GstBus* bus = gst_element_get_bus(pipeline_);
  gst_bus_set_sync_handler(bus, onMessage, this, nullptr);
  gst_object_unref(bus);
  return true;
}

GstElement* OutputPipeline::add(const char* factory, const char* name) {
  GstElement* element = gst_element_factory_make(factory, name);
  if (element)
    gst_bin_add(GST_BIN(pipeline_), element);
  else
    setFailure(QStringLiteral("the element %1 is not installed").arg(QLatin1String(factory)));
  return element;
}

void OutputPipeline::adopt(GstElement* element) {
  gst_bin_add(GST_BIN(pipeline_), element);
  gst_object_unref(element);
}

bool OutputPipeline::play() {
  annotateHappensBefore(this);
  if (gst_element_set_state(pipeline_, GST_STATE_PLAYING) != GST_STATE_CHANGE_FAILURE)
    return true;
  setFailure(QStringLiteral("the pipeline does not start"));
  return false;
}

void OutputPipeline::stop() {
  if (!pipeline_)
    return;
  gst_element_set_state(pipeline_, GST_STATE_NULL);
  GstBus* bus = gst_element_get_bus(pipeline_);
  gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
  gst_object_unref(bus);
  gst_object_unref(pipeline_);
  pipeline_ = nullptr;
  annotateHappensAfter(this);
}

void OutputPipeline::setFailure(const QString& text) {
  MutexLock lock(mutex_);
  if (failure_.isEmpty())
    failure_ = text;
  failed_ = true;
}

QString OutputPipeline::failure() const {
  MutexLock lock(mutex_);
  return failure_;
}

void OutputPipeline::addProbe(GstElement* element, const char* padName, GstPadProbeCallback callback,
                              gpointer self) {
  GstPad* pad = gst_element_get_static_pad(element, padName);
  const auto type = static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_BUFFER_LIST);
  gst_pad_add_probe(pad, type, callback, self, nullptr);
  gst_object_unref(pad);
}

GstBusSyncReply OutputPipeline::onMessage(GstBus*, GstMessage* message, gpointer self) {
  const HappensBeforeScope scope(self);
  batchStreamingThread(message, kOutputNice);
  auto* pipeline = static_cast<OutputPipeline*>(self);
  if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS) {
    pipeline->ended_ = true;
    pipeline->wake();
  } else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
    GError* error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    if (error->domain == GST_RESOURCE_ERROR && !pipeline->failed_)
      pipeline->resourceError_ = error->code;
    pipeline->setFailure(QString::fromUtf8(error->message));
    g_error_free(error);
    pipeline->wake();
  }
  // Nothing reads the bus.
  gst_message_unref(message);
  return GST_BUS_DROP;
}

}  // namespace korvia
