#include "BlackBox.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QSize>
#include <algorithm>
#include <chrono>
#include <utility>

#include "KorviaShowEvents.h"
#include "RecordJson.h"
#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"

namespace korvia {

namespace {

Q_LOGGING_CATEGORY(logTrace, "korvia.trace")

constexpr std::chrono::milliseconds kWriteInterval{100};
constexpr std::chrono::seconds kFlushLimit{2};

/// Only the size of a picture is noted: a reference would keep its memory in the queue.
QVariant queued(const QVariant& value) {
  if (value.userType() == QMetaType::QImage)
    return static_cast<const QImage*>(value.constData())->size();
  return value;
}

}  // namespace

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

BlackBox::~BlackBox() {
  // The tables of the encoder may have been destroyed before.
  endWriter(Rest::Lost);
}

bool BlackBox::open(const QString& fileName) {
  endWriter(Rest::Written);
  if (fileName.isEmpty())
    return true;
  file_.setFileName(fileName);
  if (!file_.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
    qCWarning(logTrace, "failed to open the black box : %s", qPrintable(file_.errorString()));
    return false;
  }
  {
    MutexLock lock(mutex_);
    queue_.reserve(kQueuedLinesMax);
    endWanted_ = false;
    clock_.restart();
  }
  writer_ = std::thread([this] { run(); });
  open_ = true;
  return true;
}

void BlackBox::endWriter(Rest rest) {
  open_ = false;
  if (!writer_.joinable())
    return;
  {
    MutexLock lock(mutex_);
    if (rest == Rest::Lost)
      queue_.clear();
    endWanted_ = true;
  }
  wake_.notify_all();
  writer_.join();
  file_.close();
}

void BlackBox::flush() {
  MutexLock lock(mutex_);
  if (!open_)
    return;
  const quint64 upTo = noted_;
  flushWanted_ = true;
  wake_.notify_all();
  written_.wait_for(lock, kFlushLimit, [&]() REQUIRES(mutex_) { return done_ >= upTo; });
}

void BlackBox::post(quint64 eventId, const QVariant& a1, const QVariant& a2, const QVariant& a3,
                    const QVariant& a4) {
  if (isOpen())
    note({.kind = Kind::Post,
          .eventId = eventId,
          .argCount = 4,
          .args = {queued(a1), queued(a2), queued(a3), queued(a4)}});
}

void BlackBox::result(quint64 eventId, const QVariant& a1, const QVariant& a2, const QVariant& a3,
                      const QVariant& a4) {
  if (isOpen())
    note({.kind = Kind::Result,
          .eventId = eventId,
          .argCount = 4,
          .args = {queued(a1), queued(a2), queued(a3), queued(a4)}});
}

void BlackBox::call(const char* name, int object, const QVariantList& args) {
  if (!isOpen())
    return;
  Note called;
  called.kind = Kind::Call;
  called.eventId = static_cast<quint64>(object);
  called.name = name;
  called.argCount = std::min(args.size(), static_cast<int>(called.args.size()));
  std::transform(args.begin(), args.begin() + called.argCount, called.args.begin(), queued);
  note(std::move(called));
}

void BlackBox::note(Note note) {
  MutexLock lock(mutex_);
  if (!open_)
    return;
  ++noted_;
  if (queue_.size() >= kQueuedLinesMax) {
    ++dropped_;
    return;
  }
  note.timeMs = clock_.elapsed();
  queue_.push_back(std::move(note));
  // The writer polls, because waking it for each line would cost the engine thread a system call.
  if (queue_.size() == kQueuedLinesMax / 2)
    wake_.notify_one();
}

void BlackBox::run() {
  nameThread("kv-trace");
  runAsBatch();
  std::vector<Note> notes;
  notes.reserve(kQueuedLinesMax);
  MutexLock lock(mutex_);
  for (bool ending = false; !ending;) {
    wake_.wait_for(lock, kWriteInterval, [this]() REQUIRES(mutex_) {
      return endWanted_ || flushWanted_ || queue_.size() >= kQueuedLinesMax / 2;
    });
    ending = endWanted_;
    flushWanted_ = false;
    notes.swap(queue_);
    const quint64 dropped = std::exchange(dropped_, 0);
    const quint64 taken = noted_;
    lock.unlock();
    write(notes, dropped);
    notes.clear();
    lock.lock();
    done_ = taken;
    written_.notify_all();
  }
}

void BlackBox::write(const std::vector<Note>& notes, quint64 dropped) {
  QByteArray text;
  for (const Note& note : notes)
    text += lineOf(note);
  if (dropped != 0) {
    const QJsonObject line{{"dir", "dropped"}, {"count", static_cast<qint64>(dropped)}};
    text += QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n';
  }
  if (!text.isEmpty())
    file_.write(text);
}

QByteArray BlackBox::lineOf(const Note& note) {
  QJsonObject line{{"t", note.timeMs}};
  int used = note.argCount;
  if (note.kind == Kind::Call) {
    line["dir"] = "call";
    line["name"] = QLatin1String(note.name);
    if (note.eventId != 0)
      line["object"] = static_cast<qint64>(note.eventId);
  } else {
    line["dir"] = note.kind == Kind::Post ? "post" : "result";
    line["event"] = static_cast<qint64>(note.eventId);
    line["name"] = QLatin1String(korviaShowEventName(note.eventId));
    while (used > 0 && !note.args[static_cast<std::size_t>(used - 1)].isValid())
      --used;
  }
  QJsonArray args;
  for (int i = 0; i < used; ++i)
    args.append(toJson(note.args[static_cast<std::size_t>(i)]));
  line["args"] = args;
  return QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n';
}

}  // namespace korvia
