#include "present/GWidgetTextStyle.h"

#include <QFileInfo>
#include <QSignalBlocker>

#include "KorviaCommonUtil.h"
#include "KorviaShowUtil.h"
#include "QColEdit.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "present/GListWidgetItem.h"
#include "present/IGWidgetTextStyleSink.h"
#include "present/ItemCatalogue.h"
#include "present/buildThumbList.h"
#include "present/colorButton.h"
#include "tagGSystemTTFFontInfo.h"
#include "ui_GWidgetTextStyle.h"

namespace {

constexpr QSize kTileSize(64, 64);
constexpr int kFontSizeStep = 5;
constexpr int kFontSizeMin = 5;
constexpr int kFontSizeMax = 120;
// The list ends before the greatest size that the buttons reach.
constexpr int kListedSizeMin = 10;
constexpr int kListedSizeMax = 85;

/// Without its folder and extension. Paths of records have back-slashes.
QString baseNameOf(QString path) {
  return QFileInfo(path.replace(QLatin1Char('\\'), QLatin1Char('/'))).completeBaseName();
}

}  // namespace

GWidgetTextStyle::GWidgetTextStyle(IKorviaSarnhawkPriv* priv, IGWidgetTextStyleSink* sink, QWidget* parent)
    : QWidget(parent), _ui(std::make_unique<Ui::GWidgetTextStyle>()), _priv(priv), _sink(sink) {
  _ui->setupUi(this);
  _textureFolder = _priv->getConfig()->engineInfo.showDataPath + QStringLiteral("\\Common\\TextTexture\\");
  if (!parent) {
    _ui->_fontNameWidget->hide();
    _ui->_fontSizeWidget->hide();
    setWindowFlags(Qt::Popup);
  }
  fillLists();
  _ui->_fontStyleTabWidget->setCurrentIndex(0);
  connectControls();
}

GWidgetTextStyle::~GWidgetTextStyle() {
  delete _colorEditor;
}

void GWidgetTextStyle::fillLists() {
  _presetTiles = buildThumbList(this, _ui->_fontStylePresetTypeListWidget, ItemCatalogue().textPresets(),
                                kTileSize, true);
  _ui->_fontNameComboBox->addItems(_priv->getSystemFontInfo()->families);
  for (int size = kListedSizeMin; size <= kListedSizeMax; size += kFontSizeStep)
    _ui->_fontSizeComboBox->addItem(QString::number(size));
  QFileInfoList textures;
  KorviaCommonUtil::collectFileListInExt(_textureFolder, QStringLiteral("*.tga"), textures, false, false);
  for (const QFileInfo& texture : std::as_const(textures))
    _ui->_textureComboBox->addItem(QIcon(texture.absoluteFilePath()), texture.completeBaseName());
  // A completed word would go on air while the operator still types.
  for (QComboBox* combo : {_ui->_fontNameComboBox, _ui->_fontSizeComboBox})
    combo->setCompleter(nullptr);
}

void GWidgetTextStyle::connectControls() {
  for (QComboBox* combo : {_ui->_fontNameComboBox, _ui->_fontSizeComboBox})
    connect(combo, &QComboBox::editTextChanged, this, &GWidgetTextStyle::onEditTextChanged_textStyleUi);
  for (QRadioButton* mode : {_ui->_solidColorTypeRadioButton, _ui->_gradientColorTypeRadioButton,
                             _ui->_textureColorTypeRadioButton})
    connect(mode, &QRadioButton::clicked, this, &GWidgetTextStyle::onClicked_textStyleUi);
  connect(_ui->_textureComboBox, qOverload<int>(&QComboBox::currentIndexChanged), this,
          &GWidgetTextStyle::onCurrentIndexChanged_textStyleUi);
  for (QSlider* slider :
       {_ui->_shadowDisXHorizontalSlider, _ui->_shadowDisYHorizontalSlider, _ui->_shadowBlurHorizontalSlider,
        _ui->_outlineSizeHorizontalSlider, _ui->_outlineBlurHorizontalSlider})
    connect(slider, &QSlider::sliderReleased, this, &GWidgetTextStyle::onSliderReleased_textStyleUi);
  connectColor(_ui->_solidColorPushButton, &tagKorviaShowTextStyle::solidColor);
  connectColor(_ui->_gradientBeginColorPushButton, &tagKorviaShowTextStyle::gradientBeginColor);
  connectColor(_ui->_gradientEndColorPushButton, &tagKorviaShowTextStyle::gradientEndColor);
  connectColor(_ui->_shadowColorPushButton, &tagKorviaShowTextStyle::shadowColor);
  connectColor(_ui->_outlineColorPushButton, &tagKorviaShowTextStyle::outlineColor);
  const auto onClick = [this](QPushButton* button, void (GWidgetTextStyle::*slot)()) {
    connect(button, &QPushButton::clicked, this, slot);
  };
  onClick(_ui->_prevFontNamePushButton, &GWidgetTextStyle::onClicked_prevFontNamePushButton);
  onClick(_ui->_nextFontNamePushButton, &GWidgetTextStyle::onClicked_nextFontNamePushButton);
  onClick(_ui->_subFontSizePushButton, &GWidgetTextStyle::onClicked_subFontSizePushButton);
  onClick(_ui->_addFontSizePushButton, &GWidgetTextStyle::onClicked_addFontSizePushButton);
}

