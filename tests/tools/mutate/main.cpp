// Opens damaged files as sources and pulls pictures from them. It ends with 0 when the program has come
// through and no file took too long. The same number is always the same file, so that a crash can be
// repeated:
//   ASAN_OPTIONS=detect_leaks=0 QT_QPA_PLATFORM=offscreen korvia-mutate [count [first]]
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "Mutation.h"
#include "Recipes.h"
#include "engine/source/SourceFactory.h"
#include "engine/source/SourceThreads.h"
#include "support/TestFile.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kDefaultCount = 60;
constexpr qint64 kMostMs = 10'000;
// A film that gives no picture fails by itself at kMostMs only, so it is closed while it still opens.
constexpr qint64 kOpenMs = 2'000;

/// Pulls until the source has opened or failed, then once more after each thing that an operator can do.
void drive(Source& source) {
  QElapsedTimer timer;
  timer.start();
  while (source.getPlayState() == Opening && timer.elapsed() < kOpenMs) {
    source.pullFrame(1);
    QThread::msleep(1);
  }
  for (int round = 0; round < 4; ++round) {
    for (int i = 0; i < 5; ++i)
      source.pullFrame(3);
    source.next();
    source.pullFrame(200);
    source.setPosition(round * 40);
    source.stop();
    source.pullFrame(1);
    source.play();
    QThread::msleep(1);
  }
  source.prev();
  source.figures();
}

/// How long it took, in ms; more than kMostMs when it did not end.
qint64 open(const Recipe& recipe, const QString& path) {
  QElapsedTimer timer;
  timer.start();
  SourceContext context;
  context.renderSize = {160, 90};
  tagKorviaShowSourceInfo info;
  recipe.fill(info, path);
  {
    const std::shared_ptr<Source> source = createSource(context, info, tagKorviaFormatInfo());
    drive(*source);
    source->close();
  }
  return waitForClosedSources(static_cast<int>(kMostMs)) ? timer.elapsed() : kMostMs + 1;
}

}  // namespace

int main(int argc, char** argv) {
  const QGuiApplication application(argc, argv);
  const QStringList arguments = QGuiApplication::arguments();
  const int count = arguments.size() > 1 ? arguments[1].toInt() : kDefaultCount;
  const int first = arguments.size() > 2 ? arguments[2].toInt() : 0;
  const QTemporaryDir folder;
  std::vector<qint64> times;
  for (int number = first; number < first + count; ++number) {
    const Recipe& recipe = recipes()[static_cast<std::size_t>(number) % recipes().size()];
    const QByteArray whole = recipe.make();
    if (whole.isEmpty()) {
      std::fprintf(stderr, "cannot make a file of kind %s\n", recipe.name);
      return 2;
    }
    const QString path = writeTestFile(folder, QStringLiteral("%1.%2").arg(number).arg(recipe.name),
                                       mutated(whole, static_cast<unsigned>(number)));
    if (path.isEmpty()) {
      std::fprintf(stderr, "cannot write a file into %s\n", qUtf8Printable(folder.path()));
      return 2;
    }
    // Before it is opened, so that the last line names the file of a crash.
    std::printf("%d %s\n", number, recipe.name);
    std::fflush(stdout);
    const qint64 ms = open(recipe, path);
    times.push_back(ms);
    if (ms > kMostMs)
      std::printf("%d %s took too long\n", number, recipe.name);
    QFile::remove(path);
  }
  std::sort(times.begin(), times.end());
  if (!times.empty())
    std::printf("%d files, median %lld ms, longest %lld ms\n", count,
                static_cast<long long>(times[times.size() / 2]), static_cast<long long>(times.back()));
  std::fflush(stdout);
  return times.empty() || times.back() <= kMostMs ? 0 : 1;
}
