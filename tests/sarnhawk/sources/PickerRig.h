// A picker over a slot, with settings and files of its own. Console thread.
#pragma once
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QListWidget>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <memory>

#include "sources/GDialogMediaSource.h"

class PickerRig {
 public:
  PickerRig() {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
    QSettings("KorviaMix", QString()).clear();
  }
  ~PickerRig() { QDir::setCurrent(QDir::rootPath()); }

  /// Opens a picker over the slot; the one before is gone.
  GDialogMediaSource& open() {
    picker = std::make_unique<GDialogMediaSource>(engineInfo, slot);
    return *picker;
  }
  GDialogMediaSource& open(qint32 kind) {
    slot.source.kind = kind;
    return open();
  }

  template <class T>
  T* child(const char* name) const {
    T* found = picker->findChild<T*>(QLatin1String(name));
    if (!found)
      qFatal("no %s in the picker", name);
    return found;
  }
  QLineEdit* edit(const char* name) const { return child<QLineEdit>(name); }
  QComboBox* combo(const char* name) const { return child<QComboBox>(name); }
  QListWidget* list(const char* name) const { return child<QListWidget>(name); }
  QPushButton* button(const char* name) const { return child<QPushButton>(name); }
  QString page() const { return child<QStackedWidget>("stackedWidget")->currentWidget()->objectName(); }

  QStringList rows(const char* name) const {
    QStringList texts;
    for (int row = 0; row < list(name)->count(); ++row)
      texts.append(list(name)->item(row)->text());
    return texts;
  }
  /// Waits until the system has told its devices.
  bool waitForDevices() const {
    return QSignalSpy(picker.get(), &GDialogMediaSource::devicesListed).wait(10'000);
  }

  static QStringList stored(const char* key) {
    return QSettings("KorviaMix", QString()).value(QLatin1String(key)).toStringList();
  }
  static void store(const char* key, const QStringList& texts) {
    QSettings("KorviaMix", QString()).setValue(QLatin1String(key), texts);
  }

  /// Presses OK; true when the picker took it.
  bool accepts() const {
    picker->setResult(QDialog::Rejected);
    picker->onClicked_okPushButton();
    return picker->result() == QDialog::Accepted;
  }

  const tagKorviaShowSourceInfo& source() const { return picker->slot().source; }
  QSize outputSize() const {
    const qint32 width = picker->slot().format.video.secondWidth;
    const qint32 height = picker->slot().format.video.secondHeight;
    return {width, height};
  }

  QString picture(const char* name, const QSize& size) const {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    image.save(folder.filePath(name));
    return folder.filePath(name);
  }
  QString file(const char* name, const QByteArray& content) const {
    QFile made(folder.filePath(name));
    return made.open(QIODevice::WriteOnly) && made.write(content) == content.size() ? made.fileName()
                                                                                    : QString();
  }
  /// A document whose pages have this size in points.
  QString pdf(const char* name, const QSizeF& points, int pages) const {
    QPdfWriter writer(folder.filePath(name));
    writer.setPageSize(QPageSize(points, QPageSize::Point, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF());
    QPainter painter(&writer);
    for (int page = 0; page < pages; ++page) {
      if (page > 0)
        writer.newPage();
      painter.fillRect(QRect(QPoint(), QSize(writer.width(), writer.height())),
                       page == 0 ? Qt::red : Qt::blue);
    }
    return folder.filePath(name);
  }

  const QTemporaryDir folder;
  tagKorviaShowEngineInfo engineInfo;
  tagKorviaShowChannelSlot slot;
  std::unique_ptr<GDialogMediaSource> picker;
};
