// What the controls of the picker's pages do.
#include <QColorDialog>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMessageBox>
#include <QScreen>
#include <QSignalBlocker>

#include "KorviaCommonUtil.h"
#include "KorviaShowUtil.h"
#include "KorviaUtil.h"
#include "QColEdit.h"
#include "present/colorButton.h"
#include "sources/GDialogMediaSource.h"
#include "sources/GDialogScreenIndicator.h"
#include "sources/MediaInfo.h"
#include "sources/PdfPreview.h"
#include "ui_GDialogMediaSource.h"

namespace {

/// The path as the console keeps it. The current folder of the process becomes the file's folder.
QString takePath(const QString& path) {
  QDir::setCurrent(QFileInfo(path).absolutePath());
  QString taken = path;
  return taken.replace(QLatin1Char('/'), QDir::separator());
}

QString filmFilter() {
  return GDialogMediaSource::tr(
      "Movies files (*.avi *.ts *.mpg *.vob *.flv *.mp4 *.mov *.mkv *.asf *.wmv *.rm);;Any files (*)");
}

QString imageFilter() {
  return GDialogMediaSource::tr("Image Files (*.png *.jpg *.bmp *.jpeg)");
}

void removeCurrent(QListWidget* list) {
  delete list->takeItem(list->currentRow());
}

}  // namespace

void GDialogMediaSource::pickFiles(const QString& caption, const QString& filter, const QString& folder,
                                   bool isSingle, const FilesDone& done) {
  auto* dialog = new QFileDialog(this, caption, folder, filter);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(isSingle ? QFileDialog::ExistingFile : QFileDialog::ExistingFiles);
  connect(dialog, &QFileDialog::filesSelected, this, [done](const QStringList& files) {
    QStringList taken;
    for (const QString& file : files)
      taken.append(takePath(file));
    done(taken);
  });
  // Not exec, because a loop of its own would keep a desk that ends meanwhile from being deleted.
  dialog->open();
}

void GDialogMediaSource::probeSize(const QString& path) {
  tagKorviaFormatInfo found;
  if (!readMediaSize(path, found))
    return;
  const qint32 width = found.video.secondWidth;
  const qint32 height = found.video.secondHeight;
  showSize({width, height});
}

void GDialogMediaSource::appendFiles(QListWidget* list, const QStringList& paths) {
  list->addItems(paths);
  probeSize(paths.first());
}

void GDialogMediaSource::askToClear(QListWidget* list, const QString& question) {
  auto* box = new QMessageBox(QMessageBox::Question, tr("Message"), question,
                              QMessageBox::Yes | QMessageBox::No, this);
  box->setAttribute(Qt::WA_DeleteOnClose);
  connect(box, &QMessageBox::finished, list, [list](int answer) {
    if (answer == QMessageBox::Yes)
      list->clear();
  });
  box->open();
}

void GDialogMediaSource::onClicked_openMoviePushButton() {
  pickFiles(tr("Open File"), filmFilter(), QDir::currentPath(), true, [this](const QStringList& files) {
    _ui->_moviePathLineEdit->setText(files.first());
    probeSize(files.first());
  });
}

void GDialogMediaSource::onItemPressed_movieHistoryListWidget(QListWidgetItem* item) {
  _ui->_moviePathLineEdit->setText(item->text());
  probeSize(item->text());
}

void GDialogMediaSource::onClicked_addMovieListItemPushButton() {
  pickFiles(tr("Open File"), filmFilter(), QDir::currentPath(), false,
            [this](const QStringList& files) { appendFiles(_ui->_movieListListWidget, files); });
}

void GDialogMediaSource::onClicked_delMovieListItemPushButton() {
  removeCurrent(_ui->_movieListListWidget);
}

void GDialogMediaSource::onClicked_clearMovieListItemPushButton() {
  askToClear(_ui->_movieListListWidget, tr("Are you sure to clear the movie list ?"));
}

void GDialogMediaSource::onItemPressed_urlHistoryListWidget(QListWidgetItem* item) {
  _ui->_urlComboBox->setEditText(item->text());
}

void GDialogMediaSource::onItemPressed_krmpHistoryListWidget(QListWidgetItem* item) {
  _ui->_krmpComboBox->setEditText(item->text());
}

