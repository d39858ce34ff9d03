#include "console/askOperator.h"

#include <QCoreApplication>

bool askOperator(QWidget* parent, const QString& question, const QString& details,
                 QMessageBox::StandardButton defaultButton) {
  QMessageBox box(QMessageBox::Question, QCoreApplication::translate("askOperator", "Message"), question,
                  QMessageBox::Yes | QMessageBox::No, parent);
  // A picker of another strip stays on top too, and would hide the question that blocks it.
  box.setWindowFlag(Qt::WindowStaysOnTopHint);
  box.setInformativeText(details);
  box.setDefaultButton(defaultButton);
  return box.exec() == QMessageBox::Yes;
}
