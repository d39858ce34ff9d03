// korvia-demo-clip OUT.mp4: makes a film for trying the switcher. Its clock, flash and beep show frame by
// frame whether a recording is right.

#include <gst/gst.h>

#include <QCommandLineParser>
#include <QFile>
#include <QGuiApplication>
#include <cstdio>

#include "ClipWriter.h"
#include "DemoFormat.h"
#include "DemoPicture.h"
#include "DemoSound.h"

namespace {

bool makeFilm(const QString& path, int variant) {
  korvia::ClipWriter writer;
  if (!writer.open(path)) {
    return false;
  }
  const korvia::DemoSound sound(variant);
  const int delay = korvia::ClipWriter::soundDelaySamples();
  if (!writer.writeSound(sound.samples(delay, korvia::kDemoSeconds * korvia::kDemoSampleRate - delay))) {
    return writer.close() && false;
  }
  korvia::DemoPicture picture(variant);
  for (int frame = 0; frame < korvia::kDemoFrames; ++frame) {
    if (!writer.writePicture(picture.draw(frame))) {
      break;
    }
  }
  return writer.close();
}

}  // namespace

int main(int argc, char** argv) {
  // The program opens no window and needs the platform only for fonts, so it must run without a display.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  gst_init(nullptr, nullptr);

  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("Makes a 20 s demo film with a clock, and a flash and a beep at each full second."));
  parser.addHelpOption();
  parser.addPositionalArgument(QStringLiteral("OUT.mp4"), QStringLiteral("The file to write."));
  const QCommandLineOption variantOption(QStringLiteral("variant"), QStringLiteral("Which film, 1 or 2."),
                                         QStringLiteral("N"), QStringLiteral("1"));
  parser.addOption(variantOption);
  parser.process(application);

  const int variant = parser.value(variantOption).toInt();
  if (parser.positionalArguments().size() != 1 || variant < 1 || variant > 2) {
    std::fputs(qPrintable(parser.helpText()), stderr);
    return 2;
  }

  // Written under another name first, so that an interrupted run leaves no file under the final name.
  const QString path = parser.positionalArguments().constFirst();
  const QString unfinished = path + QStringLiteral(".part");
  if (!makeFilm(unfinished, variant)) {
    QFile::remove(unfinished);
    return 1;
  }
  QFile::remove(path);
  if (!QFile::rename(unfinished, path)) {
    std::fprintf(stderr, "failed to write %s\n", qPrintable(path));
    return 1;
  }
  return 0;
}
