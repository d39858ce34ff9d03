// Reads a recording back from the disk while it is being written, with a demuxer of its own: whether the
// container is whole, how far its pictures go, and whether its newest key frame can be decoded. One thread at
// a time, which may wait for the disk.
#pragma once
#include <gst/app/gstappsink.h>

#include <QFile>
#include <QString>
#include <memory>

#include "OutputPipeline.h"
#include "RecordContainer.h"

namespace korvia {

class ReadBack {
 public:
  /// The container has a demuxer.
  ReadBack(QString fileName, const RecordContainer& container);
  ~ReadBack();
  ReadBack(const ReadBack&) = delete;
  ReadBack& operator=(const ReadBack&) = delete;

  /// Reads what was appended since the last call, and decodes the newest key frame in it. False when
  /// something is wrong, with the reason in failure(); it is not called again then.
  bool readOn();
  QString failure() const { return failure_; }
  /// From the first picture to the end of the last one that was read; 0 before the first.
  qint64 lengthNs() const { return firstNs_ < 0 ? 0 : endNs_ - firstNs_; }

 private:
  using SampleRef = std::shared_ptr<GstSample>;

  enum class Order {
    AsWritten,
    Fragments,  ///< the data of a fragment stand before their index
  };

  bool open();
  bool read();
  bool readChunks(QFile& file);
  bool readFragments(QFile& file);
  bool push(const QByteArray& bytes);
  bool fail(const QString& reason);
  void note(SampleRef sample);
  static void onPadAdded(GstElement* demuxer, GstPad* pad, gpointer self);
  static GstFlowReturn onSample(GstAppSink* sink, gpointer self);

  const QString fileName_;
  const char* const demuxer_;
  const Order order_;
  QString failure_;
  qint64 bytesRead_ = 0;
  qint64 bytesAtPicture_ = 0;  // read when the newest picture came
  SampleRef keyFrame_;         // the newest since the last call
  qint64 firstNs_ = -1;
  qint64 endNs_ = 0;
  int sinceKey_ = 0;  // pictures since the newest key frame

  OutputPipeline pipeline_;
  GstPad* outlet_ = nullptr;      // into the demuxer; all behind it runs in the push
  GstElement* parser_ = nullptr;  // owned by pipeline_
};

}  // namespace korvia
