// Takes passwords and stream keys out of texts before they reach a log or the black box. Any thread.
#pragma once
#include <QString>

namespace korvia {

/// The text with "***" for what its URLs must not tell: user and password of any URL; values of parameters
/// such as key, token, streamid, passphrase, secret, auth and sign; the last part of the path of an RTMP URL,
/// and that of an SRT URL when it looks like a stream key. Everything else stays as it is. Masking twice
/// changes nothing.
QString maskSecrets(const QString& text);

}  // namespace korvia
