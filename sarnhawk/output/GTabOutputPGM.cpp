#include "output/GTabOutputPGM.h"

#include <QCoreApplication>
#include <QSignalBlocker>
#include <algorithm>
#include <array>

#include "GDeckLinkUtil.h"
#include "KorviaCommonUtil.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/runInBackground.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "ui_GTabOutputPGM.h"

namespace {

using Form = Ui::GTabOutputPGM;
using Item = tagKorviaShowOutputItem;

constexpr int kMaxSide = 8192;

constexpr struct {
  QPushButton* Form::*button;
  QWidget* Form::*page;
} kTypes[] = {
    {&Form::_netStreamTypePushButton, &Form::_netstreamPage},
    {&Form::_recordTypePushButton, &Form::_recordPage},
    {&Form::_sdiTypePushButton, &Form::_sdiPage},
    {&Form::_ndiTypePushButton, &Form::_ndiPage},
    {&Form::_virtualCameraTypePushButton, &Form::_virtualCameraPage},
};

/// The controls of an encoder, which stream and recording both have; by slot.
constexpr struct {
  QComboBox* Form::*size;
  QComboBox* Form::*accelerator;
  QSlider* Form::*videoBitrate;
  QLineEdit* Form::*videoBitrateText;
  QSlider* Form::*audioBitrate;
  QLabel* Form::*audioBitrateText;
} kEncoders[] = {
    {&Form::_netVideoSizeComboBox, &Form::_netEncodeAcceleratorComboBox,
     &Form::_netCBRBitrateHorizontalSlider, &Form::_netCBRBitrateLineEdit,
     &Form::_netAudioBitrateHorizontalSlider, &Form::_netAudioBitrateLabel},
    {&Form::_recordVideoSizeComboBox, &Form::_recordEncodeAcceleratorComboBox,
     &Form::_recordCBRBitrateHorizontalSlider, &Form::_recordCBRBitrateLineEdit,
     &Form::_recordAudioBitrateHorizontalSlider, &Form::_recordAudioBitrateLabel},
};
static_assert(OutputSlotStream == 0 && OutputSlotRecord == 1);

// Which control edits which field. Those of the recording are in the recording's item, all others in the
// stream's.

constexpr struct {
  int slot;
  QLineEdit* Form::*edit;
  QString Item::*field;
} kTexts[] = {
    {OutputSlotRecord, &Form::_recordPathLineEdit, &Item::recordPath},
    {OutputSlotRecord, &Form::_recordNameFormatLineEdit, &Item::recordNameFormat},
    {OutputSlotRecord, &Form::_recordTimeFormatLineEdit, &Item::recordTimeFormat},
    {OutputSlotStream, &Form::_httpPathLineEdit, &Item::httpPath},
    {OutputSlotStream, &Form::_rtmpPushURLLineEdit, &Item::rtmp0Url},
    {OutputSlotStream, &Form::_rtmpPushURLLineEdit_2, &Item::rtmp1Url},
    {OutputSlotStream, &Form::_rtmpPushURLLineEdit_3, &Item::rtmpLocalPath},
    {OutputSlotStream, &Form::_udpAddressLineEdit, &Item::udpAddress},
    {OutputSlotStream, &Form::_hlsLocalPathLineEdit, &Item::hlsTemporaryFolder},
    {OutputSlotStream, &Form::_hlsPathLineEdit, &Item::hlsPath},
    {OutputSlotStream, &Form::_ndiNameLineEdit, &Item::ndiName},
};

constexpr struct {
  QCheckBox* Form::*box;
  quint8 Item::*field;
} kChecks[] = {
    {&Form::_enableHTTPOutputCheckBox, &Item::httpEnable},
    {&Form::_enableRTMPOutputCheckBox, &Item::rtmp0Enable},
    {&Form::_enableRTMPOutputCheckBox_2, &Item::rtmp1Enable},
    {&Form::_enableRTMPOutputCheckBox_3, &Item::rtmpLocalEnable},
    {&Form::_enableUDPOutputCheckBox, &Item::udpEnable},
    {&Form::_enableHSLOutputCheckBox, &Item::hlsEnable},
    {&Form::_hlsSpliteAnywhereCheckBox, &Item::hlsSplitAnywhere},
    {&Form::_enableVirtualCameraCheckBox, &Item::virtualCameraEnable},
    {&Form::_enableSDIOutputCheckBox, &Item::sdiEnable},
    {&Form::_enableNDIOutputCheckBox, &Item::ndiEnable},
};

constexpr struct {
  QSpinBox* Form::*box;
  quint16 Item::*field;
} kNumbers[] = {
    {&Form::_httpPortSpinBox, &Item::httpPort},
    {&Form::_udpPortSpinBox, &Item::udpPort},
    {&Form::_udpTTLSpinBox, &Item::udpTtl},
    {&Form::_hlsSegLengthSpinBox, &Item::hlsSegmentLength},
    {&Form::_hlsSegNumberSpinBox, &Item::hlsSegmentNumber},
};

/// Boxes whose entries have a value as item data.
constexpr struct {
  int slot;
  QComboBox* Form::*box;
  qint32 Item::*field;
} kChoices[] = {
    {OutputSlotRecord, &Form::_recordEscapsulationComboBox, &Item::recordEncapsulation},
    {OutputSlotStream, &Form::_httpEscapsulationComboBox, &Item::httpEncapsulation},
    {OutputSlotStream, &Form::__RTMPProtocolVerComboBox, &Item::rtmp0ProtocolVersion},
    {OutputSlotStream, &Form::__RTMPProtocolVerComboBox_2, &Item::rtmp1ProtocolVersion},
};

/// Boxes in which anything can be typed.
constexpr struct {
  QComboBox* Form::*box;
  QString Item::*field;
} kTypedChoices[] = {
    {&Form::_udpBindAddrComboBox, &Item::udpBindInterface},
    {&Form::_sdkFormatListComboBox, &Item::sdiFormat},
    {&Form::_sdkSignalListComboBox, &Item::sdiSignal},
};

struct Choice {
  const char* text;
  qint64 value;
};

constexpr Choice kAccelerators[] = {
    {QT_TRANSLATE_NOOP("GTabOutputPGM", "Software CPU"), EncodeAcceleratorSoftware},
    {QT_TRANSLATE_NOOP("GTabOutputPGM", "Integrated GPU"), EncodeAcceleratorIntegratedGpu},
    {QT_TRANSLATE_NOOP("GTabOutputPGM", "Independent GPU"), EncodeAcceleratorIndependentGpu},
};
constexpr Choice kRecordEncapsulations[] = {{"ts", EncapsulationTs},
                                            {"flv", EncapsulationFlv},
                                            {"mp4", EncapsulationMp4},
                                            {"mkv", EncapsulationMkv},
                                            {"mov", EncapsulationMov}};
constexpr Choice kHttpEncapsulations[] = {{"TS", EncapsulationTs}, {"FLV", EncapsulationFlv}};
constexpr Choice kProtocolVersions[] = {{"Ver 3.0", 0}, {"Ver 2.0", 1}, {"Ver 1.0", 2}};

template <std::size_t Count>
void fill(QComboBox* box, const Choice (&choices)[Count]) {
  for (const Choice& choice : choices)
    box->addItem(QCoreApplication::translate("GTabOutputPGM", choice.text), choice.value);
}

/// Selects the entry with this value, or the first one.
void select(QComboBox* box, qint64 value) {
  box->setCurrentIndex(std::max(box->findData(value), 0));
}

Item& itemOf(tagKorviaShowOutputParam& param, int slot) {
  return param.items[static_cast<std::size_t>(slot)];
}

}  // namespace

