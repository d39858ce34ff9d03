#include "DisplayGuard.h"

#include <unistd.h>

#include <QList>
#include <QLoggingCategory>
#include <QString>
#include <cstdio>
#include <utility>

namespace korvia {

namespace {

struct HeldMessage {
  QtMsgType type;
  QByteArray category;
  QString text;
};

// Needs no lock: until the application object exists only the console thread logs.
QList<HeldMessage> held;

QString reason() {
  const QString platform = qEnvironmentVariable("QT_QPA_PLATFORM");
  if (!platform.isEmpty() && !platform.startsWith(QLatin1String("xcb")))
    return QStringLiteral("the window system \"%1\" cannot be used").arg(platform);
  const QString display = qEnvironmentVariable("DISPLAY");
  if (display.isEmpty())
    return QStringLiteral("there is no display, DISPLAY is not set");
  return QStringLiteral("the display \"%1\" cannot be reached").arg(display);
}

void onMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (type != QtFatalMsg) {
    held.append({type, context.category, text});
    return;
  }
  std::fprintf(stderr, "korvia: %s; ./run brings a virtual one\n", qUtf8Printable(reason()));
  std::fflush(stderr);
  // The application object is only half constructed, so no destructors may run.
  _exit(1);
}

}  // namespace

DisplayGuard::DisplayGuard() : before_(qInstallMessageHandler(onMessage)) {}

DisplayGuard::~DisplayGuard() {
  qInstallMessageHandler(before_);
  for (const HeldMessage& message : std::exchange(held, {})) {
    const QMessageLogContext context(nullptr, 0, nullptr, message.category.constData());
    if (before_)
      before_(message.type, context, message.text);
  }
}

}  // namespace korvia
