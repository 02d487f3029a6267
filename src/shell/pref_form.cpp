#include "shell/pref_form.h"

namespace tessivo {

void PrefForm::Form_Load() {
  link_.ListInDevs([this](const std::string& name) { Combo1.addItem(name); });
  link_.ListOutDevs([this](const std::string& name) { Combo2.addItem(name); });
  Combo2.setIndex(0);
  Combo1.setIndex(0);
}

}  // namespace tessivo