void GDialogMediaSource::onTextChanged_incomePathLineEdit(const QString&) {
  // Nothing is put between the port and the path, so the operator brings the slash.
  _ui->_incomeRTMPURLLineEdit->setText(QStringLiteral("rtmp://") + _localAddress + QStringLiteral(":1935") +
                                       _ui->_incomePathLineEdit->text());
}

void GDialogMediaSource::onClicked_openImagePushButton() {
  pickFiles(tr("Image File"), imageFilter(), QString(), true, [this](const QStringList& files) {
    _ui->_imagePathLineEdit->setText(files.first());
    probeSize(files.first());
  });
}

void GDialogMediaSource::onItemPressed_imageHistoryListWidget(QListWidgetItem* item) {
  _ui->_imagePathLineEdit->setText(item->text());
  probeSize(item->text());
}

void GDialogMediaSource::onClicked_addImageListItemPushButton() {
  pickFiles(tr("Image File"), imageFilter(), QString(), true,
            [this](const QStringList& files) { appendFiles(_ui->_imageListListWidget, files); });
}

void GDialogMediaSource::onClicked_delImageListItemPushButton() {
  removeCurrent(_ui->_imageListListWidget);
}

void GDialogMediaSource::onClicked_clearImageListItemPushButton() {
  askToClear(_ui->_imageListListWidget, tr("Are you sure to clear the image list ?"));
}

void GDialogMediaSource::onClicked_videoDevPropertiesPushButton() {
  const QComboBox* combo = _ui->_videoDeviceComboBox;
  KorviaCommonUtil::showDShowDeviceSettingPage(true, combo->currentText(), combo->currentData().toString());
}

void GDialogMediaSource::onClicked_audioDevPropertiesPushButton() {
  const QComboBox* combo = _ui->_audioDeviceComboBox;
  KorviaCommonUtil::showDShowDeviceSettingPage(false, combo->currentText(), combo->currentData().toString());
}

void GDialogMediaSource::onCurrentIndexChanged_sdiInputDevListComboBox(int index) {
  _ui->_sdiFormatListComboBox->clear();
  if (index >= 0 && index < _cards.size())
    _ui->_sdiFormatListComboBox->addItems(_cards[index].formats);
  _ui->_sdiFormatListComboBox->setEditText(_slot.source.sdiFormat);
}

void GDialogMediaSource::onClicked_selectColorPushButton() {
  auto* dialog = new QColorDialog(QColor::fromRgba(_slot.source.color), this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setWindowFlags(dialog->windowFlags() | Qt::WindowStaysOnTopHint);
  dialog->setOption(QColorDialog::ShowAlphaChannel);
  // Set again, because the constructor drops the alpha when there is no alpha channel yet.
  dialog->setCurrentColor(QColor::fromRgba(_slot.source.color));
  connect(dialog, &QColorDialog::colorSelected, this, [this](const QColor& color) {
    _slot.source.color = color.rgba();
    showColor(_ui->_selectColorPushButton, color);
  });
  dialog->open();
}

void GDialogMediaSource::onClicked_selectDelayCachePathPushButton() {
  auto* dialog = new QFileDialog(this, QString(), _ui->_delayPathLineEdit->text());
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(QFileDialog::Directory);
  dialog->setOption(QFileDialog::ShowDirsOnly);
  connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& folder) {
    QString taken = folder;
    _ui->_delayPathLineEdit->setText(taken.replace(QLatin1Char('/'), QDir::separator()));
  });
  dialog->open();
}

void GDialogMediaSource::onClicked_openFlashPushButton() {
  pickFiles(tr("Flash File"), tr("Flash Files (*.swf)"), QString(), true, [this](const QStringList& files) {
    _ui->_flashPathLineEdit->setText(files.first());
    probeSize(files.first());
  });
}

void GDialogMediaSource::onItemPressed_flashHistoryListWidget(QListWidgetItem* item) {
  _ui->_flashPathLineEdit->setText(item->text());
  probeSize(item->text());
}

void GDialogMediaSource::onClicked_openWebPushButton() {
  const QString url = _ui->_webPathLineEdit->text();
  const bool isComplete = url.left(4) == QLatin1String("http");
  _ui->_webView->load(isComplete ? url : QStringLiteral("http://") + url);
}

void GDialogMediaSource::onItemPressed_webHistoryListWidget(QListWidgetItem* item) {
  _ui->_webPathLineEdit->setText(item->text());
}

