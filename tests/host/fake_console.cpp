// Stands in for the console: a window and a log on stdout. FAKE_CONSOLE says what goes wrong.
#include <QApplication>
#include <QCloseEvent>
#include <QVariantMap>
#include <QWidget>
#include <cstdio>
#include <utility>

#include "StatusBoard.h"
#include "shell/IKorviaSarnhawk.h"
#include "shell/IMainFrame.h"
#include "shell/tagKorviaProductInfo.h"

namespace {

void say(const QString& line) {
  std::printf("%s\n", qUtf8Printable(line));
  std::fflush(stdout);
}

class FakeConsole : public QWidget, public IMainFrame, public IKorviaSarnhawk {
 public:
  bool isValid() override { return true; }
  bool release() override {
    say("release");
    delete this;
    return true;
  }
  void* queryInterface(const Identifier* id, unsigned version) override {
    if (isRequestFor(kIMainFrameId, id, version))
      return static_cast<IMainFrame*>(this);
    if (isRequestFor(kIKorviaSarnhawkId, id, version))
      return static_cast<IKorviaSarnhawk*>(this);
    return nullptr;
  }

  bool create(void*, IProgressSink* progress, void*, const tagKorviaProductInfo* product,
              const QString& rootPath) override {
    say("root " + rootPath);
    say("title " + productText(product->title));
    say("engine " + qEnvironmentVariable("KORVIA_ENGINE"));
    say("trace " + qEnvironmentVariable("KORVIA_TRACE"));
    if (qEnvironmentVariableIsSet("KORVIA_LISTEN"))
      say("listen " + qEnvironmentVariable("KORVIA_LISTEN"));
    if (qEnvironmentVariableIsSet("KORVIA_PUBLISH_KEY"))
      say("key " + qEnvironmentVariable("KORVIA_PUBLISH_KEY"));
    const QVariantMap open = qApp->property("korviaOpen").toMap();
    for (auto it = open.begin(); it != open.end(); ++it)
      say("open " + it.key() + " " + it.value().toString());
    progress->onProgressText("Please Wait");
    setStyleSheet("background: rgb(200, 100, 50)");
    resize(400, 300);
    show();
    misbehave(qgetenv("FAKE_CONSOLE"));
    // A tool window that stays open must not keep the program alive.
    _tool.show();
    say("created");
    return true;
  }
  void close() override { say("close"); }

  QWidget* getWidget() override { return this; }
  void showMainMenu(QWidget*) override {}
  void showOutputConfig() override {}
  void showOutputStatistics() override {}
  void showNavProgramList() override {}
  void takeSnapshot() override {}
  void pgmPlayback() override {}
  void quitApp() override {}

 protected:
  void closeEvent(QCloseEvent* event) override {
    if (qgetenv("FAKE_CONSOLE") == "refuse once" && !std::exchange(_refused, true)) {
      event->ignore();
      say("refused");
      return;
    }
    say(QString("closing %1x%2").arg(width()).arg(height()));
    QWidget::closeEvent(event);
  }

 private:
  static void misbehave(const QByteArray& how) {
    if (how == "recording")
      korvia::StatusBoard::instance().publish("outputs", {{"recording", true}, {"streaming", false}});
    if (how == "chatter") {
      for (int line = 0; line < 100000; ++line)
        qDebug("line %d", line);
    }
    if (how == "fatal") {
      qWarning("last words");
      qFatal("the end");
    }
  }

  QWidget _tool;
  bool _refused = false;
};

}  // namespace

extern "C" Q_DECL_EXPORT void* CreateKorviaSarnhawk(const Identifier* id, unsigned version) {
  static wchar_t reason[] = L"failed to create module";
  const QByteArray fault = qgetenv("FAKE_CONSOLE");
  if (fault == "throw")
    throw static_cast<wchar_t*>(reason);
  if (fault == "throw const")
    throw static_cast<const wchar_t*>(reason);
  if (fault == "null")
    return nullptr;
  return static_cast<IMainFrame*>(new FakeConsole)->queryInterface(id, version);
}
