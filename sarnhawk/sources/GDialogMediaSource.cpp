#include "sources/GDialogMediaSource.h"

#include <QButtonGroup>
#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QSignalBlocker>

#include "KorviaCommonUtil.h"
#include "KorviaShowUtil.h"
#include "services/GWidgetImagePaint.h"
#include "sources/GDialogMediaSourceOption.h"
#include "sources/GDialogScreenIndicator.h"
#include "sources/MediaFiles.h"
#include "sources/PdfPreview.h"
#include "ui_GDialogMediaSource.h"

namespace {

constexpr int kMaxSide = 8192;
const QString kCheckedStyle = QStringLiteral("QPushButton:checked{\n\tbackground-color: rgb(0, 85, 0);\n}");

struct KindEntry {
  qint32 kind;
  QPushButton* Ui::GDialogMediaSource::*button;
  QWidget* Ui::GDialogMediaSource::*page;
  /// Null for a kind without an icon.
  const char* icon;
  bool isVisible;
};

using Form = Ui::GDialogMediaSource;

/// In the order of the buttons.
constexpr KindEntry kKindTable[] = {
    {SourceKindMovie, &Form::_moviePushButton, &Form::_moviePage, "msMovie.png", true},
    {SourceKindMovieList, &Form::_movieListPushButton, &Form::_movieListPage, "msMovieList.png", true},
    {SourceKindUrl, &Form::_urlPushButton, &Form::_urlPage, "msUrl.png", true},
    {SourceKindKrmp, &Form::_krmpPushButton, &Form::_krmpPage, "msKRMP.png", false},
    {SourceKindIncome, &Form::_incomePushButton, &Form::_incomePage, nullptr, true},
    {SourceKindImage, &Form::_imagePushButton, &Form::_imagePage, "msImage.png", true},
    {SourceKindImageList, &Form::_imageListPushButton, &Form::_imageListPage, "msImageList.png", true},
    {SourceKindDevice, &Form::_devicePushButton, &Form::_devicePage, "msDevice.png", true},
    {SourceKindDevice3D, &Form::_3ddevicePushButton, &Form::_3ddevicePage, nullptr, false},
    {SourceKindColor, &Form::_colorPushButton, &Form::_colorPage, "msColour.png", true},
    {SourceKindDelay, &Form::_delayPushButton, &Form::_delayPage, "msDelay.png", false},
    {SourceKindFlash, &Form::_flashPushButton, &Form::_flashPage, "msFlash.png", false},
    {SourceKindWeb, &Form::_webPushButton, &Form::_webPage, "msWeb.png", true},
    {SourceKindOffice, &Form::_officePushButton, &Form::_officePage, "msOffice.png", false},
    {SourceKindPdf, &Form::_pdfPushButton, &Form::_pdfPage, "msPDF.png", true},
    {SourceKindText, &Form::_textPushButton, &Form::_textPage, "msText.png", false},
    {SourceKindWindow, &Form::_windowPushButton, &Form::_windowPage, "msWindow.png", true},
    {SourceKindScreen, &Form::_monitorPushButton, &Form::_monitorPage, "msScreen.png", true},
};

const KindEntry* entryOf(qint32 kind) {
  const auto* found = std::find_if(std::begin(kKindTable), std::end(kKindTable),
                                   [kind](const KindEntry& entry) { return entry.kind == kind; });
  return found == std::end(kKindTable) ? nullptr : found;
}

}  // namespace

