// Records frames without end until it is killed: record_host FOLDER ENCAPSULATION [MAX_FILE_BYTES]. Prints
// the number of frames pushed so far, one a line, and "down" when the recording has failed.
#include <sys/resource.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "RecordRig.h"

int main(int argc, char** argv) {
  if (argc < 3)
    return 2;
  if (argc > 3) {
    // A file that may not grow stands for a disk that is full: write() fails in the same place.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlim_t bytes = std::strtoul(argv[3], nullptr, 10);
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  korvia::test::RecordingSettings settings;
  settings.file.folder = QString::fromLocal8Bit(argv[1]);
  settings.file.name = QStringLiteral("host");
  settings.file.container = korvia::RecordContainer::of(std::atoi(argv[2]));
  settings.encoder.picture.size = {320, 180};
  settings.encoder.picture.kbps = 500;
  korvia::FramePool pool(settings.encoder.picture.size);
  korvia::test::Recording output(settings);
  for (int frame = 0; !output.waitFinished(0); ++frame) {
    if (!korvia::test::feedFrames(output, pool, frame, 1) && !output.waitFinished(0))
      return 3;
    std::printf("%d\n", frame + 1);
    std::fflush(stdout);
  }
  std::puts("down");
  return 0;
}
