// The controls of a form, found by their names. `Form` has the form in its member `widget`. Console thread.
#pragma once
#include <QComboBox>
#include <QLabel>
#include <QSlider>
#include <QString>

template <class Form>
class Controls {
 public:
  template <class T>
  T* child(const char* name) const {
    return static_cast<const Form*>(this)->widget.template findChild<T*>(QLatin1String(name));
  }
  QComboBox* combo(const char* name) const { return child<QComboBox>(name); }
  QSlider* slider(const char* name) const { return child<QSlider>(name); }
  QString label(const char* name) const { return child<QLabel>(name)->text(); }
};
