#include "PushTarget.h"

#include <QUrl>

#include "IncomePlace.h"
#include "SendBacklog.h"
#include "ServerProbe.h"
#include "engine/EngineLog.h"
#include "trace/SecretMask.h"

namespace korvia {

namespace {

struct Protocol {
  const char* scheme;
  const RecordContainer& (*container)();
  const char* sink;
  const char* addressProperty;
  std::vector<ElementProperty> properties;
};

// The packets come at the pace of the encoder, so no sink waits for a clock. SRT would connect again by
// itself, in the middle of a group of pictures.
const std::vector<Protocol>& protocols() {
  static const std::vector<ElementProperty> rtmp = {
      {"sync", "false"}, {"async", "false"}, {"enable-last-sample", "false"}};
  static const std::vector<Protocol> list = {
      {"rtmp", MuxPlan::flv, "rtmp2sink", "location", rtmp},
      {"rtmps", MuxPlan::flv, "rtmp2sink", "location", rtmp},
      {"srt",
       MuxPlan::ts,
       "srtsink",
       "uri",
       {{"sync", "false"}, {"async", "false"}, {"enable-last-sample", "false"}, {"auto-reconnect", "false"}}},
  };
  return list;
}

std::unique_ptr<Target> createPush(const OutputRequest& request, TargetKind kind, bool enabled,
                                   const QString& url) {
  if (request.slot != OutputSlotStream || !enabled)
    return nullptr;
  return std::make_unique<PushTarget>(PushSettings{kind, url, {}});
}

TargetSettings targetSettings(const PushSettings& settings) {
  TargetSettings target{targetName(settings.kind), "kv-push"};
  target.kind = settings.kind;
  target.queueNs = 6'000'000'000;
  // An end that a server does not take is no loss, and the operator waits for it.
  target.finishTimeoutMs = 1500;
  return target;
}

/// The first two messages of a client of RTMP (Adobe's RTMP specification 1.0, 5.2): the version, then 1536
/// bytes of which the first eight are a time and zeros.
QByteArray rtmpGreeting() {
  return QByteArray(1, '\x03') + QByteArray(1536, '\0');
}

std::shared_ptr<ServerProbe> probeFor(const QUrl& url) {
  constexpr int kRtmpPort = 1935;
  constexpr int kRtmpsPort = 443;
  if (url.scheme() == QLatin1String("rtmp"))
    return std::make_shared<ServerProbe>(url.host(), url.port(kRtmpPort), rtmpGreeting());
  if (url.scheme() == QLatin1String("rtmps"))
    return std::make_shared<ServerProbe>(url.host(), url.port(kRtmpsPort), QByteArray());
  return nullptr;
}

std::unique_ptr<TargetWriter> retryingPush(const PushSettings& settings) {
  boundSendBacklog();
  RetrySettings retry = settings.retry;
  retry.label = targetName(settings.kind);
  const MuxPlan plan = PushTarget::planFor(settings.url);
  if (!retry.probe)
    retry.probe = probeFor(QUrl(settings.url.trimmed()));
  qCInfo(logOutput, "%s goes to \"%s\"", qPrintable(retry.label), qPrintable(maskSecrets(settings.url)));
  return std::make_unique<RetryingWriter>(std::move(retry),
                                          [plan] { return std::make_unique<MuxWriter>(plan); });
}

}  // namespace

PushTarget::PushTarget(const PushSettings& settings)
    : Target(targetSettings(settings), retryingPush(settings)) {}

std::unique_ptr<Target> PushTarget::createFirst(const OutputRequest& request) {
  const tagKorviaShowOutputItem& item = request.param.items[OutputSlotStream];
  return createPush(request, TargetKind::Rtmp0, item.rtmp0Enable != 0, item.rtmp0Url);
}

std::unique_ptr<Target> PushTarget::createSecond(const OutputRequest& request) {
  const tagKorviaShowOutputItem& item = request.param.items[OutputSlotStream];
  return createPush(request, TargetKind::Rtmp1, item.rtmp1Enable != 0, item.rtmp1Url);
}

std::unique_ptr<Target> PushTarget::createLocal(const OutputRequest& request) {
  const tagKorviaShowOutputItem& item = request.param.items[OutputSlotStream];
  return createPush(request, TargetKind::RtmpLocal, item.rtmpLocalEnable != 0,
                    localUrl(item.rtmpLocalPath, request.income));
}

QString PushTarget::localUrl(const QString& path, const IncomeTarget& income) {
  const QString slash = path.startsWith(QLatin1Char('/')) ? QString() : QStringLiteral("/");
  QString url = QStringLiteral("rtmp://127.0.0.1:%1/live%2")
                    .arg(QString::number(income.port > 0 ? income.port : incomeRtmpPort()), slash + path);
  if (income.secret.isEmpty())
    return url;
  // In front of arguments of the path, because the server takes the first one of a name.
  const int query = url.indexOf(QLatin1Char('?'));
  const QString rest = query < 0 ? QString() : QLatin1Char('&') + url.mid(query + 1);
  return url.left(query) + QStringLiteral("?secret=") + income.secret + rest;
}

MuxPlan PushTarget::planFor(const QString& url) {
  const QString trimmed = url.trimmed();
  const QUrl parsed(trimmed);
  MuxPlan plan;
  for (const Protocol& protocol : protocols()) {
    if (parsed.scheme() == QLatin1String(protocol.scheme)) {
      plan.container = protocol.container();
      plan.sink = {protocol.sink, protocol.addressProperty, trimmed.toUtf8(), protocol.properties};
    }
  }
  // An RTMP URL names an application and a stream in it.
  const bool isRtmp = parsed.scheme().startsWith(QLatin1String("rtmp"));
  const bool isWhole =
      parsed.isValid() && !parsed.host().isEmpty() && (!isRtmp || parsed.path().count(QLatin1Char('/')) >= 2);
  if (!plan.sink.element)
    plan.problem = QStringLiteral("the address is not one of rtmp, rtmps or srt");
  else if (!isWhole)
    plan.problem = QStringLiteral("the address is not complete");
  return plan;
}

}  // namespace korvia
