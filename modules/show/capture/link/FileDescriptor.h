// A descriptor that is closed with its owner. One thread at a time.
#pragma once
#include <unistd.h>

#include <utility>

namespace korvia {

class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~FileDescriptor() { reset(); }

  int get() const { return descriptor_; }
  bool isOpen() const { return descriptor_ >= 0; }
  void reset() {
    if (descriptor_ >= 0)
      ::close(descriptor_);
    descriptor_ = -1;
  }

 private:
  int descriptor_ = -1;
};

}  // namespace korvia
