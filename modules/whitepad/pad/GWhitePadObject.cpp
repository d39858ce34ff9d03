#include "GWhitePadObject.h"

#include <QLoggingCategory>
#include <QSize>

#include "IGWhitePadSink.h"

namespace {
Q_LOGGING_CATEGORY(lcPad, "korvia.whitepad", QtInfoMsg)
constexpr int kMaxSide = 8192;
}  // namespace

GWhitePadObject::GWhitePadObject() = default;

GWhitePadObject::~GWhitePadObject() {
  destory();
}

bool GWhitePadObject::create(IGWhitePadSink* sink, const QString& title, int channelCount,
                             QWidget* /*parent*/, int undoDepth) {
  if (_sink || !sink || channelCount < 1 || undoDepth < 1)
    return false;
  _sink = sink;
  _title = title;
  return true;
}

bool GWhitePadObject::start(const QSize& size) {
  if (!_sink || size.isEmpty() || size.width() > kMaxSide || size.height() > kMaxSide)
    return false;
  _started = true;
  return true;
}

void GWhitePadObject::setVisible(bool visible, bool /*keepDrawing*/) {
  if (!_started || !visible)
    return;
  qCInfo(lcPad, "paint pad \"%s\" has no drawing surface yet", qUtf8Printable(_title));
  // The operator's button springs back by this.
  _sink->onSetWhitePadValid(false);
}

// Without a drawing surface no picture is ever lent, so that the engine thread meets no state here.
QImage GWhitePadObject::lockBackground() {
  return {};
}

void GWhitePadObject::unlockBackground(const QImage& /*image*/) {}

void GWhitePadObject::updateBackground() {}

void GWhitePadObject::destory() {
  _sink = nullptr;
  _started = false;
}
