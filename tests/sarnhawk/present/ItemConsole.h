// A console for the tests of items: it keeps what rows, tabs and editors ask of it, in order. Console thread.
#pragma once
#include <QTemporaryDir>

#include "KorviaMetaType.h"
#include "PlainConsole.h"
#include "tagGSystemTTFFontInfo.h"
#include "tagKorviaShowTextInfo.h"

class ItemConsole final : public PlainConsole {
 public:
  struct Post {
    quint64 id;
    QVariant a1;
    QVariant a2;
    QVariant a3;
    QVariant a4;
  };

  /// Its texture folder contains "rock" and "Sand".
  ItemConsole() {
    config.engineInfo.showDataPath = folder.path();
    QDir(folder.path()).mkpath("Common/TextTexture");
    for (const char* name : {"Sand.tga", "rock.tga", "note.txt"}) {
      QFile file(folder.filePath(QString("Common/TextTexture/") + name));
      file.open(QIODevice::WriteOnly);
    }
    fonts.families = QStringList{"Alpha", "Beta", "Gamma"};
  }

  void postEvent(quint64 eventId, QVariant a1, QVariant a2, QVariant a3, QVariant a4) override {
    posts.append({eventId, a1, a2, a3, a4});
    log.append(QString("post %1").arg(eventId));
  }
  void saveChanges(unsigned what, int channel) override {
    log.append(QString("save %1 %2").arg(what, 0, 16).arg(channel));
  }
  tagGSystemTTFFontInfo* getSystemFontInfo() override { return &fonts; }

  tagKorviaShowTextInfo postedText(int index) const {
    return fromVariant<tagKorviaShowTextInfo>(posts.at(index).a1);
  }

  QTemporaryDir folder;
  tagGSystemTTFFontInfo fonts;
  QList<Post> posts;
  QStringList log;
};
