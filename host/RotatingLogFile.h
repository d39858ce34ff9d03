// A log file of bounded size. A full file is renamed with a number, and the oldest file is deleted. One
// thread.
#pragma once
#include <QByteArray>
#include <QString>

namespace korvia {

class RotatingLogFile {
 public:
  static constexpr qint64 kFileBytesMax = 5 * 1024 * 1024;
  static constexpr int kFilesMax = 5;

  /// A full "/a/korvia.log" becomes "/a/korvia.1.log" and so on. There are at most `files` files of at most
  /// `fileBytes` each. A missing folder is made.
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
