#include "GDialogProductAbout.h"

#include <QCoreApplication>

#include "KorviaCommonUtil.h"
#include "shell/tagKorviaProductInfo.h"
#include "ui_GDialogProductAbout.h"

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
  connect(_ui->_okPushButton, &QPushButton::clicked, this, &GDialogProductAbout::onClicked_okPushButton);
  connect(_ui->_checkUpdatesPushButton, &QPushButton::clicked, this,
          &GDialogProductAbout::onClicked_checkUpdatesPushButton);
}

GDialogProductAbout::~GDialogProductAbout() = default;

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
