// Which part of the engine takes which event. Handlers are member functions with typed arguments: the event's
// variants are turned into these types here and nowhere else. Filled when the engine is made; engine thread.
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
  /// Events of this number call `handle` on `part`, which must outlive the table. The handler takes up to
  /// four arguments: int, float, double, QString, or a record that travels in a variant. An argument that
  /// holds something else is 0, empty, or a default record.
  template <typename Part, typename... Arguments>
  void on(KorviaShowEvent id, Part& part, void (Part::*handle)(Arguments...)) {
    static_assert(sizeof...(Arguments) <= std::extent_v<decltype(ShowEvent::args)>);
    handlers_[id] = [&part, handle](const ShowEvent& event) {
      call(part, handle, event, std::index_sequence_for<Arguments...>());
    };
  }

  /// Calls the handler of the event. An event that no part takes is logged at its first coming.
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
