#include "PipelineInlet.h"

#include "engine/HappensBefore.h"

namespace korvia {

GstElement* PipelineInlet::create(const char* name, GstCaps* caps) {
  GstElement* source = pipeline_.add("appsrc", name);
  if (!source)
    return nullptr;
  source_ = GST_APP_SRC(source);
  g_object_set(source, "format", GST_FORMAT_TIME, "caps", caps, nullptr);
  OutputPipeline::addProbe(source, "src", onTaken, this);
  annotateHappensBefore(this);
  return source;
}

bool PipelineInlet::hasRoom() const {
  return pushed_ - taken_ < waitingBuffers_;
}

void PipelineInlet::push(GstBuffer* buffer) {
  ++pushed_;
  // The streaming thread reads the buffer, which the lock of the queue hands over.
  annotateHappensBefore(this);
  gst_app_src_push_buffer(source_, buffer);
}

void PipelineInlet::end() {
  gst_app_src_end_of_stream(source_);
}

GstPadProbeReturn PipelineInlet::onTaken(GstPad*, GstPadProbeInfo* info, gpointer self) {
  const HappensBeforeScope scope(self);
  auto* inlet = static_cast<PipelineInlet*>(self);
  inlet->taken_ += info->type & GST_PAD_PROBE_TYPE_BUFFER_LIST
                       ? gst_buffer_list_length(GST_PAD_PROBE_INFO_BUFFER_LIST(info))
                       : 1;
  inlet->pipeline_.wake();
  return GST_PAD_PROBE_OK;
}

}  // namespace korvia
