// The picker's record and form: lists of values, loading, and the step of each kind on OK.
#include <QFileInfo>
#include <optional>

#include "DrivePath.h"
#include "GDeckLinkUtil.h"
#include "KorviaCommonUtil.h"
#include "KorviaShowObjectID.h"
#include "console/runInBackground.h"
#include "present/colorButton.h"
#include "sources/GDialogMediaSource.h"
#include "sources/GDialogMediaSourceOption.h"
#include "ui_GDialogMediaSource.h"

namespace {

constexpr int kScreenEntries = 7;

/// Padded, so that the numbers stand below each other in the list.
const QStringList kSizes{
    "640  X 480",  "800  X 600",  "720  X 405",  "720  X 480",  "720  X 576",  "1024 X 576",  "1024 X 768",
    "1152 X 864",  "1280 X 720",  "1280 X 800",  "1280 X 960",  "1280 X 1024", "1300 X 768",  "1336 X 768",
    "1360 X 768",  "1366 X 768",  "1440 X 900",  "1440 X 1080", "1600 X 900",  "1600 X 1024", "1600 X 1200",
    "1680 X 1050", "1920 X 1080", "1920 X 1440", "2048 X 1080", "2560 X 1440", "3840 X 1080", "3840 X 1440",
    "3840 X 2160", "4096 X 2160", "5120 X 2880", "7680 X 4320"};
const QStringList kFrameRates{"1  / 1", "5  / 1", "10 / 1", "15 / 1", "20 / 1",
                              "25 / 1", "30 / 1", "50 / 1", "60 / 1"};
const QStringList kSampleRates{"8000", "16000", "22050", "44100", "48000"};
const QStringList kSignalInputs{"Default", "Tuner", "Composite", "SVideo", "SDI", "Component", "HDMI"};
const QStringList kAudioFilters{"None", "Left Channel To Steteo", "Right Channel To Steteo", "Swap Channel"};
const QStringList kSdiVideoSignals{"SDI", "HDMI", "OpticalSDI", "Component", "Composite", "SVideo"};
const QStringList kSdiAudioSignals{"embedded", "aesebu", "analog"};
const QStringList kUrlExamples{"http://127.0.0.1:8080/live/0", "udp://@234.0.0.1:7000",
                               "rtmp://127.0.0.1:1935/live/0", "rtsp://127.0.0.1:554/live/0"};
const QStringList kUrlCaches{"0", "200", "500", "800", "1000", "1500", "2000"};
const QStringList kDelays{"5000", "10000", "15000", "20000", "25000", "30000", "35000", "40000"};

using Devices = std::vector<std::pair<QString, QString>>;

struct Found {
  // None when the system does not answer.
  std::optional<Devices> video;
  std::optional<Devices> audio;
  QList<tagGDecklinkCardInfo> cards;
};

std::optional<Devices> listed(bool isVideo) {
  Devices devices;
  if (!KorviaCommonUtil::enumDShowDeviceList(isVideo, devices))
    return std::nullopt;
  return devices;
}

void selectDevice(QComboBox* combo, const QString& name, const QString& id) {
  for (int row = 0; row < combo->count(); ++row) {
    if (combo->itemText(row) == name && combo->itemData(row).toString() == id)
      return combo->setCurrentIndex(row);
  }
}

void showDevices(QComboBox* combo, const std::optional<Devices>& devices) {
  if (!devices)
    return;
  const QString name = combo->currentText();
  const QString id = combo->currentData().toString();
  combo->clear();
  for (const auto& [text, data] : *devices)
    combo->addItem(text, data);
  selectDevice(combo, name, id);
}

void storeDevice(const QComboBox* combo, QString& name, QString& id) {
  name = combo->currentText();
  id = combo->currentData().toString();
}

QString pairText(const char* pattern, int first, int second) {
  return QString::fromLatin1(pattern).arg(first).arg(second);
}

}  // namespace

void GDialogMediaSource::fillLists() {
  _ui->_videoSizeComboBox->addItems(kSizes);
  _ui->_videoDevFpsComboBox->addItems(kFrameRates);
  _ui->_audioDevRateComboBox->addItems(kSampleRates);
  _ui->_videoDevphysConnTypeComboBox->addItems(kSignalInputs);
  _ui->_audioProcessFilterComboBox->addItems(kAudioFilters);
  _ui->_sdiVideoSignalListComboBox->addItems(kSdiVideoSignals);
  _ui->_sdiAudioSignalListComboBox->addItems(kSdiAudioSignals);
  _ui->_urlComboBox->addItems(kUrlExamples);
  _ui->_urlCacheComboBox->addItems(kUrlCaches);
  _ui->_krmpComboBox->addItem(QStringLiteral("krmp://"));
  _ui->_incomeHWDecodeCheckBox->addItems(GDialogMediaSourceOption::decoders());
  for (int index = 0; index < kMediaChannelMax; ++index)
    _ui->_delayChannelComboBox->addItem(tr("Media - %1").arg(index));
  _ui->_delayCacheComboBox->addItems(kDelays);
  for (int index = 0; index < kScreenEntries; ++index)
    _ui->_screenIndicatorComboBox->addItem(QString::number(index));
  _textPage.fill();
}

