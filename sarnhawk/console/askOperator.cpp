#include "console/askOperator.h"

#include <QCoreApplication>
#include <QPointer>

bool askOperator(QWidget* parent, const QString& question, const QString& details,
                 QMessageBox::StandardButton defaultButton) {
  // Not on the stack, because the parent deletes it when the console ends meanwhile.
  const QPointer<QMessageBox> box =
      new QMessageBox(QMessageBox::Question, QCoreApplication::translate("askOperator", "Message"), question,
                      QMessageBox::Yes | QMessageBox::No, parent);
  // A picker of another strip stays on top too, and would hide the question that blocks it.
  box->setWindowFlag(Qt::WindowStaysOnTopHint);
  box->setInformativeText(details);
  box->setDefaultButton(defaultButton);
  const bool isYes = box->exec() == QMessageBox::Yes;
  if (!box)
    return false;
  delete box;
  return isYes;
}
