// Shows a web page, drawn without a display, with its sound. Ends when the page cannot be loaded or its
// process ends.
#pragma once
#include <gst/gst.h>

#include <atomic>

#include "Capture.h"
#include "PictureSender.h"
#include "SoundMix.h"
#include "ThreadSafety.h"
#include "link/CaptureRequest.h"

namespace korvia {

class PageCapture final : public Capture {
 public:
  PageCapture(const CaptureRequest& request, PictureSender& sender);

  QString run() override;
  void onInput(const CapturePacket& packet) override;

 private:
  bool build();
  bool addPictureSink();
  void applySize();
  void onResize(const ResizeMessage& size);
  /// Loads the address that was asked for last, once.
  void applyAddress() EXCLUDES(addressMutex_);
  void onLoad(const QByteArray& address) EXCLUDES(addressMutex_);
  void addSound(GstPad* pad);
  void onPicture(GstSample* sample);
  void onSound(const void* stream, GstSample* sample);
  /// Waits for the message that ends the capture.
  QString waitForEnd();
  std::int64_t stampOf(GstBuffer* buffer) const;

  const CaptureRequest request_;
  PictureSender& sender_;
  // Of the page, in pixels.
  std::atomic<std::int32_t> width_;
  std::atomic<std::int32_t> height_;
  Mutex addressMutex_;
  QByteArray address_ GUARDED_BY(addressMutex_);
  bool isAddressNew_ GUARDED_BY(addressMutex_) = true;
  SoundMix sound_;
  GstElement* pipeline_ = nullptr;
  GstElement* page_ = nullptr;
  GstElement* pictureFormat_ = nullptr;
  GstElement* pictureSink_ = nullptr;
  /// The operator's input can come before the page is there.
  std::atomic<bool> takesInput_{false};
};

}  // namespace korvia