GTabOutputPGM::GTabOutputPGM(IKorviaSarnhawkPriv* priv, tagKorviaShowOutputParam* param, QWidget* parent,
                             CardLister listCards)
    : QWidget(parent), _ui(std::make_unique<Ui::GTabOutputPGM>()), _priv(priv), _param(param) {
  _ui->setupUi(this);
  // A completer would make "128" of a typed "12".
  for (const auto& entry : kTypedChoices)
    ((*_ui).*entry.box)->setCompleter(nullptr);
  fillLists();
  connectControls();
  load();
  runInBackground(this, std::move(listCards),
                  [this](const QList<tagGDecklinkCardInfo>& cards) { showCards(cards); });
}

GTabOutputPGM::~GTabOutputPGM() = default;

QList<tagGDecklinkCardInfo> GTabOutputPGM::systemCards() {
  QList<tagGDecklinkCardInfo> cards;
  GDeckLinkUtil::enumDecklink(cards, false);
  return cards;
}

void GTabOutputPGM::fillLists() {
  for (const auto& encoder : kEncoders)
    fill((*_ui).*encoder.accelerator, kAccelerators);
  fill(_ui->_recordEscapsulationComboBox, kRecordEncapsulations);
  fill(_ui->_httpEscapsulationComboBox, kHttpEncapsulations);
  fill(_ui->__RTMPProtocolVerComboBox, kProtocolVersions);
  fill(_ui->__RTMPProtocolVerComboBox_2, kProtocolVersions);
}

