#include "sources/TextPage.h"

#include "present/colorButton.h"
#include "tagKorviaShowSourceInfo.h"
#include "ui_GDialogMediaSource.h"

namespace {

/// In the order of the entries, which is not the order of the bits.
constexpr qint32 kHorizontal[] = {TextAlignLeft, TextAlignCenter, TextAlignRight};
constexpr qint32 kVertical[] = {TextAlignTop, TextAlignMiddle, TextAlignBottom};

template <std::size_t Count>
void select(QComboBox* combo, const qint32 (&bits)[Count], qint32 alignment) {
  for (std::size_t entry = 0; entry < Count; ++entry) {
    if (!(alignment & bits[entry]))
      continue;
    combo->setCurrentIndex(static_cast<int>(entry));
    return;
  }
}

template <std::size_t Count>
qint32 selected(const QComboBox* combo, const qint32 (&bits)[Count]) {
  const int entry = combo->currentIndex();
  return entry >= 0 && entry < static_cast<int>(Count) ? bits[entry] : 0;
}

}  // namespace

void TextPage::fill() {
  _ui._textFontSizeComboBox->addItems(
      {"14", "24", "32", "40", "56", "64", "76", "128", "256", "512", "1024"});
  _ui._textOutlineSizeComboBox->addItems({"0", "1", "2", "3", "4", "5", "6", "7"});
  // 215, where 225 would be expected, stays, because saved shows have it.
  _ui._textGradientDirComboBox->addItems({"0", "45", "90", "135", "180", "215"});
  const auto text = [](const char* source) {
    return QCoreApplication::translate("GDialogMediaSource", source);
  };
  _ui._textHorizontalAlignComboBox->addItems({text("Left"), text("Center"), text("Right")});
  _ui._textVerticalAlignComboBox->addItems({text("Top"), text("Middle"), text("Bottom")});
}

void TextPage::load(const tagKorviaShowSourceInfo& info) {
  const tagKorviaShowRenderTextParam& param = info.textParam;
  _ui._textPathLineEdit->setText(info.textPath);
  _ui._textFontComboBox->setEditText(param.fontName);
  _ui._textFontSizeComboBox->setEditText(QString::number(param.fontSize));
  _ui._textBoldCheckBox->setChecked(param.bold);
  _ui._textItalicCheckBox->setChecked(param.italic);
  _ui._textUnderlineCheckBox->setChecked(param.underline);
  _ui._textVerticalCheckBox->setChecked(param.vertical);
  _ui._textWrapCheckBox->setChecked(param.wrap);
  _ui._textOutlineCheckBox->setChecked(param.outline);
  select(_ui._textHorizontalAlignComboBox, kHorizontal, param.alignment);
  select(_ui._textVerticalAlignComboBox, kVertical, param.alignment);
  _ui._textGradientDirComboBox->setEditText(QString::number(param.gradientAngle));
  _ui._textOutlineSizeComboBox->setEditText(QString::number(param.outlineSize));
  showColor(_ui._textBeginColorPushButton, QColor::fromRgba(param.gradientBeginColor));
  showColor(_ui._textEndColorPushButton, QColor::fromRgba(param.gradientEndColor));
  showColor(_ui._textOutlineColorPushButton, QColor::fromRgba(param.outlineColor));
  _ui._textContentPlainTextEdit->setPlainText(param.text);
}

void TextPage::store(tagKorviaShowSourceInfo& info) const {
  tagKorviaShowRenderTextParam& param = info.textParam;
  param.fontName = _ui._textFontComboBox->currentText();
  param.fontSize = _ui._textFontSizeComboBox->currentText().toInt();
  param.underline = _ui._textUnderlineCheckBox->isChecked();
  param.italic = _ui._textItalicCheckBox->isChecked();
  param.bold = _ui._textBoldCheckBox->isChecked();
  param.vertical = _ui._textVerticalCheckBox->isChecked();
  param.wrap = _ui._textWrapCheckBox->isChecked();
  param.outline = _ui._textOutlineCheckBox->isChecked();
  param.alignment = selected(_ui._textHorizontalAlignComboBox, kHorizontal) |
                    selected(_ui._textVerticalAlignComboBox, kVertical);
  param.gradientAngle = _ui._textGradientDirComboBox->currentText().toInt();
  param.outlineSize = _ui._textOutlineSizeComboBox->currentText().toInt();
  info.textPath = _ui._textPathLineEdit->text();
  param.text = _ui._textContentPlainTextEdit->toPlainText();
}
