// Policy and niceness of every thread of a running show, as the system has them.
#include <sched.h>
#include <sys/resource.h>

#include <QApplication>
#include <QTemporaryDir>
#include <QWidget>
#include <QtTest>

#include "KorviaMetaType.h"
#include "KorviaShowEngine.h"
#include "support/RecordingSink.h"
#include "tagKorviaShowEngineInfo.h"
#include "tagKorviaShowOutputParam.h"
#include "tagKorviaWindowInfo.h"

namespace {

struct Thread {
  QString name;
  int policy = -1;
  int nice = 0;
};

/// All threads of this process but the one that asks.
QList<Thread> otherThreads() {
  QList<Thread> threads;
  for (const QString& task :
       QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
    const int id = task.toInt();
    QFile comm(QStringLiteral("/proc/self/task/%1/comm").arg(id));
    if (id == QCoreApplication::applicationPid() || !comm.open(QIODevice::ReadOnly))
      continue;
    const QString name = QString::fromUtf8(comm.readAll()).trimmed();
    threads.append({name, sched_getscheduler(id), getpriority(PRIO_PROCESS, static_cast<id_t>(id))});
  }
  return threads;
}

/// The thread of that name; one without a name when there is none.
Thread find(const QList<Thread>& threads, const QString& name) {
  for (const Thread& thread : threads) {
    if (thread.name == name)
      return thread;
  }
  return {};
}

}  // namespace

class ThreadsTest : public QObject {
  Q_OBJECT

 private slots:
  void everyThreadHasItsPolicyAndNiceness() {
    const QTemporaryDir folder;
    QWidget window;
    window.resize(160, 90);
    RecordingSink sink;
    KorviaShowEngine engine;
    engine.start(&sink, ShowThreadNormal);
    tagKorviaShowEngineInfo info;
    info.format.width = 320;
    info.format.height = 180;
    tagKorviaShowWindowPackInfo windows;
    windows.pgm.right = 159;
    windows.pgm.bottom = 89;
    windows.pgm.winId = window.winId();
    engine.postEvent(ShowEventOpen, toVariant(info), toVariant(windows));
    QVERIFY(sink.waitFor(ShowEventOpen));
    tagKorviaShowSourceInfo source;
    source.kind = SourceKindMovie;
    source.moviePath = QStringLiteral(MEDIA_DIR "/long.mp4");
    tagKorviaFormatInfo format;
    engine.openSource(SourceObject, source, format, nullptr);
    tagKorviaShowOutputParam param;
    param.items[OutputSlotRecord].recordPath = folder.path() + '/';
    engine.postEvent(ShowEventStartOutput, OutputSlotRecord, toVariant(param), QString("threads"),
                     toVariant(format));
    const auto isPlaying = [&] { return engine.getSource(SourceObject)->getPlayState() == Playing; };
    QTRY_VERIFY_WITH_TIMEOUT(isPlaying(), 10000);

    const QStringList outputs{"kv-encoder", "kv-record"};
    const QStringList batch = outputs + QStringList{"kv-source", "kv-raster", "kv-janitor", "kv-snapshot"};
    const auto allThere = [&] {
      const QList<Thread> threads = otherThreads();
      return std::all_of(batch.begin(), batch.end(),
                         [&](const QString& name) { return !find(threads, name).name.isEmpty(); });
    };
    QTRY_VERIFY_WITH_TIMEOUT(allThere(), 10000);
    const QList<Thread> threads = otherThreads();
    // Outputs come before the rest where the user may have it so: a recording cannot be repeated.
    const int outputNice = find(threads, "kv-engine").nice < 0 ? -5 : 0;
    for (const QString& name : batch) {
      const Thread thread = find(threads, name);
      QVERIFY2(
          thread.policy == SCHED_BATCH && thread.nice == (outputs.contains(name) ? outputNice : 0),
          qPrintable(QString("%1 has policy %2, niceness %3").arg(name).arg(thread.policy).arg(thread.nice)));
    }
    const Thread monitor = find(threads, "kv-monitor");
    QCOMPARE(monitor.policy, SCHED_BATCH);
    QCOMPARE(monitor.nice, 5);
    QCOMPARE(find(threads, "kv-engine").policy, SCHED_OTHER);
    // Multiplexers and x264's own threads too; the frame clock alone goes before them.
    for (const Thread& thread : threads)
      QVERIFY2(thread.nice >= outputNice || thread.name == "kv-engine", qPrintable(thread.name));

    engine.postEvent(ShowEventStopOutput, OutputSlotRecord, OutputKindRecord);
    engine.postEvent(ShowEventClose);
    engine.stop();
  }
};

QTEST_MAIN(ThreadsTest)
#include "tst_threads.moc"
