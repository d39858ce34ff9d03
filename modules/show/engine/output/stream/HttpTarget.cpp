#include "HttpTarget.h"

#include "ChunkSink.h"
#include "ServedPath.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

MuxPlan planFor(const HttpSettings& settings) {
  const bool isFlv = settings.encapsulation == EncapsulationFlv;
  MuxPlan plan;
  plan.container = isFlv ? MuxPlan::flv() : MuxPlan::tsFrames();
  LiveHttpServer::Content content;
  content.feed = std::make_shared<LiveFeed>();
  content.contentType = isFlv ? "video/x-flv" : "video/mp2t";
  const std::shared_ptr<ServedPath> served =
      ServedPath::make(settings.port, settings.path, content, &plan.obstacle);
  // The path is served for as long as the sink may be used.
  plan.sink = chunkSink(isFlv ? ChunkFormat::Flv : ChunkFormat::Ts,
                        [feed = content.feed, served](const StreamChunk& chunk) {
                          feed->push(chunk.header, chunk.data, chunk.keyFrame);
                        });
  return plan;
}

TargetSettings targetSettings() {
  TargetSettings target{targetName(TargetKind::Http), "kv-http"};
  target.kind = TargetKind::Http;
  target.finishTimeoutMs = 1500;
  return target;
}

std::unique_ptr<TargetWriter> retryingHttp(const HttpSettings& settings) {
  RetrySettings retry = settings.retry;
  retry.label = targetName(TargetKind::Http);
  qCInfo(logOutput, "%s is on port %d at \"%s\"", qPrintable(retry.label), settings.port,
         qPrintable(LiveHttpServer::cleanPath(settings.path)));
  return std::make_unique<RetryingWriter>(
      std::move(retry), [settings] { return std::make_unique<MuxWriter>(planFor(settings)); });
}

}  // namespace

HttpTarget::HttpTarget(const HttpSettings& settings) : Target(targetSettings(), retryingHttp(settings)) {}

std::unique_ptr<Target> HttpTarget::create(const OutputRequest& request) {
  const tagKorviaShowOutputItem& item = request.param.items[OutputSlotStream];
  if (request.slot != OutputSlotStream || item.httpEnable == 0)
    return nullptr;
  return std::make_unique<HttpTarget>(HttpSettings{item.httpPort, item.httpPath, item.httpEncapsulation, {}});
}

}  // namespace korvia