void GTabOutputPGM::connectControls() {
  for (const auto& type : kTypes)
    connect((*_ui).*type.button, &QPushButton::clicked, this, &GTabOutputPGM::onClicked_selectType);
  connect(_ui->_netCBRBitrateHorizontalSlider, &QSlider::valueChanged, this,
          &GTabOutputPGM::onValueChanged_netCBRBitrateHorizontalSlider);
  connect(_ui->_netCBRBitrateLineEdit, &QLineEdit::textChanged, this,
          &GTabOutputPGM::onTextChanged_netCBRBitrateLineEdit);
  connect(_ui->_netAudioBitrateHorizontalSlider, &QSlider::valueChanged, this,
          &GTabOutputPGM::onValueChanged_netAudioBitrateHorizontalSlider);
  connect(_ui->_recordCBRBitrateHorizontalSlider, &QSlider::valueChanged, this,
          &GTabOutputPGM::onValueChanged_recordCBRBitrateHorizontalSlider);
  connect(_ui->_recordCBRBitrateLineEdit, &QLineEdit::textChanged, this,
          &GTabOutputPGM::onTextChanged_recordCBRBitrateLineEdit);
  connect(_ui->_recordAudioBitrateHorizontalSlider, &QSlider::valueChanged, this,
          &GTabOutputPGM::onValueChanged_recordAudioBitrateHorizontalSlider);
}

void GTabOutputPGM::load() {
  for (const int slot : {OutputSlotRecord, OutputSlotStream})
    loadEncoder(slot);
  const Item& net = itemOf(*_param, OutputSlotStream);
  for (const auto& text : kTexts) {
    QLineEdit* edit = (*_ui).*text.edit;
    edit->setText(itemOf(*_param, text.slot).*text.field);
    // Of a long text the beginning is shown.
    edit->setCursorPosition(0);
  }
  for (const auto& check : kChecks)
    ((*_ui).*check.box)->setChecked(net.*check.field != 0);
  for (const auto& number : kNumbers)
    ((*_ui).*number.box)->setValue(net.*number.field);
  for (const auto& choice : kChoices)
    select((*_ui).*choice.box, itemOf(*_param, choice.slot).*choice.field);
  for (const auto& choice : kTypedChoices)
    ((*_ui).*choice.box)->setEditText(net.*choice.field);
  _ui->_recordCutDurationSpinBox->setValue(itemOf(*_param, OutputSlotRecord).cutDuration);
}

void GTabOutputPGM::loadEncoder(int slot) {
  const auto place = static_cast<std::size_t>(slot);
  const auto& controls = kEncoders[place];
  // The record is packed, so its fields are read by value. A stored size that the list has already stands in
  // it twice, and the second one is selected.
  const tagKorviaVideoFormat format = _priv->getConfig()->engineInfo.outputFormat[place];
  const qint32 width = format.width;
  const qint32 height = format.height;
  QComboBox* size = (*_ui).*controls.size;
  size->addItem(QStringLiteral("%1 X %2").arg(width).arg(height));
  size->setCurrentIndex(size->count() - 1);

  const tagKorviaShowEncodeParam& encode = _param->encode[place];
  select((*_ui).*controls.accelerator, encode.accelerator);
  // The slider first, since it writes what its range leaves of the value into the text.
  ((*_ui).*controls.videoBitrate)->setValue(encode.videoBitrate);
  ((*_ui).*controls.videoBitrateText)->setText(QString::number(encode.videoBitrate));
  QSlider* audio = (*_ui).*controls.audioBitrate;
  audio->setValue(static_cast<int>(encode.audioBitrate));
  ((*_ui).*controls.audioBitrateText)->setText(tr("%1 kbps").arg(audio->value()));
}

// Runs once, when the system has told its cards. The slot of the box is connected after the filling, so the
// first card gives no formats until another one was chosen.
void GTabOutputPGM::showCards(const QList<tagGDecklinkCardInfo>& cards) {
  _cards = cards;
  _areCardsListed = true;
  QComboBox* list = _ui->_sdiOutputDevListComboBox;
  for (const tagGDecklinkCardInfo& card : cards)
    list->addItem(card.name);
  connect(list, qOverload<int>(&QComboBox::currentIndexChanged), this,
          &GTabOutputPGM::onCurrentIndexChanged_sdiOutputDevListComboBox);
  if (!cards.isEmpty()) {
    const int stored = itemOf(*_param, OutputSlotStream).sdiDeviceIndex;
    // The formats of the card must not push the operator's own aside.
    const QString format = _ui->_sdkFormatListComboBox->currentText();
    list->setCurrentIndex(stored >= 0 && stored < cards.size() ? stored : 0);
    _ui->_sdkFormatListComboBox->setEditText(format);
  }
  emit cardsListed();
}

