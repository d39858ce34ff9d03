#include "AllocationCounter.h"

#include <cerrno>
#include <cstddef>

namespace {

thread_local qint64 calls = 0;

}  // namespace

namespace korvia::test {

qint64 allocationCalls() {
  return calls;
}

}  // namespace korvia::test

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

// The sanitizer's allocator tells of its calls.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void*, std::size_t),
                                                         void (*onFree)(const volatile void*));

namespace {

[[maybe_unused]] const int installed = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, std::size_t) { ++calls; }, [](const volatile void*) {});

}  // namespace

#else

// The program's own functions stand before those of the C library, which the shared libraries call too.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

void* malloc(std::size_t size) {
  ++calls;
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  ++calls;
  return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
  ++calls;
  return __libc_realloc(memory, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  ++calls;
  return __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  ++calls;
  *memory = __libc_memalign(alignment, size);
  return *memory ? 0 : ENOMEM;
}
}

#endif
