#include "DeviceSource.h"

#include <algorithm>

#include "CapturePipeline.h"
#include "CardInput.h"
#include "DeviceId.h"
#include "DeviceInput.h"
#include "DeviceProviders.h"
#include "LiveSource.h"
#include "SignalInput.h"
#include "engine/EngineLog.h"
#include "engine/output/device/SdiModes.h"

namespace korvia {

namespace {

constexpr char kCameraInterface[] = "v4l2:";
// A driver that gives no picture for this time is closed and opened again.
constexpr std::int64_t kSilenceNs = 3'000'000'000;
constexpr std::int64_t kOpeningNs = 5'000'000'000;
// A tick takes a frame of sound, of which the device delivers the last piece after its time.
constexpr std::int64_t kSoundPieceNs = 20'000'000;

struct Connection {
  const char* signal;  ///< of the record, in small letters
  const char* value;   ///< of the property "connection"
};
constexpr Connection kVideoConnections[] = {{"sdi", "sdi"},
                                            {"hdmi", "hdmi"},
                                            {"opticalsdi", "optical-sdi"},
                                            {"component", "component"},
                                            {"composite", "composite"},
                                            {"svideo", "svideo"}};
constexpr Connection kAudioConnections[] = {
    {"embedded", "embedded"}, {"aesebu", "aes"}, {"analog", "analog"}};

template <std::size_t kCount>
const char* connectionFor(const Connection (&connections)[kCount], const QString& signal) {
  for (const Connection& connection : connections) {
    if (signal.toLower() == QLatin1String(connection.signal))
      return connection.value;
  }
  return "auto";
}

GstElement* makeElement(const char* factory, QString& reason) {
  GstElement* element = gst_element_factory_make(factory, nullptr);
  if (element)
    gst_object_ref_sink(element);
  else
    reason = QStringLiteral("gstreamer element %1 is missing").arg(QLatin1String(factory));
  return element;
}

GstElement* makeNamed(const char* classes, const QString& name, QString& reason) {
  GstElement* element = makeDeviceElement(classes, name);
  if (!element)
    reason = QStringLiteral("device is not plugged in");
  return element;
}

GstElement* makeCamera(const tagKorviaShowSourceInfo& info, QString& reason) {
  if (!info.videoDevId.startsWith(QLatin1String(kCameraInterface)))
    return makeNamed("Video/Source", info.videoDevName, reason);
  const QString file = cameraFile(info.videoDevId, {});
  if (file.isEmpty()) {
    reason = QStringLiteral("camera is not plugged in");
    return nullptr;
  }
  QString problem;
  if (!selectSignalInput(file, info.videoDevConnType, problem))
    qCWarning(logSource, "%s : %s", qUtf8Printable(info.videoDevName), qUtf8Printable(problem));
  GstElement* camera = makeElement("v4l2src", reason);
  if (camera)
    g_object_set(camera, "device", qUtf8Printable(file), nullptr);
  return camera;
}

GstElement* makeCardElement(const char* factory, int card, const char* connection, QString& reason) {
  GstElement* element = makeElement(factory, reason);
  if (!element)
    return nullptr;
  g_object_set(element, "device-number", card, nullptr);
  setIfTextFits(element, "connection", connection);
  return element;
}

/// An input for a format that no card has.
class UnknownFormat final : public LiveInput {
 public:
  bool start(QString& reason) override {
    reason = QStringLiteral("format is unknown");
    return false;
  }
};

}  // namespace

LiveSettings captureLiveSettings(FrameRate rate, const QString& description) {
  LiveSettings settings;
  settings.description = description;
  settings.latencyNs = rate.nsOf(1) + kSoundPieceNs;
  settings.silenceNs = kSilenceNs;
  settings.openingNs = kOpeningNs;
  return settings;
}

CaptureSettings deviceSettings(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                               const tagKorviaFormatInfo& format) {
  CaptureSettings settings;
  settings.renderSize = context.renderSize;
  settings.wanted = {{format.video.width, format.video.height},
                     {format.video.fpsNumerator, format.video.fpsDenominator}};
  if (settings.wanted.size.isEmpty())
    settings.wanted.size = context.renderSize;
  if (!settings.wanted.rate.isValid())
    settings.wanted.rate = context.rate;
  settings.interlaced = format.video.secondEnable ? Interlaced::MakeProgressive : Interlaced::AsItComes;
  if (format.audio.sampleRate > 0)
    settings.sampleRate = format.audio.sampleRate;
  settings.sides = soundSidesOf(info.audioProcessFilter);
  settings.name = info.videoDevName.isEmpty() ? info.audioDevName : info.videoDevName;
  return settings;
}

std::shared_ptr<Source> makeDeviceSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                         const tagKorviaFormatInfo& format) {
  CaptureSettings settings = deviceSettings(context, info, format);
  if (!info.videoDevId.isEmpty() || !info.videoDevName.isEmpty())
    settings.makePictures = [info](QString& reason) { return makeCamera(info, reason); };
  if (!info.audioDevName.isEmpty())
    settings.makeSound = [name = info.audioDevName](QString& reason) {
      return makeNamed("Audio/Source", name, reason);
    };
  return std::make_shared<LiveSource>(
      context, info, format, captureLiveSettings(context.rate, settings.name),
      [settings](LiveReceiver& receiver) { return std::make_unique<DeviceInput>(settings, receiver); });
}

std::optional<CaptureSettings> cardSettings(const SourceContext& context,
                                            const tagKorviaShowSourceInfo& info) {
  const std::optional<SdiMode> mode = findSdiMode(info.sdiFormat);
  if (!mode)
    return std::nullopt;
  CaptureSettings settings;
  settings.renderSize = context.renderSize;
  settings.wanted = {mode->picture.size, mode->picture.rate};
  settings.sides = soundSidesOf(info.audioProcessFilter);
  settings.name = QStringLiteral("sdi card %1").arg(info.sdiCardIndex);
  const int card = info.sdiCardIndex;
  settings.makePictures = [card, nick = mode->nick, signal = info.sdiVideoSignal](QString& reason) {
    GstElement* source =
        makeCardElement("decklinkvideosrc", card, connectionFor(kVideoConnections, signal), reason);
    if (source)
      setIfTextFits(source, "mode", nick);
    return source;
  };
  settings.makeSound = [card, signal = info.sdiAudioSignal](QString& reason) {
    return makeCardElement("decklinkaudiosrc", card, connectionFor(kAudioConnections, signal), reason);
  };
  return settings;
}

std::shared_ptr<Source> makeCardSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                       const tagKorviaFormatInfo& format) {
  const std::optional<CaptureSettings> settings = cardSettings(context, info);
  LiveSettings live = captureLiveSettings(context.rate, QStringLiteral("sdi card %1").arg(info.sdiCardIndex));
  // A card without a signal is no reason to open it again.
  live.silenceNs = 0;
  live.openingNs = 0;
  return std::make_shared<LiveSource>(context, info, format, live,
                                      [settings](LiveReceiver& receiver) -> std::unique_ptr<LiveInput> {
                                        if (!settings)
                                          return std::make_unique<UnknownFormat>();
                                        return std::make_unique<CardInput>(*settings, receiver);
                                      });
}

}  // namespace korvia
