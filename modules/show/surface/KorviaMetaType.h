// Stores records in variants. Any thread; the type ids are set once, on first use.
#pragma once
#include <QMetaType>
#include <QVariant>

/// The meta-type id of a record that was declared with Q_DECLARE_METATYPE; registered under the record's own
/// name at the first call.
template <class T>
int korviaMetaTypeId() {
  static const int id = qRegisterMetaType<T>();
  return id;
}

/// A variant that holds a copy of the record.
template <class T>
QVariant toVariant(const T& record) {
  return QVariant(korviaMetaTypeId<T>(), &record);
}

/// A copy of the record in the variant, or a default record when the variant holds something else.
template <class T>
T fromVariant(const QVariant& variant) {
  if (variant.userType() != korviaMetaTypeId<T>())
    return T{};
  return *static_cast<const T*>(variant.constData());
}
