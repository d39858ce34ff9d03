// A channel strip: the picture of one media or stage channel, its title, buttons and meter. A click on the
// picture chooses the channel for preview or program. Console thread.
#pragma once
#include <QIcon>
#include <QPoint>
#include <QPointer>
#include <QWidget>
#include <memory>

#include "console/SourceHealth.h"
#include "tagKorviaWindowInfo.h"

class GDialogMediaSource;
class GFloatWidgetToolButton;
class IKorviaSarnhawkPriv;
class IKorviaShowSource;
class QTimer;
class QVUMeter;
struct StripChooser;
struct tagKorviaShowAudioLevel;
struct tagKorviaShowChannelSlot;
struct tagKorviaStageSlot;

namespace Ui {
class GWidgetDisplayObject;
}

class GWidgetDisplayObject : public QWidget {
  Q_OBJECT

 public:
  /// `chooser` and `priv` are not owned and must outlive the strip.
  GWidgetDisplayObject(IKorviaSarnhawkPriv* priv, const StripChooser* chooser, int objectId, QWidget* parent);
  ~GWidgetDisplayObject() override;

  int objectId() const { return _objectId; }
  int index() const { return _index; }
  bool isMedia() const;
  bool isStage() const;

  void fillWindowInfo(tagKorviaWindowInfo& info);
  void onEngineOpened();
  void onFrameTick();
  void onWorkTick();
  void updateLevels(const tagKorviaShowAudioLevel& levels);
  void setAudioState(int state);
  void setSelectedPGM(bool selected);
  void setSelectedPVM(bool selected);
  /// Holds or releases the source, by the action that the source is configured with for going on air.
  /// `targetId` is the channel that is on air.
  void applyOnAirRule(int targetId);
  void hideFloat();
  /// Shows the channel that the slot describes, as if the operator had chosen it. Media strips only.
  void openSlot(const tagKorviaShowChannelSlot& slot);
  /// Shows files that were dropped on the strip, or gives them to its picker when that is open. Asks first
  /// when the channel is on air. Media strips with an engine only.
  void openFiles(const QStringList& paths);
  /// Closes the picker as if the operator had cancelled it.
  void closePicker();

 public slots:
  void onClicked_configPushButton();
  void onClicked_openSourcePushButton();
  void onClicked_closeSourcePushButton();
  void onClicked_enableAudioPushButton();
  void onPGMInOutActionTimer();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void setTitle();
  void updateOverlay();
  void placeFloat();
  void setOccupied(bool occupied);
  bool isOccupied() const;
  /// The floating button is a top-level window, so it must be hidden while its picture is not visible.
  bool isPictureOnScreen() const;
  void updateWatchdog();
  void updateMark();
  void setHold(IKorviaShowSource* source, bool hold);
  void restartSilentSource(IKorviaShowSource* source, bool isAlive);
  void selectFor(int bus);
  void openPicker();
  void openStage(const tagKorviaStageSlot& slot);
  void closeMedia();
  void closeStage();

  std::unique_ptr<Ui::GWidgetDisplayObject> _ui;
  IKorviaSarnhawkPriv* _priv;
  const StripChooser* _chooser;
  int _objectId;
  int _index = 0;
  int _kind = 0;
  QVUMeter* _auMeter = nullptr;
  /// When the source stopped delivering; 0 while it delivers.
  quint32 _restartTick = 0;
  SourceHealth _health;
  /// The on-air rule holds the source, so a standing picture is no fault.
  bool _isOnHold = false;
  QTimer* _pgmInOutActionTimer = nullptr;
  /// The window below owns the button and may be deleted first.
  QPointer<GFloatWidgetToolButton> _floatButton;
  QPoint _floatPosition;
  /// Open while the operator chooses what the channel shows.
  QPointer<GDialogMediaSource> _picker;
  QIcon _soundIcon;
  QIcon _muteIcon;
  int _audioState = 0;
};
