// Writes a demo film: H.264 and AAC in an MP4 whose index comes first. The same input gives the same file,
// byte by byte. Used on one thread; GStreamer encodes on threads of its own.
#pragma once

#include <gst/gst.h>

#include <QImage>
#include <QString>
#include <vector>

namespace korvia {

class ClipWriter {
 public:
  ClipWriter() = default;
  ~ClipWriter();
  ClipWriter(const ClipWriter&) = delete;
  ClipWriter& operator=(const ClipWriter&) = delete;

  // Sets up the encoders for a file at `path`. False, with the reason in the log, if one is missing or
  // the file cannot be made.
  bool open(const QString& path);

  // Delay of the encoder in samples. To be in sync with the pictures, the sound has to be passed from this
  // sample on.
  static int soundDelaySamples();

  // All sound of the film, interleaved stereo. To be called once, before the pictures.
  bool writeSound(const std::vector<float>& samples);

  // The next picture, Format_RGB32. Waits while the encoder is busy.
  bool writePicture(const QImage& picture);

  // Ends the streams and waits for the file. False if anything failed since open().
  bool close();

 private:
  bool waitForEnd();
  void tearDown();

  QString path_;
  GstElement* pipeline_ = nullptr;
  GstElement* pictures_ = nullptr;
  GstElement* sound_ = nullptr;
  int written_ = 0;
};

}  // namespace korvia
