#include "console/GWidgetDisplayObject.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "IKorviaShowSource.h"
#include "KorviaMetaType.h"
#include "KorviaShowEngine.h"
#include "KorviaShowEvents.h"
#include "audio/QVUMeter.h"
#include "console/GFloatWidgetToolButton.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/MultimediaClock.h"
#include "console/ShowChange.h"
#include "console/StripChooser.h"
#include "console/askOperator.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "console/windowInfoOf.h"
#include "sources/GDialogMediaSource.h"
#include "sources/MediaFiles.h"
#include "tagKorviaShowAudioLevel.h"
#include "ui_GWidgetDisplayObject.h"

namespace {

// An income stream that delivers no more than this counts as silent.
constexpr float kIncomeRateMin = 10.0F;

constexpr int kMarkSize = 20;

const QString kPreviewBorder = QStringLiteral("#_mainFrame{border: 2px solid rgb(9, 124, 37);}");
const QString kProgramBorder = QStringLiteral("#_videoFrame{border: 2px solid rgb(232, 32, 32);}");
const QString kHeardStyle = QStringLiteral("QPushButton{background-color: rgb(0, 85, 0);}");

// Setting a style sheet lays out everything below the frame again, so it is set only when it changes.
void setBorder(QWidget* frame, const QString& style) {
  if (frame->styleSheet() != style)
    frame->setStyleSheet(style);
}

// The icon looks the same when the button is disabled, because it tells whether the channel is heard.
QIcon audioIcon(const char* name) {
  const QString file = QStringLiteral(":/KorviaSarnhawk/Resources/icons/%1.png").arg(QLatin1String(name));
  QIcon icon(file);
  icon.addFile(file, QSize(), QIcon::Disabled);
  return icon;
}

}  // namespace

GWidgetDisplayObject::GWidgetDisplayObject(IKorviaSarnhawkPriv* priv, const StripChooser* chooser,
                                           int objectId, QWidget* parent)
    : QWidget(parent),
      _ui(std::make_unique<Ui::GWidgetDisplayObject>()),
      _priv(priv),
      _chooser(chooser),
      _objectId(objectId),
      _soundIcon(audioIcon("sound")),
      _muteIcon(audioIcon("mute")) {
  _kind = getObjectKind(objectId, _index);
  // The picture needs a native window as parent. The widgets above the strip need none.
  setAttribute(Qt::WA_DontCreateNativeAncestors);
  winId();
  _ui->setupUi(this);

  _floatButton = new GFloatWidgetToolButton(window());
  connect(_floatButton->button(), &QToolButton::clicked, this,
          &GWidgetDisplayObject::onClicked_openSourcePushButton);
  connect(_ui->_configPushButton, &QPushButton::clicked, this,
          &GWidgetDisplayObject::onClicked_configPushButton);
  connect(_ui->_closePushButton, &QPushButton::clicked, this,
          &GWidgetDisplayObject::onClicked_closeSourcePushButton);
  connect(_ui->_enableAudioPushButton, &QPushButton::clicked, this,
          &GWidgetDisplayObject::onClicked_enableAudioPushButton);
  _ui->_videoPreviewWidget->installEventFilter(this);

  _auMeter = new QVUMeter(_ui->_aumeterFrame, true);
  auto* meterLayout = new QVBoxLayout(_ui->_aumeterFrame);
  meterLayout->setContentsMargins(0, 0, 0, 0);
  meterLayout->addWidget(_auMeter);
  _ui->_enableAudioPushButton->setIcon(_muteIcon);
  // There is no sound control to show yet.
  _ui->_enableAudioPushButton->setEnabled(false);
  _ui->_closePushButton->hide();
  _ui->_sourceMarkLabel->setPixmap(
      QIcon(QStringLiteral(":/KorviaSarnhawk/Resources/style/warning.png")).pixmap(kMarkSize, kMarkSize));
  _ui->_sourceMarkLabel->hide();

  if (isStage()) {
    // A stage has no sound of its own.
    _ui->_audioControlFrame->hide();
    _ui->_enableAudioPushButton->hide();
    if (!_chooser->stage) {
      _floatButton->button()->setEnabled(false);
      _floatButton->button()->setToolTip(tr("No stages are installed"));
    }
  } else {
    _floatButton->button()->setToolTip(tr("Open Media"));
    setAcceptDrops(true);
  }
}

GWidgetDisplayObject::~GWidgetDisplayObject() {
  delete _picker.data();
  delete _floatButton.data();
}

