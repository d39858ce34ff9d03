#include "present/colorButton.h"

#include <QPushButton>

namespace {
constexpr int kDarkGray = 140;
}

QString colorText(const QColor& color) {
  return QString::asprintf("#%02X%02X%02X%02X", static_cast<unsigned>(color.red()),
                           static_cast<unsigned>(color.green()), static_cast<unsigned>(color.blue()),
                           static_cast<unsigned>(color.alpha()));
}

void showColor(QPushButton* button, const QColor& color) {
  // On a colour that shows through, the dark button behind it decides what is readable.
  const bool isDark = qGray(color.rgb()) * color.alpha() / 255 < kDarkGray;
  button->setText(colorText(color));
  button->setStyleSheet(QStringLiteral("QPushButton{background-color: rgba(%1, %2, %3, %4); color: %5;}")
                            .arg(color.red())
                            .arg(color.green())
                            .arg(color.blue())
                            .arg(color.alpha())
                            .arg(isDark ? QStringLiteral("#ffffff") : QStringLiteral("#000000")));
}
