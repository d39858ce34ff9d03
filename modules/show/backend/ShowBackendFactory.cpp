#include "ShowBackendFactory.h"

#include "engine/EngineLog.h"
#include "engine/SoftwareBackend.h"
#include "silent/SilentBackend.h"

namespace korvia {

namespace {

ShowBackendFactory& replacement() {
  static ShowBackendFactory factory;
  return factory;
}

}  // namespace

void setShowBackendFactory(ShowBackendFactory factory) {
  replacement() = std::move(factory);
}

std::unique_ptr<IShowBackend> createShowBackend() {
  if (replacement())
    return replacement()();
  const QString name = qEnvironmentVariable("KORVIA_ENGINE", QStringLiteral("software"));
  if (name == QLatin1String("silent"))
    return std::make_unique<SilentBackend>();
  if (name != QLatin1String("software"))
    qCWarning(logEngine, "unknown engine \"%s\", taking the software engine", qPrintable(name));
  return std::make_unique<SoftwareBackend>();
}

}  // namespace korvia
