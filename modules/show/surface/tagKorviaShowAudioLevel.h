// Levels of all channels and both buses, from 0 to 100. A plain value, copied from thread to thread.
#pragma once
#include <QMetaType>
#include <array>

/// Groups of eight floats. Groups 0 to 7 begin with the pair (left, right) of a media channel, group 8 with
/// that of PVM, group 9 with that of PGM; group 11 holds for each media channel whether it is heard.
struct tagKorviaShowAudioLevel {
  static constexpr int kGroupSize = 8;
  static constexpr int kChannelCount = 8;
  static constexpr int kPvmGroup = 8;
  static constexpr int kPgmGroup = 9;
  static constexpr int kActiveGroup = 11;

  struct Pair {
    float left = 0;
    float right = 0;
    friend bool operator==(const Pair&, const Pair&) = default;
  };

  std::array<float, 12 * kGroupSize> values{};

  /// The level of media channel `index`, 0 to 7; silence for any other index.
  Pair channel(int index) const { return isChannel(index) ? pair(index) : Pair{}; }
  Pair pvm() const { return pair(kPvmGroup); }
  Pair pgm() const { return pair(kPgmGroup); }
  /// 0 when media channel `index` is not heard, or the index is none.
  float active(int index) const { return isChannel(index) ? values[activePlace(index)] : 0.0F; }

  void setChannel(int index, Pair level) {
    if (isChannel(index))
      setPair(index, level);
  }
  void setPvm(Pair level) { setPair(kPvmGroup, level); }
  void setPgm(Pair level) { setPair(kPgmGroup, level); }
  void setActive(int index, float state) {
    if (isChannel(index))
      values[activePlace(index)] = state;
  }

 private:
  static constexpr bool isChannel(int index) { return index >= 0 && index < kChannelCount; }
  static constexpr std::size_t place(int group) { return static_cast<std::size_t>(group) * kGroupSize; }
  static constexpr std::size_t activePlace(int index) {
    return place(kActiveGroup) + static_cast<std::size_t>(index);
  }
  Pair pair(int group) const { return {values[place(group)], values[place(group) + 1]}; }
  void setPair(int group, Pair level) {
    values[place(group)] = level.left;
    values[place(group) + 1] = level.right;
  }
};

Q_DECLARE_METATYPE(tagKorviaShowAudioLevel)
