#include "console/KorviaSarnhawk.h"

#include <QDir>
#include <QMenu>
#include <QTimer>

#include "GLAudioDeviceInfo.h"
#include "KorviaMetaType.h"
#include "KorviaShowEngine.h"
#include "KorviaShowEvents.h"
#include "ShowDataPath.h"
#include "ZRCUtil.h"
#include "audio/AudioMixerPanel.h"
#include "audio/GDialogAudoDevCheck.h"
#include "console/GOutputNotice.h"
#include "console/GWidgetDisplayObject.h"
#include "console/GWidgetDisplayObjectConfig.h"
#include "console/LevelMeters.h"
#include "console/MultimediaClock.h"
#include "console/OutputSwitches.h"
#include "console/OutputWatch.h"
#include "console/Snapshots.h"
#include "console/StatisticsFetch.h"
#include "console/StatusPublisher.h"
#include "console/StripArea.h"
#include "console/SwitchLever.h"
#include "console/TransportRow.h"
#include "console/askOperator.h"
#include "console/windowInfoOf.h"
#include "output/GWidgetOutputStatistics.h"
#include "output/OutputSettings.h"
#include "output/OutputStatus.h"
#include "present/GWidgetSubtitle.h"
#include "services/ConsoleServers.h"
#include "services/GDialogProductAbout.h"
#include "services/IncomeNames.h"
#include "services/PaintPad.h"
#include "services/RemoteDesk.h"
#include "shell/GAppCaptionBar.h"
#include "shell/StartChannels.h"
#include "sources/MediaFiles.h"
#include "transitions/GWidgetTransitionEffectConfig.h"
#include "transitions/TakePanel.h"
#include "ui_KorviaSarnhawk.h"

namespace {

const QString kShowDataPath = QString::fromLatin1(korvia::kShowDataDrivePath);
const QString kTestFilmPath = kShowDataPath + QStringLiteral("Common\\Demo\\demo.mp4");

// Property of the application in which the host leaves the files to open at the start: a map from the decimal
// index of a channel to a path.
constexpr const char* kRequestedMediaProperty = "korviaOpen";

constexpr int kFrameIntervalMs = 30;
constexpr int kWorkIntervalMs = 1000;
constexpr quint32 kOpenDelayMs = 1000;
constexpr int kOpenWidthMin = 720;

/// Adds nothing. Modules recognise the console's engine by its type.
class ConsoleShowEngine final : public KorviaShowEngine {};

}  // namespace

KorviaSarnhawk::KorviaSarnhawk(GAppCaptionBar* captionBar, QWidget* parent)
    : KorviaSarnhawk(captionBar, parent, std::make_unique<ConsoleServers>()) {}

KorviaSarnhawk::KorviaSarnhawk(GAppCaptionBar* captionBar, QWidget* parent,
                               std::unique_ptr<ConsoleServers> servers)
    : QMainWindow(parent),
      _ui(std::make_unique<Ui::KorviaSarnhawk>()),
      _captionBar(captionBar),
      _strips(std::make_unique<StripArea>(this, &_stripChooser)),
      _transport(std::make_unique<TransportRow>(this, *_ui)),
      _outputs(std::make_unique<OutputSwitches>(this, *_ui)),
      _statistics(std::make_unique<StatisticsFetch>(this)),
      _outputSettings(std::make_unique<OutputSettings>(this, _outputs.get())),
      _status(std::make_unique<StatusPublisher>(this, _strips.get(), _statistics.get())),
      _mixer(std::make_unique<AudioMixerPanel>(this, *_ui)),
      _takes(std::make_unique<TakePanel>(this, _strips.get(), *_ui)),
      _snapshots(std::make_unique<Snapshots>(this)),
      _paintPad(std::make_unique<PaintPad>(this, _strips.get(), *_ui)),
      _incomeNames(std::make_unique<IncomeNames>(&_config)),
      _remote(std::make_unique<RemoteDesk>(
          RemoteDesk::Parts{this, _strips.get(), _takes.get(), _outputs.get(), _statistics.get()})),
      _servers(std::move(servers)) {
  setObjectName(QStringLiteral("KorviaSarnhawk"));
  _pages.add(PagePlace::Strips, _strips.get());
  _pages.add(PagePlace::Transport, _transport.get());
  _pages.add(PagePlace::StatisticsFetch, _statistics.get());
  _pages.add(PagePlace::StatusPublisher, _status.get());
  _pages.add(PagePlace::OutputSettings, _outputSettings.get());
  _pages.add(PagePlace::PaintPad, _paintPad.get());
  _pages.add(PagePlace::IncomeNames, _incomeNames.get());
  _pages.add(PagePlace::RemoteDesk, _remote.get());
  for (std::size_t index = 0; index < _config.channels.size(); ++index)
    _config.channels[index].source.incomePath = QStringLiteral("/income/%1").arg(index);
  _config.outputParam.items[OutputSlotRecord].recordPath = QStringLiteral("d:\\records\\vod\\%1\\").arg(0);
}