// A sound server that hangs keeps the answer back for seconds. Until it comes, the devices of the record
// stand in the lists.
void GDialogMediaSource::fillDevices() {
  const tagKorviaShowSourceInfo& info = _slot.source;
  if (!info.videoDevName.isEmpty())
    _ui->_videoDeviceComboBox->addItem(info.videoDevName, info.videoDevId);
  if (!info.audioDevName.isEmpty())
    _ui->_audioDeviceComboBox->addItem(info.audioDevName, info.audioDevId);
  onCurrentIndexChanged_sdiInputDevListComboBox(-1);
  runInBackground(
      this,
      [] {
        Found found{listed(true), listed(false), {}};
        GDeckLinkUtil::enumDecklink(found.cards, true);
        return found;
      },
      [this](const Found& found) {
        showDevices(_ui->_videoDeviceComboBox, found.video);
        showDevices(_ui->_audioDeviceComboBox, found.audio);
        showCards(found.cards);
        _areDevicesListed = true;
        emit devicesListed();
      });
}

void GDialogMediaSource::showCards(const QList<tagGDecklinkCardInfo>& cards) {
  _cards = cards;
  for (const tagGDecklinkCardInfo& card : cards)
    _ui->_sdiInputDevListComboBox->addItem(card.name);
  if (_slot.source.sdiCardIndex < cards.size())
    _ui->_sdiInputDevListComboBox->setCurrentIndex(_slot.source.sdiCardIndex);
  onCurrentIndexChanged_sdiInputDevListComboBox(_ui->_sdiInputDevListComboBox->currentIndex());
}

void GDialogMediaSource::load() {
  const tagKorviaShowSourceInfo& info = _slot.source;
  const tagKorviaFormatInfo format = _slot.format;
  showSize(outputSize());
  _ui->_videoDevFpsComboBox->setEditText(
      pairText("%1 / %2", format.video.fpsNumerator, format.video.fpsDenominator));
  _ui->_audioDevRateComboBox->setEditText(QString::number(int{format.audio.sampleRate}));

  _ui->_moviePathLineEdit->setText(info.moviePath);
  _ui->_movieListListWidget->addItems(info.movieList);
  _ui->_urlComboBox->setEditText(info.url);
  _ui->_urlCacheComboBox->setEditText(QString::number(info.urlCache));
  _ui->_krmpComboBox->setEditText(info.krmpUrl);
  _ui->_incomePathLineEdit->setText(info.incomePath);
  _ui->_incomeHWDecodeCheckBox->setCurrentIndex(info.incomeDecoder);
  _ui->_imagePathLineEdit->setText(info.imagePath);
  _ui->_imageListListWidget->addItems(info.imageList);
  if (!info.videoDevConnType.isEmpty())
    _ui->_videoDevphysConnTypeComboBox->setEditText(info.videoDevConnType);
  _ui->_videoDevDeinterlaceCheckBox->setChecked(format.video.secondEnable != 0);
  _ui->_audioProcessFilterComboBox->setCurrentIndex(info.audioProcessFilter);
  (info.colorBar ? _ui->_colorBarRadioButton : _ui->_pureColorRadioButton)->setChecked(true);
  showColor(_ui->_selectColorPushButton, QColor::fromRgba(info.color));
  _ui->_delayChannelComboBox->setCurrentIndex(info.delayChannel - MediaChannel);
  _ui->_delayCacheComboBox->setEditText(QString::number(info.delayTime));
  _ui->_delayPathLineEdit->setText(info.delayCachePath);
  _ui->_flashPathLineEdit->setText(info.flashPath);
  _ui->_webPathLineEdit->setText(info.webUrl);
  _ui->_pdfPathLineEdit->setText(info.pdfPath);
  _textPage.load(info);
  _ui->_sdiVideoSignalListComboBox->setEditText(info.sdiVideoSignal);
  _ui->_sdiAudioSignalListComboBox->setEditText(info.sdiAudioSignal);
  _ui->_screenIndicatorComboBox->setCurrentIndex(info.screenIndex);
}

bool GDialogMediaSource::collectPath(const QString& text, QString tagKorviaShowSourceInfo::*field) {
  if (text.isEmpty())
    return false;
  _slot.source.*field = text;
  return true;
}

bool GDialogMediaSource::collectList(const QListWidget* list, QStringList tagKorviaShowSourceInfo::*field) {
  if (list->count() == 0)
    return false;
  QStringList rows;
  for (int row = 0; row < list->count(); ++row)
    rows.append(list->item(row)->text());
  _slot.source.*field = rows;
  return true;
}

