#include "SharedMemory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace korvia {

namespace {

constexpr int kSizeSeals = F_SEAL_SHRINK | F_SEAL_GROW;

}  // namespace

SharedMemory::SharedMemory(FileDescriptor descriptor, std::size_t bytes, int protection)
    : descriptor_(std::move(descriptor)), bytes_(bytes) {
  void* memory = ::mmap(nullptr, bytes, protection, MAP_SHARED, descriptor_.get(), 0);
  if (memory != MAP_FAILED)
    data_ = static_cast<std::uint8_t*>(memory);
}

SharedMemory::SharedMemory(SharedMemory&& other) noexcept
    : descriptor_(std::move(other.descriptor_)),
      data_(std::exchange(other.data_, nullptr)),
      bytes_(std::exchange(other.bytes_, 0)) {}

SharedMemory& SharedMemory::operator=(SharedMemory&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  std::swap(data_, other.data_);
  std::swap(bytes_, other.bytes_);
  return *this;
}

SharedMemory::~SharedMemory() {
  if (data_)
    ::munmap(data_, bytes_);
}

SharedMemory SharedMemory::create(std::size_t bytes) {
  FileDescriptor descriptor(::memfd_create("korvia-pictures", MFD_CLOEXEC | MFD_ALLOW_SEALING));
  if (!descriptor.isOpen() || ::ftruncate(descriptor.get(), static_cast<off_t>(bytes)) != 0 ||
      ::fcntl(descriptor.get(), F_ADD_SEALS, kSizeSeals) != 0)
    return {};
  return SharedMemory(std::move(descriptor), bytes, PROT_READ | PROT_WRITE);
}

SharedMemory SharedMemory::open(FileDescriptor descriptor, std::size_t bytes) {
  struct stat status = {};
  const int seals = ::fcntl(descriptor.get(), F_GET_SEALS);
  if (bytes == 0 || seals < 0 || (seals & F_SEAL_SHRINK) == 0 || ::fstat(descriptor.get(), &status) != 0 ||
      status.st_size < 0 || static_cast<std::size_t>(status.st_size) < bytes)
    return {};
  return SharedMemory(std::move(descriptor), bytes, PROT_READ);
}

}  // namespace korvia
