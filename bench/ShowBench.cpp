#include "ShowBench.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>
#include <QTimer>
#include <cstdio>

#include "KorviaMetaType.h"
#include "KorviaShowEngine.h"
#include "KorviaShowUtil.h"
#include "ProcessFigures.h"
#include "Report.h"
#include "tagKorviaShowEngineInfo.h"
#include "tagKorviaShowOutputParam.h"
#include "tagKorviaShowTextInfo.h"
#include "tagKorviaWindowInfo.h"

namespace {

constexpr int kWarmUpMs = 2000;
constexpr int kOpenMs = 20000;
// Sizes of the pictures on the console at 1280 x 720.
constexpr QSize kStripPicture(296, 167);
constexpr QSize kBusPicture(544, 306);

class Sink final : public IKorviaShowThreadSink {
 public:
  bool isValid() override { return true; }
  bool release() override { return true; }
  void* queryInterface(const Identifier*, unsigned) override { return nullptr; }
  void onPostEventResult(quint64, quint64, QVariant, QVariant, QVariant, QVariant) override {}
};

void pass(int ms) {
  QEventLoop loop;
  QTimer::singleShot(ms, &loop, &QEventLoop::quit);
  loop.exec();
}

template <typename Condition>
bool waitFor(Condition condition, int timeoutMs) {
  QElapsedTimer clock;
  clock.start();
  while (!condition()) {
    if (clock.elapsed() > timeoutMs)
      return false;
    pass(1);
  }
  return true;
}

/// Window handles that belong to no widget: the pictures are scaled and then dropped.
tagKorviaShowWindowPackInfo windows(int channels) {
  const auto window = [](int number, QSize size) {
    tagKorviaWindowInfo info;
    info.right = size.width() - 1;
    info.bottom = size.height() - 1;
    info.winId = WId{0x7000'0000} + static_cast<WId>(number);
    return info;
  };
  tagKorviaShowWindowPackInfo pack;
  for (int i = 0; i < channels; ++i)
    pack.media[i] = window(i, kStripPicture);
  pack.pvm = window(100, kBusPicture);
  pack.pgm = window(101, kBusPicture);
  return pack;
}

tagKorviaShowEngineInfo engineInfo(const ShowBenchOptions& options) {
  tagKorviaShowEngineInfo info;
  info.format.width = options.size.width();
  info.format.height = options.size.height();
  info.format.fpsNumerator = options.fps;
  info.format.fpsDenominator = 1;
  info.mediaChannelCount = options.channels;
  return info;
}

tagKorviaShowSourceInfo sourceInfo(const QString& input, int cacheMs) {
  tagKorviaShowSourceInfo source;
  if (input.startsWith(QLatin1String("page:"))) {
    source.kind = SourceKindWeb;
    source.webUrl = input.mid(5);
  } else if (input.startsWith(QLatin1String("screen:"))) {
    source.kind = SourceKindScreen;
    source.screenIndex = input.midRef(7).toInt();
  } else if (input.startsWith(QLatin1String("delay:"))) {
    source.kind = SourceKindDelay;
    source.delayChannel = static_cast<int>(MediaChannel);
    source.delayTime = input.midRef(6).toInt();
    source.delayCachePath = QDir::tempPath();
  } else if (input.contains(QLatin1String("://"))) {
    source.kind = SourceKindUrl;
    source.url = input;
    source.urlCache = cacheMs;
  } else {
    source.kind = SourceKindMovie;
    source.moviePath = input;
  }
  return source;
}

/// Of the channels that cannot wait.
QJsonArray liveSources(const ShowBenchOptions& options, const tagKorviaShowEngineFigures& before,
                       const tagKorviaShowEngineFigures& after) {
  QJsonArray sources;
  for (std::size_t i = 0; i < static_cast<std::size_t>(options.channels); ++i) {
    const tagKorviaShowEngineFigures::LiveSource& live = after.liveSources[i];
    if (live.isLive)
      sources.append(QJsonObject{{"channel", static_cast<int>(i)},
                                 {"latencyMs", live.latencyMs},
                                 {"driftPpm", live.driftPpm},
                                 {"connections", live.connections},
                                 {"stampJumps", live.stampJumps - before.liveSources[i].stampJumps},
                                 {"missedFrames", live.missedFrames - before.liveSources[i].missedFrames}});
  }
  return sources;
}

/// Two lower thirds and a crawl, again and again, each a little higher.
tagKorviaShowTextInfo itemInfo(int number) {
  constexpr int kKinds = 3;
  tagKorviaShowTextInfo text;
  const int row = number / kKinds;
  text.y = 0.82 + 0.06 * (number % kKinds) - 0.2 * row;
  KorviaShowUtil::loadTextStylePreset(TextStyleSolidOutlineWhite, text.style);
  text.style.shadowDistanceX = 3;
  text.style.shadowDistanceY = -3;
  if (number % kKinds == 0) {
    text.text = QStringLiteral("Somebody of Somewhere, Engineer");
  } else if (number % kKinds == 1) {
    text.text = QStringLiteral("Live from the harbour of the old town");
  } else {
    text.text =
        QStringLiteral("News that are long enough to need a crawl, and then some more of them. ").repeated(2);
    text.x = 1;
    text.scrollEndX = 0;
    text.scrollTime = 12;
  }
  return text;
}

bool openChannels(KorviaShowEngine& engine, const ShowBenchOptions& options) {
  for (int i = 0; i < options.channels; ++i) {
    tagKorviaShowSourceInfo source = sourceInfo(options.inputs[i % options.inputs.size()], options.cacheMs);
    tagKorviaFormatInfo format;
    format.video.width = format.video.secondWidth = options.size.width();
    format.video.height = format.video.secondHeight = options.size.height();
    engine.openSource(static_cast<KorviaShowObjectID>(SourceObject + i), source, format, nullptr);
  }
  for (int i = 0; i < options.channels; ++i) {
    const auto id = static_cast<KorviaShowObjectID>(MediaChannel + i);
    const bool plays = waitFor([&] { return engine.getSource(id)->getPlayState() == Playing; }, kOpenMs);
    if (!plays) {
      std::fprintf(stderr, "channel %d does not play %s\n", i,
                   qPrintable(options.inputs[i % options.inputs.size()]));
      return false;
    }
  }
  return true;
}

void startOutput(KorviaShowEngine& engine, const ShowBenchOptions& options, int slot,
                 const tagKorviaShowOutputParam& param) {
  tagKorviaFormatInfo format;
  format.video.width = format.video.secondWidth = options.size.width();
  format.video.height = format.video.secondHeight = options.size.height();
  engine.postEvent(ShowEventStartOutput, slot, toVariant(param), QString("bench"), toVariant(format));
}

void startStream(KorviaShowEngine& engine, const ShowBenchOptions& options) {
  tagKorviaShowOutputParam param;
  tagKorviaShowOutputItem& item = param.items[OutputSlotStream];
  item.kind = OutputKindStream;
  item.rtmp0Enable = 1;
  item.rtmp0Url = options.streamUrl;
  startOutput(engine, options, OutputSlotStream, param);
}

/// How the stream does at the end of the run.
QJsonObject streamResult(const tagKorviaShowOutputReport& report) {
  const tagKorviaShowTargetReport push = report.targets.value(0);
  return {{"up", push.state == KorviaShowTargetState::Up},
          {"upSeconds", push.upSeconds},
          {"kbps", push.bitrate},
          {"reason", push.reason},
          {"droppedFrames", report.droppedFrames}};
}

void startRecording(KorviaShowEngine& engine, const ShowBenchOptions& options) {
  const QFileInfo file(options.recordFile);
  const QMap<QString, int> containers{{"ts", EncapsulationTs},
                                      {"flv", EncapsulationFlv},
                                      {"mp4", EncapsulationMp4},
                                      {"mkv", EncapsulationMkv},
                                      {"mov", EncapsulationMov}};
  tagKorviaShowOutputParam param;
  tagKorviaShowOutputItem& item = param.items[OutputSlotRecord];
  item.kind = OutputKindRecord;
  item.recordActive = 1;
  item.recordPath = file.absolutePath() + '/';
  item.recordNameFormat = file.completeBaseName();
  item.recordEncapsulation = containers.value(file.suffix(), EncapsulationMp4);
  startOutput(engine, options, OutputSlotRecord, param);
}

QJsonObject stage(const tagKorviaShowEngineFigures::StageTime& time) {
  return {
      {"p50Ms", time.p50Ms}, {"p99Ms", time.p99Ms}, {"maxMs", time.maxMs}, {"maxOfRunMs", time.maxOfRunMs}};
}

QJsonObject report(const ShowBenchOptions& options, const tagKorviaShowEngineFigures& before,
                   const tagKorviaShowEngineFigures& after, double wallSeconds,
                   const ProcessFigures& processBefore, const ProcessFigures& processAfter) {
  QJsonObject threads;
  for (auto it = processAfter.threadSeconds.begin(); it != processAfter.threadSeconds.end(); ++it) {
    const double used = it.value() - processBefore.threadSeconds.value(it.key());
    if (used / wallSeconds >= 0.001)
      threads[it.key()] = used / wallSeconds;
  }
  return {{"channels", options.channels},
          {"seconds", wallSeconds},
          {"frames", after.frames - before.frames},
          {"fps", static_cast<double>(after.frames - before.frames) / wallSeconds},
          {"lateTicks", after.lateTicks - before.lateTicks},
          {"repeatedFrames", after.repeatedFrames - before.repeatedFrames},
          {"droppedStripPictures", after.droppedStripPictures - before.droppedStripPictures},
          {"heldFilmFrames", after.heldFilmFrames - before.heldFilmFrames},
          {"reducedSources", after.reducedSources},
          {"liveSources", liveSources(options, before, after)},
          {"skippedFilmFrames", after.skippedFilmFrames - before.skippedFilmFrames},
          {"coreSecondsPerSecond", (processAfter.cpuSeconds - processBefore.cpuSeconds) / wallSeconds},
          {"coresByThread", threads},
          {"peakResidentMiB", static_cast<double>(processAfter.peakResidentBytes) / (1 << 20)},
          {"loudness", QJsonObject{{"integratedLufs", after.loudness.integratedLufs},
                                   {"truePeakDbtp", after.loudness.truePeakDbtp}}},
          {"stages", QJsonObject{{"sources", stage(after.sources)},
                                 {"mix", stage(after.mix)},
                                 {"items", stage(after.items)},
                                 {"audio", stage(after.audio)},
                                 {"monitors", stage(after.monitors)},
                                 {"handOver", stage(after.handOver)},
                                 {"tick", stage(after.tick)}}}};
}

}  // namespace

int runShowBench(const ShowBenchOptions& options) {
  Sink sink;
  KorviaShowEngine engine;
  QElapsedTimer startClock;
  startClock.start();
  engine.start(&sink, ShowThreadNormal);
  engine.postEvent(ShowEventOpen, toVariant(engineInfo(options)),
                   toVariant(options.monitors ? windows(options.channels) : tagKorviaShowWindowPackInfo{}));
  tagKorviaShowEngineFigures before;
  waitFor([&] { return engine.getFigures(before), before.frames > 0; }, kOpenMs);
  const double firstFrameMs = static_cast<double>(startClock.nsecsElapsed()) / 1e6;
  if (!openChannels(engine, options)) {
    engine.stop();
    return 1;
  }
  engine.postEvent(ShowEventSelectChannel, PGMObject, MediaChannel + 0);
  engine.postEvent(ShowEventSelectChannel, PVMObject, MediaChannel + std::min(1, options.channels - 1));
  for (int i = 0; i < options.items; ++i)
    engine.postEvent(ShowEventAddText, PGMObject, toVariant(itemInfo(i)));
  if (!options.recordFile.isEmpty())
    startRecording(engine, options);
  if (!options.streamUrl.isEmpty())
    startStream(engine, options);
  pass(kWarmUpMs);

  engine.getFigures(before);
  const ProcessFigures processBefore = ProcessFigures::now();
  QElapsedTimer clock;
  clock.start();
  int next = 1;
  QTimer takes;
  QObject::connect(&takes, &QTimer::timeout, [&] {
    engine.postEvent(ShowEventTake, MediaChannel + next % options.channels, options.effect, 1.0F, 0);
    ++next;
  });
  if (options.takeEvery > 0)
    takes.start(static_cast<int>(options.takeEvery * 1000));
  pass(static_cast<int>(options.seconds * 1000));
  takes.stop();
  const double wallSeconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
  tagKorviaShowEngineFigures after;
  engine.getFigures(after);
  const ProcessFigures processAfter = ProcessFigures::now();

  if (!options.recordFile.isEmpty())
    engine.postEvent(ShowEventStopOutput, OutputSlotRecord, OutputKindRecord);
  if (!options.streamUrl.isEmpty())
    engine.postEvent(ShowEventStopOutput, OutputSlotStream, OutputKindStream);
  engine.postEvent(ShowEventClose);
  engine.stop();

  QJsonObject result = report(options, before, after, wallSeconds, processBefore, processAfter);
  result["startToFirstFrameMs"] = firstFrameMs;
  if (!options.streamUrl.isEmpty())
    result["stream"] = streamResult(after.outputs[OutputSlotStream]);
  std::fputs(QJsonDocument(result).toJson().constData(), stdout);
  return options.jsonFile.isEmpty() || writeReport(result, options.jsonFile) ? 0 : 1;
}
