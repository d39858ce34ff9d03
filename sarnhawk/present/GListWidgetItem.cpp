#include "present/GListWidgetItem.h"

#include <QImageReader>
#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <QVBoxLayout>

#include "present/IGListWidgetItemEventSink.h"
#include "present/TileCaption.h"

namespace {

constexpr QSize kDefaultSize(100, 84);
// The margins separate neighbouring tiles and show the colour of a selected tile around its thumbnail.
constexpr QMargins kMargins(4, 4, 4, 2);
constexpr int kSpacing = 1;

constexpr qint64 kPixelsMax = 64 * 1024 * 1024;
// Larger pictures are scaled down while they are read.
constexpr QSize kThumbSizeMax(512, 512);

QPixmap readThumbnail(const QString& path) {
  if (path.isEmpty())
    return QPixmap();
  QImageReader reader(path);
  reader.setAutoTransform(true);
  const QSize size = reader.size();
  if (qint64{size.width()} * qint64{size.height()} > kPixelsMax)
    return QPixmap();
  if (size.width() > kThumbSizeMax.width() || size.height() > kThumbSizeMax.height())
    reader.setScaledSize(size.scaled(kThumbSizeMax, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
  return QPixmap::fromImageReader(&reader);
}

}  // namespace

GListWidgetItem::GListWidgetItem(IGListWidgetItemEventSink* sink, QListWidget* listWidget,
                                 QListWidgetItem* item, const GListWidgetItemInfo& info)
    : _info(info),
      _sink(sink),
      _listWidget(listWidget),
      _item(item),
      _thumbLabel(new QLabel(this)),
      _captionLabel(new TileCaption(this)) {
  // A style sheet colours the background of a plain widget only when it is asked to.
  setAttribute(Qt::WA_StyledBackground);
  setFixedSize(kDefaultSize);

  _thumbLabel->setObjectName(QStringLiteral("_thumbLabel"));
  _thumbLabel->setCursor(Qt::PointingHandCursor);
  _thumbLabel->setScaledContents(true);
  _thumbLabel->setToolTip(_info.name);
  _thumbLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
  _captionLabel->setObjectName(QStringLiteral("_captionLabel"));
  _captionLabel->setText(_info.name);
  _captionLabel->setHidden(_info.name.isEmpty());

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(kMargins);
  layout->setSpacing(kSpacing);
  layout->addWidget(_thumbLabel);
  layout->addWidget(_captionLabel);
  showThumbnail();
}

void GListWidgetItem::showThumbnail() {
  const QPixmap picture = readThumbnail(_info.thumbPath);
  if (!picture.isNull())
    _thumbLabel->setPixmap(picture);
}

void GListWidgetItem::setSelected(bool selected) {
  if (selected == _selected)
    return;
  _selected = selected;
  setStyleSheet(selected ? QStringLiteral("background-color: rgb(0, 85, 0); color: rgb(255, 255, 255);")
                         : QString());
}

void GListWidgetItem::mousePressEvent(QMouseEvent* event) {
  // The press is not passed on, because the list would begin a drag or a selection with it.
  _pressed = event->button() == Qt::LeftButton;
}

void GListWidgetItem::mouseReleaseEvent(QMouseEvent* event) {
  const bool clicked = _pressed && event->button() == Qt::LeftButton && rect().contains(event->pos());
  _pressed = false;
  if (clicked && _sink)
    _sink->onListWidgetItemClicked(_listWidget, this, _info.id);
}

void GListWidgetItem::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  _captionLabel->fitTile(height());
}
