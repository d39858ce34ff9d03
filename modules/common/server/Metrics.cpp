#include "Metrics.h"

#include <QJsonArray>
#include <QStringList>

namespace korvia {

namespace {

constexpr double kMsPerSecond = 1000;

struct Figure {
  const char* place;  // names in the status, with dots between them
  const char* name;
  const char* type;
  const char* help;
  double scale = 1;
};

constexpr Figure kFigures[] = {
    {"uptimeSeconds", "korvia_uptime_seconds", "gauge", "Time since the web server was opened."},
    {"sections.engine.open", "korvia_engine_open", "gauge", "1 while a show is open."},
    {"sections.engine.frames", "korvia_frames_total", "counter", "Program frames since the engine opened."},
    {"sections.engine.fps", "korvia_frames_per_second", "gauge", "Program frames a second, over 10 s."},
    {"sections.engine.lateTicks", "korvia_late_ticks_total", "counter", "Frames that began too late."},
    {"sections.engine.repeatedFrames", "korvia_repeated_frames_total", "counter",
     "Program frames that repeat the one before."},
    {"sections.engine.heldFilmFrames", "korvia_held_film_frames_total", "counter",
     "Pictures that open films did not have in time."},
    {"sections.engine.skippedFilmFrames", "korvia_skipped_film_frames_total", "counter",
     "Pictures that open films skipped to catch up."},
    {"sections.engine.droppedStripPictures", "korvia_dropped_strip_pictures_total", "counter",
     "Monitor pictures of channels that were dropped."},
    {"sections.engine.cpuLoad", "korvia_cpu_load_ratio", "gauge", "Share of all cores, 0 to 1."},
    {"sections.engine.sources", "korvia_sources", "gauge", "Open sources."},
    {"sections.engine.reducedSources", "korvia_reduced_sources", "gauge",
     "Sources that leave out pictures because the machine is short of time."},
    {"sections.buses.switchPosition", "korvia_switch_position_ratio", "gauge",
     "Position of the lever between preview and program, 0 to 1."},
    {"sections.sound.momentaryLufs", "korvia_loudness_momentary_lufs", "gauge", "Program, over 400 ms."},
    {"sections.sound.shortTermLufs", "korvia_loudness_short_term_lufs", "gauge", "Program, over 3 s."},
    {"sections.sound.integratedLufs", "korvia_loudness_integrated_lufs", "gauge",
     "Program, over the whole show."},
    {"sections.sound.truePeakDbtp", "korvia_true_peak_dbtp", "gauge", "Program, over the whole show."},
    {"sections.outputs.recording", "korvia_recording", "gauge", "1 while a recording runs."},
    {"sections.outputs.streaming", "korvia_streaming", "gauge", "1 while a stream runs."},
    {"sections.incomeServer.running", "korvia_income_running", "gauge",
     "1 while the server for pushed streams runs."},
    {"sections.incomeServer.restarts", "korvia_income_restarts_total", "counter",
     "Restarts of the server for pushed streams."},
    {"sections.incomeServer.refused", "korvia_income_refused_total", "counter",
     "Pushed streams that were refused."},
    {"sections.webServer.connections", "korvia_web_connections", "gauge", "Open connections."},
    {"sections.webServer.eventViewers", "korvia_web_event_viewers", "gauge", "Viewers of the events."},
    {"sections.webServer.refusedConnections", "korvia_web_refused_connections_total", "counter",
     "Connections that were ended because there were too many."},
    {"sections.webServer.expiredConnections", "korvia_web_expired_connections_total", "counter",
     "Connections that were ended because a request took too long."},
};

/// Figures that each item of a list or family has.
constexpr Figure kOutputFigures[] = {
    {"droppedFrames", "korvia_output_dropped_frames_total", "counter", "Frames that were not written."},
    {"writtenMs", "korvia_output_written_seconds", "gauge", "Length of what was written.", kMsPerSecond},
    {"writtenBytes", "korvia_output_written_bytes", "gauge", "Size of what was written."},
    {"verifiedMs", "korvia_output_verified_seconds", "gauge", "Length of what was read back.", kMsPerSecond},
    {"roomSeconds", "korvia_output_room_seconds", "gauge", "Time until the disk is full."},
};
constexpr Figure kTargetFigures[] = {
    {"upSeconds", "korvia_target_up_seconds", "gauge", "Time since the target is up."},
    {"kbps", "korvia_target_bits_per_second", "gauge", "Sent to the target.", 1.0 / 1000},
};
constexpr Figure kStageFigures[] = {
    {"p50Ms", "0.5", "", "", kMsPerSecond},
    {"p99Ms", "0.99", "", "", kMsPerSecond},
    {"maxMs", "1", "", "", kMsPerSecond},
};

QJsonValue valueAt(const QJsonObject& status, const char* place) {
  QJsonValue value = status;
  const QStringList names = QString::fromLatin1(place).split(QLatin1Char('.'));
  for (const QString& name : names)
    value = value.toObject().value(name);
  return value;
}

class MetricsWriter {
 public:
  void begin(const char* name, const char* type, const char* help) {
    text_ += QByteArray("# HELP ") + name + ' ' + help + "\n# TYPE " + name + ' ' + type + '\n';
  }