KorviaSarnhawk::~KorviaSarnhawk() {
  stopEngine();
  _pages.destroyUi();
}

bool KorviaSarnhawk::release() {
  if (isValid())
    delete this;
  return true;
}

void* KorviaSarnhawk::queryInterface(const Identifier* id, unsigned version) {
  if (isRequestFor(kIKorviaSarnhawkId, id, version))
    return static_cast<IKorviaSarnhawk*>(this);
  if (isRequestFor(kIKorviaSarnhawkPrivId, id, version))
    return static_cast<IKorviaSarnhawkPriv*>(this);
  if (isRequestFor(kIKorviaShowThreadSinkId, id, version))
    return static_cast<IKorviaShowThreadSink*>(this);
  if (isRequestFor(kIKorviaShowEngineSinkId, id, version))
    return static_cast<IKorviaShowEngineSink*>(this);
  if (isRequestFor(kIKorviaWebServerSinkId, id, version))
    return static_cast<IKorviaWebServerSink*>(this);
  if (id && *id == kIKorviaRTMPIncomeServerId)
    return _servers->queryIncome(id, version);
  if (id && *id == kIUnknownExId)
    return static_cast<IKorviaSarnhawk*>(this);
  return nullptr;
}

bool KorviaSarnhawk::create(void*, IProgressSink* progress, void*, const tagKorviaProductInfo* product,
                            const QString& rootPath) {
  ZRCUtil::enumSystemTTFFont(_fontInfo);
  if (product)
    _product = *product;
  _progress = progress;
  _rootPath = rootPath;
  overrideConfig(rootPath);
  if (_config.lyricFolders.isEmpty())
    addLyricFolders();
  _startTick = MultimediaClock::now();
  const bool created = createUi();
  if (created)
    centralWidget()->setEnabled(false);
  else
    qDebug("failed to create ui");
  return created;
}

void KorviaSarnhawk::overrideConfig(const QString& rootPath) {
  tagKorviaShowEngineInfo& info = _config.engineInfo;
  info.cachePath = rootPath + QStringLiteral("cache\\");
  info.showDataPath = rootPath + QStringLiteral("\\ShowData\\");
  // The show data lies in one fixed place, whatever the root is.
  info.showDataPath = kShowDataPath;
  info.secondDataPath = kShowDataPath;
  info.renderDevice = 1;
  info.renderAccelerator = 1;
  _config.layoutMode = 1;
  info.mediaChannelCount = korvia::kMediaChannelsAtStart;
  info.stageChannelCount = korvia::kStageChannelsAtStart;
  info.reserved1 = 1;
  info.reserved2 = 1;
  info.reserved3 = 1;
}

void KorviaSarnhawk::addLyricFolders() {
  const QFileInfoList drives = QDir::drives();
  for (const QString& folder :
       {QStringLiteral("/QQMusicCache/QQMusicLyric"), QStringLiteral("/KuGou/Lyric")}) {
    for (auto drive = drives.crbegin(); drive != drives.crend(); ++drive)
      _config.lyricFolders.append(drive->absolutePath() + folder);
  }
}

