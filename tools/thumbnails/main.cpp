// korvia-thumbnails: draws the pictures of the console's pickers with the engine's own effects, curves, texts
// and poses.
#include <QCommandLineParser>
#include <QGuiApplication>
#include <algorithm>
#include <cstdio>

#include "AnimationSheet.h"
#include "ContactSheet.h"
#include "PresetSheet.h"
#include "ThumbnailSet.h"

namespace {

struct Sheet {
  const char* option;
  const char* description;
  QImage (*draw)();
};

constexpr Sheet kSheets[] = {
    {"contact-sheet", "Write a sheet of all transitions.", korvia::drawContactSheet},
    {"preset-sheet", "Write a sheet of all presets of text styles.", korvia::drawPresetSheet},
    {"animation-sheet", "Write a sheet of all entrances and exits of texts.", korvia::drawAnimationSheet},
};

}  // namespace

int main(int argc, char** argv) {
  // The program opens no window and needs the platform only for fonts, so it must run without a display.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);

  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("Draws the pictures of the console's pickers, or all of a kind on one sheet."));
  parser.addHelpOption();
  parser.addPositionalArgument(QStringLiteral("FOLDER"),
                               QStringLiteral("The folder of the program; pictures go into res/ under it."),
                               QStringLiteral("[FOLDER]"));
  for (const Sheet& sheet : kSheets)
    parser.addOption({QLatin1String(sheet.option), QLatin1String(sheet.description), QStringLiteral("FILE")});
  parser.process(application);

  const QStringList folders = parser.positionalArguments();
  const bool drawsSheet = std::any_of(std::begin(kSheets), std::end(kSheets), [&parser](const Sheet& sheet) {
    return parser.isSet(QLatin1String(sheet.option));
  });
  if (folders.size() > 1 || (folders.isEmpty() && !drawsSheet)) {
    std::fputs(qPrintable(parser.helpText()), stderr);
    return 2;
  }
  if (!folders.isEmpty() && !korvia::writeThumbnails(folders.constFirst()))
    return 1;
  for (const Sheet& sheet : kSheets) {
    const QString file = parser.value(QLatin1String(sheet.option));
    if (parser.isSet(QLatin1String(sheet.option)) && !sheet.draw().save(file)) {
      std::fprintf(stderr, "failed to write %s\n", qPrintable(file));
      return 1;
    }
  }
  return 0;
}