void GTabOutputPGM::save() {
  Item& record = itemOf(*_param, OutputSlotRecord);
  Item& net = itemOf(*_param, OutputSlotStream);
  for (const int slot : {OutputSlotRecord, OutputSlotStream}) {
    saveSize(slot);
    saveEncoder(slot);
  }
  record.recordActive = 1;
  record.cutDuration = _ui->_recordCutDurationSpinBox->value();
  for (const auto& text : kTexts)
    itemOf(*_param, text.slot).*text.field = ((*_ui).*text.edit)->text();
  for (const auto& check : kChecks)
    net.*check.field = ((*_ui).*check.box)->isChecked() ? 1 : 0;
  for (const auto& number : kNumbers)
    net.*number.field = static_cast<quint16>(((*_ui).*number.box)->value());
  for (const auto& choice : kChoices)
    itemOf(*_param, choice.slot).*choice.field = ((*_ui).*choice.box)->currentData().toInt();
  for (const auto& choice : kTypedChoices)
    net.*choice.field = ((*_ui).*choice.box)->currentText();
  // Before the system has told its cards, the empty list does not mean that the card is gone.
  if (_areCardsListed)
    net.sdiDeviceIndex = _ui->_sdiOutputDevListComboBox->currentIndex();
}

void GTabOutputPGM::saveSize(int slot) {
  const auto place = static_cast<std::size_t>(slot);
  const QString text = ((*_ui).*kEncoders[place].size)->currentText();
  const QSize size = KorviaCommonUtil::splitePairValue(text, QStringLiteral("X")).toSize();
  tagKorviaVideoFormat& format = _priv->getConfig()->engineInfo.outputFormat[place];
  format.width = std::min(size.width(), kMaxSide);
  format.height = std::min(size.height(), kMaxSide);
}

void GTabOutputPGM::saveEncoder(int slot) {
  const auto place = static_cast<std::size_t>(slot);
  const auto& controls = kEncoders[place];
  tagKorviaShowEncodeParam& encode = _param->encode[place];
  encode.accelerator = ((*_ui).*controls.accelerator)->currentData().toLongLong();
  encode.videoBitrate = ((*_ui).*controls.videoBitrateText)->text().toInt();
  encode.audioBitrate = ((*_ui).*controls.audioBitrate)->value();
}

void GTabOutputPGM::onClicked_selectType() {
  for (const auto& type : kTypes) {
    if (sender() == (*_ui).*type.button)
      _ui->_outputTypeStackedWidget->setCurrentWidget((*_ui).*type.page);
  }
}

void GTabOutputPGM::onValueChanged_netCBRBitrateHorizontalSlider(int value) {
  const QSignalBlocker blocker(_ui->_netCBRBitrateLineEdit);
  _ui->_netCBRBitrateLineEdit->setText(QString::number(value));
}

void GTabOutputPGM::onTextChanged_netCBRBitrateLineEdit(const QString& text) {
  const QSignalBlocker blocker(_ui->_netCBRBitrateHorizontalSlider);
  _ui->_netCBRBitrateHorizontalSlider->setValue(text.toInt());
}

void GTabOutputPGM::onValueChanged_netAudioBitrateHorizontalSlider(int value) {
  _ui->_netAudioBitrateLabel->setText(tr("%1 kbps").arg(value));
}

void GTabOutputPGM::onValueChanged_recordCBRBitrateHorizontalSlider(int value) {
  const QSignalBlocker blocker(_ui->_recordCBRBitrateLineEdit);
  _ui->_recordCBRBitrateLineEdit->setText(QString::number(value));
}

void GTabOutputPGM::onTextChanged_recordCBRBitrateLineEdit(const QString& text) {
  const QSignalBlocker blocker(_ui->_recordCBRBitrateHorizontalSlider);
  _ui->_recordCBRBitrateHorizontalSlider->setValue(text.toInt());
}

void GTabOutputPGM::onValueChanged_recordAudioBitrateHorizontalSlider(int value) {
  _ui->_recordAudioBitrateLabel->setText(tr("%1 kbps").arg(value));
}

void GTabOutputPGM::onCurrentIndexChanged_sdiOutputDevListComboBox(int index) {
  _ui->_sdkFormatListComboBox->clear();
  if (index >= 0 && index < _cards.size())
    _ui->_sdkFormatListComboBox->addItems(_cards[index].formats);
}
