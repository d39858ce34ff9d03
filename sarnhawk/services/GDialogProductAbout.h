// Shows who and what the product is, and its version. GUI thread only.
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

  /// Text of "/ver.txt" in `folder` without its last character, meant to be the line end. Empty when there
  /// is no such file.
  static QString versionText(const QString& folder);

 public slots:
  void onClicked_okPushButton();
  void onClicked_checkUpdatesPushButton();

 private:
  std::unique_ptr<Ui::GDialogProductAbout> _ui;
  const tagKorviaProductInfo* _product;
};
