// Tags and picture sizes of media files, read by the MediaInfo library, which is loaded at its first use.
// Without the library all answers are empty. Console thread; reading a file blocks.
#pragma once
#include <QString>
#include <cstddef>

struct tagKorviaFormatInfo;

/// Loads the library unless it is loaded already; each failure is tried again at the next use.
bool mediaInfoLoad();

/// Puts the size of the first video stream, or else of the first picture, into the output size of the format.
/// False, with the format untouched, when the file has neither.
bool readMediaSize(const QString& path, tagKorviaFormatInfo& format);

/// One media file.
class MediaInfo {
 public:
  enum class Stream { General = 0, Video = 1, Image = 5 };

  /// Opens the regular file at a drive path or path; anything else has no streams.
  explicit MediaInfo(const QString& path);
  ~MediaInfo();
  MediaInfo(const MediaInfo&) = delete;
  MediaInfo& operator=(const MediaInfo&) = delete;

  std::size_t count(Stream kind) const;
  /// Empty for a parameter that the stream does not have.
  QString text(Stream kind, std::size_t stream, const wchar_t* parameter) const;

  /// File name of the library; tests name another one. Unloads the library in use.
  static void setLibrary(const char* fileName);

 private:
  void* _handle = nullptr;
};