GDialogMediaSource::GDialogMediaSource(const tagKorviaShowEngineInfo& engineInfo,
                                       const tagKorviaShowChannelSlot& slot, QWidget* parent)
    : QDialog(parent),
      _ui(std::make_unique<Ui::GDialogMediaSource>()),
      _engineInfo(engineInfo),
      _slot(slot),
      _kinds(new QButtonGroup(this)),
      _textPage(*_ui),
      _localAddress(KorviaCommonUtil::getIp()) {
  _ui->setupUi(this);
  setWindowFlags(windowFlags() | Qt::WindowStaysOnTopHint);
  // Blocks its parent at most, so that the desk stays usable.
  setWindowModality(Qt::WindowModal);
  if (!entryOf(_slot.source.kind))
    _slot.source.kind = SourceKindMovie;

  _textPaint = new GWidgetImagePaint(_ui->_textPreviewScrollAreaWidgetContents);
  _ui->_textPreviewLayout->addWidget(_textPaint);
  auto* pdfPaint = new GWidgetImagePaint(_ui->_pdfPreviewScrollAreaWidgetContents);
  _ui->_pdfPreviewLayout->addWidget(pdfPaint);
  _pdf = new PdfPreview(pdfPaint, _ui->_pdfPreviewScrollAreaWidgetContents, _ui->_pdfPageInfoLabel, this);
  connect(_pdf, &PdfPreview::sizeTaken, this, &GDialogMediaSource::takePdfSize);

  _ui->_webView->setFrameRate(_engineInfo.format.fpsNumerator, _engineInfo.format.fpsDenominator);
  setUpKinds();
  // A completer would make "128" of a typed "12".
  const auto combos = findChildren<QComboBox*>();
  for (QComboBox* combo : combos) {
    if (combo->isEditable())
      combo->setCompleter(nullptr);
  }
  fillLists();
  setKind(_slot.source.kind);
  load();
  fillDevices();
  setUpHistories();
  setUpScreens();
  _ui->widget_income->hide();
  for (QCheckBox* box : {_ui->_incomeSyncPlaybackCheckBox, _ui->_incomeRealtimePlaybackCheckBox,
                         _ui->_krmpSyncPlaybackCheckBox, _ui->_krmpRealtimePlaybackCheckBox})
    box->hide();
  onTextChanged_incomePathLineEdit(QString());
  setUpDropping();
  connectControls();
  connectTextControls();
  updateSize();
}

GDialogMediaSource::~GDialogMediaSource() = default;

void GDialogMediaSource::setUpKinds() {
  _kinds->setExclusive(true);
  for (const KindEntry& entry : kKindTable) {
    QPushButton* button = (*_ui).*entry.button;
    _kinds->addButton(button, entry.kind);
    button->setStyleSheet(kCheckedStyle);
    if (entry.icon)
      button->setIcon(
          QIcon(QStringLiteral(":/KorviaSarnhawk/Resources/images/") + QLatin1String(entry.icon)));
    button->setVisible(entry.isVisible);
    connect(button, &QPushButton::clicked, this, &GDialogMediaSource::onClicked_selectType);
  }
}

void GDialogMediaSource::setKind(qint32 kind) {
  const KindEntry* entry = entryOf(kind);
  if (!entry)
    return;
  _slot.source.kind = kind;
  ((*_ui).*entry->button)->setChecked(true);
  _ui->stackedWidget->setCurrentWidget((*_ui).*entry->page);
}

void GDialogMediaSource::onClicked_selectType() {
  setKind(_kinds->checkedId());
}