  /// Writes nothing for a value that is no figure.
  void sample(const char* name, const QByteArray& labels, const QJsonValue& value, double scale = 1) {
    if (!value.isDouble() && !value.isBool())
      return;
    const double figure = value.isBool() ? static_cast<double>(value.toBool()) : value.toDouble() / scale;
    text_ += name;
    if (!labels.isEmpty())
      text_ += '{' + labels + '}';
    text_ += ' ' + QByteArray::number(figure, 'g', 15) + '\n';
  }

  const QByteArray& text() const { return text_; }

 private:
  QByteArray text_;
};

QByteArray label(const char* name, const QString& value) {
  QByteArray text = value.toUtf8();
  text.replace('\\', "\\\\").replace('"', "\\\"").replace('\n', "\\n");
  return QByteArray(name) + "=\"" + text + '"';
}

/// Things that have figures of the same names, each with its labels.
using Family = QList<std::pair<QByteArray, QJsonObject>>;

template <std::size_t N>
void writeFamily(MetricsWriter& writer, const Figure (&figures)[N], const Family& family) {
  for (const Figure& figure : figures) {
    writer.begin(figure.name, figure.type, figure.help);
    for (const auto& [labels, values] : family)
      writer.sample(figure.name, labels, values.value(QLatin1String(figure.place)), figure.scale);
  }
}

void writeTally(MetricsWriter& writer, const QJsonObject& sections) {
  const QJsonObject buses = sections.value(QStringLiteral("buses")).toObject();
  const QStringList channels = sections.value(QStringLiteral("channels")).toObject().keys();
  constexpr const char* kBuses[][2] = {{"pgm", "korvia_channel_on_program"},
                                       {"pvm", "korvia_channel_on_preview"}};
  for (const auto& [bus, name] : kBuses) {
    writer.begin(name, "gauge", "1 for the channel on the bus.");
    for (const QString& channel : channels)
      writer.sample(name, label("channel", channel), buses.value(QLatin1String(bus)).toString() == channel);
  }
}

void writeOutputs(MetricsWriter& writer, const QJsonObject& outputs) {
  Family outputFamily;
  Family targets;
  const auto addTargets = [&targets](const QString& output, const QJsonValue& list) {
    const QJsonArray items = list.toArray();
    for (const QJsonValue& item : items) {
      const QJsonObject target = item.toObject();
      targets.append(
          {label("output", output) + ',' + label("target", target.value(QStringLiteral("name")).toString()),
           target});
    }
  };
  for (const QString& name : {QStringLiteral("record"), QStringLiteral("stream")}) {
    const QJsonObject output = outputs.value(name).toObject();
    outputFamily.append({label("output", name), output});
    addTargets(name, output.value(QStringLiteral("targets")));
  }
  addTargets(QStringLiteral("devices"), outputs.value(QStringLiteral("devices")));
  writeFamily(writer, kOutputFigures, outputFamily);
  writer.begin("korvia_output_failed", "gauge", "1 for an output that has failed.");
  for (const auto& [labels, output] : outputFamily)
    writer.sample("korvia_output_failed", labels,
                  output.value(QStringLiteral("state")).toString() == QLatin1String("Failed"));
  writer.begin("korvia_target_up", "gauge", "1 for a target that receives.");
  for (const auto& [labels, target] : targets)
    writer.sample("korvia_target_up", labels,
                  target.value(QStringLiteral("state")).toString() == QLatin1String("Up"));
  writeFamily(writer, kTargetFigures, targets);
}

void writeStages(MetricsWriter& writer, const QJsonObject& engine) {
  QJsonObject stages = engine.value(QStringLiteral("stages")).toObject();
  stages.insert(QStringLiteral("tick"), engine.value(QStringLiteral("tick")));
  writer.begin("korvia_stage_seconds", "gauge",
               "Time of a frame's stages over 10 s; quantile 1 is the longest.");
  for (const QString& stage : stages.keys()) {
    for (const Figure& figure : kStageFigures)
      writer.sample("korvia_stage_seconds",
                    label("stage", stage) + ',' + label("quantile", QLatin1String(figure.name)),
                    stages.value(stage).toObject().value(QLatin1String(figure.place)), figure.scale);
  }
}

}  // namespace

QByteArray metricsText(const QJsonObject& status) {
  MetricsWriter writer;
  for (const Figure& figure : kFigures) {
    const QJsonValue value = valueAt(status, figure.place);
    if (!value.isDouble() && !value.isBool())
      continue;
    writer.begin(figure.name, figure.type, figure.help);
    writer.sample(figure.name, {}, value, figure.scale);
  }
  const QJsonObject sections = status.value(QStringLiteral("sections")).toObject();
  writeTally(writer, sections);
  writeOutputs(writer, sections.value(QStringLiteral("outputs")).toObject());
  writeStages(writer, sections.value(QStringLiteral("engine")).toObject());
  return writer.text();
}

}  // namespace korvia
