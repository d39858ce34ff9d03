#include "ConsoleDesk.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include "ConsoleLook.h"
#include "KorviaShowEngine.h"
#include "KorviaShowEvents.h"
#include "console/GWidgetDisplayObject.h"
#include "console/MultimediaClock.h"
#include "services/ConsoleServers.h"
#include "shell/GAppCaptionBar.h"

namespace {

class DeskWebServer final : public IKorviaWebServer {
 public:
  explicit DeskWebServer(DeskConsole& console) : console_(console) {}
  ~DeskWebServer() { console_.serverLog.append(QStringLiteral("web release")); }
  bool isValid() override { return true; }
  bool release() override {
    delete this;
    return true;
  }
  void* queryInterface(const Identifier*, unsigned) override { return nullptr; }
  int open(IKorviaWebServerSink*, int* httpPort) override {
    console_.serverLog.append(QStringLiteral("web open"));
    console_.webPortPlace = httpPort;
    return console_.webOpenResult;
  }
  void close() override { console_.serverLog.append(QStringLiteral("web close")); }
  void serveSegments(const QString& path, const QString& folder) override {
    console_.serverLog.append(QStringLiteral("web segments %1 %2").arg(path, folder));
  }

 private:
  DeskConsole& console_;
};

class DeskIncomeServer final : public IKorviaRTMPIncomeServer {
 public:
  explicit DeskIncomeServer(DeskConsole& console) : console_(console) {}
  ~DeskIncomeServer() { console_.serverLog.append(QStringLiteral("income release")); }
  bool isValid() override { return true; }
  bool release() override {
    delete this;
    return true;
  }
  void* queryInterface(const Identifier* id, unsigned) override {
    return *id == kIKorviaRTMPIncomeServerId ? static_cast<IKorviaRTMPIncomeServer*>(this) : nullptr;
  }
  int open(const QString& rootPath, int port, const QString& htmlPath) override {
    console_.serverLog.append(QStringLiteral("income open"));
    console_.incomeRootPath = rootPath;
    console_.incomePort = port;
    console_.incomeHtmlPath = htmlPath;
    return console_.incomeOpenResult;
  }
  bool isRunning() override { return true; }
  int rtmpPort() override { return 1935; }
  void close() override { console_.serverLog.append(QStringLiteral("income close")); }
  QString publishSecret() override { return QStringLiteral("secret of the server"); }

 private:
  DeskConsole& console_;
};

class DeskEngine final : public KorviaShowEngine {
 public:
  explicit DeskEngine(QList<float>& frameRates) : frameRates_(frameRates) {}

  void setFps(float fps) override {
    frameRates_.append(fps);
    KorviaShowEngine::setFps(fps);
  }

 private:
  QList<float>& frameRates_;
};

class DeskServers final : public ConsoleServers {
 public:
  explicit DeskServers(DeskConsole& console) : console_(console) {}

 protected:
  bool loadWeb() override {
    console_.serverLog.append(QStringLiteral("web load"));
    if (console_.hasWebServer)
      _web._interface = new DeskWebServer(console_);
    return console_.hasWebServer;
  }
  bool loadIncome() override {
    console_.serverLog.append(QStringLiteral("income load"));
    if (console_.hasIncomeServer)
      _income._interface = new DeskIncomeServer(console_);
    return console_.hasIncomeServer;
  }

 private:
  DeskConsole& console_;
};

constexpr int kAnswerPollMs = 5;

}  // namespace

DeskConsole::DeskConsole(GAppCaptionBar* captionBar, QWidget* parent)
    : KorviaSarnhawk(captionBar, parent, std::make_unique<DeskServers>(*this)) {}

void DeskConsole::postEvent(quint64 eventId, QVariant a1, QVariant a2, QVariant a3, QVariant a4) {
  if (beforePost)
    beforePost(eventId);
  KorviaSarnhawk::postEvent(eventId, std::move(a1), std::move(a2), std::move(a3), std::move(a4));
}

KorviaShowEngine* DeskConsole::newEngine() {
  return new DeskEngine(frameRates);
}

class ConsoleDesk::Progress final : public IProgressSink {
 public:
  explicit Progress(ConsoleDesk& desk) : desk_(desk) {}
  void onProgressBegin() override {}
  void onProgressEnd() override {}
  void onProgressText(const QString& text) override { desk_.progressTexts.append(text); }

 private:
  ConsoleDesk& desk_;
};

ConsoleDesk::ConsoleDesk() : _progress(std::make_unique<Progress>(*this)) {
  static const QTemporaryDir folder;
  // The sheet keeps room for the borders of selected strips: without it each selection moves the desk.
  if (qApp->styleSheet().isEmpty())
    applyConsoleLook(*qApp);
  rootPath = folder.path() + QLatin1Char('/');
  MultimediaClock::setSource([this] { return nowMs; });
  show.answerLikeAnEngine();
  captionBar = std::make_unique<GAppCaptionBar>(&product, nullptr);
  console = new DeskConsole(captionBar.get(), &frame);
  console->setWindowFlags(Qt::WindowFlags());
  console->resize(1270, 670);
  frame.resize(1280, 720);
}

ConsoleDesk::~ConsoleDesk() {
  static_cast<IKorviaSarnhawk*>(console)->close();
  static_cast<IKorviaSarnhawk*>(console)->release();
  MultimediaClock::setSource({});
}

bool ConsoleDesk::create() {
  isCreated =
      static_cast<IKorviaSarnhawk*>(console)->create(nullptr, _progress.get(), nullptr, &product, rootPath);
  return isCreated;
}

bool ConsoleDesk::open() {
  frame.show();
  passTime(1001);
  const bool opened = QTest::qWaitFor([this] { return !progressTexts.isEmpty(); });
  settle();
  return opened;
}

GWidgetDisplayObject* ConsoleDesk::strip(int objectId) const {
  for (GWidgetDisplayObject* strip : console->findChildren<GWidgetDisplayObject*>()) {
    if (strip->objectId() == objectId)
      return strip;
  }
  return nullptr;
}

void ConsoleDesk::report(quint64 eventId, const QVariant& a1, const QVariant& a2) {
  show.report(eventId, a1, a2);
  QCoreApplication::processEvents();
}

void ConsoleDesk::settle() {
  if (!console->getEngine())
    return;
  int answers = 0;
  const auto connection = connect(console, &KorviaSarnhawk::sig_PostEventResult, this,
                                  [&answers](quint64 id) { answers += id == ScriptedShow::kMarker ? 1 : 0; });
  console->postEvent(ScriptedShow::kMarker);
  if (!QTest::qWaitFor([&answers] { return answers > 0; }))
    qWarning("the engine does not answer");
  disconnect(connection);
  QCoreApplication::processEvents();
}

QuestionAnswer::QuestionAnswer(QMessageBox::StandardButton button)
    : QuestionAnswer([this, button](QDialog* dialog) {
        auto* box = qobject_cast<QMessageBox*>(dialog);
        if (!box)
          return dialog->reject();
        title = box->windowTitle();
        text = box->text();
        details = box->informativeText();
        defaultButton =
            box->defaultButton() ? box->standardButton(box->defaultButton()) : QMessageBox::NoButton;
        buttons = box->standardButtons();
        box->button(button)->click();
      }) {}

QuestionAnswer::QuestionAnswer(std::function<void(QDialog*)> action) {
  auto* timer = new QTimer(this);
  connect(timer, &QTimer::timeout, this, [this, timer, action] {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!dialog)
      return;
    timer->stop();
    wasAsked = true;
    action(dialog);
  });
  timer->start(kAnswerPollMs);
}
