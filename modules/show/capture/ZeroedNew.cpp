// The memory of all C++ objects of the program is zero at first. GStreamer's plugin for pages reads a member
// that it has not set, "the thread runs", and where it is not zero by chance two threads draw the page and
// stop.
#include <cstdlib>
#include <new>

void* operator new(std::size_t bytes) {
  if (void* memory = std::calloc(1, bytes == 0 ? 1 : bytes))
    return memory;
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
