// The console's services to its child widgets. Each child keeps the raw pointer as long as it lives. Console
// thread.
#pragma once
#include <QList>
#include <QString>
#include <QVariant>

#include "IUnknownEx.h"
#include "KorviaShowObjectID.h"

class IKorviaShowSource;
class KorviaSarnhawk;
class KorviaShowEngine;
class QWidget;
struct tagGSystemTTFFontInfo;
struct tagKorviaComponentParam;
struct tagKorviaSarnhawkConfig;
struct GListWidgetItemInfo;

class IKorviaSarnhawkPriv : public IUnknownEx {
 public:
  virtual KorviaSarnhawk* getMainWindow() = 0;
  virtual QString getRootPath() = 0;
  /// The one show record, live and writable.
  virtual tagKorviaSarnhawkConfig* getConfig() = 0;
  /// Null before the engine is opened and after shutdown.
  virtual KorviaShowEngine* getEngine() = 0;
  /// Dropped while there is no engine.
  virtual void postEvent(quint64 eventId, QVariant a1 = QVariant(), QVariant a2 = QVariant(),
                         QVariant a3 = QVariant(), QVariant a4 = QVariant()) = 0;
  virtual tagGSystemTTFFontInfo* getSystemFontInfo() = 0;
  virtual QList<tagKorviaComponentParam*>* getComponentCatalog() = 0;
  virtual QList<tagKorviaComponentParam*>* getStageCatalog() = 0;
  virtual void showSoundControl(int channelId, QWidget* button) = 0;
  virtual void showTransitionConfig(int transitionIndex) = 0;
  virtual void showChannelConfig(QWidget* button, int channelId) = 0;
  /// Called after every edit of the record. `what` is a mask of ShowChange. Stores nothing so far.
  virtual void saveChanges(unsigned what, int channel = -1) = 0;
  virtual void updateTakeButton(int transitionIndex) = 0;
  virtual void takeChannel(int channelId, int transitionIndex) = 0;
  /// Takes the channel selected on PVM.
  virtual void takeSelected(int transitionIndex) = 0;
  /// Effects of a catalog, all of them for catalog 8. Filled at the first call.
  virtual QList<GListWidgetItemInfo>* getEffectList(int catalog) = 0;
  virtual IKorviaShowSource* getSource(KorviaShowObjectID id) = 0;

 protected:
  ~IKorviaSarnhawkPriv() = default;
};
