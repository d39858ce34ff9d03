// The console: the operator's desk inside the frame, and the owner of the show record, the engine, the
// servers and all child windows. Console thread, except what the show sinks say.
#pragma once
#include <QMainWindow>
#include <QPointer>
#include <atomic>
#include <memory>

#include "IGWhitePadSink.h"
#include "IKorviaShowEngineSink.h"
#include "IKorviaShowThreadSink.h"
#include "IKorviaWebServerSink.h"
#include "console/ConsolePages.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/StripChooser.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "shell/IKorviaSarnhawk.h"
#include "shell/tagKorviaProductInfo.h"
#include "tagGSystemTTFFontInfo.h"

class AudioMixerPanel;
class ConsoleServers;
class GAppCaptionBar;
class GWidgetDisplayObjectConfig;
class GWidgetOutputStatistics;
class GWidgetTransitionEffectConfig;
class IncomeNames;
class LevelMeters;
class OutputSettings;
class OutputStatus;
class OutputSwitches;
class OutputWatch;
class PaintPad;
class QMenu;
class QTimer;
class RemoteDesk;
class Snapshots;
class StatisticsFetch;
class StatusPublisher;
class StripArea;
class SwitchLever;
class TakePanel;
class TransportRow;

namespace Ui {
class KorviaSarnhawk;
}

