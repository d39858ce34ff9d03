#include "BlackBox.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLoggingCategory>

#include "KorviaShowEvents.h"
#include "RecordJson.h"

namespace korvia {

namespace {
Q_LOGGING_CATEGORY(logTrace, "korvia.trace")
}

BlackBox& BlackBox::instance() {
  static BlackBox box;
  return box;
}

BlackBox::BlackBox() {
  clock_.start();
  const QString fileName = qEnvironmentVariable("KORVIA_TRACE");
  if (!fileName.isEmpty())
    open(fileName);
}

bool BlackBox::open(const QString& fileName) {
  std::lock_guard lock(mutex_);
  file_.close();
  open_ = false;
  if (fileName.isEmpty())
    return true;
  file_.setFileName(fileName);
  if (!file_.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
    qCWarning(logTrace, "failed to open the black box : %s", qPrintable(file_.errorString()));
    return false;
  }
  clock_.restart();
  open_ = true;
  return true;
}

void BlackBox::post(quint64 eventId, const QVariant& a1, const QVariant& a2, const QVariant& a3,
                    const QVariant& a4) {
  if (isOpen())
    event("post", eventId, {a1, a2, a3, a4});
}

void BlackBox::result(quint64 eventId, const QVariant& a1, const QVariant& a2, const QVariant& a3,
                      const QVariant& a4) {
  if (isOpen())
    event("result", eventId, {a1, a2, a3, a4});
}

void BlackBox::call(const char* name, int object, const QVariantList& args) {
  if (!isOpen())
    return;
  QJsonObject line{{"dir", "call"}, {"name", QLatin1String(name)}};
  if (object != 0)
    line["object"] = object;
  QJsonArray list;
  for (const QVariant& arg : args)
    list.append(toJson(arg));
  line["args"] = list;
  write(std::move(line));
}

void BlackBox::event(const char* direction, quint64 eventId, const QVariantList& args) {
  QJsonArray list;
  int used = args.size();
  while (used > 0 && !args[used - 1].isValid())
    --used;
  for (int i = 0; i < used; ++i)
    list.append(toJson(args[i]));
  write({{"dir", QLatin1String(direction)},
         {"event", static_cast<qint64>(eventId)},
         {"name", QLatin1String(korviaShowEventName(eventId))},
         {"args", list}});
}

void BlackBox::write(QJsonObject line) {
  std::lock_guard lock(mutex_);
  if (!file_.isOpen())
    return;
  line["t"] = clock_.elapsed();
  file_.write(QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n');
  file_.flush();
}

}  // namespace korvia
