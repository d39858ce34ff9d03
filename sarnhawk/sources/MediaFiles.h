// Files that reach the console without a kind: dropped from a file manager, or named when the program starts.
// Any thread.
#pragma once
#include <QStringList>

class QMimeData;
struct tagKorviaShowChannelSlot;

class MediaFiles {
 public:
  /// Makes the slot show the file: a picture, document or text by its suffix, a film otherwise. The address
  /// of a stream, such as "srt://127.0.0.1:9000", is received.
  static void fillSlot(const QString& path, tagKorviaShowChannelSlot& slot);
  /// The same for several files. Films and pictures become a list; of mixed files those of the first one's
  /// kind count. Nothing changes without a file.
  static void fillSlot(const QStringList& paths, tagKorviaShowChannelSlot& slot);

  static bool isPicture(const QString& path);
  static bool isFilm(const QString& path);

  /// The local files of a drag; empty when it carries none.
  static QStringList filesOf(const QMimeData* data);
};
