#include "DemoPicture.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>
#include <QtMath>
#include <algorithm>
#include <cmath>

#include "DemoFormat.h"

namespace korvia {

enum class DemoScene { Discs, Hills };

struct DemoTheme {
  DemoScene scene;
  const char* caption;
  QRgb top;
  QRgb bottom;
  QRgb glow;
  QRgb shapes[3];
  QRgb accent;
  QPoint dialCentre;
  QPoint clockCentre;
  QPoint flashCorner;
};

namespace {

// At four pixels a frame the backdrop moves exactly once around in a film.
constexpr int kDriftPixels = 4;
constexpr int kBackdropWidth = kDriftPixels * kDemoFrames;
static_assert(kBackdropWidth >= kDemoWidth);

constexpr int kDialRadius = 250;
constexpr int kFlashSize = 150;

const DemoTheme kThemes[] = {
    {DemoScene::Discs,
     "Korvia demo film 1",
     0xff10224a,
     0xff0b5a6e,
     0xff2f7fd6,
     {0xff39b6c8, 0xff5b7cff, 0xff7fe0c2},
     0xffffd166,
     QPoint(1500, 500),
     QPoint(660, 500),
     QPoint(110, 100)},
    {DemoScene::Hills,
     "Korvia demo film 2",
     0xff51205e,
     0xffe8744a,
     0xffffb25c,
     {0xff8c2f5f, 0xff5e1f4d, 0xff34153a},
     0xff8ff0d4,
     QPoint(420, 460),
     QPoint(1260, 380),
     QPoint(1660, 50)},
};

double wave(double turn) {
  return std::sin(2.0 * M_PI * turn);
}

QRgb mixed(QRgb from, QRgb to, double share) {
  const auto channel = [share](int a, int b) { return qRound(a + (b - a) * std::clamp(share, 0.0, 1.0)); };
  return qRgb(channel(qRed(from), qRed(to)), channel(qGreen(from), qGreen(to)),
              channel(qBlue(from), qBlue(to)));
}

QColor translucent(QRgb colour, int alpha) {
  QColor result(colour);
  result.setAlpha(alpha);
  return result;
}

// A smooth field whose left and right edges fit together.
QImage makeBackdrop(const DemoTheme& theme) {
  QImage image(kBackdropWidth, kDemoHeight, QImage::Format_RGB32);
  for (int y = 0; y < kDemoHeight; ++y) {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
    const double down = double(y) / kDemoHeight;
    const QRgb base = mixed(theme.top, theme.bottom, down);
    for (int x = 0; x < kBackdropWidth; ++x) {
      const double along = double(x) / kBackdropWidth;
      const double light = 0.5 + 0.5 * wave(along + 0.35 * down) * wave(0.15 + 0.45 * down);
      line[x] = mixed(base, theme.glow, 0.55 * light);
    }
  }
  return image;
}

QImage makeDial(const DemoTheme& theme) {
  QImage image(2 * kDialRadius, 2 * kDialRadius, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(kDialRadius, kDialRadius);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(8, 12, 20, 150));
  painter.drawEllipse(QPoint(), kDialRadius - 2, kDialRadius - 2);
  for (int tick = 0; tick < kDemoFramesPerSecond; ++tick) {
    const bool major = tick % 5 == 0;
    painter.setPen(QPen(major ? QColor(Qt::white) : translucent(theme.accent, 170), major ? 8 : 4,
                        Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(0, -kDialRadius + 20, 0, -kDialRadius + (major ? 58 : 44));
    painter.rotate(360.0 / kDemoFramesPerSecond);
  }
  return image;
}

QFont fixedFont(int pixels, bool bold) {
  QFont font(QStringLiteral("DejaVu Sans Mono"));
  font.setStyleHint(QFont::Monospace);
  font.setPixelSize(pixels);
  font.setBold(bold);
  font.setHintingPreference(QFont::PreferNoHinting);
  return font;
}

}  // namespace

DemoPicture::DemoPicture(int variant)
    : theme_(kThemes[variant == 2 ? 1 : 0]),
      backdrop_(makeBackdrop(theme_)),
      dial_(makeDial(theme_)),
      frame_(kDemoWidth, kDemoHeight, QImage::Format_RGB32) {}

const QImage& DemoPicture::draw(int frame) {
  QPainter painter(&frame_);
  const int shift = (frame * kDriftPixels) % kBackdropWidth;
  painter.drawImage(-shift, 0, backdrop_);
  painter.drawImage(kBackdropWidth - shift, 0, backdrop_);

  painter.setRenderHint(QPainter::Antialiasing);
  const double turn = double(frame % kDemoFrames) / kDemoFrames;
  if (theme_.scene == DemoScene::Hills) {
    drawHills(painter, turn);
  } else {
    drawDiscs(painter, turn);
  }
  drawDial(painter, frame);
  drawClock(painter, frame);
  drawFlash(painter, frame);
  drawProgress(painter, frame);
  return frame_;
}

void DemoPicture::drawDiscs(QPainter& painter, double turn) const {
  painter.setPen(Qt::NoPen);
  for (int n = 0; n < 6; ++n) {
    const double phase = n / 6.0;
    const double x = kDemoWidth * (0.5 + 0.46 * wave((1 + n % 2) * turn + phase));
    const double y = kDemoHeight * (0.5 + 0.40 * wave((2 - n % 2) * turn + 2.3 * phase));
    const double radius = 70 + 28 * n;
    painter.setBrush(translucent(theme_.shapes[n % 3], 60));
    painter.drawEllipse(QPointF(x, y), radius, radius);
  }
}

void DemoPicture::drawHills(QPainter& painter, double turn) const {
  painter.setPen(Qt::NoPen);
  const QPointF sun(kDemoWidth * (0.5 + 0.42 * wave(turn)), 610 - 90 * wave(turn + 0.25));
  painter.setBrush(translucent(0xfffff1c4, 70));
  painter.drawEllipse(sun, 190, 190);
  painter.setBrush(translucent(0xfffff1c4, 220));
  painter.drawEllipse(sun, 130, 130);

  for (int ridge = 0; ridge < 3; ++ridge) {
    QPainterPath path(QPointF(0, kDemoHeight));
    for (int x = 0; x <= kDemoWidth; x += 24) {
      const double along = double(x) / kDemoWidth + (ridge + 1) * turn;
      const double height = (78 - 8 * ridge) * wave(along) + 30 * wave(2 * along + 0.3 * ridge);
      path.lineTo(x, 720 + 105 * ridge - height);
    }
    path.lineTo(kDemoWidth, kDemoHeight);
    painter.setBrush(QColor(theme_.shapes[ridge]));
    painter.drawPath(path);
  }
}

// The hand turns once a second, one step a frame, and points up at each full second.
void DemoPicture::drawDial(QPainter& painter, int frame) const {
  painter.save();
  painter.translate(theme_.dialCentre);
  painter.save();
  painter.rotate(360.0 * frame / kDemoFrames);
  painter.setPen(Qt::NoPen);
  for (int blade = 0; blade < 8; ++blade) {
    painter.setBrush(translucent(theme_.shapes[blade % 3], blade % 2 == 0 ? 130 : 60));
    painter.drawPie(QRect(-kDialRadius - 50, -kDialRadius - 50, 2 * kDialRadius + 100, 2 * kDialRadius + 100),
                    blade * 45 * 16, 45 * 16);
  }
  painter.restore();
  painter.drawImage(-kDialRadius, -kDialRadius, dial_);

  painter.rotate(360.0 * (frame % kDemoFramesPerSecond) / kDemoFramesPerSecond);
  painter.setPen(QPen(QColor(theme_.accent), 12, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(0, 34, 0, -kDialRadius + 76);
  painter.setPen(Qt::NoPen);
  painter.setBrush(Qt::white);
  painter.drawEllipse(QPoint(), 18, 18);
  painter.restore();
}

void DemoPicture::drawClock(QPainter& painter, int frame) const {
  const int second = frame / kDemoFramesPerSecond;
  const QString text = QStringLiteral("%1:%2:%3:%4")
                           .arg(second / 3600, 2, 10, QLatin1Char('0'))
                           .arg(second / 60 % 60, 2, 10, QLatin1Char('0'))
                           .arg(second % 60, 2, 10, QLatin1Char('0'))
                           .arg(frame % kDemoFramesPerSecond, 2, 10, QLatin1Char('0'));
  QRect box(0, 0, 1060, 300);
  box.moveCenter(theme_.clockCentre);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(8, 12, 20, 150));
  painter.drawRoundedRect(box, 28, 28);

  painter.setPen(Qt::white);
  painter.setFont(fixedFont(146, true));
  painter.drawText(box.adjusted(0, 8, 0, -80), Qt::AlignCenter, text);
  painter.setPen(QColor(theme_.accent));
  painter.setFont(fixedFont(36, false));
  painter.drawText(
      box.adjusted(0, 190, 0, -30), Qt::AlignCenter,
      QStringLiteral("%1   frame %2").arg(QLatin1String(theme_.caption)).arg(frame, 3, 10, QLatin1Char('0')));
}

void DemoPicture::drawFlash(QPainter& painter, int frame) const {
  const QRect box(theme_.flashCorner, QSize(kFlashSize, kFlashSize));
  if (frame % kDemoFramesPerSecond < kDemoMarkFrames) {
    painter.fillRect(box, Qt::white);
  } else {
    painter.fillRect(box, QColor(8, 12, 20));
  }
}

void DemoPicture::drawProgress(QPainter& painter, int frame) const {
  const QRect groove(110, 980, kDemoWidth - 220, 10);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(255, 255, 255, 70));
  painter.drawRoundedRect(groove, 5, 5);
  painter.setBrush(QColor(theme_.accent));
  painter.drawEllipse(QPointF(groove.left() + groove.width() * double(frame) / kDemoFrames, 985), 17, 17);
}

}  // namespace korvia
