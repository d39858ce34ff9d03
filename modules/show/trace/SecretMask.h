// Masks passwords and stream keys in texts before they reach a log or the black box. Any thread.
#pragma once
#include <QString>

namespace korvia {

/// The text with "***" in place of the secrets in its URLs: user and password of any URL; values of
/// parameters such as key, token, streamid, passphrase, secret, auth and sign; the last part of the path of
/// an RTMP URL, and of an SRT URL when it looks like a stream key. The rest is unchanged. Masking twice
/// changes nothing.
QString maskSecrets(const QString& text);

}  // namespace korvia
