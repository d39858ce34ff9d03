#include "present/GWidgetSubtitleConfig.h"

#include <QDir>
#include <QFileDialog>
#include <QSignalBlocker>

#include "KorviaCommonUtil.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "present/GListWidgetItem.h"
#include "present/GWidgetTextStyle.h"
#include "present/IGWidgetSubtitleConfigSink.h"
#include "present/ItemCatalogue.h"
#include "present/buildThumbList.h"
#include "ui_GWidgetSubtitleConfig.h"

namespace {

constexpr QSize kTileSize(60, 60);
constexpr int kScrollStepMs = 1000;
constexpr int kScrollMaxMs = 12000;
constexpr float kMsPerSecond = 1000.0F;
constexpr float kPercent = 100.0F;

// Alignments of the record.
constexpr qint32 kLeft = 1;
constexpr qint32 kRight = 2;
constexpr qint32 kCentre = 0x84;
constexpr qint32 kTop = 0x20;
constexpr qint32 kBottom = 0x40;

}  // namespace

GWidgetSubtitleConfig::GWidgetSubtitleConfig(IKorviaSarnhawkPriv* priv, IGWidgetSubtitleConfigSink* sink)
    : QWidget(nullptr, Qt::Popup), _ui(std::make_unique<Ui::GWidgetSubtitleConfig>()), _sink(sink) {
  _ui->setupUi(this);
  setAttribute(Qt::WA_StyledBackground);
  _textStyle = new GWidgetTextStyle(priv, this, _ui->_textStyleWidget);
  _ui->_textStyleLayout->addWidget(_textStyle);
  using Info = tagKorviaShowTextInfo;
  _fractions = {{{_ui->_xPosHorizontalSlider, _ui->_xPosLabel, &Info::x},
                 {_ui->_yPosHorizontalSlider, _ui->_yPosLabel, &Info::y},
                 {_ui->_widthHorizontalSlider, _ui->_widthLabel, &Info::width},
                 {_ui->_heightHorizontalSlider, _ui->_heightLabel, &Info::height},
                 {_ui->_scrollEndXPosHorizontalSlider, _ui->_scrollEndXPosLabel, &Info::scrollEndX}}};
  const ItemCatalogue catalogue;
  _enterTiles = buildThumbList(this, _ui->_enterAniListWidget,
                               catalogue.entrances(ItemCatalogue::Masks::Without), kTileSize, true);
  _exitTiles = buildThumbList(this, _ui->_exitAniListWidget, catalogue.exits(ItemCatalogue::Masks::Without),
                              kTileSize, true);
  _ui->_tabWidget->setCurrentIndex(0);
  connectControls();
}

GWidgetSubtitleConfig::~GWidgetSubtitleConfig() {
  delete _fileDialog;
}

void GWidgetSubtitleConfig::connectControls() {
  for (QComboBox* combo : {_ui->_textContentComboBox, _ui->_timeFormatComboBox, _ui->_scrollTimeComboBox}) {
    // A completed word would go on air while the operator still types.
    combo->setCompleter(nullptr);
    connect(combo, &QComboBox::editTextChanged, this, &GWidgetSubtitleConfig::onEditTextChanged_subtitleUi);
  }
  for (const Fraction& fraction : _fractions)
    connect(fraction.slider, &QSlider::sliderReleased, this,
            &GWidgetSubtitleConfig::onSliderReleased_subtitleUi);
  for (QPushButton* button :
       {_ui->_leftAlignPushButton, _ui->_centerAlignPushButton, _ui->_rightAlignPushButton,
        _ui->_topAlignPushButton, _ui->_middleAlignPushButton, _ui->_bottomAlignPushButton})
    connect(button, &QPushButton::clicked, this, &GWidgetSubtitleConfig::onClicked_subtitleUi);
  connect(_ui->_openTXTPushButton, &QPushButton::clicked, this,
          &GWidgetSubtitleConfig::onClicked_openTXTPushButton);
  connect(_ui->_subScrollTimePushButton, &QPushButton::clicked, this,
          &GWidgetSubtitleConfig::onClicked_subScrollTimePushButton);
  connect(_ui->_addScrollTimePushButton, &QPushButton::clicked, this,
          &GWidgetSubtitleConfig::onClicked_addScrollTimePushButton);
}

void GWidgetSubtitleConfig::setObjectParam(int objectId, const tagKorviaSubtitleParam& param) {
  _objectId = objectId;
  if (&param != &_param)
    _param = param;
  const tagKorviaShowTextInfo& info = _param.info;
  const std::pair<QComboBox*, QString> texts[] = {
      {_ui->_textContentComboBox, info.text},
      {_ui->_timeFormatComboBox, info.timeFormat},
      {_ui->_scrollTimeComboBox,
       QString::number(static_cast<double>(info.scrollTime * kMsPerSecond), 'g', 6)}};
  for (const auto& [combo, text] : texts) {
    const QSignalBlocker blocker(combo);
    combo->setEditText(text);
  }
  for (const Fraction& fraction : _fractions) {
    const QSignalBlocker blocker(fraction.slider);
    fraction.slider->setValue(qRound(info.*fraction.field * static_cast<double>(kPercent)));
  }
  showAlignment();
  // Calls back when another texture becomes current.
  _textStyle->setObjectParam(objectId, info.style);
  markTiles(_enterTiles, info.enter.effect);
  markTiles(_exitTiles, info.exit.effect);
  showLabels();
}

