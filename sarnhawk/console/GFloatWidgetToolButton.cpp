#include "console/GFloatWidgetToolButton.h"

#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int kWindowSize = 40;
constexpr int kIconSize = 32;

}  // namespace

GFloatWidgetToolButton::GFloatWidgetToolButton(QWidget* owner)
    : QWidget(owner, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus) {
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_QuitOnClose, false);
  setFixedSize(kWindowSize, kWindowSize);
  _button = new QToolButton(this);
  _button->setObjectName(QStringLiteral("_floatToolButton"));
  _button->setIcon(QIcon(QStringLiteral(":/KorviaSarnhawk/Resources/icons/openSource.png")));
  _button->setIconSize(QSize(kIconSize, kIconSize));
  _button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(_button);
}

void GFloatWidgetToolButton::showInFull() {
  // Window managers minimise it with its owner. If it were shown minimised, it would minimise its owner
  // again.
  if (!isVisible() || isMinimized())
    showNormal();
}