class KorviaSarnhawk : public QMainWindow,
                       public IKorviaSarnhawk,
                       public IKorviaSarnhawkPriv,
                       public IKorviaShowThreadSink,
                       public IKorviaShowEngineSink,
                       public IGWhitePadSink,
                       public IKorviaWebServerSink {
  Q_OBJECT

 public:
  /// `captionBar` carries the button of the system menu and must outlive the console.
  KorviaSarnhawk(GAppCaptionBar* captionBar, QWidget* parent);
  /// The owner calls close() first. An engine that still runs is stopped here, because it would call a
  /// deleted sink.
  ~KorviaSarnhawk() override;

  bool isValid() override { return true; }
  bool release() override;
  void* queryInterface(const Identifier* id, unsigned version) override;

  // IKorviaSarnhawk
  bool create(void* reserved1, IProgressSink* progress, void* reserved2, const tagKorviaProductInfo* product,
              const QString& rootPath) override;
  void close() override;

  // IKorviaSarnhawkPriv
  KorviaSarnhawk* getMainWindow() override { return this; }
  QString getRootPath() override { return _rootPath; }
  tagKorviaSarnhawkConfig* getConfig() override { return &_config; }
  KorviaShowEngine* getEngine() override { return _engine; }
  void postEvent(quint64 eventId, QVariant a1 = QVariant(), QVariant a2 = QVariant(),
                 QVariant a3 = QVariant(), QVariant a4 = QVariant()) override;
  tagGSystemTTFFontInfo* getSystemFontInfo() override { return &_fontInfo; }
  QList<tagKorviaComponentParam*>* getComponentCatalog() override { return &_componentCatalog; }
  QList<tagKorviaComponentParam*>* getStageCatalog() override { return &_stageCatalog; }
  void showSoundControl(int channelId, QWidget* button) override;
  void showTransitionConfig(int transitionIndex) override;
  void showChannelConfig(QWidget* button, int channelId) override;
  void saveChanges(unsigned what, int channel = -1) override;
  void updateTakeButton(int transitionIndex) override;
  void takeChannel(int channelId, int transitionIndex) override;
  void takeSelected(int transitionIndex) override;
  QList<GListWidgetItemInfo>* getEffectList(int catalog) override;
  IKorviaShowSource* getSource(KorviaShowObjectID id) override;

  // IKorviaShowThreadSink, engine thread
  void onPostEventResult(quint64 eventId, quint64 result, QVariant a1, QVariant a2, QVariant a3,
                         QVariant a4) override;

  // IKorviaShowEngineSink, engine thread
  void onAudioData(KorviaShowObjectID id, const void* data, unsigned a, unsigned b, int c, const void* d,
                   int e) override;
  QImage lockBackground(KorviaShowObjectID id) override;
  void unlockBackground(KorviaShowObjectID id, QImage& image) override;
  void onSourceNotify(KorviaShowObjectID id, int what, int param) override;

  // IGWhitePadSink
  void onCommitWhitePadImage(const QImage& image) override;
  void onSetWhitePadValid(bool valid) override;
  void onPauseWhitePad(bool pause) override;
  void onSelectWhitePadChannel(int index) override;
  void onWhitePadShown() override;
  void onWhitePadHidden() override;

  // IKorviaWebServerSink, any thread
  int onWebRequest() override { return 0; }

  /// Null before create().
  QMenu* systemMenu() const { return _systemMenu; }
  /// Hides all floating windows; the frame calls it when it closes.
  void hideAll();
  void takeSnapshot();
  /// Opens the output dialog, or raises it.
  void showOutputConfig();
  /// Shows the statistics window with the present addresses of the targets.
  void showOutputStatistics();

  /// Shows a film or picture on media channel `index`, as if the operator had chosen it there. False while no
  /// engine is open or the channel does not exist.
  bool openMedia(int index, const QString& path);
  /// How stage strips ask the operator.
  void setStripChooser(StripChooser chooser) { _stripChooser = std::move(chooser); }

 signals:
  void sig_PostEventResult(quint64 eventId, quint64 result, QVariant a1, QVariant a2, QVariant a3,
                           QVariant a4);
  /// The engine has opened and the desk is enabled.
  void sig_EngineOpened();

 public slots:
  void slot_PostEventResult(quint64 eventId, quint64 result, QVariant a1, QVariant a2, QVariant a3,
                            QVariant a4);
  void onFrameTimer();
  void onWorkTimer();

  void onClicked_playMediaPushButton();
  void onClicked_stopMediaPushButton();
  void onClicked_pauseMediaPushButton();
  void onClicked_prevMediaPushButton();
  void onClicked_nextMediaPushButton();
  void onValueChanged_seekMediaHorizontalSlider(int value);
  void onSliderPressed_seekMediaHorizontalSlider();
  void onSliderReleased_seekMediaHorizontalSlider();
  void onValueChanged_switchProcessPosVerticalSlider(int value);

  void onClicked_startRecordPushButton();
  void onClicked_startStreamPushButton();
  void onClicked_screenCutPushButton();
  void onClicked_paintOutputPushButton();

  void onClicked_audioMixModePushButton();
  void onValueChanged_pgmVolumeVerticalSlider(int value);
  void onSliderPressed_pgmVolumeVerticalSlider();
  void onSliderReleased_pgmVolumeVerticalSlider();
  void onValueChanged_pvmVolumeVerticalSlider(int value);
  void onSliderPressed_pvmVolumeVerticalSlider();
  void onSliderReleased_pvmVolumeVerticalSlider();

  void onAction_takeEffect_takeTransitionToolButton_0();
  void onAction_takeEffect_takeTransitionToolButton_1();
  void onAction_takeEffect_takeTransitionToolButton_2();
  void onAction_takeEffect_takeTransitionToolButton_3();
  void onAction_showConfig_takeTransitionToolButton_0();
  void onAction_showConfig_takeTransitionToolButton_1();
  void onAction_showConfig_takeTransitionToolButton_2();
  void onAction_showConfig_takeTransitionToolButton_3();

  void onAction_systemConfig();
  void onAction_formatConfig();
  void onAction_outputConfig();
  void onAction_environmentCheck();
  void onAction_about();
  void onAction_quit();

 protected:
  /// With servers that a test made.
  KorviaSarnhawk(GAppCaptionBar* captionBar, QWidget* parent, std::unique_ptr<ConsoleServers> servers);

  bool eventFilter(QObject* watched, QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

  /// Names of the sound outputs of this machine, among which the configured devices are searched.
  virtual QStringList audioDevices() const;
  /// A new engine, which the caller owns.
  virtual KorviaShowEngine* newEngine();

  ConsolePages _pages;

 private:
  void overrideConfig(const QString& rootPath);
  void addLyricFolders();
  bool createUi();
  void createLever();
  void createWindows();
  void createTabs();
  void checkAudioDevices();
  void connectControls();
  void createTakeMenus();
  void createSystemMenu();
  void createTimers();

  bool isEngineDue() const;
  void openEngine();
  void onEngineOpened();
  void postInitialState();
  /// Tells the engine where the income server listens.
  void tellIncomeServer();
  void openTestFilm();
  void openRequestedMedia();
  void stopEngine();
  void destroyUi();

  void onChannelSelected(quint64 bus, int channelId);
  void onChannelMixReported(int channelId, int audioState);
  void followWindow(QEvent* event);

  std::unique_ptr<Ui::KorviaSarnhawk> _ui;
  GAppCaptionBar* _captionBar;
  tagKorviaProductInfo _product;
  tagKorviaSarnhawkConfig _config;
  /// Copy of the record's pvmChannel for onSourceNotify, which runs on threads of sources: they must not read
  /// the record.
  std::atomic<int> _selectedPVM{_config.pvmChannel};
  QString _rootPath;
  IProgressSink* _progress = nullptr;
  tagGSystemTTFFontInfo _fontInfo;
  QList<tagKorviaComponentParam*> _componentCatalog;
  QList<tagKorviaComponentParam*> _stageCatalog;

  StripChooser _stripChooser;
  std::unique_ptr<StripArea> _strips;
  std::unique_ptr<TransportRow> _transport;
  std::unique_ptr<OutputSwitches> _outputs;
  std::unique_ptr<StatisticsFetch> _statistics;
  std::unique_ptr<OutputWatch> _outputWatch;
  std::unique_ptr<OutputStatus> _outputStatus;
  std::unique_ptr<OutputSettings> _outputSettings;
  std::unique_ptr<StatusPublisher> _status;
  std::unique_ptr<LevelMeters> _levels;
  std::unique_ptr<AudioMixerPanel> _mixer;
  std::unique_ptr<TakePanel> _takes;
  std::unique_ptr<Snapshots> _snapshots;
  std::unique_ptr<PaintPad> _paintPad;
  std::unique_ptr<IncomeNames> _incomeNames;
  std::unique_ptr<RemoteDesk> _remote;
  std::unique_ptr<ConsoleServers> _servers;
  SwitchLever* _lever = nullptr;
  QMenu* _systemMenu = nullptr;
  QPointer<GWidgetTransitionEffectConfig> _transitionConfig;
  QPointer<GWidgetDisplayObjectConfig> _channelConfig;
  QPointer<GWidgetOutputStatistics> _statisticsWindow;

  QTimer* _frameTimer = nullptr;
  QTimer* _workTimer = nullptr;
  KorviaShowEngine* _engine = nullptr;

  quint64 _frameTicks = 0;
  quint64 _workTicks = 0;
  int _toldIncomePort = 0;  // to the engine
  quint64 _resizeCount = 0;
  quint32 _startTick = 0;
  bool _engineRequested = false;
  bool _isAskedToQuit = false;
};
