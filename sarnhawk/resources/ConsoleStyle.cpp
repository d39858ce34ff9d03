#include "ConsoleStyle.h"

#include <QPainter>

namespace {

constexpr qreal kDisabledOpacity = 0.35;

}  // namespace

ConsoleStyle::ConsoleStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

QPixmap ConsoleStyle::generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                                          const QStyleOption* option) const {
  if (mode != QIcon::Disabled)
    return QProxyStyle::generatedIconPixmap(mode, pixmap, option);
  QPixmap faded(pixmap.size());
  faded.setDevicePixelRatio(pixmap.devicePixelRatio());
  faded.fill(Qt::transparent);
  QPainter painter(&faded);
  painter.setOpacity(kDisabledOpacity);
  painter.drawPixmap(0, 0, pixmap);
  return faded;
}
