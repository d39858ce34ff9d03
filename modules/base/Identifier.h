// Interface identifiers and the version test. Plain values, usable from any thread.
#pragma once
#include <cstdint>

/// 16 bytes that name an interface, compared as two 64-bit words, low word first in memory.
struct Identifier {
  std::uint64_t first = 0;
  std::uint64_t second = 0;

  friend constexpr bool operator==(const Identifier& a, const Identifier& b) {
    return a.first == b.first && a.second == b.second;
  }
};
static_assert(sizeof(Identifier) == 16);

inline constexpr Identifier kIUnknownExId{0x4A455A5B92D87E91, 0x0B2BB3E62F38FD8C};
inline constexpr Identifier kIKorviaSarnhawkId{0x49D5A23642312429, 0x17A6A2480D1DA681};
inline constexpr Identifier kIKorviaSarnhawkPrivId{0x49D5A23642312429, 0x12A6A2480D1DA684};
inline constexpr Identifier kIMainFrameId{0x49D5A23642312429, 0x12A6A2480D1DA614};
inline constexpr Identifier kIKorviaShowThreadSinkId{0x3A465657A7A87E92, 0x012BB1E62F38FD8C};
inline constexpr Identifier kIKorviaShowEngineSinkId{0x3A465657A7A87E92, 0x012BB1E61F38FD8C};
inline constexpr Identifier kIKorviaWebServerSinkId{0xF9D5A136F23D0491, 0x1AAB82B80DAD468D};
/// The web server and the income server answer to the same identifier; the entry function tells them apart.
inline constexpr Identifier kIKorviaWebServerId{0x49D5AD36123D049F, 0x17AB82780DFD468D};
inline constexpr Identifier kIKorviaRTMPIncomeServerId = kIKorviaWebServerId;
inline constexpr Identifier kIGWidgetAudioSpectrumId{0x49D5A23612311752, 0x27A6A2180D1DA611};

/// The version that every request in the program passes: 1.1.1, lowest byte unused.
inline constexpr unsigned kInterfaceVersion = 0x01010100;

/// True for 1.1.0 and 1.1.1, whatever the lowest byte.
constexpr bool isAcceptedVersion(unsigned version) {
  const unsigned major = version >> 24;
  const unsigned minor = (version >> 16) & 0xFF;
  const unsigned revision = (version >> 8) & 0xFF;
  return major == 1 && minor == 1 && revision < 2;
}

/// True when a request names this interface in a version that it can serve.
constexpr bool isRequestFor(const Identifier& mine, const Identifier* id, unsigned version) {
  return id && *id == mine && isAcceptedVersion(version);
}