void GDialogMediaSource::setUpHistories() {
  const auto add = [this](const char* key, QListWidget* widget, HistoryList::Entries entries,
                          void (GDialogMediaSource::*onPressed)(QListWidgetItem*),
                          QString tagKorviaShowSourceInfo::*field, qint32 kind) {
    _histories.push_back({HistoryList(widget, QLatin1String(key), entries), widget, onPressed, field, kind});
  };
  using Info = tagKorviaShowSourceInfo;
  constexpr auto files = HistoryList::Entries::Files;
  constexpr auto addresses = HistoryList::Entries::Addresses;
  add("Kvmix_movieHistory", _ui->_movieHistoryListWidget, files,
      &GDialogMediaSource::onItemPressed_movieHistoryListWidget, &Info::moviePath, SourceKindMovie);
  add("Kvmix_urlHistory", _ui->_urlHistoryListWidget, addresses,
      &GDialogMediaSource::onItemPressed_urlHistoryListWidget, &Info::url, SourceKindUrl);
  add("Kvmix_imageHistory", _ui->_imageHistoryListWidget, files,
      &GDialogMediaSource::onItemPressed_imageHistoryListWidget, &Info::imagePath, SourceKindImage);
  add("Kvmix_pdfHistory", _ui->_pdfHistoryListWidget, files,
      &GDialogMediaSource::onItemPressed_pdfHistoryListWidget, &Info::pdfPath, SourceKindPdf);
  add("Kvmix_webHistory", _ui->_webHistoryListWidget, addresses,
      &GDialogMediaSource::onItemPressed_webHistoryListWidget, &Info::webUrl, SourceKindWeb);
  add("Kvmix_krmpHistory", _ui->_krmpHistoryListWidget, addresses,
      &GDialogMediaSource::onItemPressed_krmpHistoryListWidget, &Info::krmpUrl, SourceKindKrmp);
  add("Kvmix_flashHistory", _ui->_flashHistoryListWidget, files,
      &GDialogMediaSource::onItemPressed_flashHistoryListWidget, &Info::flashPath, SourceKindFlash);
  for (History& history : _histories) {
    history.list.load();
    connect(history.widget, &QListWidget::itemPressed, this, history.onPressed);
    connect(history.widget, &QListWidget::itemDoubleClicked, this,
            &GDialogMediaSource::onClicked_okPushButton);
  }
}

void GDialogMediaSource::remember() {
  for (History& history : _histories) {
    if (history.kind == _slot.source.kind)
      history.list.add(_slot.source.*history.field);
  }
}

void GDialogMediaSource::onClicked_clearHistoryPushButton() {
  for (History& history : _histories) {
    history.list.clear();
    history.list.add(_slot.source.*history.field);
  }
}

void GDialogMediaSource::setUpScreens() {
  for (int index = 0; index < QGuiApplication::screens().size(); ++index)
    _indicators.append(new GDialogScreenIndicator(index, this));
}

void GDialogMediaSource::setUpDropping() {
  setAcceptDrops(true);
  // Fields would take a file as text.
  const auto fields = findChildren<QLineEdit*>();
  for (QLineEdit* field : fields)
    field->setAcceptDrops(false);
  _ui->_textContentPlainTextEdit->setAcceptDrops(false);
}

void GDialogMediaSource::dragEnterEvent(QDragEnterEvent* event) {
  if (!MediaFiles::filesOf(event->mimeData()).isEmpty())
    event->acceptProposedAction();
}

void GDialogMediaSource::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  openFiles(MediaFiles::filesOf(event->mimeData()));
}

void GDialogMediaSource::openFiles(const QStringList& paths) {
  const auto isOneOf = [&paths](bool (*test)(const QString&)) {
    return std::all_of(paths.begin(), paths.end(), test);
  };
  if (paths.isEmpty())
    return;
  if (_slot.source.kind == SourceKindMovieList && isOneOf(&MediaFiles::isFilm))
    return appendFiles(_ui->_movieListListWidget, paths);
  if (_slot.source.kind == SourceKindImageList && isOneOf(&MediaFiles::isPicture))
    return appendFiles(_ui->_imageListListWidget, paths);
  tagKorviaShowChannelSlot dropped;
  MediaFiles::fillSlot(paths, dropped);
  setKind(dropped.source.kind);
  switch (dropped.source.kind) {
    case SourceKindMovieList:
      _ui->_movieListListWidget->clear();
      return appendFiles(_ui->_movieListListWidget, dropped.source.movieList);
    case SourceKindImageList:
      _ui->_imageListListWidget->clear();
      return appendFiles(_ui->_imageListListWidget, dropped.source.imageList);
    case SourceKindPdf:
      return _ui->_pdfPathLineEdit->setText(dropped.source.pdfPath);
    case SourceKindText:
      return readTextFile(dropped.source.textPath);
    case SourceKindImage:
      _ui->_imagePathLineEdit->setText(dropped.source.imagePath);
      return probeSize(dropped.source.imagePath);
    default:
      _ui->_moviePathLineEdit->setText(dropped.source.moviePath);
      return probeSize(dropped.source.moviePath);
  }
}