bool KorviaSarnhawk::createUi() {
  _ui->setupUi(this);
  _ui->_programNameLineEdit->setText(_config.programName);
  _strips->build(_config.layoutMode, _ui->_switchViewWidget);
  _levels = std::make_unique<LevelMeters>(this, _strips.get(), *_ui);
  _pages.add(PagePlace::Levels, _levels.get());
  _outputWatch = std::make_unique<OutputWatch>(_statistics.get(), _outputs.get(),
                                               new GOutputNotice(_ui->_pgmViewGroupBox), &_config);
  _pages.add(PagePlace::OutputWatch, _outputWatch.get());
  _outputStatus = std::make_unique<OutputStatus>(_statistics.get(), _outputs.get(), *_ui);
  _pages.add(PagePlace::OutputStatus, _outputStatus.get());
  createLever();
  createWindows();
  checkAudioDevices();
  ConsoleServers::checkPorts(this);
  createTabs();
  connectControls();
  createTakeMenus();
  createSystemMenu();
  _ui->_presentItemTabWidget->setCurrentIndex(0);
  window()->installEventFilter(this);
  _paintPad->create(this, tr("PaitPad"));
  if (!_servers->startWeb(this, &_config.httpPort) || !_servers->prepareIncome())
    return false;
  createTimers();
  return true;
}

void KorviaSarnhawk::createLever() {
  QWidget* container = _ui->_switchProcessPosVerticalSliderContainer;
  _lever = new SwitchLever(container);
  auto* layout = new QHBoxLayout(container);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(_lever);
  connect(_lever, &QSlider::valueChanged, this,
          &KorviaSarnhawk::onValueChanged_switchProcessPosVerticalSlider);
}

void KorviaSarnhawk::createWindows() {
  // Windows stack in the order in which they are made. A sound control is made before the transition editor,
  // a screen cut between the channel window and the statistics.
  _transitionConfig = new GWidgetTransitionEffectConfig(this, this);
  _pages.add(PagePlace::TransitionEditor, _transitionConfig);
  _channelConfig = new GWidgetDisplayObjectConfig(this, this);
  _pages.add(PagePlace::ChannelConfig, _channelConfig);
  _statisticsWindow = new GWidgetOutputStatistics(this, this);
  _statisticsWindow->follow(_statistics.get());
  _pages.add(PagePlace::StatisticsWindow, _statisticsWindow);
  _ui->_screenCutPushButton->setEnabled(false);
}

void KorviaSarnhawk::createTabs() {
  auto* subtitles = new GWidgetSubtitle(this, _ui->_subtitleTab);
  _ui->_subtitleTabLayout->addWidget(subtitles);
  _pages.add(PagePlace::Subtitle, subtitles);
  // The operator does not see the tabs of pages that do not exist yet.
  QTabWidget* tabs = _ui->_presentItemTabWidget;
  for (int index = tabs->count() - 1; index >= 0; --index) {
    if (tabs->widget(index)->layout()->isEmpty())
      tabs->removeTab(index);
  }
}

QStringList KorviaSarnhawk::audioDevices() const {
  return GLAudioDeviceInfo::enumAudioDeviceList(QStringLiteral("dsound"));
}

void KorviaSarnhawk::checkAudioDevices() {
  const QStringList devices = audioDevices();
  const auto isMissing = [&devices](const QString& name) {
    return !name.isEmpty() && !devices.contains(name);
  };
  if (isMissing(_config.pgmDevice) || isMissing(_config.pvmDevice)) {
    GDialogAudoDevCheck dialog(
        _config.pgmDevice, _config.pvmDevice, [this] { return audioDevices(); }, this);
    if (dialog.exec() == QDialog::Rejected) {
      if (!dialog.pgmFound())
        _config.pgmDevice.clear();
      if (!dialog.pvmFound())
        _config.pvmDevice.clear();
    }
  }
  _config.engineInfo.pgmDevice = _config.pgmDevice;
  _config.engineInfo.pvmDevice = _config.pvmDevice;
}

