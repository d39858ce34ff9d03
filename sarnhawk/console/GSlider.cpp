#include "GSlider.h"

#include "GCleanlooksStyle.h"

GSlider::GSlider(int overhang, QWidget* parent) : QSlider(parent) {
  auto* leverStyle = new GCleanlooksStyle(overhang);
  leverStyle->setParent(this);
  setStyle(leverStyle);
}

GSlider::~GSlider() {
  // Qt's style for style sheets keeps a raw pointer to the lever style, which is deleted with the children.
  setStyle(nullptr);
}
