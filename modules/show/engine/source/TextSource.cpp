#include "TextSource.h"

#include <QFileInfo>
#include <algorithm>

#include "KorviaShowUtil.h"
#include "PictureFile.h"
#include "SourceThreads.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

constexpr int kMostSide = 8192;

/// The parameters with the text that is to be shown; false with a reason when its file cannot be read.
bool completeText(const tagKorviaShowSourceInfo& info, tagKorviaShowRenderTextParam& param, QString& reason) {
  param = info.textParam;
  const bool hasOwnText = !param.text.isEmpty() && param.text != tagKorviaShowRenderTextParam().text;
  return info.textPath.isEmpty() || hasOwnText ||
         KorviaShowUtil::readTextFile(info.textPath, param.text, reason);
}

QSize drawnSize(const tagKorviaFormatInfo& format, FrameSize renderSize) {
  const int width = format.video.secondWidth;
  const int height = format.video.secondHeight;
  if (width < 1 || height < 1)
    return {renderSize.width, renderSize.height};
  return {std::min(width, kMostSide), std::min(height, kMostSide)};
}

}  // namespace

std::shared_ptr<TextSource> TextSource::open(const SourceContext& context,
                                             const tagKorviaShowSourceInfo& info,
                                             const tagKorviaFormatInfo& format) {
  std::shared_ptr<TextSource> source(new TextSource(context, info, format, Opening));
  source->thread_ = startSourceThread(QStringLiteral("text"), [source] { source->draw(); });
  return source;
}

void TextSource::close() {
  PictureSource::close();
  markSourceThreadClosing(thread_);
}

void TextSource::draw() {
  tagKorviaShowRenderTextParam param;
  QString reason;
  MutableFrame frame(new Frame(context().renderSize, FrameAlpha::Plane));
  if (completeText(info(), param, reason)) {
    const QSize size = drawnSize(*getFormat(), context().renderSize);
    if (fitImage(KorviaShowUtil::toImage(size.width(), size.height(), param), *frame)) {
      showPicture(std::move(frame).publish());
      return;
    }
    reason = QStringLiteral("out of memory");
  }
  qCWarning(logSource, "text cannot be shown : %s : %s", qUtf8Printable(info().textPath),
            qUtf8Printable(reason));
  fail(reason);
}

QString TextSource::description() const {
  const QString name = QFileInfo(info().textPath).fileName();
  return name.isEmpty() ? QStringLiteral("text") : name;
}

}  // namespace korvia