void KorviaSarnhawk::connectControls() {
  for (QPushButton* button :
       {_ui->_autoMixModePushButton, _ui->_allMixModePushButton, _ui->_manulMixModePushButton})
    connect(button, &QPushButton::clicked, this, &KorviaSarnhawk::onClicked_audioMixModePushButton);

  QSlider* pgm = _ui->_pgmVolumeVerticalSlider;
  connect(pgm, &QSlider::valueChanged, this, &KorviaSarnhawk::onValueChanged_pgmVolumeVerticalSlider);
  connect(pgm, &QSlider::sliderPressed, this, &KorviaSarnhawk::onSliderPressed_pgmVolumeVerticalSlider);
  connect(pgm, &QSlider::sliderReleased, this, &KorviaSarnhawk::onSliderReleased_pgmVolumeVerticalSlider);
  QSlider* pvm = _ui->_pvmVolumeVerticalSlider;
  connect(pvm, &QSlider::valueChanged, this, &KorviaSarnhawk::onValueChanged_pvmVolumeVerticalSlider);
  connect(pvm, &QSlider::sliderPressed, this, &KorviaSarnhawk::onSliderPressed_pvmVolumeVerticalSlider);
  connect(pvm, &QSlider::sliderReleased, this, &KorviaSarnhawk::onSliderReleased_pvmVolumeVerticalSlider);

  const auto onClick = [this](QPushButton* button, void (KorviaSarnhawk::*slot)()) {
    connect(button, &QPushButton::clicked, this, slot);
  };
  onClick(_ui->_playMediaPushButton, &KorviaSarnhawk::onClicked_playMediaPushButton);
  onClick(_ui->_stopMediaPushButton, &KorviaSarnhawk::onClicked_stopMediaPushButton);
  onClick(_ui->_pauseMediaPushButton, &KorviaSarnhawk::onClicked_pauseMediaPushButton);
  onClick(_ui->_prevMediaPushButton, &KorviaSarnhawk::onClicked_prevMediaPushButton);
  onClick(_ui->_nextMediaPushButton, &KorviaSarnhawk::onClicked_nextMediaPushButton);

  QSlider* seek = _ui->_seekMediaHorizontalSlider;
  connect(seek, &QSlider::valueChanged, this, &KorviaSarnhawk::onValueChanged_seekMediaHorizontalSlider);
  connect(seek, &QSlider::sliderPressed, this, &KorviaSarnhawk::onSliderPressed_seekMediaHorizontalSlider);
  connect(seek, &QSlider::sliderReleased, this, &KorviaSarnhawk::onSliderReleased_seekMediaHorizontalSlider);

  onClick(_ui->_startRecordPushButton, &KorviaSarnhawk::onClicked_startRecordPushButton);
  onClick(_ui->_startStreamPushButton, &KorviaSarnhawk::onClicked_startStreamPushButton);
  onClick(_ui->_screenCutPushButton, &KorviaSarnhawk::onClicked_screenCutPushButton);
  onClick(_ui->_paintOutputPushButton, &KorviaSarnhawk::onClicked_paintOutputPushButton);
}

void KorviaSarnhawk::createTakeMenus() {
  using Slot = void (KorviaSarnhawk::*)();
  constexpr Slot takeSlots[TakePanel::kButtonCount] = {
      &KorviaSarnhawk::onAction_takeEffect_takeTransitionToolButton_0,
      &KorviaSarnhawk::onAction_takeEffect_takeTransitionToolButton_1,
      &KorviaSarnhawk::onAction_takeEffect_takeTransitionToolButton_2,
      &KorviaSarnhawk::onAction_takeEffect_takeTransitionToolButton_3};
  constexpr Slot configSlots[TakePanel::kButtonCount] = {
      &KorviaSarnhawk::onAction_showConfig_takeTransitionToolButton_0,
      &KorviaSarnhawk::onAction_showConfig_takeTransitionToolButton_1,
      &KorviaSarnhawk::onAction_showConfig_takeTransitionToolButton_2,
      &KorviaSarnhawk::onAction_showConfig_takeTransitionToolButton_3};
  for (int index = 0; index < TakePanel::kButtonCount; ++index) {
    QToolButton* button = _takes->button(index);
    auto* menu = new QMenu(button);
    connect(menu->addAction(tr("Take Effect")), &QAction::triggered, this, takeSlots[index]);
    connect(menu->addAction(tr("Effect Config")), &QAction::triggered, this, configSlots[index]);
    button->setMenu(menu);
    connect(button, &QToolButton::clicked, this, takeSlots[index]);
  }
}

