// Compares what a client sent with a secret. Stateless, any thread.
#pragma once
#include <QByteArray>
#include <QCryptographicHash>

namespace korvia {

/// Takes the same time wherever the two differ, so that the time tells nothing about the secret.
inline bool secretEquals(const QByteArray& given, const QByteArray& secret) {
  const QByteArray first = QCryptographicHash::hash(given, QCryptographicHash::Sha256);
  const QByteArray second = QCryptographicHash::hash(secret, QCryptographicHash::Sha256);
  int difference = 0;
  for (int at = 0; at < first.size(); ++at)
    difference |= first[at] ^ second[at];
  return difference == 0;
}

}  // namespace korvia
