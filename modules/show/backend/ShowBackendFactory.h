// Selects the engine behind the facade. Console thread.
#pragma once
#include <functional>
#include <memory>

#include "IShowBackend.h"

namespace korvia {

using ShowBackendFactory = std::function<std::unique_ptr<IShowBackend>()>;

/// The backend named by KORVIA_ENGINE: "software" (also when unset) or "silent". An unknown name is logged
/// and gives the software engine.
std::unique_ptr<IShowBackend> createShowBackend();

/// Replaces the selection for all facades made later; an empty factory restores it. For tests.
void setShowBackendFactory(ShowBackendFactory factory);

}  // namespace korvia