bool GWidgetDisplayObject::isMedia() const {
  return _kind == MediaObjectKind;
}

bool GWidgetDisplayObject::isStage() const {
  return _kind == StageObjectKind;
}

void GWidgetDisplayObject::fillWindowInfo(tagKorviaWindowInfo& info) {
  info = windowInfoOf(_ui->_videoPreviewWidget);
}

void GWidgetDisplayObject::onEngineOpened() {
  setTitle();
  updateOverlay();
}

void GWidgetDisplayObject::onFrameTick() {
  updateOverlay();
  updateWatchdog();
  updateMark();
}

void GWidgetDisplayObject::onWorkTick() {}

void GWidgetDisplayObject::updateLevels(const tagKorviaShowAudioLevel& levels) {
  if (!isMedia())
    return;
  const tagKorviaShowAudioLevel::Pair level = levels.channel(_index);
  _auMeter->setValues(level.left, level.right);
  setAudioState(static_cast<int>(levels.active(_index)));
}

void GWidgetDisplayObject::setAudioState(int state) {
  if (state == _audioState)
    return;
  _audioState = state;
  _ui->_enableAudioPushButton->setIcon(state == 0 ? _muteIcon : _soundIcon);
  _ui->_enableAudioPushButton->setStyleSheet(state == 0 ? QString() : kHeardStyle);
}

void GWidgetDisplayObject::setSelectedPVM(bool selected) {
  setBorder(_ui->_mainFrame, selected ? kPreviewBorder : QString());
}

void GWidgetDisplayObject::setSelectedPGM(bool selected) {
  setBorder(_ui->_videoFrame, selected ? kProgramBorder : QString());
  applyOnAirRule(_priv->getConfig()->pgmChannel);
}

void GWidgetDisplayObject::applyOnAirRule(int targetId) {
  if (!isMedia())
    return;
  const bool onAir = targetId == _objectId;
  IKorviaShowSource* source = _priv->getSource(static_cast<KorviaShowObjectID>(_objectId));
  if (!source)
    return;
  const tagKorviaShowSourceInfo& info = _priv->getConfig()->channels[static_cast<std::size_t>(_index)].source;
  int action = PGMActionNone;
  if (info.kind == SourceKindMovie)
    action = info.moviePGMAction;
  else if (info.kind == SourceKindMovieList)
    action = info.listPGMAction;
  if (onAir && (action == PGMActionPlay || action == PGMActionPauseResume))
    setHold(source, false);
  else if (!onAir && action == PGMActionPauseResume)
    setHold(source, true);
}

void GWidgetDisplayObject::setHold(IKorviaShowSource* source, bool hold) {
  _isOnHold = hold;
  source->setHold(hold);
}

void GWidgetDisplayObject::hideFloat() {
  if (_floatButton)
    _floatButton->hide();
}

void GWidgetDisplayObject::setTitle() {
  if (isMedia())
    _ui->_titleLabel->setText(tr("Media-%1").arg(_index));
  else if (isStage())
    _ui->_titleLabel->setText(tr("Stage-%1").arg(_index));
}

bool GWidgetDisplayObject::isOccupied() const {
  if (isMedia())
    return _priv->getSource(static_cast<KorviaShowObjectID>(SourceObject + _index)) != nullptr;
  return _priv->getConfig()->stages[static_cast<std::size_t>(_index)].inUse != 0;
}

bool GWidgetDisplayObject::isPictureOnScreen() const {
  return _ui->_videoPreviewWidget->isVisible() && !window()->isMinimized();
}

void GWidgetDisplayObject::updateOverlay() {
  // The form resizes the strip before the floating button is made.
  if (!_floatButton)
    return;
  placeFloat();
  // The floating button is a window of its own, so Qt does not disable it together with the desk.
  _floatButton->setEnabled(isEnabled() && _priv->getEngine());
  if (isMedia() || isStage())
    setOccupied(isOccupied());
}

void GWidgetDisplayObject::placeFloat() {
  const QWidget* picture = _ui->_videoPreviewWidget;
  const QRect place = picture->geometry();
  const QPoint centre((place.left() + place.right()) / 2, (place.top() + place.bottom()) / 2);
  const QPoint position = picture->parentWidget()->mapToGlobal(centre) -
                          QPoint(_floatButton->width() / 2, _floatButton->height() / 2);
  if (position == _floatPosition)
    return;
  _floatPosition = position;
  _floatButton->move(position);
}

