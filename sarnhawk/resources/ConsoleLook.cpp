#include "ConsoleLook.h"

#include <QApplication>
#include <QFile>
#include <QLoggingCategory>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>

Q_LOGGING_CATEGORY(lcLook, "sarnhawk.look")

// Q_INIT_RESOURCE declares a function of the global namespace, so it cannot stand in a nested scope.
void initSarnhawkResources() {
  Q_INIT_RESOURCE(sarnhawk_resources);
}

namespace {

constexpr qreal kDisabledOpacity = 0.35;

/// Base style of the whole console, below its style sheet.
class ConsoleStyle final : public QProxyStyle {
 public:
  ConsoleStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

  /// Fades disabled icons, because on the dark desk the grey of the base style looks like an enabled icon.
  QPixmap generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                              const QStyleOption* option) const override {
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
};

struct RoleColour {
  QPalette::ColorRole role;
  QRgb normal;
  QRgb disabled;
};

constexpr RoleColour kRoleColours[] = {
    {QPalette::Window, 0xff14171c, 0xff14171c},      {QPalette::WindowText, 0xffd7dce3, 0xff5b6471},
    {QPalette::Base, 0xff161a20, 0xff161a20},        {QPalette::AlternateBase, 0xff1b1f26, 0xff1b1f26},
    {QPalette::Text, 0xffd7dce3, 0xff5b6471},        {QPalette::PlaceholderText, 0xff6f7985, 0xff5b6471},
    {QPalette::Button, 0xff242a33, 0xff1e232b},      {QPalette::ButtonText, 0xffd7dce3, 0xff5b6471},
    {QPalette::BrightText, 0xffffffff, 0xff8b95a3},  {QPalette::Light, 0xff3a4350, 0xff2b323c},
    {QPalette::Midlight, 0xff303843, 0xff262c35},    {QPalette::Mid, 0xff1b1f26, 0xff1b1f26},
    {QPalette::Dark, 0xff0f1216, 0xff0f1216},        {QPalette::Shadow, 0xff000000, 0xff000000},
    {QPalette::Highlight, 0xff2f5fb3, 0xff2b323c},   {QPalette::HighlightedText, 0xffffffff, 0xff8b95a3},
    {QPalette::Link, 0xff4c8dff, 0xff5b6471},        {QPalette::LinkVisited, 0xff8aa9e6, 0xff5b6471},
    {QPalette::ToolTipBase, 0xff2b323c, 0xff2b323c}, {QPalette::ToolTipText, 0xffd7dce3, 0xffd7dce3},
};

QPalette consolePalette() {
  QPalette palette;
  for (const RoleColour& entry : kRoleColours) {
    palette.setColor(QPalette::Active, entry.role, QColor::fromRgb(entry.normal));
    palette.setColor(QPalette::Inactive, entry.role, QColor::fromRgb(entry.normal));
    palette.setColor(QPalette::Disabled, entry.role, QColor::fromRgb(entry.disabled));
  }
  return palette;
}

}  // namespace

void applyConsoleLook(QApplication& application) {
  initSarnhawkResources();
  application.setStyle(new ConsoleStyle);
  application.setPalette(consolePalette());

  QFile sheet(QStringLiteral(":/KorviaSarnhawk/Resources/style/console.qss"));
  if (!sheet.open(QIODevice::ReadOnly)) {
    qCWarning(lcLook, "failed to open style sheet");
    return;
  }
  application.setStyleSheet(QString::fromUtf8(sheet.readAll()));
}
