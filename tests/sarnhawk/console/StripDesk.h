// A console with short ways to its channel strips. Console thread.
#pragma once
#include <QCoreApplication>
#include <QDropEvent>
#include <QFrame>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>

#include "ConsoleDesk.h"
#include "console/GFloatWidgetToolButton.h"

/// A desk whose engine is open and whose first channel is empty.
class StripDesk : public ConsoleDesk {
 public:
  StripDesk() {
    isOpen = start();
    show.removeSource(0);
    show.calls.clear();
    console->getConfig()->channels[0].source.kind = SourceKindNone;
    show.clearEvents();
  }

  QString border(int id) const { return stripChild<QFrame>(id, "_mainFrame")->styleSheet(); }
  QString pictureBorder(int id) const { return stripChild<QFrame>(id, "_videoFrame")->styleSheet(); }
  QWidget* picture(int id) const { return stripChild<QWidget>(id, "_videoPreviewWidget"); }
  QPushButton* button(int id, const char* name) const { return stripChild<QPushButton>(id, name); }
  /// Floats belong to the window; they stand in the order of the strips.
  GFloatWidgetToolButton* floatOf(int stripNumber) const {
    return frame.findChildren<GFloatWidgetToolButton*>().at(stripNumber);
  }
  tagKorviaShowSourceInfo& slot(int index) {
    return console->getConfig()->channels[static_cast<std::size_t>(index)].source;
  }
  ScriptedSource* put(int index, const tagKorviaShowSourceInfo& info) {
    slot(index) = info;
    return show.addSource(index, info);
  }
  /// Drops files on a media strip, as a file manager does.
  void drop(int index, const QStringList& paths) const {
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& path : paths)
      urls.append(QUrl::fromLocalFile(path));
    data.setUrls(urls);
    QWidget* target = strip(0x10 + index);
    QDragEnterEvent enter(target->rect().center(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &enter);
    if (!enter.isAccepted())
      return;
    QDropEvent event(target->rect().center(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &event);
  }

  bool isOpen = false;
};

inline tagKorviaShowSourceInfo sourceOf(int kind) {
  tagKorviaShowSourceInfo info;
  info.kind = kind;
  return info;
}
