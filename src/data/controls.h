#pragma once
// The state of the forms' controls as plain data. Captions, list indexes and check values
// are the program's data, as the forms hold them; the Qt layer only renders them. Setting a
// list's index from code runs its click handler, as a user's click would.

#include <functional>
#include <string>
#include <vector>

#include "link/numtext.h"

namespace tessivo {

struct ButtonCtl {
  std::string caption;
  bool enabled = true;
  bool visible = true;
};

struct TextCtl {
  std::string text;
  bool enabled = true;
  bool visible = true;
};

// A slider: setting its value from code raises nothing.
struct SliderCtl {
  int value = 0;
  int min = 0;
  int max = 0;
  bool enabled = true;
};

struct CheckCtl {
  std::string caption;
  int value = 0;  // 0 unchecked, 1 checked
};

class ListCtl {
 public:
  std::vector<std::string> items;
  bool enabled = true;
  bool visible = true;
  std::function<void()> click;  // runs when the index changes, from code or from the user

  int index() const { return index_; }
  // An index outside the list is refused and changes nothing.
  void setIndex(int index) {
    if (index < -1 || index >= static_cast<int>(items.size()) || index == index_) return;
    index_ = index;
    if (click) click();
  }
  // A user's pick: runs the click even when the entry was already selected.
  void pick(int index) {
    if (index < -1 || index >= static_cast<int>(items.size())) return;
    index_ = index;
    if (click) click();
  }
  void addItem(std::string text) { items.push_back(std::move(text)); }
  void clear() {
    items.clear();
    index_ = -1;
  }
  std::string text() const { return index_ >= 0 ? items[static_cast<std::size_t>(index_)] : std::string(); }

 private:
  int index_ = -1;
};

// A check box whose click also runs when code changes its value, as an option group's does.
class ClickCheckCtl {
 public:
  std::string caption;
  bool enabled = true;
  std::function<void()> click;

  int value() const { return value_; }
  // From code: the click runs only when the value changes.
  void setValue(int value) {
    if (value == value_) return;
    value_ = value;
    if (click) click();
  }
  // The user's click toggles, and so always runs the click.
  void toggle() {
    value_ = value_ ? 0 : 1;
    if (click) click();
  }

 private:
  int value_ = 0;
};

// A group of option buttons: which one is selected, -1 for none.
class OptionGroupCtl {
 public:
  std::string frame;                  // the frame's caption
  std::vector<std::string> captions;  // the buttons', in index order
  std::function<void()> click;

  int index() const { return index_; }
  // From code: a member that does not exist selects none and runs nothing; the click runs only
  // when the selection changes.
  void setIndex(int index) {
    if (index < 0 || index >= static_cast<int>(captions.size())) {
      index_ = -1;
      return;
    }
    if (index == index_) return;
    index_ = index;
    if (click) click();
  }
  // The user's click on member `index`, selected before or not.
  void pick(int index) {
    if (index < 0 || index >= static_cast<int>(captions.size())) return;
    index_ = index;
    if (click) click();
  }

 private:
  int index_ = -1;
};

// A list box whose items each carry a number of their own (item data).
struct ListBoxCtl {
  std::vector<std::string> items;
  std::vector<int> itemData;
  int index = -1;

  void addItem(std::string text, int data) {
    items.push_back(std::move(text));
    itemData.push_back(data);
  }
  void removeItem(int i) {
    items.erase(items.begin() + i);
    itemData.erase(itemData.begin() + i);
    if (index >= static_cast<int>(items.size())) index = static_cast<int>(items.size()) - 1;
  }
  void clear() {
    items.clear();
    itemData.clear();
    index = -1;
  }
};

}  // namespace tessivo
