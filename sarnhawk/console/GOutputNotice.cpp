#include "console/GOutputNotice.h"

#include <QEvent>
#include <QGroupBox>
#include <algorithm>

namespace {

constexpr int kHeight = 18;
// Between the title of the box and the notice, and between the text of the notice and its edges.
constexpr int kTitleGap = 18;
constexpr int kPadding = 8;

}  // namespace

GOutputNotice::GOutputNotice(QGroupBox* box) : QPushButton(box), _box(box) {
  setObjectName(QStringLiteral("_outputNoticePushButton"));
  setFocusPolicy(Qt::NoFocus);
  hide();
  box->installEventFilter(this);
}

void GOutputNotice::present(const QString& line, const QString& details) {
  _line = line;
  setToolTip(details);
  // The line is measured in the font of the style sheet.
  ensurePolished();
  place();
  show();
  raise();
}

bool GOutputNotice::eventFilter(QObject* box, QEvent* event) {
  if (event->type() == QEvent::Resize)
    place();
  return QPushButton::eventFilter(box, event);
}

void GOutputNotice::place() {
  const int room = _box->width() - _box->fontMetrics().horizontalAdvance(_box->title()) - kTitleGap;
  const int width = std::clamp(fontMetrics().horizontalAdvance(_line) + 2 * kPadding, 0, std::max(room, 0));
  setGeometry(_box->width() - width, 0, width, kHeight);
  setText(fontMetrics().elidedText(_line, Qt::ElideRight, width - 2 * kPadding + 1));
}