void GWidgetDisplayObject::setOccupied(bool occupied) {
  _ui->_closePushButton->setVisible(occupied);
  if (!occupied && isPictureOnScreen())
    _floatButton->showInFull();
  else
    _floatButton->hide();
}

void GWidgetDisplayObject::updateWatchdog() {
  if (!isMedia())
    return;
  IKorviaShowSource* source = _priv->getSource(static_cast<KorviaShowObjectID>(_objectId));
  if (!source)
    return;
  const tagKorviaShowSourceInfo& info = _priv->getConfig()->channels[static_cast<std::size_t>(_index)].source;
  tagKorviaSourceLinkState state;
  if (info.kind == SourceKindUrl || info.kind == SourceKindKrmp) {
    source->getState(state);
    restartSilentSource(source, state.rate != 0.0F);
  } else if (info.kind == SourceKindIncome && info.incomeRealtime == 0) {
    source->getState(state);
    restartSilentSource(source, state.rate > kIncomeRateMin);
  }
}

void GWidgetDisplayObject::updateMark() {
  if (!isMedia())
    return;
  IKorviaShowSource* source = _priv->getSource(static_cast<KorviaShowObjectID>(_objectId));
  const int kind = _priv->getConfig()->channels[static_cast<std::size_t>(_index)].source.kind;
  const QString trouble =
      source ? _health.examine(source, kind, _isOnHold ? SourceHealth::Hold::On : SourceHealth::Hold::Off)
             : QString();
  if (_ui->_sourceMarkLabel->toolTip() != trouble)
    _ui->_sourceMarkLabel->setToolTip(trouble);
  _ui->_sourceMarkLabel->setVisible(!trouble.isEmpty());
}

void GWidgetDisplayObject::restartSilentSource(IKorviaShowSource* source, bool isAlive) {
  if (isAlive) {
    _restartTick = 0;
    return;
  }
  if (_restartTick == 0)
    _restartTick = MultimediaClock::now();
  if (MultimediaClock::since(_restartTick) <= _priv->getConfig()->netStreamDisconnectTimeOut)
    return;
  qDebug("media stream restart : %d", _index);
  _restartTick = 0;
  source->stop();
  source->play();
}

void GWidgetDisplayObject::onClicked_configPushButton() {
  _priv->showChannelConfig(_ui->_configPushButton, _objectId);
}

void GWidgetDisplayObject::onClicked_enableAudioPushButton() {
  _priv->showSoundControl(_objectId, _ui->_enableAudioPushButton);
}

void GWidgetDisplayObject::onClicked_openSourcePushButton() {
  tagKorviaSarnhawkConfig* config = _priv->getConfig();
  if (isMedia()) {
    openPicker();
  } else if (isStage() && !isOccupied() && _chooser->stage) {
    tagKorviaStageSlot slot = config->stages[static_cast<std::size_t>(_index)];
    if (_chooser->stage(window(), slot) && !slot.folder.isEmpty())
      openStage(slot);
  }
}

void GWidgetDisplayObject::openPicker() {
  if (_picker) {
    _picker->raise();
    _picker->activateWindow();
    return;
  }
  const tagKorviaSarnhawkConfig* config = _priv->getConfig();
  // Without a parent it blocks no window, and without a loop of its own it does not outlive the strip.
  _picker = new GDialogMediaSource(config->engineInfo, config->channels[static_cast<std::size_t>(_index)]);
  _picker->setAttribute(Qt::WA_DeleteOnClose);
  connect(_picker, &QDialog::accepted, this, [this] { openSlot(_picker->slot()); });
  _picker->show();
}

void GWidgetDisplayObject::closePicker() {
  if (_picker)
    _picker->reject();
}

void GWidgetDisplayObject::openFiles(const QStringList& paths) {
  if (_picker)
    return _picker->openFiles(paths);
  const QPointer<GWidgetDisplayObject> self(this);
  const bool isOnAir = _priv->getConfig()->pgmChannel == _objectId && isOccupied();
  if (isOnAir && !askOperator(this, tr("Are you sure to close this source ?"),
                              tr("%1 is ON AIR").arg(_ui->_titleLabel->text()), QMessageBox::No))
    return;
  if (!self || !_priv->getEngine())
    return;
  tagKorviaShowChannelSlot slot = _priv->getConfig()->channels[static_cast<std::size_t>(_index)];
  // The size was that of the source before.
  slot.format = tagKorviaFormatInfo();
  MediaFiles::fillSlot(paths, slot);
  openSlot(slot);
}

