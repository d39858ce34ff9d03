// The console's questions. Console thread.
#pragma once
#include <QMessageBox>

/// Asks "Yes" or "No" in a box over `parent`, which runs an event loop of its own; true for "Yes". `details`
/// stand in smaller lines under the question and may be empty. Without a default button Qt chooses one.
/// False also when the parent was deleted meanwhile.
bool askOperator(QWidget* parent, const QString& question, const QString& details,
                 QMessageBox::StandardButton defaultButton = QMessageBox::NoButton);
