// The console as the host sees it. Console thread of the host.
#pragma once
#include <QString>

#include "IProgressSink.h"
#include "IUnknownEx.h"

struct tagKorviaProductInfo;

class IKorviaSarnhawk : public IUnknownEx {
 public:
  /// Builds the console. `product` is copied; `rootPath` ends in a separator; `progress` may be null.
  virtual bool create(void* reserved1, IProgressSink* progress, void* reserved2,
                      const tagKorviaProductInfo* product, const QString& rootPath) = 0;
  /// Must come before release().
  virtual void close() = 0;

 protected:
  ~IKorviaSarnhawk() = default;
};

/// Signature of the export "CreateKorviaSarnhawk". Throws a wide string on failure.
using CreateKorviaSarnhawkFunction = void* (*)(const Identifier*, unsigned);
