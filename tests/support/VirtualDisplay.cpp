#include "VirtualDisplay.h"

#include <QRegularExpression>
#include <QtTest>

namespace korvia::test {

namespace {

constexpr int kStartMs = 10000;
constexpr int kToolMs = 15000;
constexpr int kEndMs = 5000;

}  // namespace

VirtualDisplay::~VirtualDisplay() {
  if (server_.state() == QProcess::NotRunning)
    return;
  server_.terminate();
  if (!server_.waitForFinished(kEndMs))
    server_.kill();
  server_.waitForFinished(kEndMs);
}

bool VirtualDisplay::start(const QSize& screen, const QStringList& arguments) {
  server_.setStandardErrorFile(QProcess::nullDevice());
  // The server chooses a free number and writes it to its standard output.
  const QStringList own{QStringLiteral("-displayfd"),
                        QStringLiteral("1"),
                        QStringLiteral("-nolisten"),
                        QStringLiteral("tcp"),
                        QStringLiteral("-screen"),
                        QStringLiteral("0"),
                        QStringLiteral("%1x%2x24").arg(screen.width()).arg(screen.height())};
  server_.start(QStringLiteral("Xvfb"), own + arguments);
  QByteArray number;
  while (!number.endsWith('\n') && server_.waitForReadyRead(kStartMs))
    number += server_.readAllStandardOutput();
  if (!number.endsWith('\n'))
    return false;
  name_ = QLatin1Char(':') + QString::fromLatin1(number.trimmed());
  return true;
}

std::optional<QByteArray> VirtualDisplay::run(const QString& program, const QStringList& arguments) const {
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("DISPLAY"), name_);
  process.setProcessEnvironment(environment);
  process.start(program, arguments);
  if (!process.waitForFinished(kToolMs) || process.exitStatus() != QProcess::NormalExit ||
      process.exitCode() != 0)
    return std::nullopt;
  return process.readAllStandardOutput();
}

std::optional<QByteArray> VirtualDisplay::xdotool(const QStringList& arguments) const {
  return run(QStringLiteral("xdotool"), arguments);
}

QImage VirtualDisplay::grabWindow(quint64 window) const {
  const auto picture = run(QStringLiteral("import"), {QStringLiteral("-silent"), QStringLiteral("-window"),
                                                      QString::number(window), QStringLiteral("ppm:-")});
  return picture ? QImage::fromData(*picture, "PPM") : QImage();
}

bool VirtualDisplay::click(const QPoint& position, int button) const {
  return xdotool({QStringLiteral("mousemove"), QString::number(position.x()), QString::number(position.y()),
                  QStringLiteral("click"), QString::number(button)})
      .has_value();
}

bool VirtualDisplay::drag(const QVector<QPoint>& stops) const {
  QStringList commands;
  for (int i = 0; i < stops.size(); ++i) {
    commands << QStringLiteral("mousemove") << QString::number(stops[i].x()) << QString::number(stops[i].y());
    if (i == 0)
      commands << QStringLiteral("mousedown") << QStringLiteral("1");
    commands << QStringLiteral("sleep") << QStringLiteral("0.1");
  }
  return xdotool(commands + QStringList{QStringLiteral("mouseup"), QStringLiteral("1")}).has_value();
}

bool VirtualDisplay::clickWindow(quint64 window, int button) const {
  const QRect place = geometryOf(window);
  return !place.isEmpty() && click(place.center(), button);
}

std::optional<quint64> VirtualDisplay::findWindow(const QString& title, int timeoutMs) const {
  std::optional<quint64> found;
  const QString pattern = QLatin1Char('^') + QRegularExpression::escape(title) + QLatin1Char('$');
  const bool isThere = QTest::qWaitFor(
      [&] {
        const auto windows = xdotool(
            {QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"), pattern});
        if (windows && !windows->trimmed().isEmpty())
          found = windows->trimmed().split('\n').last().toULongLong();
        return found.has_value();
      },
      timeoutMs);
  return isThere ? found : std::nullopt;
}

QRect VirtualDisplay::geometryOf(quint64 window) const {
  // Not xdotool, which counts the place of a window within another one twice.
  const auto text = run(QStringLiteral("xwininfo"), {QStringLiteral("-id"), QString::number(window)});
  if (!text)
    return {};
  const auto number = [&text](const char* name) {
    const QRegularExpression line(QString::fromLatin1(name) + QStringLiteral(":\\s+(-?\\d+)"));
    return line.match(QString::fromUtf8(*text)).captured(1).toInt();
  };
  return {number("Absolute upper-left X"), number("Absolute upper-left Y"), number("Width"),
          number("Height")};
}

}  // namespace korvia::test