void KorviaSarnhawk::createSystemMenu() {
  _systemMenu = new QMenu(this);
  QAction* config = _systemMenu->addAction(tr("System Config"), this, &KorviaSarnhawk::onAction_systemConfig);
  // There is no system dialog to show yet.
  config->setEnabled(false);
  _systemMenu->addSeparator();
  _systemMenu->addAction(tr("Environment Check"), this, &KorviaSarnhawk::onAction_environmentCheck);
  _systemMenu->addAction(tr("About"), this, &KorviaSarnhawk::onAction_about);
  _systemMenu->addAction(tr("Quit"), this, &KorviaSarnhawk::onAction_quit);
  if (_captionBar)
    _captionBar->mainMenuToolButton()->setMenu(_systemMenu);
}

void KorviaSarnhawk::createTimers() {
  _workTimer = new QTimer(this);
  connect(_workTimer, &QTimer::timeout, this, &KorviaSarnhawk::onWorkTimer);
  _workTimer->start(kWorkIntervalMs);
  _frameTimer = new QTimer(this);
  _frameTimer->setTimerType(Qt::PreciseTimer);
  connect(_frameTimer, &QTimer::timeout, this, &KorviaSarnhawk::onFrameTimer);
  _frameTimer->start(kFrameIntervalMs);
}

bool KorviaSarnhawk::isEngineDue() const {
  return !_engineRequested && _resizeCount != 0 && width() > kOpenWidthMin &&
         MultimediaClock::since(_startTick) > kOpenDelayMs;
}

KorviaShowEngine* KorviaSarnhawk::newEngine() {
  return new ConsoleShowEngine;
}

void KorviaSarnhawk::openEngine() {
  if (_engine)
    return;
  _engine = newEngine();
  _engine->start(this, ShowThreadNormal);
  // The record is packed, so that a reference to one of its fields could be misaligned.
  const qint32 numerator = _config.engineInfo.format.fpsNumerator;
  const qint32 denominator = _config.engineInfo.format.fpsDenominator;
  _engine->setFps(static_cast<float>(denominator > 0 ? numerator / denominator : 0));
  connect(this, &KorviaSarnhawk::sig_PostEventResult, this, &KorviaSarnhawk::slot_PostEventResult);

  tagKorviaShowWindowPackInfo windows;
  for (int index = 0; index < std::min(_config.engineInfo.mediaChannelCount, kMediaChannelMax); ++index) {
    if (GWidgetDisplayObject* strip = _strips->media(index))
      strip->fillWindowInfo(windows.media[static_cast<std::size_t>(index)]);
  }
  for (int index = 0; index < std::min(_config.engineInfo.stageChannelCount, kStageChannelMax); ++index) {
    if (GWidgetDisplayObject* strip = _strips->stage(index))
      strip->fillWindowInfo(windows.stage[static_cast<std::size_t>(index)]);
  }
  // The karaoke entry stays empty until there is a karaoke page.
  windows.pvm = windowInfoOf(_ui->_pvmPreviewWidget);
  windows.pgm = windowInfoOf(_ui->_pgmPreviewWidget);
  _engine->postEvent(ShowEventOpen, toVariant(_config.engineInfo), toVariant(windows));
  _ui->_pvmPreviewWidget->installEventFilter(this);
  _ui->_pgmPreviewWidget->installEventFilter(this);
}

void KorviaSarnhawk::onEngineOpened() {
  centralWidget()->setEnabled(true);
  for (int index = 0; index < TakePanel::kButtonCount; ++index)
    updateTakeButton(index);
  _pages.engineOpened();
  if (_engine)
    postInitialState();
  _outputs->applyDirectOutputs();
  _servers->startIncome(_rootPath, _config.webPort);
  _remote->open();
  if (_progress)
    _progress->onProgressText(tr("Please Wait"));
  qDebug("startup spend time : %u", MultimediaClock::since(_startTick));
  emit sig_EngineOpened();
}

void KorviaSarnhawk::postInitialState() {
  postEvent(ShowEventAudioMixMode, _config.audioMixer.mixMode);
  postEvent(ShowEventVolume, PGMObject, _config.audioMixer.pgmVolume);
  postEvent(ShowEventVolume, PVMObject, _config.audioMixer.pvmVolume);
  postEvent(ShowEventSelectChannel, PVMObject, _config.pvmChannel);
  postEvent(ShowEventSelectChannel, PGMObject, _config.pgmChannel);
  if (_config.engineInfo.mediaChannelCount != 0)
    openTestFilm();
  openRequestedMedia();
}

