#include "PublishRules.h"

#include <QLoggingCategory>
#include <QRegularExpression>

#include "printable.h"

namespace korvia {

namespace {

Q_LOGGING_CATEGORY(lcIncome, "korvia.income", QtInfoMsg)

/// Empty for a text of another form.
QString nameIn(const QString& incomePath) {
  static const QRegularExpression form(QStringLiteral("\\A/income/([A-Za-z0-9_-]{1,64})\\z"));
  return form.match(incomePath).captured(1);
}

}  // namespace

PublishRules& PublishRules::instance() {
  static PublishRules rules;
  return rules;
}

void PublishRules::setIncomePaths(const QStringList& incomePaths) {
  QSet<QString> names;
  QSet<QString> badPaths;
  for (const QString& incomePath : incomePaths) {
    const QString name = nameIn(incomePath);
    if (!name.isEmpty())
      names.insert(name);
    else if (!incomePath.isEmpty())
      badPaths.insert(incomePath);
  }
  QSet<QString> newBadPaths = badPaths;
  {
    MutexLock lock(mutex_);
    newBadPaths.subtract(badPaths_);
    names_ = names;
    badPaths_ = badPaths;
  }
  for (const QString& incomePath : std::as_const(newBadPaths))
    qCWarning(lcIncome, "\"%s\" is not \"/income/NAME\", nobody can push to it",
              qUtf8Printable(printable(incomePath)));
}

bool PublishRules::allows(const QString& name) const {
  MutexLock lock(mutex_);
  return names_.contains(name);
}

}  // namespace korvia
