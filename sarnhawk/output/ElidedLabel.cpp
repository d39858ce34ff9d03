#include "output/ElidedLabel.h"

#include <QStylePainter>

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
}

void ElidedLabel::paintEvent(QPaintEvent*) {
  QStringList lines = text().split(QLatin1Char('\n'));
  for (QString& line : lines)
    line = fontMetrics().elidedText(line, Qt::ElideRight, width());
  QStylePainter painter(this);
  painter.drawItemText(rect(), Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(),
                       lines.join(QLatin1Char('\n')), foregroundRole());
}
