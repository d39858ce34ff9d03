// Dispatches events to the parts of the engine. Handlers are member functions with typed arguments; only
// this class converts the variants of an event into these types. Filled when the engine is made; engine
// thread.
#pragma once
#include <QString>
#include <QVariant>
#include <functional>
#include <map>
#include <set>
#include <type_traits>
#include <utility>

#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "KorviaShowThread.h"

namespace korvia {

class EventTable {
 public:
  /// Calls `handle` on `part`, which must outlive the table, for each event with this id. The handler takes
  /// up to four arguments: int, float, double, QString, or a record. Numbers and texts are converted where
  /// the variant can be; what cannot be becomes 0 or empty. A record of another type becomes a default
  /// record.
  template <typename Part, typename... Arguments>
  void on(KorviaShowEvent id, Part& part, void (Part::*handle)(Arguments...)) {
    static_assert(sizeof...(Arguments) <= std::extent_v<decltype(ShowEvent::args)>);
    handlers_[id] = [&part, handle](const ShowEvent& event) {
      call(part, handle, event, std::index_sequence_for<Arguments...>());
    };
  }

  /// Calls the handler of the event. The first event of an id without a handler is logged.
  void dispatch(const ShowEvent& event);

 private:
  template <typename Part, typename... Arguments, std::size_t... Places>
  static void call(Part& part, void (Part::*handle)(Arguments...), [[maybe_unused]] const ShowEvent& event,
                   std::index_sequence<Places...>) {
    (part.*handle)(argument<std::decay_t<Arguments>>(event.args[Places])...);
  }

  template <typename Type>
  static Type argument(const QVariant& value) {
    if constexpr (std::is_arithmetic_v<Type> || std::is_same_v<Type, QString>)
      return value.value<Type>();
    else
      return fromVariant<Type>(value);
  }

  std::map<quint64, std::function<void(const ShowEvent&)>> handlers_;
  std::set<quint64> logged_;
};

}  // namespace korvia
