#include "VideoJudge.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>

namespace korvia::test {

namespace {

constexpr int kProcessMs = 60000;

QByteArray run(const QString& program, const QStringList& arguments, QByteArray* errors = nullptr) {
  QProcess process;
  process.start(program, arguments);
  if (!process.waitForFinished(kProcessMs))
    return {};
  if (errors)
    *errors = process.readAllStandardError();
  return process.readAllStandardOutput();
}

}  // namespace

VideoVerdict VideoJudge::judge(const QString& fileName) {
  const QByteArray json =
      run(QStringLiteral("ffprobe"),
          {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
           QStringLiteral("v:0"), QStringLiteral("-count_frames"), QStringLiteral("-show_streams"),
           QStringLiteral("-show_format"), QStringLiteral("-show_packets"), QStringLiteral("-of"),
           QStringLiteral("json"), fileName});
  const QJsonObject root = QJsonDocument::fromJson(json).object();
  VideoVerdict verdict;
  verdict.stream = root[QStringLiteral("streams")].toArray().at(0).toObject();
  verdict.frames = verdict.stream[QStringLiteral("nb_read_frames")].toString().toInt();
  verdict.durationSeconds =
      root[QStringLiteral("format")].toObject()[QStringLiteral("duration")].toString().toDouble();
  for (const QJsonValue value : root[QStringLiteral("packets")].toArray()) {
    const QJsonObject packet = value.toObject();
    if (packet[QStringLiteral("flags")].toString().startsWith('K'))
      verdict.keyFrames.append(verdict.pts.size());
    verdict.pts.append(packet[QStringLiteral("pts_time")].toString().toDouble());
  }
  return verdict;
}

QByteArray VideoJudge::decodeLuma(const QString& fileName, QByteArray* errors) {
  return run(
      QStringLiteral("ffmpeg"),
      {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), fileName,
       QStringLiteral("-vsync"), QStringLiteral("passthrough"), QStringLiteral("-f"),
       QStringLiteral("rawvideo"), QStringLiteral("-pix_fmt"), QStringLiteral("gray"), QStringLiteral("-")},
      errors);
}

}  // namespace korvia::test
