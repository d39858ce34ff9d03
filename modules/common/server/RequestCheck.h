// Which requests the web server answers, by the headers that browsers send. Protects against pages of other
// sites: those that resolve their own name to this machine (DNS rebinding), and those that send commands from
// the operator's browser. Stateless, any thread.
#pragma once
#include <QByteArray>

namespace korvia {

enum class WebReach { Loopback, Network };

/// Whether a Host header names this server: "localhost" or an address
/// that it listens on, and for the network any numeric address
/// and this machine's own name, with or without ".local". A numeric address cannot be made to resolve to
/// another machine. A missing header is allowed, since browsers always send one.
bool isOwnHost(const char* host, WebReach reach);

/// Whether an Origin header is that of the server's own pages; a missing one is. `host` is the Host header.
bool isOwnOrigin(const char* origin, const char* host);

/// Whether a Sec-Fetch-Site header allows a command: from an own page, or from no page at all.
bool isOwnSite(const char* fetchSite);

/// Whether an Authorization header is "Bearer TOKEN".
bool hasToken(const char* authorization, const QByteArray& token);

}  // namespace korvia
