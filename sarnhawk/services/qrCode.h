// Makes QR codes. Stateless, any thread.
#pragma once
#include <QImage>
#include <QString>

/// The QR code of a text in black on white, with the quiet zone that scanners need; each module is a square
/// of `modulePixels` pixels. A null image for a text that is empty or does not fit into a code.
QImage qrCode(const QString& text, int modulePixels);
