// Writes the figures of a run to a file.
#pragma once
#include <QJsonObject>
#include <QString>

/// False, with a line on the error output, when the file cannot be written.
bool writeReport(const QJsonObject& report, const QString& fileName);