void GWidgetTextStyle::connectColor(QPushButton* button, Color color) {
  connect(button, &QPushButton::clicked, this, [this, button, color] { editColor(button, color); });
}

void GWidgetTextStyle::setObjectParam(int objectId, const tagKorviaShowTextStyle& style) {
  _objectId = objectId;
  const tagKorviaShowTextStyle loaded = style;
  _style = loaded;
  {
    const QSignalBlocker nameBlocker(_ui->_fontNameComboBox);
    const QSignalBlocker sizeBlocker(_ui->_fontSizeComboBox);
    const int font =
        _ui->_fontNameComboBox->findText(_style.fontName, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (font >= 0)
      _ui->_fontNameComboBox->setCurrentIndex(font);
    else
      _ui->_fontNameComboBox->setEditText(_style.fontName);
    _ui->_fontSizeComboBox->setEditText(QString::number(_style.fontSize));
  }
  markPreset();
  const std::pair<qint32, QRadioButton*> modes[] = {{TextColorSolid, _ui->_solidColorTypeRadioButton},
                                                    {TextColorGradient, _ui->_gradientColorTypeRadioButton},
                                                    {TextColorTexture, _ui->_textureColorTypeRadioButton}};
  for (const auto& [mode, button] : modes) {
    const QSignalBlocker blocker(button);
    if (mode == _style.colorMode)
      button->setChecked(true);
  }
  showColor(_ui->_solidColorPushButton, QColor::fromRgba(_style.solidColor));
  showColor(_ui->_gradientBeginColorPushButton, QColor::fromRgba(_style.gradientBeginColor));
  showColor(_ui->_gradientEndColorPushButton, QColor::fromRgba(_style.gradientEndColor));
  showColor(_ui->_shadowColorPushButton, QColor::fromRgba(_style.shadowColor));
  showColor(_ui->_outlineColorPushButton, QColor::fromRgba(_style.outlineColor));
  selectTexture();
  // The change of the texture has collected the sliders of the style before.
  _style.shadowDistanceX = loaded.shadowDistanceX;
  _style.shadowDistanceY = loaded.shadowDistanceY;
  _style.shadowBlur = loaded.shadowBlur;
  _style.outlineSize = loaded.outlineSize;
  _style.outlineBlur = loaded.outlineBlur;
  showSliders();
  showLabels();
}

void GWidgetTextStyle::markPreset() {
  for (GListWidgetItem* tile : std::as_const(_presetTiles))
    tile->setSelected(tile->info().id == _style.preset);
}

void GWidgetTextStyle::selectTexture() {
  const int texture = _ui->_textureComboBox->findText(baseNameOf(_style.texturePath), Qt::MatchFixedString);
  if (texture >= 0)
    _ui->_textureComboBox->setCurrentIndex(texture);
}

void GWidgetTextStyle::showSliders() {
  const std::pair<QSlider*, int> values[] = {{_ui->_shadowDisXHorizontalSlider, _style.shadowDistanceX},
                                             {_ui->_shadowDisYHorizontalSlider, _style.shadowDistanceY},
                                             {_ui->_shadowBlurHorizontalSlider, qRound(_style.shadowBlur)},
                                             {_ui->_outlineSizeHorizontalSlider, _style.outlineSize},
                                             {_ui->_outlineBlurHorizontalSlider, qRound(_style.outlineBlur)}};
  for (const auto& [slider, value] : values) {
    const QSignalBlocker blocker(slider);
    slider->setValue(value);
  }
}

void GWidgetTextStyle::showLabels() {
  _ui->_shadowDisXLabel->setText(QStringLiteral("%1").arg(_style.shadowDistanceX));
  _ui->_shadowDisYLabel->setText(QStringLiteral("%1").arg(_style.shadowDistanceY));
  _ui->_shadowBlurLabel->setText(QStringLiteral("%1").arg(static_cast<double>(_style.shadowBlur), 0, 'g'));
  _ui->_outlineSizeLabel->setText(QStringLiteral("%1").arg(_style.outlineSize));
  _ui->_outlineBlurLabel->setText(QStringLiteral("%1").arg(static_cast<double>(_style.outlineBlur), 0, 'g'));
}

void GWidgetTextStyle::collectAndNotify() {
  _style.fontName = _ui->_fontNameComboBox->currentText();
  _style.fontSize = _ui->_fontSizeComboBox->currentText().toInt();
  if (_ui->_solidColorTypeRadioButton->isChecked())
    _style.colorMode = TextColorSolid;
  else if (_ui->_gradientColorTypeRadioButton->isChecked())
    _style.colorMode = TextColorGradient;
  else if (_ui->_textureColorTypeRadioButton->isChecked())
    _style.colorMode = TextColorTexture;
  // In every mode, so that a texture that was chosen once is kept.
  _style.texturePath = _textureFolder + _ui->_textureComboBox->currentText() + QStringLiteral(".tga");
  _style.shadowDistanceX = _ui->_shadowDisXHorizontalSlider->value();
  _style.shadowDistanceY = _ui->_shadowDisYHorizontalSlider->value();
  _style.shadowBlur = static_cast<float>(_ui->_shadowBlurHorizontalSlider->value());
  _style.outlineSize = _ui->_outlineSizeHorizontalSlider->value();
  _style.outlineBlur = static_cast<float>(_ui->_outlineBlurHorizontalSlider->value());
  _sink->onTextStyleChanged(_style);
  showLabels();
}

void GWidgetTextStyle::editColor(QPushButton* button, Color color) {
  _colorEditor = new QColEdit(nullptr, Qt::Dialog | Qt::WindowStaysOnTopHint);
  _colorEditor->setAttribute(Qt::WA_DeleteOnClose);
  // Another item must not be loaded while its colour is chosen.
  _colorEditor->setWindowModality(Qt::ApplicationModal);
  _colorEditor->setColor(QColor::fromRgba(_style.*color));
  connect(_colorEditor, &QDialog::finished, this, [this, button, color](int result) {
    if (result == QDialog::Accepted) {
      const QColor chosen = _colorEditor->color();
      _style.*color = chosen.rgba();
      showColor(button, chosen);
      collectAndNotify();
    }
    // The dialog has closed the popup in which the editor lies.
    window()->show();
  });
  _colorEditor->show();
}

void GWidgetTextStyle::onListWidgetItemClicked(QListWidget* listWidget, GListWidgetItem*, qint32 id) {
  if (listWidget != _ui->_fontStylePresetTypeListWidget)
    return;
  KorviaShowUtil::loadTextStylePreset(static_cast<KorviaShowTextStylePreset>(id), _style);
  _style.texturePath.prepend(_textureFolder);
  _style.preset = id;
  setObjectParam(_objectId, _style);
  collectAndNotify();
}

void GWidgetTextStyle::onEditTextChanged_textStyleUi() {
  collectAndNotify();
}

void GWidgetTextStyle::onClicked_textStyleUi() {
  collectAndNotify();
}

void GWidgetTextStyle::onCurrentIndexChanged_textStyleUi() {
  collectAndNotify();
}

void GWidgetTextStyle::onSliderReleased_textStyleUi() {
  collectAndNotify();
}

void GWidgetTextStyle::onClicked_prevFontNamePushButton() {
  QComboBox* fonts = _ui->_fontNameComboBox;
  if (fonts->count() > 0)
    fonts->setCurrentIndex(std::max(fonts->currentIndex() - 1, 0));
}

void GWidgetTextStyle::onClicked_nextFontNamePushButton() {
  QComboBox* fonts = _ui->_fontNameComboBox;
  if (fonts->count() > 0)
    fonts->setCurrentIndex(std::min(fonts->currentIndex() + 1, fonts->count() - 1));
}

void GWidgetTextStyle::onClicked_subFontSizePushButton() {
  stepFontSize(-kFontSizeStep);
}

void GWidgetTextStyle::onClicked_addFontSizePushButton() {
  stepFontSize(kFontSizeStep);
}

void GWidgetTextStyle::stepFontSize(int step) {
  const qint64 size = qint64{_ui->_fontSizeComboBox->currentText().toInt()} + step;
  const qint64 limited =
      step < 0 ? std::max<qint64>(size, kFontSizeMin) : std::min<qint64>(size, kFontSizeMax);
  _ui->_fontSizeComboBox->setEditText(QString::number(limited));
}
