// What ffprobe and ffmpeg say of a video file: a judge that shares no code with what wrote it.
#pragma once
#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QVector>

namespace korvia::test {

struct VideoVerdict {
  QJsonObject stream;          ///< ffprobe's first video stream
  int frames = 0;              ///< decoded
  double durationSeconds = 0;  ///< of the file
  QVector<double> pts;         ///< seconds, in the order of the packets
  QVector<int> keyFrames;      ///< places of the key frames in that order
};

class VideoJudge {
 public:
  static VideoVerdict judge(const QString& fileName);
  /// The luma of all frames, one behind the other, as ffmpeg decodes them; `errors` gets its complaints.
  static QByteArray decodeLuma(const QString& fileName, QByteArray* errors = nullptr);
};

}  // namespace korvia::test