void GDialogMediaSource::onClicked_openPDFPushButton() {
  pickFiles(tr("PDF File"), tr("PDF Files (*.pdf)"), QString(), true,
            [this](const QStringList& files) { _ui->_pdfPathLineEdit->setText(files.first()); });
}

void GDialogMediaSource::onClicked_prevPDFPagePushButton() {
  _pdf->showPrevious();
}

void GDialogMediaSource::onClicked_nextPDFPagePushButton() {
  _pdf->showNext();
}

void GDialogMediaSource::onItemPressed_pdfHistoryListWidget(QListWidgetItem* item) {
  _ui->_pdfPathLineEdit->setText(item->text());
}

void GDialogMediaSource::onTextChanged_pdfPathLineEdit(const QString& text) {
  _pdf->load(text, PdfPreview::PageSize::Take, outputSize());
}

void GDialogMediaSource::takePdfSize(const QSize& size) {
  // It may come after the operator has turned to another page.
  if (_ui->stackedWidget->currentWidget() != _ui->_pdfPage)
    return;
  setOutputSize(size);
  const QSignalBlocker blocker(_ui->_videoSizeComboBox);
  showSize(size);
}

void GDialogMediaSource::readTextFile(const QString& path) {
  _ui->_textPathLineEdit->setText(path);
  QString text;
  QString reason;
  if (!KorviaShowUtil::readTextFile(path, text, reason))
    qDebug("failed to read text : %s : %s", qUtf8Printable(path), qUtf8Printable(reason));
  _ui->_textContentPlainTextEdit->setPlainText(text);
}

void GDialogMediaSource::onClicked_browsTextFilePushButton() {
  pickFiles(tr("Text File"), tr("Text Files (*.txt)"), QString(), true,
            [this](const QStringList& files) { readTextFile(files.first()); });
}

void GDialogMediaSource::onTextChanged_textUI() {
  updateTextPreview();
}

void GDialogMediaSource::onEditTextChanged_textUI(const QString&) {
  updateTextPreview();
}

void GDialogMediaSource::onClicked_textUI() {
  updateTextPreview();
}

void GDialogMediaSource::onCurrentIndexChanged_textUI(int) {
  updateTextPreview();
}

void GDialogMediaSource::pickColor(quint32 tagKorviaShowRenderTextParam::*color, QPushButton* button) {
  auto* editor = new QColEdit(this, Qt::Dialog | Qt::WindowStaysOnTopHint);
  editor->setAttribute(Qt::WA_DeleteOnClose);
  editor->setColor(QColor::fromRgba(_slot.source.textParam.*color));
  connect(editor, &QColEdit::accepted, this, [this, editor, color, button] {
    _slot.source.textParam.*color = editor->color().rgba();
    showColor(button, editor->color());
    updateTextPreview();
  });
  editor->open();
}

void GDialogMediaSource::onClicked_textBeginColorPushButton() {
  pickColor(&tagKorviaShowRenderTextParam::gradientBeginColor, _ui->_textBeginColorPushButton);
}

void GDialogMediaSource::onClicked_textEndColorPushButton() {
  pickColor(&tagKorviaShowRenderTextParam::gradientEndColor, _ui->_textEndColorPushButton);
}

void GDialogMediaSource::onClicked_textOutlineColorPushButton() {
  pickColor(&tagKorviaShowRenderTextParam::outlineColor, _ui->_textOutlineColorPushButton);
}

void GDialogMediaSource::onClicked_refreshHwndPushButton() {
  _ui->_hwndListWidget->clear();
  QList<tagKorviaWindowHWNDInfo> windows;
  KorviaUtil::fillWindowHwndList(windows);
  for (const tagKorviaWindowHWNDInfo& window : std::as_const(windows)) {
    auto* row = new QListWidgetItem(QStringLiteral("%1 [%2]").arg(window.title, window.program),
                                    _ui->_hwndListWidget);
    row->setData(Qt::UserRole, QVariant::fromValue(window));
  }
}

void GDialogMediaSource::onCurrentIndexChanged_screenIndicatorComboBox(int index) {
  const QScreen* screen = QGuiApplication::screens().value(index);
  if (screen && screen->geometry().isValid())
    showSize(screen->geometry().size());
}

void GDialogMediaSource::onClicked_screenIndicatorPushButton() {
  for (GDialogScreenIndicator* indicator : std::as_const(_indicators))
    indicator->showOnScreen();
}
