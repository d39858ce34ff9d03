// Lets a few films at a time refill their queues, because decoders that run one after the other keep the
// caches warm. Any thread; no call waits.
#pragma once
#include <atomic>

namespace korvia {

class RefillTurns {
 public:
  /// One turn for every two cores: the engine, the encoder and the monitors need the rest.
  RefillTurns();
  explicit RefillTurns(int turns) : turns_(turns) {}
  RefillTurns(const RefillTurns&) = delete;
  RefillTurns& operator=(const RefillTurns&) = delete;

  enum class Need { CanWait, Urgent };
  /// Takes a turn; false when all are taken. An urgent film gets one in any case.
  bool take(Need need);
  void giveBack() { --taken_; }
  int taken() const { return taken_; }

 private:
  const int turns_;
  std::atomic<int> taken_{0};
};

}  // namespace korvia
