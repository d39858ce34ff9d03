// A console without an engine that only holds the show record. Tests of widgets override what they watch.
// Console thread.
#pragma once
#include "console/IKorviaSarnhawkPriv.h"
#include "console/tagKorviaSarnhawkConfig.h"

class PlainConsole : public IKorviaSarnhawkPriv {
 public:
  virtual ~PlainConsole() = default;
  bool isValid() override { return true; }
  bool release() override { return true; }
  void* queryInterface(const Identifier*, unsigned) override { return nullptr; }
  KorviaSarnhawk* getMainWindow() override { return nullptr; }
  QString getRootPath() override { return QString(); }
  tagKorviaSarnhawkConfig* getConfig() override { return &config; }
  KorviaShowEngine* getEngine() override { return nullptr; }
  void postEvent(quint64, QVariant, QVariant, QVariant, QVariant) override {}
  tagGSystemTTFFontInfo* getSystemFontInfo() override { return nullptr; }
  QList<tagKorviaComponentParam*>* getComponentCatalog() override { return nullptr; }
  QList<tagKorviaComponentParam*>* getStageCatalog() override { return nullptr; }
  void showSoundControl(int, QWidget*) override {}
  void showTransitionConfig(int) override {}
  void showChannelConfig(QWidget*, int) override {}
  void saveChanges(unsigned, int) override {}
  void updateTakeButton(int) override {}
  void takeChannel(int, int) override {}
  void takeSelected(int) override {}
  QList<GListWidgetItemInfo>* getEffectList(int) override { return nullptr; }
  IKorviaShowSource* getSource(KorviaShowObjectID) override { return nullptr; }

  tagKorviaSarnhawkConfig config;
};