QSize GDialogMediaSource::typedSize() const {
  return KorviaCommonUtil::splitePairValue(_ui->_videoSizeComboBox->currentText(), QStringLiteral("X"))
      .toSize()
      .boundedTo(QSize(kMaxSide, kMaxSide));
}

QSize GDialogMediaSource::outputSize() const {
  // The record is packed, so its fields are read by value.
  const qint32 width = _slot.format.video.secondWidth;
  const qint32 height = _slot.format.video.secondHeight;
  return {width, height};
}

void GDialogMediaSource::setOutputSize(const QSize& size) {
  _slot.format.video.secondWidth = size.width();
  _slot.format.video.secondHeight = size.height();
}

void GDialogMediaSource::showSize(const QSize& size) {
  _ui->_videoSizeComboBox->setEditText(QStringLiteral("%1 X %2").arg(size.width()).arg(size.height()));
}

void GDialogMediaSource::onEditTextChanged_videoSizeComboBox(const QString&) {
  updateSize();
}

void GDialogMediaSource::onCurrentChanged_stackedWidget(int) {
  updateSize();
}

void GDialogMediaSource::updateSize() {
  setOutputSize(typedSize());
  const QWidget* page = _ui->stackedWidget->currentWidget();
  if (page == _ui->_textPage) {
    _ui->_textPreviewScrollAreaWidgetContents->setFixedSize(outputSize());
    updateTextPreview();
  } else if (page == _ui->_pdfPage) {
    _pdf->forget();
    _pdf->load(_ui->_pdfPathLineEdit->text(), PdfPreview::PageSize::Keep, outputSize());
  } else if (page == _ui->_webPage) {
    _ui->_webPreviewScrollAreaWidgetContents->setFixedSize(outputSize());
  }
}

void GDialogMediaSource::updateTextPreview() {
  _textPage.store(_slot.source);
  setOutputSize(typedSize());
  const QSize size = outputSize();
  _textPaint->setImage(KorviaShowUtil::toImage(size.width(), size.height(), _slot.source.textParam));
}

void GDialogMediaSource::onClicked_optionsPushButton() {
  auto* options = new GDialogMediaSourceOption(_engineInfo, &_slot.source, this, this);
  options->setAttribute(Qt::WA_DeleteOnClose);
  options->open();
}

void GDialogMediaSource::onClicked_okPushButton() {
  if (!collect())
    return;
  remember();
  setOutputSize(typedSize());
  // What the operator did on the page, a log-in for example, goes on air with it.
  if (_slot.source.kind == SourceKindWeb)
    _ui->_webView->handOver();
  accept();
}

void GDialogMediaSource::onClicked_cancelPushButton() {
  reject();
}

