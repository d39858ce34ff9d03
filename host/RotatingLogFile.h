// A log file of bounded size: a full one is put aside under a number, and the oldest one goes. One thread.
#pragma once
#include <QByteArray>
#include <QString>

namespace korvia {

class RotatingLogFile {
 public:
  static constexpr qint64 kFileBytesMax = 5 * 1024 * 1024;
  static constexpr int kFilesMax = 5;

  /// "/a/korvia.log" is followed by "/a/korvia.1.log" and so on, `files` in all, of `fileBytes` at most. The
  /// folder is made when it is not there.
  explicit RotatingLogFile(const QString& fileName, qint64 fileBytes = kFileBytesMax, int files = kFilesMax);
  RotatingLogFile(const RotatingLogFile&) = delete;
  RotatingLogFile& operator=(const RotatingLogFile&) = delete;
  ~RotatingLogFile();

  bool isOpen() const { return descriptor_ >= 0; }
  /// Appends whole lines. What cannot be written is lost.
  void write(const QByteArray& lines);

 private:
  QString numbered(int number) const;
  bool isFullFor(qint64 bytes) const;
  void open();
  void close();
  void rotate();

  const QString fileName_;
  const qint64 fileBytes_;
  const int files_;
  int descriptor_ = -1;
};

}  // namespace korvia
