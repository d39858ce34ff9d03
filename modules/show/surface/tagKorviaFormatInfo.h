// Picture and sound formats as they cross to the engine. Plain values, usable from any thread.
// The records lie byte by byte, without gaps: read their fields by value, never through a reference.
#pragma once
#include <QMetaType>
#include <array>

#pragma pack(push, 1)

/// A picture format: the size that a device captures, the size that is put out, and the frame rate.
struct tagKorviaVideoFormat {
  quint8 enable = 1;
  /// Pixels; for a capture device the size asked of the device.
  qint32 width = 1920;
  qint32 height = 1080;
  /// Of a device: 1 to deinterlace its pictures.
  quint8 secondEnable = 1;
  /// Pixels; for a source the size of the picture that it delivers.
  qint32 secondWidth = 1920;
  qint32 secondHeight = 1080;
  /// Frames per second as a fraction.
  qint32 fpsNumerator = 25;
  qint32 fpsDenominator = 1;
  qint32 reserved = 0;
  qint32 formatFlag = 1;

  friend bool operator==(const tagKorviaVideoFormat&, const tagKorviaVideoFormat&) = default;
};

/// A sound format: sample rate in Hz, bits a sample, and the sample format's four characters.
struct tagKorviaAudioFormat {
  quint8 enable = 1;
  qint32 channels = 2;
  qint32 sampleRate = 48000;
  qint32 bits = 16;
  /// Four characters without a terminator.
  std::array<char, 4> sampleFormat{'s', '1', '6', 'l'};

  friend bool operator==(const tagKorviaAudioFormat&, const tagKorviaAudioFormat&) = default;
};

/// Both, one behind the other: travels with an opened source and with the start of an output.
struct tagKorviaFormatInfo {
  tagKorviaVideoFormat video;
  tagKorviaAudioFormat audio;

  friend bool operator==(const tagKorviaFormatInfo&, const tagKorviaFormatInfo&) = default;
};

#pragma pack(pop)

static_assert(sizeof(tagKorviaVideoFormat) == 34);
static_assert(sizeof(tagKorviaAudioFormat) == 17);
static_assert(sizeof(tagKorviaFormatInfo) == 51);

Q_DECLARE_METATYPE(tagKorviaFormatInfo)
