// Settings of everything that leaves the engine: encoders, recording, streams, devices. Plain values.
#pragma once
#include <QMetaType>
#include <QString>
#include <array>

/// Where the arrays of tagKorviaShowOutputParam hold what.
enum KorviaShowOutputSlot : int { OutputSlotStream = 0, OutputSlotRecord = 1 };

/// The kind byte of an output item, and the kind that stops an output.
enum KorviaShowOutputKind : quint8 { OutputKindNone = 0, OutputKindRecord = 2, OutputKindStream = 3 };

/// Container of a recording; 3 does not occur.
enum KorviaShowEncapsulation : qint32 {
  EncapsulationTs = 0,
  EncapsulationFlv = 1,
  EncapsulationMp4 = 2,
  EncapsulationMkv = 4,
  EncapsulationMov = 5,
};

enum KorviaShowEncodeAccelerator : qint64 {
  EncodeAcceleratorSoftware = 0,
  EncodeAcceleratorIntegratedGpu = 1,
  EncodeAcceleratorIndependentGpu = 2,
};

struct tagKorviaShowEncodeParam {
  qint64 reserved1 = 0;
  /// A KorviaShowEncodeAccelerator; a wish, met when the machine has the encoder.
  qint64 accelerator = EncodeAcceleratorIndependentGpu;
  qint32 reserved2 = 0;
  qint32 reserved3 = 32;
  qint32 reserved4 = 32;
  qint32 reserved5 = 32;
  /// kbit/s.
  qint32 videoBitrate = 4096;
  qint32 reserved6 = 10;
  qint32 reserved7 = 1;
  float reserved8 = 1.2F;
  qint32 reserved9 = 8;
  qint64 reserved10 = 16;
  qint32 reserved11 = 0;
  qint64 reserved12 = 1;
  qint32 reserved13 = 0;
  qint64 reserved14 = 4;
  qint64 reserved15 = 0;
  qint32 reserved16 = 0;
  /// kbit/s.
  qint64 audioBitrate = 128;
  qint64 reserved17 = 2;

  friend bool operator==(const tagKorviaShowEncodeParam&, const tagKorviaShowEncodeParam&) = default;
};

/// Targets of one output. Paths are drive paths, mapped where they are used. The strings need their natural
/// alignment, so the record has gaps.
struct tagKorviaShowOutputItem {
  /// Defaults for the item at `index`; the alternate set lies 200 ports higher.
  explicit tagKorviaShowOutputItem(int index = 0, bool alternatePorts = false);

  /// A KorviaShowOutputKind.
  quint8 kind = OutputKindNone;
  quint8 recordActive = 0;
  QString recordPath;
  QString recordNameFormat;
  QString recordTimeFormat;
  /// Seconds after which a new file begins; 0 never.
  qint32 cutDuration = 3600;
  /// A KorviaShowEncapsulation.
  qint32 recordEncapsulation = EncapsulationMp4;
  quint8 httpEnable = 0;
  quint16 httpPort = 0;
  QString httpPath;
  QString reserved1;
  QString reserved2;
  QString reserved3;
  qint32 httpEncapsulation = EncapsulationTs;
  quint8 udpEnable = 0;
  QString udpAddress;
  quint16 udpPort = 0;
  quint16 udpTtl = 1;
  QString udpBindInterface;
  quint8 hlsEnable = 0;
  /// Seconds.
  quint16 hlsSegmentLength = 10;
  quint16 hlsSegmentNumber = 6;
  quint8 hlsSplitAnywhere = 1;
  QString hlsTemporaryFolder;
  QString hlsPath;
  quint8 rtmp0Enable = 0;
  QString rtmp0Url;
  QString reserved4;
  QString reserved5;
  qint32 rtmp0ProtocolVersion = 2;
  quint8 rtmp1Enable = 0;
  QString rtmp1Url;
  QString reserved6;
  QString reserved7;
  qint32 rtmp1ProtocolVersion = 2;
  quint8 rtmpLocalEnable = 0;
  QString rtmpLocalPath;
  quint8 reserved8 = 0;
  qint32 reserved9 = 0;
  QString reserved10;
  QString reserved11;
  QString reserved12;
  QString livePath;
  quint8 reserved13 = 0;
  qint32 secondPort = 0;
  QString secondPath;
  quint8 virtualCameraEnable = 0;
  quint8 sdiEnable = 0;
  qint32 sdiDeviceIndex = 0;
  QString sdiFormat;
  QString sdiSignal;
  quint8 reserved14 = 0;
  qint32 reserved15 = 60;
  qint32 reserved16 = 259200;
  quint8 reserved17 = 1;
  QString tsFolder;
  QString reserved18;
  quint8 reserved19 = 0;
  QString secondAddress;
  quint16 thirdPort = 0;
  quint16 reserved20 = 1;
  QString reserved21;
  quint8 ndiEnable = 0;
  QString ndiName;
  QString reserved22;

  friend bool operator==(const tagKorviaShowOutputItem&, const tagKorviaShowOutputItem&) = default;
};

struct tagKorviaShowOutputParam {
  static constexpr int kCount = 12;

  /// Each item is built by the defaults for its index.
  tagKorviaShowOutputParam();

  std::array<quint32, kCount> active{1};
  std::array<tagKorviaShowEncodeParam, kCount> encode;
  std::array<tagKorviaShowOutputItem, kCount> items;

  friend bool operator==(const tagKorviaShowOutputParam&, const tagKorviaShowOutputParam&) = default;
};

Q_DECLARE_METATYPE(tagKorviaShowOutputParam)
