#include "QColEdit.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QScreen>
#include <QSettings>
#include <QSignalBlocker>
#include <algorithm>

#include "ui_QColEdit.h"

namespace {

const QString kOrganisation = QStringLiteral("KorviaMix");
const QString kRecentKey = QStringLiteral("Kvmix_recentColors");
constexpr int kRecentMax = 14;
constexpr int kSquare = 6;

/// "#RRGGBBAA".
QString textOf(const QColor& color) {
  return QString::asprintf("#%02X%02X%02X%02X", static_cast<unsigned>(color.red()),
                           static_cast<unsigned>(color.green()), static_cast<unsigned>(color.blue()),
                           static_cast<unsigned>(color.alpha()));
}

/// Reads "#RRGGBB" and "#RRGGBBAA", with or without the hash; an invalid colour for any other text.
QColor colorOf(const QString& text) {
  static const QRegularExpression pattern(QStringLiteral("^#?([0-9a-fA-F]{6})([0-9a-fA-F]{2})?$"));
  const QRegularExpressionMatch match = pattern.match(text.trimmed());
  if (!match.hasMatch())
    return {};
  QColor color(QRgb{match.captured(1).toUInt(nullptr, 16)});
  if (!match.captured(2).isEmpty())
    color.setAlpha(match.captured(2).toInt(nullptr, 16));
  return color;
}

/// The colour over squares, which show through where it is not opaque.
QPixmap swatch(const QColor& color, const QSize& size) {
  QPixmap pixmap(size);
  pixmap.fill(Qt::white);
  QPainter painter(&pixmap);
  for (int y = 0; y < size.height(); y += kSquare) {
    for (int x = (y / kSquare % 2) * kSquare; x < size.width(); x += 2 * kSquare)
      painter.fillRect(x, y, kSquare, kSquare, Qt::lightGray);
  }
  painter.fillRect(pixmap.rect(), color);
  return pixmap;
}

}  // namespace

QColEdit::QColEdit(QWidget* parent, Qt::WindowFlags flags)
    : QDialog(parent, flags), _ui(std::make_unique<Ui::QColEdit>()) {
  _ui->setupUi(this);
  connect(_ui->_hueSaturationField, &HueSaturationField::chosen, this, [this](int hue, int saturation) {
    change(QColor::fromHsv(hue, saturation, _ui->_valueSlider->value(), _color.alpha()));
  });
  connect(_ui->_valueSlider, &QSlider::valueChanged, this, [this](int value) {
    const HueSaturationField* field = _ui->_hueSaturationField;
    change(QColor::fromHsv(field->hue(), field->saturation(), value, _color.alpha()));
  });
  for (QSpinBox* box : {_ui->_redSpinBox, _ui->_greenSpinBox, _ui->_blueSpinBox, _ui->_alphaSpinBox}) {
    connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this, [this] {
      change(QColor(_ui->_redSpinBox->value(), _ui->_greenSpinBox->value(), _ui->_blueSpinBox->value(),
                    _ui->_alphaSpinBox->value()));
    });
  }
  connect(_ui->_hexLineEdit, &QLineEdit::textEdited, this, [this](const QString& text) {
    const QColor color = colorOf(text);
    if (color.isValid())
      change(color);
  });
  connect(_ui->_recentListWidget, &QListWidget::itemPressed, this,
          [this](const QListWidgetItem* item) { change(colorOf(item->data(Qt::UserRole).toString())); });
  connect(_ui->_dropperPushButton, &QPushButton::clicked, this, &QColEdit::startDropper);
  connect(_ui->_okPushButton, &QPushButton::clicked, this, &QColEdit::accept);
  connect(_ui->_cancelPushButton, &QPushButton::clicked, this, &QColEdit::reject);
  loadRecent();
  showColor(_color);
}

QColEdit::~QColEdit() {
  stopDropper();
}

void QColEdit::setColor(const QColor& color) {
  if (!color.isValid())
    return;
  _color = color.toRgb();
  showColor(_color);
}