void KorviaSarnhawk::openTestFilm() {
  tagKorviaShowChannelSlot& slot = _config.channels[0];
  slot.source.kind = SourceKindMovie;
  slot.source.moviePath = kTestFilmPath;
  _engine->openSource(SourceObject, slot.source, slot.format, nullptr);
}

void KorviaSarnhawk::openRequestedMedia() {
  const QVariantMap files = qApp->property(kRequestedMediaProperty).toMap();
  for (auto file = files.cbegin(); file != files.cend(); ++file) {
    bool isNumber = false;
    const int index = file.key().toInt(&isNumber);
    if (!isNumber || !openMedia(index, file.value().toString()))
      qDebug("failed to open media on channel %s", qPrintable(file.key()));
  }
}

bool KorviaSarnhawk::openMedia(int index, const QString& path) {
  GWidgetDisplayObject* strip = _strips->media(index);
  if (!_engine || !strip)
    return false;
  tagKorviaShowChannelSlot slot = _config.channels[static_cast<std::size_t>(index)];
  MediaFiles::fillSlot(path, slot);
  strip->openSlot(slot);
  return true;
}

void KorviaSarnhawk::hideAll() {
  _pages.hideAll();
}

void KorviaSarnhawk::close() {
  stopEngine();
  destroyUi();
  _servers->close();
}

void KorviaSarnhawk::stopEngine() {
  for (QTimer* timer : {_workTimer, _frameTimer}) {
    if (!timer)
      continue;
    timer->disconnect(this);
    timer->stop();
  }
  delete _workTimer;
  _workTimer = nullptr;
  _remote->close();
  if (!_engine)
    return;
  _ui->_pvmPreviewWidget->removeEventFilter(this);
  _ui->_pgmPreviewWidget->removeEventFilter(this);
  _engine->postEvent(ShowEventClose);
  disconnect(this, &KorviaSarnhawk::sig_PostEventResult, this, &KorviaSarnhawk::slot_PostEventResult);
  _engine->stop();
  delete _engine;
  _engine = nullptr;
}

void KorviaSarnhawk::destroyUi() {
  qDebug("destory paint pad ...");
  _pages.destroyUi();
}

void KorviaSarnhawk::onAction_quit() {
  // The window manager may ask for the close a second time before the question is on the screen.
  if (_isAskedToQuit)
    return;
  _isAskedToQuit = true;
  const QPointer<KorviaSarnhawk> self(this);
  const QString running = _outputWatch ? _outputWatch->runningText() : QString();
  const bool isYes = askOperator(this, tr("Are you sure to quit ?"), running);
  if (!self)
    return;
  _isAskedToQuit = false;
  if (isYes && parentWidget())
    parentWidget()->close();
}

void KorviaSarnhawk::onAction_systemConfig() {}

void KorviaSarnhawk::onAction_formatConfig() {}

void KorviaSarnhawk::onAction_outputConfig() {}

void KorviaSarnhawk::onAction_environmentCheck() {
  _servers->showPorts(this);
}

void KorviaSarnhawk::onAction_about() {
  GDialogProductAbout dialog(_rootPath, &_product, this);
  dialog.exec();
}

void KorviaSarnhawk::resizeEvent(QResizeEvent* event) {
  ++_resizeCount;
  QMainWindow::resizeEvent(event);
}

bool KorviaSarnhawk::eventFilter(QObject* watched, QEvent* event) {
  if (watched == _ui->_pvmPreviewWidget || watched == _ui->_pgmPreviewWidget) {
    if (event->type() == QEvent::Resize) {
      auto* widget = static_cast<QWidget*>(watched);
      const int bus = widget == _ui->_pvmPreviewWidget ? PVMObject : PGMObject;
      postEvent(ShowEventResizeWindow, bus, toVariant(windowInfoOf(widget)));
      return true;
    }
  } else if (watched == window()) {
    followWindow(event);
  }
  return QMainWindow::eventFilter(watched, event);
}

void KorviaSarnhawk::followWindow(QEvent* event) {
  const bool isGone = event->type() == QEvent::Hide ||
                      (event->type() == QEvent::WindowStateChange && window()->isMinimized());
  if (isGone)
    _strips->hideFloats();
}
