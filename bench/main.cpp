// korvia-bench: how fast the engine is, without any window.
#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <cstdio>

#include "KernelBench.h"
#include "ShowBench.h"

namespace {

int refuse(const QString& message) {
  std::fprintf(stderr, "korvia-bench: %s\n", qPrintable(message));
  return 2;
}

int show(QCommandLineParser& parser) {
  ShowBenchOptions options;
  options.inputs = parser.values("input");
  options.cacheMs = parser.value("cache").toInt();
  if (options.inputs.isEmpty()) {
    const QDir clips(QCoreApplication::applicationDirPath() + "/../showdata/Common/Demo");
    for (const QString& name : clips.entryList({"*.mp4"}, QDir::Files, QDir::Name))
      options.inputs << clips.absoluteFilePath(name);
  }
  if (options.inputs.isEmpty())
    return refuse("no --input, and no demo clips beside the program");
  options.channels = parser.isSet("channels") ? parser.value("channels").toInt() : options.inputs.size();
  options.seconds = parser.value("seconds").toDouble();
  options.takeEvery = parser.value("take-every").toDouble();
  options.effect = parser.value("effect").toInt();
  options.items = parser.value("items").toInt();
  options.recordFile = parser.value("record");
  options.fps = parser.value("fps").toInt();
  options.jsonFile = parser.value("json");
  options.monitors = !parser.isSet("no-monitors");
  const QStringList size = parser.value("size").split('x');
  if (size.size() == 2)
    options.size = QSize(size[0].toInt(), size[1].toInt());
  if (options.channels < 1 || options.channels > 8)
    return refuse("--channels takes 1 to 8");
  if (options.seconds <= 0 || options.fps <= 0 || options.size.isEmpty())
    return refuse("--seconds, --fps and --size take positive numbers");
  options.streamUrl = parser.value("stream");
  return runShowBench(options);
}

int kernels(const QCommandLineParser& parser) {
  QList<int> effects;
  if (parser.isSet("effect"))
    for (const QString& number : parser.values("effect"))
      effects << number.toInt();
  return runKernelBench(effects, parser.value("json"));
}

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
    qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QCommandLineParser parser;
  parser.setApplicationDescription(
      "Measures the show engine.\n\n"
      "  show     plays films, takes and records, and tells how time was kept\n"
      "  kernels  times each kernel on a 1080p frame against copying it");
  parser.addHelpOption();
  parser.addPositionalArgument("what", "show or kernels");
  parser.addOptions({{"input",
                      "Film, URL of a stream, page:URL, screen:N or delay:MS of the first channel; "
                      "repeatable. Without it the "
                      "demo clips.",
                      "INPUT"},
                     {"cache", "Jitter buffer of streams in milliseconds.", "MS", "1000"},
                     {"channels", "Channels that play, inputs repeating.", "N"},
                     {"seconds", "Time measured.", "N", "10"},
                     {"take-every", "Seconds between takes, 0 for none.", "S", "0"},
                     {"effect", "Effect number of the takes, or, repeatable, of the kernels.", "N", "22"},
                     {"items", "Titles over program: two lower thirds and a crawl, repeating.", "N", "0"},
                     {"record", "Record program into FILE.", "FILE"},
                     {"stream", "Push program to URL: rtmp, rtmps or srt.", "URL"},
                     {"size", "Render size.", "WxH", "1920x1080"},
                     {"fps", "Render rate.", "N", "25"},
                     {"no-monitors", "Scale no monitor pictures."},
                     {"json", "Write the figures to FILE too.", "FILE"}});
  parser.process(application);
  const QString what = parser.positionalArguments().value(0);
  if (what == "kernels")
    return kernels(parser);
  if (what == "show")
    return show(parser);
  return refuse("say what to measure: show or kernels");
}
