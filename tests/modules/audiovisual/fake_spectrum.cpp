// Stands in for the module of the spectrum: remembers nothing, answers to its identifier.
#include <QtGlobal>

#include "IGWidgetAudioSpectrum.h"

namespace {

class FakeSpectrum : public IGWidgetAudioSpectrum {
 public:
  virtual ~FakeSpectrum() = default;

  bool isValid() override { return true; }
  bool release() override {
    delete this;
    return true;
  }
  void* queryInterface(const Identifier* id, unsigned version) override {
    return isRequestFor(kIGWidgetAudioSpectrumId, id, version) ? static_cast<IGWidgetAudioSpectrum*>(this)
                                                               : nullptr;
  }
  void attach(QWidget*, int) override {}
  void feed(KorviaShowObjectID, const void*, unsigned, unsigned, int, const void*, int) override {}
  void detach() override {}
};

}  // namespace

extern "C" Q_DECL_EXPORT void* CreateGWidgetAudioSpectrum(const Identifier* id, unsigned version) {
  auto* spectrum = new FakeSpectrum;
  void* interface = spectrum->queryInterface(id, version);
  if (!interface)
    delete spectrum;
  return interface;
}
