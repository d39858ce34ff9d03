// Working memory of the transitions, kept from frame to frame, so that a take allocates at its first frame
// only. Engine thread.
#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <type_traits>

#include "engine/frame/Frame.h"

namespace korvia {

class TransitionScratch {
 public:
  static constexpr int kFrameCount = 4;
  static constexpr int kBufferCount = 8;

  /// A frame of that size without alpha and with undefined content; the same one for the same arguments.
  /// Places 0 to 3.
  Frame& frame(int place, FrameSize size);

  /// Memory for `count` values with undefined content, aligned for vectors; the same one as long as it is
  /// large enough. Places 0 to 7; T is a trivial type.
  template <typename T>
  T* buffer(int place, std::size_t count) {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);
    return reinterpret_cast<T*>(bytes(place, count * sizeof(T)));
  }

  /// A table that is computed once for each owner, size and seed: `fill(T* table)` writes its `count` values
  /// when the kept table has another key. One table is kept. The owner is identified by its address, so it
  /// must outlive the scratch.
  template <typename T, typename Fill>
  const T* table(const void* owner, FrameSize size, std::uint32_t seed, std::size_t count, Fill&& fill) {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);
    const TableKey key{owner, size, seed, count * sizeof(T)};
    T* values = reinterpret_cast<T*>(tableBytes(key.bytes));
    if (!(key == tableKey_)) {
      fill(values);
      tableKey_ = key;
    }
    return values;
  }

 private:
  struct TableKey {
    const void* owner = nullptr;
    FrameSize size;
    std::uint32_t seed = 0;
    std::size_t bytes = 0;
    friend bool operator==(const TableKey&, const TableKey&) = default;
  };
  struct Bytes {
    std::unique_ptr<std::uint8_t, void (*)(void*)> memory{nullptr, nullptr};
    std::size_t size = 0;
    std::uint8_t* grownTo(std::size_t count);
  };

  std::uint8_t* bytes(int place, std::size_t count);
  std::uint8_t* tableBytes(std::size_t count);

  std::array<std::unique_ptr<Frame>, kFrameCount> frames_;
  std::array<Bytes, kBufferCount> buffers_;
  Bytes table_;
  TableKey tableKey_;
};

}  // namespace korvia
