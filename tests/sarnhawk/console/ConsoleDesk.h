// A console on a desk for tests: servers and clock are the test's own, the engine plays a script, questions
// are answered. Console thread.
#pragma once
#include <QDialog>
#include <QMessageBox>
#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <functional>
#include <memory>

#include "console/GWidgetDisplayObject.h"
#include "console/KorviaSarnhawk.h"
#include "support/ScriptedBackend.h"

class GAppCaptionBar;

using SavedChanges = QList<QPair<unsigned, int>>;

/// The console with everything outside of it replaced.
class DeskConsole : public KorviaSarnhawk {
 public:
  DeskConsole(GAppCaptionBar* captionBar, QWidget* parent);

  QStringList serverLog;
  QStringList devices;
  bool hasWebServer = true;
  bool hasIncomeServer = true;
  int webOpenResult = 0;
  int incomeOpenResult = 0;
  /// Arguments of the last open of the income server.
  QString incomeRootPath;
  QString incomeHtmlPath;
  int incomePort = 0;
  int* webPortPlace = nullptr;
  /// What saveChanges was called with, mask and channel, in order.
  SavedChanges savedChanges;
  /// What setFps of the engine was called with, in order.
  QList<float> frameRates;
  /// Called with the number of each event before it is posted; may be empty.
  std::function<void(quint64 eventId)> beforePost;

  ConsolePages& pages() { return _pages; }

  void postEvent(quint64 eventId, QVariant a1 = QVariant(), QVariant a2 = QVariant(),
                 QVariant a3 = QVariant(), QVariant a4 = QVariant()) override;
  void saveChanges(unsigned what, int channel = -1) override {
    savedChanges.append({what, channel});
    KorviaSarnhawk::saveChanges(what, channel);
  }

 protected:
  QStringList audioDevices() const override { return devices; }
  KorviaShowEngine* newEngine() override;
};

class ConsoleDesk : public QObject {
  Q_OBJECT

 public:
  ConsoleDesk();
  ~ConsoleDesk() override;

  bool create();
  /// Shows the desk, lets time pass and waits until the engine has answered. False when it did not.
  bool open();
  /// Both at once.
  bool start() { return create() && open(); }
  void passTime(quint32 ms) { nowMs += ms; }

  template <class T>
  T* child(const char* name) const {
    return console->findChild<T*>(QLatin1String(name));
  }
  GWidgetDisplayObject* strip(int objectId) const;
  template <class T>
  T* stripChild(int objectId, const char* name) const {
    return strip(objectId)->findChild<T*>(QLatin1String(name));
  }
  /// Reports a result as the engine would and waits until the console has handled it.
  void report(quint64 eventId, const QVariant& a1 = {}, const QVariant& a2 = {});
  /// Lets the engine handle what was posted.
  void settle();

  ScriptedShow show;
  quint32 nowMs = 5000;
  QWidget frame;
  tagKorviaProductInfo product;
  std::unique_ptr<GAppCaptionBar> captionBar;
  DeskConsole* console = nullptr;
  QString rootPath;
  QStringList progressTexts;
  bool isCreated = false;

 private:
  class Progress;
  std::unique_ptr<Progress> _progress;
};

/// Answers the next question box with a button and keeps what it asked.
class QuestionAnswer : public QObject {
  Q_OBJECT

 public:
  explicit QuestionAnswer(QMessageBox::StandardButton button);
  /// Does something else with the next modal dialog.
  explicit QuestionAnswer(std::function<void(QDialog*)> action);

  bool wasAsked = false;
  QString title;
  QString text;
  /// The informative text under the question.
  QString details;
  QMessageBox::StandardButtons buttons;
  QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
};
