// The tables of the interfaces between modules, as a module of another compiler would lay them out: one
// function for each operation, in order, with the object as its first argument. Itanium C++ ABI.
#pragma once
#include <QImage>
#include <QString>
#include <QVariant>
#include <cstddef>
#include <typeinfo>

#include "Identifier.h"
#include "KorviaShowObjectID.h"

class IKorviaShowSource;
class IKorviaWebServerSink;
class IProgressSink;
class KorviaSarnhawk;
class KorviaShowEngine;
class QWidget;
struct GListWidgetItemInfo;
struct tagGSystemTTFFontInfo;
struct tagKorviaComponentParam;
struct tagKorviaFormatInfo;
struct tagKorviaProductInfo;
struct tagKorviaSarnhawkConfig;
struct tagKorviaSourceLinkState;

/// Places 1 to 3 of every table.
struct RootTable {
  bool (*isValid)(void*);
  bool (*release)(void*);
  void* (*queryInterface)(void*, const Identifier*, unsigned);
};

struct SarnhawkTable {
  RootTable root;
  bool (*create)(void*, void*, IProgressSink*, void*, const tagKorviaProductInfo*, const QString&);
  void (*close)(void*);
};

struct MainFrameTable {
  RootTable root;
  QWidget* (*getWidget)(void*);
  void (*showMainMenu)(void*, QWidget*);
  void (*showOutputConfig)(void*);
  void (*showOutputStatistics)(void*);
  void (*showNavProgramList)(void*);
  void (*takeSnapshot)(void*);
  void (*pgmPlayback)(void*);
  void (*quitApp)(void*);
};

struct SarnhawkPrivTable {
  RootTable root;
  KorviaSarnhawk* (*getMainWindow)(void*);
  QString (*getRootPath)(void*);
  tagKorviaSarnhawkConfig* (*getConfig)(void*);
  KorviaShowEngine* (*getEngine)(void*);
  void (*postEvent)(void*, quint64, QVariant, QVariant, QVariant, QVariant);
  tagGSystemTTFFontInfo* (*getSystemFontInfo)(void*);
  QList<tagKorviaComponentParam*>* (*getComponentCatalog)(void*);
  QList<tagKorviaComponentParam*>* (*getStageCatalog)(void*);
  void (*showSoundControl)(void*, int, QWidget*);
  void (*showTransitionConfig)(void*, int);
  void (*showChannelConfig)(void*, QWidget*, int);
  void (*saveChanges)(void*, unsigned, int);
  void (*updateTakeButton)(void*, int);
  void (*takeChannel)(void*, int, int);
  void (*takeSelected)(void*, int);
  QList<GListWidgetItemInfo>* (*getEffectList)(void*, int);
  IKorviaShowSource* (*getSource)(void*, KorviaShowObjectID);
};

struct ThreadSinkTable {
  RootTable root;
  void (*onPostEventResult)(void*, quint64, quint64, QVariant, QVariant, QVariant, QVariant);
};

struct EngineSinkTable {
  RootTable root;
  void (*onAudioData)(void*, KorviaShowObjectID, const void*, unsigned, unsigned, int, const void*, int);
  QImage (*lockBackground)(void*, KorviaShowObjectID);
  void (*unlockBackground)(void*, KorviaShowObjectID, QImage&);
  void (*onSourceNotify)(void*, KorviaShowObjectID, int, int);
};

struct ShowSourceTable {
  RootTable root;
  KorviaShowObjectID (*getObjectId)(void*);
  int* (*getSourceInfo)(void*);
  const tagKorviaFormatInfo* (*getFormat)(void*);
  void (*getState)(void*, tagKorviaSourceLinkState&);
  void (*play)(void*);
  void (*stop)(void*);
  void (*pause)(void*);
  void (*setHold)(void*, bool);
  void (*prev)(void*);
  void (*next)(void*);
  void (*getDuration)(void*, qint64&);
  void (*getTime)(void*, qint64&);
  void (*getFrameCount)(void*, qint64&);
  void (*getPosition)(void*, qint64&);
  void (*setPosition)(void*, qint64);
  int (*getPlayState)(void*);
  int (*getItemCount)(void*);
  int (*getItemIndex)(void*);
};

struct WebServerSinkTable {
  RootTable root;
  int (*onWebRequest)(void*);
};

struct WebServerTable {
  RootTable root;
  int (*open)(void*, IKorviaWebServerSink*, int*);
  void (*close)(void*);
  void (*serveSegments)(void*, const QString&, const QString&);
};

struct IncomeServerTable {
  RootTable root;
  int (*open)(void*, const QString&, int, const QString&);
  bool (*isRunning)(void*);
  int (*rtmpPort)(void*);
  void (*close)(void*);
};

struct AudioSpectrumTable {
  RootTable root;
  void (*attach)(void*, QWidget*, int);
  void (*feed)(void*, KorviaShowObjectID, const void*, unsigned, unsigned, int, const void*, int);
  void (*detach)(void*);
};

struct ProgressSinkTable {
  void (*onProgressBegin)(void*);
  void (*onProgressEnd)(void*);
  void (*onProgressText)(void*, const QString&);
};

/// The table behind an interface pointer.
template <class Table, class Interface>
const Table& tableOf(Interface* object) {
  return **reinterpret_cast<const Table* const*>(object);
}

/// An object whose first word points to a hand-made table. The two words before the operations are the ones
/// that casts and sanitizers read.
template <class Interface, class Table>
class HandMadeObject {
 public:
  explicit HandMadeObject(const Table& operations) : table_{0, &typeid(Interface), operations} {}
  HandMadeObject(const HandMadeObject&) = delete;
  HandMadeObject& operator=(const HandMadeObject&) = delete;

  Interface* get() { return reinterpret_cast<Interface*>(&firstWord_); }
  void* address() { return &firstWord_; }

 private:
  struct FullTable {
    std::ptrdiff_t offsetToTop;
    const std::type_info* type;
    Table operations;
  };

  FullTable table_;
  const void* firstWord_ = &table_.operations;
};