void GDialogMediaSource::connectControls() {
  const auto onClick = [this](QPushButton* button, void (GDialogMediaSource::*reaction)()) {
    connect(button, &QPushButton::clicked, this, reaction);
  };
  using Picker = GDialogMediaSource;
  onClick(_ui->_okPushButton, &Picker::onClicked_okPushButton);
  onClick(_ui->_cancelPushButton, &Picker::onClicked_cancelPushButton);
  onClick(_ui->_optionsPushButton, &Picker::onClicked_optionsPushButton);
  onClick(_ui->_openMoviePushButton, &Picker::onClicked_openMoviePushButton);
  onClick(_ui->_addMovieListItemPushButton, &Picker::onClicked_addMovieListItemPushButton);
  onClick(_ui->_delMovieListItemPushButton, &Picker::onClicked_delMovieListItemPushButton);
  onClick(_ui->_clearMovieListItemPushButton, &Picker::onClicked_clearMovieListItemPushButton);
  onClick(_ui->_openImagePushButton, &Picker::onClicked_openImagePushButton);
  onClick(_ui->_addImageListItemPushButton, &Picker::onClicked_addImageListItemPushButton);
  onClick(_ui->_delImageListItemPushButton, &Picker::onClicked_delImageListItemPushButton);
  onClick(_ui->_clearImageListItemPushButton, &Picker::onClicked_clearImageListItemPushButton);
  onClick(_ui->_videoDevPropertiesPushButton, &Picker::onClicked_videoDevPropertiesPushButton);
  onClick(_ui->_audioDevPropertiesPushButton, &Picker::onClicked_audioDevPropertiesPushButton);
  onClick(_ui->_selectColorPushButton, &Picker::onClicked_selectColorPushButton);
  onClick(_ui->_selectDelayCachePathPushButton, &Picker::onClicked_selectDelayCachePathPushButton);
  onClick(_ui->_openFlashPushButton, &Picker::onClicked_openFlashPushButton);
  onClick(_ui->_openWebPushButton, &Picker::onClicked_openWebPushButton);
  onClick(_ui->_openPDFPushButton, &Picker::onClicked_openPDFPushButton);
  onClick(_ui->_prevPDFPagePushButton, &Picker::onClicked_prevPDFPagePushButton);
  onClick(_ui->_nextPDFPagePushButton, &Picker::onClicked_nextPDFPagePushButton);
  onClick(_ui->_refreshHwndPushButton, &Picker::onClicked_refreshHwndPushButton);
  onClick(_ui->_screenIndicatorPushButton, &Picker::onClicked_screenIndicatorPushButton);
  connect(_ui->_videoSizeComboBox, &QComboBox::editTextChanged, this,
          &Picker::onEditTextChanged_videoSizeComboBox);
  connect(_ui->stackedWidget, &QStackedWidget::currentChanged, this, &Picker::onCurrentChanged_stackedWidget);
  connect(_ui->_incomePathLineEdit, &QLineEdit::textChanged, this, &Picker::onTextChanged_incomePathLineEdit);
  connect(_ui->_pdfPathLineEdit, &QLineEdit::textChanged, this, &Picker::onTextChanged_pdfPathLineEdit);
  connect(_ui->_sdiInputDevListComboBox, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
          &Picker::onCurrentIndexChanged_sdiInputDevListComboBox);
  connect(_ui->_screenIndicatorComboBox, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
          &Picker::onCurrentIndexChanged_screenIndicatorComboBox);
  connect(_ui->_hwndListWidget, &QListWidget::itemDoubleClicked, this, &Picker::onClicked_okPushButton);
}

void GDialogMediaSource::connectTextControls() {
  using Picker = GDialogMediaSource;
  connect(_ui->_textContentPlainTextEdit, &QPlainTextEdit::textChanged, this, &Picker::onTextChanged_textUI);
  for (QComboBox* combo : {static_cast<QComboBox*>(_ui->_textFontComboBox), _ui->_textFontSizeComboBox,
                           _ui->_textGradientDirComboBox, _ui->_textOutlineSizeComboBox})
    connect(combo, &QComboBox::editTextChanged, this, &Picker::onEditTextChanged_textUI);
  for (QCheckBox* box : {_ui->_textBoldCheckBox, _ui->_textItalicCheckBox, _ui->_textUnderlineCheckBox,
                         _ui->_textVerticalCheckBox, _ui->_textWrapCheckBox, _ui->_textOutlineCheckBox})
    connect(box, &QCheckBox::clicked, this, &Picker::onClicked_textUI);
  for (QComboBox* combo : {_ui->_textHorizontalAlignComboBox, _ui->_textVerticalAlignComboBox})
    connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &Picker::onCurrentIndexChanged_textUI);
  connect(_ui->_browsTextFilePushButton, &QPushButton::clicked, this,
          &Picker::onClicked_browsTextFilePushButton);
  connect(_ui->_textBeginColorPushButton, &QPushButton::clicked, this,
          &Picker::onClicked_textBeginColorPushButton);
  connect(_ui->_textEndColorPushButton, &QPushButton::clicked, this,
          &Picker::onClicked_textEndColorPushButton);
  connect(_ui->_textOutlineColorPushButton, &QPushButton::clicked, this,
          &Picker::onClicked_textOutlineColorPushButton);
}
