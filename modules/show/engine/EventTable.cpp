#include "EventTable.h"

#include "engine/EngineLog.h"

namespace korvia {

void EventTable::dispatch(const ShowEvent& event) {
  const auto found = handlers_.find(event.id);
  if (found != handlers_.end())
    found->second(event);
  else if (logged_.insert(event.id).second)
    qCInfo(logEngine, "no part of the engine takes event %llu %s", static_cast<unsigned long long>(event.id),
           korviaShowEventName(event.id));
}

}  // namespace korvia
