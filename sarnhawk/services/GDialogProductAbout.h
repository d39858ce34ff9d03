// Shows name, description, authors and version of the product, and the address of the operator's page with a
// QR code when other machines reach it. Console thread only.
#pragma once
#include <QDialog>
#include <memory>

struct tagKorviaProductInfo;

namespace Ui {
class GDialogProductAbout;
}

class GDialogProductAbout : public QDialog {
  Q_OBJECT

 public:
  /// `product` is not owned and must outlive the dialog. `rootPath` is the data folder, shown as a tool tip.
  GDialogProductAbout(const QString& rootPath, const tagKorviaProductInfo* product,
                      QWidget* parent = nullptr);
  ~GDialogProductAbout() override;

  /// Text of "/ver.txt" in `folder` without its last character, which is the line end. Empty without the
  /// file.
  static QString versionText(const QString& folder);

 public slots:
  void onClicked_okPushButton();
  void onClicked_checkUpdatesPushButton();

 private:
  /// The operator's page for phones, when other machines reach it.
  void showPage();

  std::unique_ptr<Ui::GDialogProductAbout> _ui;
  const tagKorviaProductInfo* _product;
};
