// A log file of bounded size. A full file is renamed with a number, and the oldest file is deleted. One
// thread.
#pragma once
#include <QByteArray>
#include <QString>
#include <chrono>
#include <functional>

namespace korvia {

class RotatingLogFile {
 public:
  using Clock = std::function<std::chrono::steady_clock::time_point()>;

  static constexpr qint64 kFileBytesMax = 5 * 1024 * 1024;
  static constexpr int kFilesMax = 5;

  /// A full "/a/korvia.log" becomes "/a/korvia.1.log" and so on. There are at most `files` files of at most
  /// `fileBytes` each. A missing folder is made.
  explicit RotatingLogFile(const QString& fileName, qint64 fileBytes = kFileBytesMax, int files = kFilesMax,
                           Clock clock = &std::chrono::steady_clock::now);
  RotatingLogFile(const RotatingLogFile&) = delete;
  RotatingLogFile& operator=(const RotatingLogFile&) = delete;
  ~RotatingLogFile();

  bool isOpen() const { return descriptor_ >= 0; }
  /// Appends whole lines. What cannot be written is lost and counted; the file is opened again a second later
  /// at the earliest, and then begins with the count.
  void write(const QByteArray& lines);

 private:
  QString numbered(int number) const;
  bool isFullFor(qint64 bytes) const;
  void open();
  void close();
  void rotate();
  void lose(const QByteArray& lines);

  const QString fileName_;
  const qint64 fileBytes_;
  const int files_;
  const Clock clock_;
  int descriptor_ = -1;
  std::chrono::steady_clock::time_point retryAt_;
  qint64 lostLines_ = 0;
  bool isCutOff_ = false;  // the last line in the file has no end
};

}  // namespace korvia
