#include "MuxWriter.h"

#include <gst/gst.h>

#include <utility>

#include "tagKorviaShowOutputParam.h"

namespace korvia {

namespace {

/// Texts of GStreamer have addresses and keys in them, so the operator gets these.
struct FailureText {
  int error;  ///< a GstResourceError
  const char* text;
};

constexpr FailureText kFailureTexts[] = {
    {GST_RESOURCE_ERROR_NOT_FOUND, "the server cannot be reached"},
    {GST_RESOURCE_ERROR_OPEN_READ, "the server cannot be reached"},
    {GST_RESOURCE_ERROR_OPEN_WRITE, "the server cannot be reached"},
    {GST_RESOURCE_ERROR_OPEN_READ_WRITE, "the server cannot be reached"},
    {GST_RESOURCE_ERROR_NOT_AUTHORIZED, "the server refuses the user or the key"},
    {GST_RESOURCE_ERROR_BUSY, "the server says that the stream is in use"},
    {GST_RESOURCE_ERROR_WRITE, "the connection broke off"},
    {GST_RESOURCE_ERROR_SETTINGS, "the network settings do not fit"},
};

}  // namespace

const RecordContainer& MuxPlan::flv() {
  static const RecordContainer container{EncapsulationFlv,         "flv", "flvmux", 0, false,
                                         {{"streamable", "true"}}, {}};
  return container;
}

const RecordContainer& MuxPlan::ts() {
  // Seven packets fill a datagram.
  static const RecordContainer container{EncapsulationTs,      "ts", "mpegtsmux", -1, false,
                                         {{"alignment", "7"}}, {}};
  return container;
}

const RecordContainer& MuxPlan::tsFrames() {
  static const RecordContainer container{EncapsulationTs,      "ts", "mpegtsmux", -1, false,
                                         {{"alignment", "0"}}, {}};
  return container;
}

void MuxPlan::setText(const char* property, const QByteArray& text) {
  texts.append(text);
  sink.properties.push_back({property, texts.last().constData()});
}

bool MuxWriter::open(Wake wake) {
  wake_ = std::move(wake);
  return plan_.problem.isEmpty();
}

void MuxWriter::write(const Packet& packet) {
  if (!mux_) {
    if (!plan_.obstacle.isEmpty())
      return;
    mux_ = std::make_unique<MuxPipeline>(wake_);
    if (!mux_->open(*packet.tracks, plan_.container, plan_.sink))
      return;
  }
  if (!mux_->hasFailed())
    mux_->feed(packet);
}

TargetWriter::Progress MuxWriter::progress() const {
  if (!mux_)
    return plan_.obstacle.isEmpty() ? Progress::Open : Progress::Failed;
  if (mux_->hasFailed())
    return Progress::Failed;
  return mux_->isEnded() ? Progress::Ended : Progress::Open;
}

bool MuxWriter::mayGoOn() {
  if (plan_.check)
    trouble_ = plan_.check();
  return trouble_.isEmpty();
}

QString MuxWriter::failure() const {
  if (!trouble_.isEmpty())
    return trouble_;
  if (!mux_)
    return plan_.problem.isEmpty() ? plan_.obstacle : plan_.problem;
  for (const FailureText& entry : kFailureTexts) {
    if (entry.error == mux_->resourceError())
      return QString::fromLatin1(entry.text);
  }
  // What is left is about the parts of the pipeline, as an element that is not installed.
  return mux_->resourceError() == 0 ? mux_->failure() : QStringLiteral("the stream cannot be sent");
}

void MuxWriter::close(const TargetOutcome&) {
  bytesTaken_ = bytesWritten();
  mux_.reset();
}

}  // namespace korvia
