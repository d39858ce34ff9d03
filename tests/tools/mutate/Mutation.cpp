#include "Mutation.h"

#include <algorithm>
#include <random>

namespace korvia::test {

namespace {

// The generator is the same everywhere, the standard's distributions are not, so numbers are made from it by
// remainders.
class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}
  /// From 0 to `count` - 1.
  int below(int count) { return count > 0 ? static_cast<int>(engine_() % static_cast<unsigned>(count)) : 0; }

 private:
  std::mt19937 engine_;
};

void flipBit(QByteArray& bytes, Dice& dice) {
  const int at = dice.below(bytes.size());
  bytes[at] = static_cast<char>(bytes[at] ^ (1 << dice.below(8)));
}

void setField(QByteArray& bytes, Dice& dice) {
  constexpr unsigned char kExtremes[] = {0x00, 0x01, 0x7F, 0x80, 0xFE, 0xFF};
  const int width = 1 << dice.below(3);
  const int at = dice.below(bytes.size());
  const auto value = static_cast<char>(kExtremes[dice.below(std::size(kExtremes))]);
  for (int i = at; i < std::min(at + width, bytes.size()); ++i)
    bytes[i] = value;
}

void cutOut(QByteArray& bytes, Dice& dice) {
  bytes.remove(dice.below(bytes.size()), 1 + dice.below(16));
}

void doublePart(QByteArray& bytes, Dice& dice) {
  const int at = dice.below(bytes.size());
  const QByteArray part = bytes.mid(at, 1 + dice.below(64));
  bytes.insert(at, part.repeated(1 + dice.below(4)));
}

void swapParts(QByteArray& bytes, Dice& dice) {
  const int length = 1 + dice.below(8);
  const int from = dice.below(bytes.size());
  const QByteArray part = bytes.mid(from, length);
  bytes.remove(from, length);
  bytes.insert(dice.below(bytes.size() + 1), part);
}

void cutOff(QByteArray& bytes, Dice& dice) {
  bytes.truncate(dice.below(bytes.size()));
}

/// Another number in the place of one, as in texts and documents.
void setNumber(QByteArray& bytes, Dice& dice) {
  constexpr const char* kNumbers[] = {"0", "-1", "65536", "2147483647", "99999999999", "1e30", "0.0000001"};
  const int from = dice.below(bytes.size());
  for (int i = 0; i < bytes.size(); ++i) {
    const int at = (from + i) % bytes.size();
    if (bytes[at] < '0' || bytes[at] > '9')
      continue;
    bytes.replace(at, 1, kNumbers[dice.below(std::size(kNumbers))]);
    return;
  }
}

// What damages a little comes more often, since it gets further into a parser.
constexpr void (*kDamages[])(QByteArray&, Dice&) = {flipBit,   flipBit,    setField,  setField,
                                                    setField,  cutOut,     setNumber, setNumber,
                                                    swapParts, doublePart, cutOff};

}  // namespace

QByteArray mutated(QByteArray bytes, unsigned number) {
  Dice dice(number);
  for (int left = 1 + dice.below(8); left > 0 && !bytes.isEmpty(); --left)
    kDamages[dice.below(std::size(kDamages))](bytes, dice);
  return bytes;
}

}  // namespace korvia::test