void GWidgetSubtitleConfig::showAlignment() {
  const tagKorviaShowTextInfo& info = _param.info;
  const std::pair<QPushButton*, bool> buttons[] = {
      {_ui->_leftAlignPushButton, (info.hAlign & kLeft) != 0},
      {_ui->_centerAlignPushButton, (info.hAlign & kCentre) != 0},
      {_ui->_rightAlignPushButton, (info.hAlign & kRight) != 0},
      {_ui->_topAlignPushButton, (info.vAlign & kTop) != 0},
      {_ui->_middleAlignPushButton, (info.vAlign & kCentre) != 0},
      {_ui->_bottomAlignPushButton, (info.vAlign & kBottom) != 0}};
  for (const auto& [button, matches] : buttons) {
    const QSignalBlocker blocker(button);
    if (matches)
      button->setChecked(true);
  }
}

void GWidgetSubtitleConfig::markTiles(const QList<GListWidgetItem*>& tiles, qint32 effect) {
  for (GListWidgetItem* tile : tiles)
    tile->setSelected(tile->info().id == effect);
}

void GWidgetSubtitleConfig::showLabels() {
  for (const Fraction& fraction : _fractions)
    fraction.label->setText(
        QStringLiteral("%1%").arg(_param.info.*fraction.field * static_cast<double>(kPercent), 0, 'g'));
}

void GWidgetSubtitleConfig::collectAndNotify() {
  tagKorviaShowTextInfo& info = _param.info;
  info.text = _ui->_textContentComboBox->currentText();
  info.timeFormat = _ui->_timeFormatComboBox->currentText();
  for (const Fraction& fraction : _fractions)
    info.*fraction.field = static_cast<double>(static_cast<float>(fraction.slider->value()) / kPercent);
  // A text scrolls on a level line.
  info.scrollEndY = info.y;
  info.scrollTime = static_cast<float>(_ui->_scrollTimeComboBox->currentText().toInt()) / kMsPerSecond;
  collectAlignment();
  info.style = _textStyle->style();
  _sink->onConfigChanged(_param);
  showLabels();
}

// The vertical choice also goes to hAlign, where the engine expects it; vAlign stays as it came.
void GWidgetSubtitleConfig::collectAlignment() {
  const auto collect = [this](const auto& choices) {
    for (const auto& [button, alignment] : choices) {
      if (!button->isChecked())
        continue;
      _param.info.hAlign = alignment;
      return;
    }
  };
  const std::pair<QPushButton*, qint32> horizontal[] = {{_ui->_leftAlignPushButton, kLeft},
                                                        {_ui->_centerAlignPushButton, kCentre},
                                                        {_ui->_rightAlignPushButton, kRight}};
  const std::pair<QPushButton*, qint32> vertical[] = {{_ui->_topAlignPushButton, kTop},
                                                      {_ui->_middleAlignPushButton, kCentre},
                                                      {_ui->_bottomAlignPushButton, kBottom}};
  collect(horizontal);
  collect(vertical);
}

void GWidgetSubtitleConfig::onListWidgetItemClicked(QListWidget* listWidget, GListWidgetItem*, qint32 id) {
  if (listWidget == _ui->_enterAniListWidget) {
    markTiles(_enterTiles, id);
    _param.info.enter.effect = id;
  } else if (listWidget == _ui->_exitAniListWidget) {
    markTiles(_exitTiles, id);
    _param.info.exit.effect = id;
  } else {
    return;
  }
  collectAndNotify();
}

void GWidgetSubtitleConfig::onTextStyleChanged(const tagKorviaShowTextStyle&) {
  collectAndNotify();
}

void GWidgetSubtitleConfig::onEditTextChanged_subtitleUi() {
  collectAndNotify();
}

void GWidgetSubtitleConfig::onSliderReleased_subtitleUi() {
  collectAndNotify();
}

void GWidgetSubtitleConfig::onValueChanged_subtitleUi(int) {
  collectAndNotify();
}

void GWidgetSubtitleConfig::onClicked_subtitleUi() {
  collectAndNotify();
}

void GWidgetSubtitleConfig::onClicked_openTXTPushButton() {
  _fileDialog = new QFileDialog(nullptr, tr("Open Text File"), QDir::currentPath(),
                                tr("Text files (*.txt);;Any files (*)"));
  _fileDialog->setAttribute(Qt::WA_DeleteOnClose);
  _fileDialog->setWindowFlag(Qt::WindowStaysOnTopHint);
  _fileDialog->setWindowModality(Qt::ApplicationModal);
  _fileDialog->setFileMode(QFileDialog::ExistingFile);
  connect(_fileDialog, &QDialog::finished, this, [this](int result) {
    if (result == QDialog::Accepted)
      readText(_fileDialog->selectedFiles().value(0));
    // The dialog has closed the popup.
    show();
  });
  _fileDialog->show();
}

void GWidgetSubtitleConfig::readText(const QString& path) {
  QDir::setCurrent(QFileInfo(path).absolutePath());
  QByteArray content;
  KorviaCommonUtil::readFileContent(path, content);
  _ui->_textContentComboBox->setEditText(QString::fromLocal8Bit(content));
}

void GWidgetSubtitleConfig::onClicked_subScrollTimePushButton() {
  stepScrollTime(-kScrollStepMs);
}

void GWidgetSubtitleConfig::onClicked_addScrollTimePushButton() {
  stepScrollTime(kScrollStepMs);
}

void GWidgetSubtitleConfig::stepScrollTime(int stepMs) {
  const qint64 timeMs = qint64{_ui->_scrollTimeComboBox->currentText().toInt()} + stepMs;
  const qint64 limited = stepMs < 0 ? std::max<qint64>(timeMs, 0) : std::min<qint64>(timeMs, kScrollMaxMs);
  _ui->_scrollTimeComboBox->setEditText(QString::number(limited));
}