void GWidgetDisplayObject::openSlot(const tagKorviaShowChannelSlot& chosen) {
  tagKorviaShowChannelSlot& slot = _priv->getConfig()->channels[static_cast<std::size_t>(_index)];
  slot = chosen;
  auto* host = static_cast<IUnknownEx*>(_priv->queryInterface(&kIUnknownExId, kInterfaceVersion));
  if (KorviaShowEngine* engine = _priv->getEngine())
    engine->openSource(static_cast<KorviaShowObjectID>(SourceObject + _index), slot.source, slot.format,
                       host);
  _isOnHold = false;
  // The silence of the source before is not that of this one.
  _restartTick = 0;
  setTitle();
  _ui->_closePushButton->show();
  _priv->saveChanges(ShowChangeMediaChannel);
}

void GWidgetDisplayObject::openStage(const tagKorviaStageSlot& chosen) {
  tagKorviaStageSlot& slot = _priv->getConfig()->stages[static_cast<std::size_t>(_index)];
  slot = chosen;
  slot.inUse = 1;
  _priv->postEvent(ShowEventAddComponent, _objectId, toVariant(slot.info));
  setTitle();
  _ui->_closePushButton->show();
  _priv->saveChanges(ShowChangeStageChannel);
}

void GWidgetDisplayObject::onClicked_closeSourcePushButton() {
  if (isMedia())
    closeMedia();
  else if (isStage())
    closeStage();
}

void GWidgetDisplayObject::closeMedia() {
  const bool isOnAir = _priv->getConfig()->pgmChannel == _objectId;
  if (!askOperator(this, tr("Are you sure to close this source ?"),
                   isOnAir ? tr("%1 is ON AIR").arg(_ui->_titleLabel->text()) : QString(),
                   isOnAir ? QMessageBox::No : QMessageBox::NoButton))
    return;
  if (KorviaShowEngine* engine = _priv->getEngine())
    engine->closeSource(static_cast<KorviaShowObjectID>(SourceObject + _index));
  _priv->getConfig()->channels[static_cast<std::size_t>(_index)].source.kind = SourceKindNone;
  _ui->_closePushButton->hide();
  if (_pgmInOutActionTimer)
    _pgmInOutActionTimer->stop();
  _restartTick = 0;
  _priv->saveChanges(ShowChangeMediaChannel, -1);
}

void GWidgetDisplayObject::closeStage() {
  tagKorviaStageSlot& slot = _priv->getConfig()->stages[static_cast<std::size_t>(_index)];
  slot.inUse = 0;
  _priv->postEvent(ShowEventRemoveComponent, _objectId, slot.info.scene.id);
  _ui->_closePushButton->hide();
  _priv->saveChanges(ShowChangeStageChannel, -1);
}

void GWidgetDisplayObject::onPGMInOutActionTimer() {
  applyOnAirRule(_priv->getConfig()->pgmChannel);
}

void GWidgetDisplayObject::selectFor(int bus) {
  _priv->postEvent(ShowEventSelectChannel, bus, _objectId);
}

bool GWidgetDisplayObject::eventFilter(QObject* watched, QEvent* event) {
  if (watched == _ui->_videoPreviewWidget) {
    if (event->type() == QEvent::Resize) {
      _priv->postEvent(ShowEventResizeWindow, _objectId, toVariant(windowInfoOf(_ui->_videoPreviewWidget)));
      return true;
    }
    if (event->type() == QEvent::MouseButtonPress) {
      const Qt::MouseButton button = static_cast<QMouseEvent*>(event)->button();
      if (button == Qt::LeftButton)
        selectFor(PVMObject);
      else if (button == Qt::RightButton)
        selectFor(PGMObject);
    }
  }
  return QWidget::eventFilter(watched, event);
}

void GWidgetDisplayObject::dragEnterEvent(QDragEnterEvent* event) {
  if (_priv->getEngine() && !MediaFiles::filesOf(event->mimeData()).isEmpty())
    event->acceptProposedAction();
}

void GWidgetDisplayObject::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  // A question must not hold up the file manager, which waits for the drop to be answered.
  QTimer::singleShot(0, this, [this, files = MediaFiles::filesOf(event->mimeData())] { openFiles(files); });
}

void GWidgetDisplayObject::moveEvent(QMoveEvent* event) {
  QWidget::moveEvent(event);
  updateOverlay();
}

void GWidgetDisplayObject::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  updateOverlay();
}
