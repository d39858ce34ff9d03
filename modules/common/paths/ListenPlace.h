// Where the program's servers listen: on the loopback alone, or also on an address that other machines reach.
// KORVIA_LISTEN hands the address over from the program to its modules; the program sets it from its command
// line before it loads them. Stateless, usable from any thread.
#pragma once
#include <QString>
#include <QStringList>

namespace korvia {

inline constexpr const char* kListenVariable = "KORVIA_LISTEN";

/// True for a numeric IPv4 address, "0.0.0.0" for all of this machine.
bool isListenAddress(const QString& text);

/// Whether this machine has the address, so that a server can listen on it. True for "0.0.0.0".
bool isOwnAddress(const QString& address);

/// Numeric IPv4 addresses, each for a listener of its own: "127.0.0.1", and the address for other machines
/// where there is one; "0.0.0.0" stands for both.
QStringList listenAddresses();

/// Whether other machines reach the servers.
bool listensToOthers();

/// A socket that listens on address:port (0 lets the system choose), closed on exec; the caller owns it.
/// Negative errno on failure, -EADDRINUSE for a busy port.
int openListener(const QString& address, int port);

}  // namespace korvia
