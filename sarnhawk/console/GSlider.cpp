#include "GSlider.h"

#include "GCleanlooksStyle.h"

GSlider::GSlider(int overhang, QWidget* parent) : QSlider(parent) {
  auto* leverStyle = new GCleanlooksStyle(overhang);
  leverStyle->setParent(this);
  setStyle(leverStyle);
}

GSlider::~GSlider() {
  // The style sheet's wrapper keeps a bare pointer to the style, which dies with the children.
  setStyle(nullptr);
}
