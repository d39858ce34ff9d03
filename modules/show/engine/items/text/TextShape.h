// Sets the lines of a text in their box. Lengths are pixels of a picture of 1080 lines, and the origin is the
// centre of the item. Any thread, one at a time.
#pragma once
#include <QFont>
#include <QRectF>
#include <QString>
#include <QTextLayout>
#include <memory>
#include <vector>

class QPainter;

namespace korvia {

/// The lines that the sizes of texts are stated for.
inline constexpr double kNominalLines = 1080;

enum class TextSide { Begin, Middle, End };

struct TextBox {
  /// 0 measures the text. With a width, lines are broken to fit.
  double width = 0;
  double height = 0;
  TextSide horizontal = TextSide::Middle;
  TextSide vertical = TextSide::Middle;

  friend bool operator==(const TextBox&, const TextBox&) = default;
};

/// Of a line that is not broken. Longer ones are cut before they are set, because the shaper takes time for
/// every character.
struct TextLimits {
  double width = 0;
  int characters = 4096;

  friend bool operator==(const TextLimits&, const TextLimits&) = default;
};

class TextShape {
 public:
  /// Lines end at '\n'. Each is cut where it is longer than the limits, and there are at most 512.
  TextShape(const QString& text, const QFont& font, const TextBox& box, const TextLimits& limits);

  /// The box with its measured sides.
  QRectF box() const { return box_; }
  /// The lines with ascents and descents; larger than the box where the text does not fit.
  QRectF lines() const { return lines_; }
  /// From the top of a capital letter of the first line to the baseline of the last one.
  double capTop() const { return capTop_; }
  double lastBaseline() const { return lastBaseline_; }

  /// Draws the lines that meet `visible`.
  void draw(QPainter& painter, const QRectF& visible) const;

 private:
  void addParagraph(const QString& text, const QFont& font, const TextBox& box, const TextLimits& limits);
  void place(const QFont& font, const TextBox& box);

  std::vector<std::unique_ptr<QTextLayout>> paragraphs_;
  int lineCount_ = 0;
  QRectF box_;
  QRectF lines_;
  double capTop_ = 0;
  double lastBaseline_ = 0;
};

}  // namespace korvia
