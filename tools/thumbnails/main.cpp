// korvia-thumbnails: draws the pictures of the console's pickers with the engine's own effects and curves.
#include <QCommandLineParser>
#include <QGuiApplication>
#include <cstdio>

#include "ContactSheet.h"
#include "PresetSheet.h"
#include "ThumbnailSet.h"

int main(int argc, char** argv) {
  // The program opens no window and needs the platform only for fonts, so it must run without a display.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);

  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("Draws the pictures of the console's pickers, or all transitions on one sheet."));
  parser.addHelpOption();
  parser.addPositionalArgument(QStringLiteral("FOLDER"),
                               QStringLiteral("The folder of the program; pictures go into res/ under it."),
                               QStringLiteral("[FOLDER]"));
  const QCommandLineOption sheetOption(QStringLiteral("contact-sheet"),
                                       QStringLiteral("Write a sheet of all transitions."),
                                       QStringLiteral("FILE"));
  parser.addOption(sheetOption);
  const QCommandLineOption presetsOption(QStringLiteral("preset-sheet"),
                                         QStringLiteral("Write a sheet of all presets of text styles."),
                                         QStringLiteral("FILE"));
  parser.addOption(presetsOption);
  parser.process(application);

  const QStringList folders = parser.positionalArguments();
  const bool drawsSheet = parser.isSet(sheetOption) || parser.isSet(presetsOption);
  if (folders.size() > 1 || (folders.isEmpty() && !drawsSheet)) {
    std::fputs(qPrintable(parser.helpText()), stderr);
    return 2;
  }
  if (!folders.isEmpty() && !korvia::writeThumbnails(folders.constFirst()))
    return 1;
  const QString sheet = parser.value(sheetOption);
  if (parser.isSet(sheetOption) && !korvia::drawContactSheet().save(sheet)) {
    std::fprintf(stderr, "failed to write %s\n", qPrintable(sheet));
    return 1;
  }
  const QString presets = parser.value(presetsOption);
  if (parser.isSet(presetsOption) && !korvia::drawPresetSheet().save(presets)) {
    std::fprintf(stderr, "failed to write %s\n", qPrintable(presets));
    return 1;
  }
  return 0;
}
