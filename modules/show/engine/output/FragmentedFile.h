// Repairs of mp4 and mov files that are written in fragments, and reading one while it is written. Any
// thread.
#pragma once
#include <QByteArray>
#include <QFile>
#include <QString>
#include <cstdint>
#include <optional>

namespace korvia {

/// Removes an incomplete top-level box from the end of the file: players skip media data without an index,
/// but an incomplete index makes them refuse the whole file. A box whose size says "to the end of the file"
/// stays. A complete file, and a file that is no mp4 or mov, is not changed. Returns the bytes removed.
qint64 dropPartialBox(const QString& fileName);

/// Completes the index of a fragment, in place; `data` that does not begin with a "moof" box is not changed.
/// qtmux leaves the size out of a run of samples that are as large as the track's first one in the fragment,
/// also when it has dropped that size as the track's default because others are larger or smaller. Players
/// then refuse the whole file. The default size is put in the place of the default flags, which say little.
/// Returns the number of tracks that were completed.
int addDefaultSizes(std::uint8_t* data, qint64 size);

/// The fragment that begins at `at`, which moves behind it; empty while it is not written completely. In the
/// file the data of a fragment stand before their index, but a demuxer that reads along needs the index
/// first, so it comes first here, with its offsets moved. Nothing for what is no file in fragments.
std::optional<QByteArray> readFragment(QFile& file, qint64& at);

}  // namespace korvia
