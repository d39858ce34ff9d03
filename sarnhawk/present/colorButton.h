// Colours as the console shows them. Console thread.
#pragma once
#include <QColor>
#include <QString>

class QPushButton;

/// "#RRGGBBAA", in capitals.
QString colorText(const QColor& color);

/// Paints the button in the colour, with the colour's text as its caption.
void showColor(QPushButton* button, const QColor& color);
