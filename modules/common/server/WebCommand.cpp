#include "WebCommand.h"

#include <QRegularExpression>

namespace korvia {

namespace {

constexpr struct {
  const char* path;
  WebCommand::Kind kind;
} kOutputCommands[] = {
    {"/record/start", WebCommand::Kind::StartRecord},
    {"/record/stop", WebCommand::Kind::StopRecord},
    {"/stream/start", WebCommand::Kind::StartStream},
    {"/stream/stop", WebCommand::Kind::StopStream},
};

}  // namespace

std::optional<WebCommand> WebCommand::parse(const QString& path) {
  for (const auto& [wanted, kind] : kOutputCommands) {
    if (path == QLatin1String(wanted))
      return WebCommand{kind, 0, std::nullopt};
  }
  static const QRegularExpression form(
      QStringLiteral("\\A(?:/take/(?<transition>[0-3])(?:/(?<taken>[0-9]{1,4}))?"
                     "|/cut(?:/(?<cutTo>[0-9]{1,4}))?|/select/(?<selected>[0-9]{1,4}))\\z"));
  const QRegularExpressionMatch match = form.match(path);
  if (!match.hasMatch())
    return std::nullopt;
  const auto channel = [&match](const char* name) -> std::optional<int> {
    const QString text = match.captured(QLatin1String(name));
    return text.isEmpty() ? std::nullopt : std::optional(text.toInt());
  };
  if (path.startsWith(QLatin1String("/take/")))
    return WebCommand{Kind::Take, match.captured(QStringLiteral("transition")).toInt(), channel("taken")};
  if (path.startsWith(QLatin1String("/cut")))
    return WebCommand{Kind::Cut, 0, channel("cutTo")};
  return WebCommand{Kind::Select, 0, channel("selected")};
}

}  // namespace korvia
