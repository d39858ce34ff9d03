#include "GDialogProductAbout.h"

#include <QCoreApplication>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

#include "KorviaCommonUtil.h"
#include "ListenPlace.h"
#include "WebDesk.h"
#include "services/qrCode.h"
#include "shell/tagKorviaProductInfo.h"
#include "ui_GDialogProductAbout.h"

namespace {
// A phone reads it from the other side of the desk.
constexpr int kCodeModulePixels = 5;
}  // namespace

GDialogProductAbout::GDialogProductAbout(const QString& rootPath, const tagKorviaProductInfo* product,
                                         QWidget* parent)
    : QDialog(parent), _ui(std::make_unique<Ui::GDialogProductAbout>()), _product(product) {
  _ui->setupUi(this);
  setWindowFlags(windowFlags() | Qt::WindowStaysOnTopHint);
  setToolTip(rootPath);
  _ui->_productNameLabel->setText(productText(_product->title));
  _ui->_productDescLabel->setText(productText(_product->description));
  _ui->_productCopyrightLabel->setText(
      QStringLiteral("<a href=\"%1\">%2</a>")
          .arg(productText(_product->linkTarget), productText(_product->linkText)));
  _ui->_productVersionLabel->setText(productText(_product->versionPrefix) + QStringLiteral("  ") +
                                     versionText(QCoreApplication::applicationDirPath()));
  showPage();
  connect(_ui->_okPushButton, &QPushButton::clicked, this, &GDialogProductAbout::onClicked_okPushButton);
  connect(_ui->_checkUpdatesPushButton, &QPushButton::clicked, this,
          &GDialogProductAbout::onClicked_checkUpdatesPushButton);
}

GDialogProductAbout::~GDialogProductAbout() = default;

void GDialogProductAbout::showPage() {
  const QString address = korvia::WebDesk::instance().pageAddress(KorviaCommonUtil::getIp());
  if (!korvia::listensToOthers() || address.isEmpty())
    return;
  auto* group = new QGroupBox(tr("Operator's Page"));
  group->setObjectName(QStringLiteral("_pageGroupBox"));
  auto* code = new QLabel;
  code->setObjectName(QStringLiteral("_pageCodeLabel"));
  code->setPixmap(QPixmap::fromImage(qrCode(address, kCodeModulePixels)));
  auto* text = new QLabel(address);
  text->setObjectName(QStringLiteral("_pageAddressLabel"));
  text->setTextFormat(Qt::PlainText);
  text->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* layout = new QVBoxLayout(group);
  layout->addWidget(code, 0, Qt::AlignCenter);
  layout->addWidget(text, 0, Qt::AlignCenter);
  _ui->_mainLayout->insertWidget(1, group);
}

QString GDialogProductAbout::versionText(const QString& folder) {
  QByteArray content;
  KorviaCommonUtil::readFileContent(folder + QStringLiteral("/ver.txt"), content);
  QString text = QString::fromUtf8(content);
  text.chop(1);
  return text;
}

void GDialogProductAbout::onClicked_okPushButton() {
  accept();
}

void GDialogProductAbout::onClicked_checkUpdatesPushButton() {
  // There is no update service yet.
}
