// The file of a delay: places of one size. Its name is removed at once, so that nothing is left when the
// process is killed. One thread at a time; all functions may block.
#pragma once
#include <QString>
#include <cstdint>

namespace korvia {

class DelayFile {
 public:
  DelayFile() = default;
  ~DelayFile();
  DelayFile(const DelayFile&) = delete;
  DelayFile& operator=(const DelayFile&) = delete;

  /// Makes the folder and a file of `bytes` in it, and takes its room on the disk. False with a reason when
  /// that fails or less than `reserveBytes` would stay free.
  bool open(const QString& folder, std::int64_t bytes, std::int64_t reserveBytes, QString& reason);
  bool write(std::int64_t offset, const std::uint8_t* bytes, std::int64_t count);
  bool read(std::int64_t offset, std::uint8_t* bytes, std::int64_t count);

 private:
  int file_ = -1;
};

}  // namespace korvia
