// The pages of a PDF document, on black. Pages change by prev() and next() only. Console thread, except
// pullFrame: engine thread.
#pragma once
#include "PagedSource.h"
#include "PdfRenderer.h"

namespace korvia {

class PdfSource final : public PagedSource {
 public:
  /// Opens `info.pdfPath`. The state goes from Opening to Playing, or to Error with a line in the log. A page
  /// that cannot be drawn, or not in time, leaves the page before it on show.
  static std::shared_ptr<PdfSource> open(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                         const tagKorviaFormatInfo& format);

  void close() override;

 protected:
  QString description() const override;
  int openItems(QString& reason) override;
  FrameRef loadItem(int index, QString& reason) override;

 private:
  PdfSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
            const tagKorviaFormatInfo& format);

  PdfRenderer renderer_;
};

}  // namespace korvia
