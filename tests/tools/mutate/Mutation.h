// Damages the bytes of a file in ways that parsers are not made for. Pure function: the same number gives the
// same damage.
#pragma once
#include <QByteArray>

namespace korvia::test {

/// One to eight damages: flipped bits, extreme values in fields of one, two or four bytes, parts that are cut
/// out, doubled or swapped, and a file that is cut off.
QByteArray mutated(QByteArray bytes, unsigned number);

}  // namespace korvia::test