void QColEdit::accept() {
  saveRecent();
  QDialog::accept();
}

void QColEdit::change(const QColor& color) {
  if (!color.isValid())
    return;
  _color = color.toRgb();
  showColor(color);
  emit colorChanged(_color);
}

void QColEdit::showColor(const QColor& color) {
  const QSignalBlocker blockers[] = {QSignalBlocker(_ui->_valueSlider), QSignalBlocker(_ui->_redSpinBox),
                                     QSignalBlocker(_ui->_greenSpinBox), QSignalBlocker(_ui->_blueSpinBox),
                                     QSignalBlocker(_ui->_alphaSpinBox)};
  HueSaturationField* field = _ui->_hueSaturationField;
  // Grey has no hue and black no saturation: the mark stays where it was.
  const int hue = color.hsvHue() < 0 ? field->hue() : color.hsvHue();
  const int saturation = color.value() == 0 ? field->saturation() : color.hsvSaturation();
  field->setChoice(hue, saturation);
  _ui->_valueSlider->setValue(color.value());
  _ui->_redSpinBox->setValue(_color.red());
  _ui->_greenSpinBox->setValue(_color.green());
  _ui->_blueSpinBox->setValue(_color.blue());
  _ui->_alphaSpinBox->setValue(_color.alpha());
  // The text under the operator's fingers stays as it is typed.
  if (colorOf(_ui->_hexLineEdit->text()) != _color)
    _ui->_hexLineEdit->setText(textOf(_color));
  _ui->_swatchLabel->setPixmap(swatch(_color, _ui->_swatchLabel->minimumSize()));
}

void QColEdit::loadRecent() {
  const QStringList recent = QSettings(kOrganisation).value(kRecentKey).toStringList();
  for (const QString& text : recent) {
    const QColor color = colorOf(text);
    if (!color.isValid())
      continue;
    auto* item = new QListWidgetItem(QIcon(swatch(color, _ui->_recentListWidget->iconSize())), QString(),
                                     _ui->_recentListWidget);
    item->setData(Qt::UserRole, text);
    item->setToolTip(text);
  }
}

void QColEdit::saveRecent() const {
  QSettings settings(kOrganisation);
  QStringList recent = settings.value(kRecentKey).toStringList();
  recent.removeAll(textOf(_color));
  recent.prepend(textOf(_color));
  settings.setValue(kRecentKey, QStringList(recent.mid(0, kRecentMax)));
}

void QColEdit::startDropper() {
  _isDropping = true;
  _ui->_dropperPushButton->setChecked(true);
  // The grab brings a click on any window of the screen here.
  _ui->_swatchLabel->installEventFilter(this);
  _ui->_swatchLabel->grabMouse(Qt::CrossCursor);
  setFocus();
}

void QColEdit::stopDropper() {
  if (!_isDropping)
    return;
  _isDropping = false;
  _ui->_dropperPushButton->setChecked(false);
  _ui->_swatchLabel->removeEventFilter(this);
  _ui->_swatchLabel->releaseMouse();
}

bool QColEdit::eventFilter(QObject* watched, QEvent* event) {
  if (!_isDropping || watched != _ui->_swatchLabel || event->type() != QEvent::MouseButtonPress)
    return QDialog::eventFilter(watched, event);
  const QPoint place = static_cast<QMouseEvent*>(event)->globalPos();
  stopDropper();
  if (QScreen* screen = QGuiApplication::screenAt(place)) {
    const QPoint local = place - screen->geometry().topLeft();
    const QImage pixel = screen->grabWindow(0, local.x(), local.y(), 1, 1).toImage();
    if (!pixel.isNull()) {
      QColor color = pixel.pixelColor(0, 0);
      color.setAlpha(_color.alpha());
      change(color);
    }
  }
  return true;
}

void QColEdit::keyPressEvent(QKeyEvent* event) {
  if (_isDropping && event->key() == Qt::Key_Escape)
    return stopDropper();
  QDialog::keyPressEvent(event);
}
