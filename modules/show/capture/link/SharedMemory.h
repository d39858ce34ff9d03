// A piece of memory that two processes share by a descriptor. Its size is sealed, so that neither can take it
// away from the other, who would crash on the next access. One thread at a time.
#pragma once
#include <cstddef>
#include <cstdint>

#include "FileDescriptor.h"

namespace korvia {

class SharedMemory {
 public:
  SharedMemory() = default;
  SharedMemory(SharedMemory&& other) noexcept;
  SharedMemory& operator=(SharedMemory&& other) noexcept;
  ~SharedMemory();

  /// New memory, to be written here; not open when the system has none.
  static SharedMemory create(std::size_t bytes);
  /// The memory of another process, to be read. Not open when its size is not sealed or is less than `bytes`.
  static SharedMemory open(FileDescriptor descriptor, std::size_t bytes);

  bool isOpen() const { return data_ != nullptr; }
  std::uint8_t* data() { return data_; }
  const std::uint8_t* data() const { return data_; }
  int descriptor() const { return descriptor_.get(); }

 private:
  SharedMemory(FileDescriptor descriptor, std::size_t bytes, int protection);

  FileDescriptor descriptor_;
  std::uint8_t* data_ = nullptr;
  std::size_t bytes_ = 0;
};

}  // namespace korvia