bool GDialogMediaSource::collectDevice() {
  tagKorviaShowSourceInfo& info = _slot.source;
  const QSize rate =
      KorviaCommonUtil::splitePairValue(_ui->_videoDevFpsComboBox->currentText(), QStringLiteral("/"))
          .toSize();
  _slot.format.video.fpsNumerator = rate.width();
  _slot.format.video.fpsDenominator = rate.height();
  info.videoDevConnType = _ui->_videoDevphysConnTypeComboBox->currentText();
  const QSize size = typedSize();
  _slot.format.video.width = size.width();
  _slot.format.video.height = size.height();
  _slot.format.audio.sampleRate = _ui->_audioDevRateComboBox->currentText().toInt();
  storeDevice(_ui->_videoDeviceComboBox, info.videoDevName, info.videoDevId);
  storeDevice(_ui->_audioDeviceComboBox, info.audioDevName, info.audioDevId);
  _slot.format.video.secondEnable = _ui->_videoDevDeinterlaceCheckBox->isChecked() ? 1 : 0;
  info.audioProcessFilter = _ui->_audioProcessFilterComboBox->currentIndex();
  return true;
}

bool GDialogMediaSource::collectDelay() {
  tagKorviaShowSourceInfo& info = _slot.source;
  info.delayChannel = _ui->_delayChannelComboBox->currentIndex() + MediaChannel;
  info.delayTime = _ui->_delayCacheComboBox->currentText().toInt();
  info.delayCachePath = _ui->_delayPathLineEdit->text();
  KorviaCommonUtil::makesureExistDir(info.delayCachePath, true);
  if (QFileInfo(korvia::DrivePath::resolve(info.delayCachePath)).isDir())
    return true;
  _ui->_delayPathLineEdit->selectAll();
  return false;
}

bool GDialogMediaSource::collectWindow() {
  const QListWidgetItem* row = _ui->_hwndListWidget->currentItem();
  if (!row)
    return false;
  _slot.source.windowInfo = row->data(Qt::UserRole).value<tagKorviaWindowHWNDInfo>();
  return true;
}

bool GDialogMediaSource::collect() {
  using Info = tagKorviaShowSourceInfo;
  Info& info = _slot.source;
  switch (info.kind) {
    case SourceKindMovie:
      return collectPath(_ui->_moviePathLineEdit->text(), &Info::moviePath);
    case SourceKindMovieList:
      return collectList(_ui->_movieListListWidget, &Info::movieList);
    case SourceKindUrl:
      info.urlCache = _ui->_urlCacheComboBox->currentText().toInt();
      return collectPath(_ui->_urlComboBox->currentText(), &Info::url);
    case SourceKindKrmp:
      info.krmpRealtime = 1;
      return collectPath(_ui->_krmpComboBox->currentText(), &Info::krmpUrl);
    case SourceKindImage:
      return collectPath(_ui->_imagePathLineEdit->text(), &Info::imagePath);
    case SourceKindImageList:
      return collectList(_ui->_imageListListWidget, &Info::imageList);
    case SourceKindDevice:
      return collectDevice();
    case SourceKindDevice3D:
      if (_areDevicesListed)
        info.sdiCardIndex = _ui->_sdiInputDevListComboBox->currentIndex();
      info.sdiFormat = _ui->_sdiFormatListComboBox->currentText();
      info.sdiVideoSignal = _ui->_sdiVideoSignalListComboBox->currentText();
      info.sdiAudioSignal = _ui->_sdiAudioSignalListComboBox->currentText();
      return true;
    case SourceKindColor:
      info.colorBar = _ui->_colorBarRadioButton->isChecked() ? 1 : 0;
      return true;
    case SourceKindDelay:
      return collectDelay();
    case SourceKindFlash:
      return collectPath(_ui->_flashPathLineEdit->text(), &Info::flashPath);
    case SourceKindWeb: {
      QString url = _ui->_webPathLineEdit->text();
      if (url.isEmpty())
        return false;
      if (url.left(4) != QLatin1String("http") && url.left(5) != QLatin1String("https"))
        url.prepend(QStringLiteral("http://"));
      return collectPath(url, &Info::webUrl);
    }
    case SourceKindPdf:
      return collectPath(_ui->_pdfPathLineEdit->text(), &Info::pdfPath);
    case SourceKindText:
      _textPage.store(info);
      return !info.textParam.text.isEmpty();
    case SourceKindWindow:
      return collectWindow();
    case SourceKindScreen:
      info.screenIndex = _ui->_screenIndicatorComboBox->currentIndex();
      return true;
    case SourceKindIncome:
      info.incomeDecoder = static_cast<quint8>(_ui->_incomeHWDecodeCheckBox->currentIndex());
      info.incomeRealtime = 1;
      return collectPath(_ui->_incomePathLineEdit->text(), &Info::incomePath);
    default:
      // An Office source has nothing to collect, so it cannot be accepted.
      return false;
  }
}
