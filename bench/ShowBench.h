// Measures a show without windows: films on the channels, takes, a recording, a stream, and how well the
// engine kept its frame rate.
#pragma once
#include <QSize>
#include <QString>
#include <QStringList>

struct ShowBenchOptions {
  /// Films; URLs of streams; "page:URL"; "screen:N"; "delay:MS" of the first channel.
  QStringList inputs;
  int cacheMs = 1000;  ///< of streams
  int channels = 3;
  double seconds = 10;
  /// Seconds between takes; 0 for no takes.
  double takeEvery = 0;
  /// Titles over program.
  int items = 0;
  int effect = 22;
  QString recordFile;
  QString streamUrl;
  QSize size{1920, 1080};
  int fps = 25;
  bool monitors = true;
  QString jsonFile;
};

/// Runs and prints; returns the exit code of the program.
int runShowBench(const ShowBenchOptions& options);
