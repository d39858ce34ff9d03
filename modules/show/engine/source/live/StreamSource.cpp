#include "StreamSource.h"

#include <QFileInfo>
#include <QUrl>

#include "IncomePlace.h"
#include "LiveSource.h"
#include "StreamInput.h"
#include "engine/EngineLog.h"
#include "engine/source/FilmSource.h"
#include "trace/SecretMask.h"

namespace korvia {

namespace {

// What the way from a publisher over the network to this machine's server jitters by.
constexpr int kIncomeCacheMs = 300;

// A wrong address may be of any length, and stands in the log.
constexpr int kMostNameLength = 200;

LiveSettings settingsFor(const std::optional<StreamAddress>& address, const QString& description) {
  LiveSettings settings;
  settings.description = description.left(kMostNameLength);
  if (!address) {
    settings.neverOpens = QStringLiteral("address cannot be received");
    return settings;
  }
  settings.latencyNs = address->latencyNs;
  settings.inputLatencyNs = address->elementLatencyNs;
  settings.silenceNs = address->silenceNs;
  if (address->onlyListens)
    settings.openingNs = 0;
  return settings;
}

/// The server's port may change when it is started anew, so each connection asks for it.
QString incomeUrl(const QString& path, int port) {
  const QString slash = path.startsWith(QLatin1Char('/')) ? QString() : QStringLiteral("/");
  return QStringLiteral("rtmp://127.0.0.1:%1%2")
      .arg(QString::number(port > 0 ? port : incomeRtmpPort()), slash + path);
}

}  // namespace

std::shared_ptr<Source> makeUrlSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                      const tagKorviaFormatInfo& format) {
  const QUrl fileUrl(info.url);
  if (fileUrl.isLocalFile() || QFileInfo(info.url).isFile())
    return std::make_shared<FilmSource>(context, info, format);
  const FrameSize size = context.renderSize;
  const auto address = StreamAddress::fromUrl(info.url, info.urlCache);
  return std::make_shared<LiveSource>(
      context, info, format, settingsFor(address, maskSecrets(info.url)),
      // Made anew each time, because the interfaces of the machine may have changed.
      [url = info.url, cacheMs = info.urlCache, size](LiveReceiver& receiver) {
        return std::make_unique<StreamInput>(*StreamAddress::fromUrl(url, cacheMs), size, receiver);
      });
}

std::shared_ptr<Source> makeIncomeSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                         const tagKorviaFormatInfo& format) {
  const auto makeAddress = [path = info.incomePath, port = context.incomePort] {
    return StreamAddress::fromUrl(incomeUrl(path, port ? port->load() : 0), kIncomeCacheMs);
  };
  const FrameSize size = context.renderSize;
  return std::make_shared<LiveSource>(
      context, info, format, settingsFor(makeAddress(), info.incomePath.section(QLatin1Char('?'), 0, 0)),
      [makeAddress, size](LiveReceiver& receiver) {
        return std::make_unique<StreamInput>(*makeAddress(), size, receiver);
      });
}

}  // namespace korvia
