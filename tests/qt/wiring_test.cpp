// How the forms' widgets are wired to the logic, one table a form: a row for every control and
// menu entry, with the gesture a user makes and everything that must follow, on the wire and
// on the screen. The values differ from row to row (each Multi on a channel of its own, the
// devices In B and Out A), so a handler wired to a neighbour, a list that sets the next value
// or a menu entry doing another's work fails its row. A control without a row fails the check
// of completeness.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDialog>
#include <QDrag>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QRadioButton>
#include <QSlider>
#include <QTabBar>
#include <QTabWidget>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "data/multi_template.h"
#include "data/tables.h"
#include "edit/edit_panel.h"
#include "edit/effects_panel.h"
#include "edit/slider_map.h"
#include "qt/qt_program.h"

namespace tessivo::qt {
namespace {

using State = std::map<QString, QString>;
using Wire = std::vector<std::string>;

// The values that differ from `before` in `after`.
State changes(const State& before, const State& after) {
  State changed;
  for (const auto& [name, value] : after)
    if (!before.contains(name) || before.at(name) != value) changed[name] = value;
  return changed;
}

struct Row {
  QString control;  // the control or menu entry, by name
  std::function<void()> gesture;
  Wire wire;      // the messages sent, in order
  State changed;  // what the screen shows differently afterwards; everything else stays
};

QString onOff(bool on) { return on ? "on" : "off"; }
QString name(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

std::string hexOf(std::initializer_list<int> bytes) {
  std::string s;
  for (int b : bytes) s += (s.empty() ? "" : " ") + QString::asprintf("%02X", b).toStdString();
  return s;
}
std::string perfChannel(int c) { return hexOf({0xF0, 0x43, 0x10, 0x63, 0x50, 0x00, 0x00, c, 0xF7}); }
const Wire kPerfRequests = {"F0 43 20 63 60 00 00 F7", "F0 43 20 63 60 00 40 F7", "F0 43 20 63 60 00 60 F7",
                            "F0 43 20 63 60 01 00 F7", "F0 43 20 63 60 02 00 F7", "F0 43 20 63 60 03 00 F7",
                            "F0 43 20 63 60 04 00 F7", "F0 43 20 63 50 00 00 F7"};
// The five section requests of Multi m, whose part index is m - 1.
Wire multiRequests(int m) {
  Wire wire;
  for (auto [high, low] : {std::pair{0x08, 0x00}, {0x08, 0x30}, {0x08, 0x70}, {0x08, 0x74}, {0x0A, 0x20}})
    wire.push_back(hexOf({0xF0, 0x43, 0x20, 0x4C, high, m - 1, low, 0xF7}));
  return wire;
}
// What every drop sends: All Notes Off on the sixteen channels, then the test note's Note Off
// on all of them and once more on channels 5 to 16.
Wire notesOff(int note, int velocity) {
  std::string all, off;
  for (int c = 0; c < 16; ++c) all += (all.empty() ? "" : " ") + hexOf({0xB0 + c, 0x7B, 0x00});
  for (int c = 0; c < 16; ++c) off += (off.empty() ? "" : " ") + hexOf({0x80 + c, note, velocity});
  for (int c = 4; c < 16; ++c) off += " " + hexOf({0x80 + c, note, velocity});
  return {all, off};
}
// A Layer held: the other three switched off (press) or back on (release) and the note, as one message.
std::string layerHeld(int layer, bool down, int channel, int note, int velocity) {
  std::string s;
  for (int other = 1; other <= 4; ++other)
    if (other != layer) s += hexOf({0xF0, 0x43, 0x10, 0x63, 0x60, other, 0x16, down ? 0 : 1, 0xF7}) + " ";
  return s + hexOf({(down ? 0x90 : 0x80) + channel, note, velocity});
}

// The data that a drag of `source` carries, as the drag itself made it.
std::unique_ptr<QMimeData> dragged(QWidget* source) {
  startDrag(source);
  auto* drag = source->findChild<QDrag*>();
  if (drag == nullptr) throw std::runtime_error("no drag from " + source->objectName().toStdString());
  auto* copy = new QMimeData;
  for (const QString& format : drag->mimeData()->formats()) copy->setData(format, drag->mimeData()->data(format));
  delete drag;
  return std::unique_ptr<QMimeData>(copy);
}

// Every control and menu entry that a row must cover: the widgets that stand on the form or in
// one of its frames, but for labels, frames and the menu bar, which take no gesture of their
// own; and the menu entries that are no sub-menus.
std::set<QString> controlsOf(QWidget* form) {
  auto holdsControls = [form](const QWidget* w) {
    return w == form || w->objectName() == "CS2xClient" || qobject_cast<const QGroupBox*>(w) != nullptr ||
           w->objectName().startsWith("Page");  // the edit panel's pages
  };
  std::set<QString> names;
  for (QWidget* w : form->findChildren<QWidget*>()) {
    if (w->window() != form || !holdsControls(w->parentWidget()) || holdsControls(w)) continue;
    if (qobject_cast<QLabel*>(w) || qobject_cast<QMenuBar*>(w)) continue;
    names.insert(w->objectName());
  }
  for (QAction* a : form->findChildren<QAction*>())
    if (a->menu() == nullptr && !a->objectName().startsWith("qt_")) names.insert(a->objectName());
  return names;
}

// The bytes of the messages in order: the instrument takes a long message apart into the
// messages it holds, so the wire is compared byte for byte.
std::string bytesOf(const Wire& wire) {
  std::string all;
  for (const std::string& message : wire) all += (all.empty() ? "" : " ") + message;
  return all;
}

void runTable(const std::vector<Row>& rows, const std::function<State()>& state, const std::function<void()>& clearWire,
              const std::function<Wire()>& wire) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.control.toStdString());
    const State before = state();
    clearWire();
    row.gesture();
    const std::string expected = bytesOf(row.wire), sent = bytesOf(wire());
    if (expected.find('*') == std::string::npos) {
      EXPECT_EQ(sent, expected);
    } else {
      // "*" stands for the data of a bulk dump, which the logic's own tests pin byte for byte.
      std::string pattern;
      for (char c : expected) pattern += c == '*' ? std::string("[0-9A-F ]*?") : std::string(1, c);
      EXPECT_TRUE(std::regex_match(sent, std::regex(pattern))) << sent << "\n  expected " << expected;
    }
    EXPECT_EQ(changes(before, state()), row.changed);
  }
}

void expectEveryControlHasARow(QWidget* form, const std::vector<Row>& rows) {
  std::set<QString> covered;
  for (const Row& row : rows) covered.insert(row.control);
  for (const QString& control : controlsOf(form)) EXPECT_TRUE(covered.contains(control)) << control.toStdString();
}

// ---- The main form -------------------------------------------------------------------------

constexpr int kPerfChannel = 3;
constexpr std::size_t kLayerSwitchAt = 0x16;  // Layer parameter 60 0L 16: 1 is on
constexpr int kNote = 67, kVelocity = 127;    // the test note at start

// A folder of the test's own, removed at the end.
struct TempFolder {
  TempFolder() { std::filesystem::create_directories(path); }
  ~TempFolder() { std::filesystem::remove_all(path); }
  test::TempFile base;
  std::string path = base.path + ".d";
};

class MainFormWiring : public QtProgram {
 protected:
  MainWindow* main = nullptr;
  TempFolder folder;
  QListWidget* pool = nullptr;

  void SetUp() override {
    app.start();
    app.logic().pref().cmbPerfChnl.setIndex(kPerfChannel);
    main = startMainForm();
    ASSERT_NE(main, nullptr);
    pool = child<QListWidget>(main, "LbxLyrPool");
  }

  template <typename W = QWidget>
  W* at(const QString& name) const {
    return child<W>(main, name);
  }

  State state() const {
    State s;
    for (int m = 5; m <= 16; ++m) s[QString("CmbMult%1").arg(m)] = QString::number(at<QComboBox>(QString("CmbMult%1").arg(m))->currentIndex());
    for (const char* option : {"OptPreset", "OptUser", "OptBank1", "OptBank2"}) s[option] = onOff(at<QRadioButton>(option)->isChecked());
    auto* program = at<QComboBox>("CmbPrgm");
    s["CmbPrgm"] = QString("%1 of %2..%3").arg(program->currentIndex()).arg(program->itemText(0), program->itemText(127));
    s["CmdPrfm"] = at<QPushButton>("CmdPrfm")->text();
    for (int n = 1; n <= 4; ++n) {
      s[QString("CmdLyr%1").arg(n)] = onOff(at(QString("CmdLyr%1").arg(n))->isEnabled());
      s[QString("TxtLyr%1").arg(n)] = at<QLineEdit>(QString("TxtLyr%1").arg(n))->text();
    }
    for (const char* list : {"CmbMidNtNo", "CmbMidVel"}) s[list] = QString::number(at<QComboBox>(list)->currentIndex());
    for (const char* slider : {"SldNt", "SldVel"}) s[slider] = QString::number(at<QSlider>(slider)->value());
    QStringList entries;
    for (int i = 0; i < pool->count(); ++i) entries << pool->item(i)->text();
    s["LbxLyrPool"] = entries.join(" | ") + QString(" @%1").arg(pool->currentRow());
    for (const char* entry : {"LocalOff", "ArpOff", "TrnsChnlAssgn"}) s[entry] = onOff(at<QAction>(entry)->isChecked());
    s["frmPref"] = onOff(app.prefWindow()->isVisible());
    s["asked"] = answers.asked.join(" / ");
    for (int m = 5; m <= 16; ++m) s[QString("CmdMult%1").arg(m)] = at<QPushButton>(QString("CmdMult%1").arg(m))->text();
    // The edit panel.
    auto* panel = at<QTabWidget>("SSTab1");
    s["SSTab1"] = onOff(panel->isVisible()) + QString(" %1").arg(panel->currentIndex());
    for (std::size_t row = 0; row < kEditSliders; ++row) {
      auto* slider = at<QSlider>(name(kSliderMap[row].control));
      s[slider->objectName()] = QString::number(slider->value()) + (slider->isEnabled() ? "" : " off");
      s[name(kSliderMap[row].textBox)] = at<QLineEdit>(name(kSliderMap[row].textBox))->text();
    }
    s["Labelx1_15"] = onOff(at("Labelx1_15")->isEnabled());
    for (const char* box : {"TxtMsb", "TxtLsb", "TxtPrg", "TxtName1"}) s[box] = at<QLineEdit>(box)->text();
    for (const char* label : {"Label34_0", "Label34_1"}) s[label] = at<QLabel>(label)->text();
    s["ChckPort"] = onOff(at<QCheckBox>("ChckPort")->isChecked());
    // The effects panel.
    s["SSTab2"] = onOff(at("SSTab2")->isVisible());
    for (const char* list : {"CmbRvrb", "CmbChrs", "CmbVar"})
      s[list] = QString::number(at<QComboBox>(list)->currentIndex()) + (at(list)->isEnabled() ? "" : " off");
    for (std::size_t i = 0; i < 3; ++i) {
      const SliderRow& r = kSliderMap[kFirstEffectSlider + i];
      s[name(r.control)] = QString::number(at<QSlider>(name(r.control))->value());
      s[name(r.textBox)] = at<QLineEdit>(name(r.textBox))->text();
    }
    s["ChkEffByPass"] = onOff(at<QCheckBox>("ChkEffByPass")->isChecked());
    // The debug row.
    s["List1"] = onOff(at("List1")->isVisible()) + QString(" %1").arg(at<QListWidget>("List1")->count());
    for (int i = 0; i < 5; ++i) {
      auto* field = at<QLineEdit>(QString("TxtParm_%1").arg(i));
      s[field->objectName()] = field->text() + (field->isVisible() ? "" : " hidden");
    }
    s["debugButtons"] = onOff(at("CmdChngParm")->isVisible());
    // What the file menus wrote.
    QStringList written;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path))
      // A description text's length follows the paths and names in it: it shows as text.
      written << QString("%1 %2").arg(QString::fromStdString(entry.path().filename().string()),
                                      entry.path().extension() == ".txt" ? QString("text") : QString::number(entry.file_size()));
    written.sort();
    s["files"] = written.join(", ");
    for (const auto& [group, count] : {std::pair{"Option1", 3}, {"Option2", 2}, {"Option3", 4}}) {
      QString on = "-";
      for (int i = 0; i < count; ++i)
        if (at<QRadioButton>(QString("%1_%2").arg(group).arg(i))->isChecked()) on = QString::number(i);
      s[group] = on;
    }
    return s;
  }

  void run(const std::vector<Row>& rows) {
    runTable(rows, [this] { return state(); }, [this] { cs2x.clearLog(); }, [this] { return wire(); });
  }
};

// The first Preset Performance of bank 1 after the one at start with all four Layers on.
int allLayersOn() {
  for (int p = 1; p < 128; ++p) {
    const auto perf = VirtualCs2x::storedPerformance(VirtualCs2x::kPreset1, static_cast<std::uint8_t>(p));
    if (std::all_of(perf.layers.begin(), perf.layers.end(), [](const auto& layer) { return layer[kLayerSwitchAt] == 1; }))
      return p;
  }
  return -1;
}

TEST_F(MainFormWiring, EveryControlAndMenuEntryDoesItsOwnWork) {
  // Before the table: the edit panel opened on M5 and closed again (its controls hold M5's
  // values), and one entry in the Layer Pool, record 0, from Layer 1 of the start.
  main->setDeveloperEntries(true);  // the Debug menu and the Sys-Ex export, switched off for a musician
  at<QAction>("EditMult5")->trigger();
  at<QPushButton>("CmdDone1")->click();
  const QString firstEntry = at<QLineEdit>("TxtLyr1")->text();
  ASSERT_TRUE(dropOn(main, pool, *dragged(at("TxtLyr1"))));
  const auto record0 = app.logic().mainForm()->pool().Pool[0].body;

  const int program = allLayersOn();
  ASSERT_GT(program, 0);
  const QString perfName = name(PrfNames1[static_cast<std::size_t>(program)]);
  // Each Multi's list goes to a channel of its own, none the performance channel's.
  auto channelOf = [](int m) { return 20 - m; };  // Multi 5 on index 15 .. Multi 16 on index 4
  const Wire dropped = notesOff(kNote, kVelocity);
  QStringList entries{firstEntry};  // what the Layer Pool holds
  auto poolShows = [&](int selected) { return entries.join(" | ") + QString(" @%1").arg(selected); };

  std::vector<Row> rows;
  auto entryOf = [&](const QString& action) { return [this, action] { at<QAction>(action)->trigger(); }; };
  rows.push_back({"CmbPrgm", [&] { pick(at<QComboBox>("CmbPrgm"), program); },
                  // The lone data byte between the Bank Select and the Program Change is no
                  // message: the instrument passes over it.
                  Wire{perfChannel(0), hexOf({0xB0, 0x00, 0x3F, 0xB0, 0x20, 0x40, 0xC0, program}), perfChannel(0)},
                  {{"CmbPrgm", QString("%1 of %2..%3").arg(program).arg(name(PrfNames1[0]), name(PrfNames1[127]))},
                   {"CmdPrfm", perfName}, {"TxtLyr1", perfName + "A"}, {"TxtLyr2", perfName + "B"},
                   {"TxtLyr3", perfName + "C"}, {"TxtLyr4", perfName + "D"}}});
  rows.back().wire.insert(rows.back().wire.end(), kPerfRequests.begin(), kPerfRequests.end());
  rows.back().wire.push_back(perfChannel(kPerfChannel));

  for (int m = 5; m <= 16; ++m) {
    const QString list = QString("CmbMult%1").arg(m);
    rows.push_back({list, [&, list, m] { pick(at<QComboBox>(list), channelOf(m)); },
                    {hexOf({0xF0, 0x43, 0x10, 0x4C, 0x08, m - 1, 0x04, channelOf(m), 0xF7})},
                    {{list, QString::number(channelOf(m))}}});
  }
  for (int m = 5; m <= 16; ++m) {
    const QString button = QString("CmdMult%1").arg(m);
    Wire wire{hexOf({0x90 + channelOf(m), kNote, kVelocity})};
    wire.insert(wire.end(), dropped.begin(), dropped.end());
    rows.push_back({button, [&, button] { press(at(button)), release(at(button)); }, wire, {}});
  }
  rows.push_back({"CmdPrfm", [&] { press(at("CmdPrfm")); }, {hexOf({0x90 + kPerfChannel, kNote, kVelocity})}, {}});
  rows.push_back({"CmdPrfm", [&] { release(at("CmdPrfm")); }, {hexOf({0x80 + kPerfChannel, kNote, kVelocity})}, {}});
  for (int n = 1; n <= 4; ++n) {
    const QString button = QString("CmdLyr%1").arg(n);
    rows.push_back({button, [&, button] { press(at(button)); }, {layerHeld(n, true, kPerfChannel, kNote, kVelocity)}, {}});
    rows.push_back({button, [&, button] { release(at(button)); }, {layerHeld(n, false, kPerfChannel, kNote, kVelocity)}, {}});
  }
  for (int n = 1; n <= 4; ++n) {
    const QString box = QString("TxtLyr%1").arg(n);
    rows.push_back({box, [&, box] { press(at(box)), release(at(box)); }, dropped, {}});
    rows.push_back({box,
                    [&, box] { ASSERT_TRUE(dropOn(main, pool, *dragged(at(box)))); },
                    dropped,
                    {{"LbxLyrPool", (entries << perfName + QChar('A' + n - 1), poolShows(-1))}}});
  }
  Wire multiDropped{hexOf({0x90 + channelOf(9), kNote, kVelocity})};
  multiDropped.insert(multiDropped.end(), dropped.begin(), dropped.end());
  rows.push_back({"LbxLyrPool", [&] { ASSERT_TRUE(dropOn(main, pool, *dragged(at("CmdMult9")))); }, multiDropped,
                  {{"LbxLyrPool", (entries << "Multi Part", poolShows(-1))}}});
  auto entry = [&](int row) { return pool->visualItemRect(pool->item(row)).center(); };
  rows.push_back({"LbxLyrPool", [&] { press(pool->viewport(), entry(2)), release(pool->viewport(), entry(2)); }, dropped,
                  {{"LbxLyrPool", poolShows(2)}}});
  const QString deleteAsked = "Delete from Layer Pool: Do you really want to delete item from Layer Pool?";
  rows.push_back({"LbxLyrPool",
                  [&] {
                    answers.script.push_back(ModalAnswers::button(QMessageBox::Cancel));
                    doubleClick(pool->viewport(), entry(1));
                  },
                  dropped, {{"LbxLyrPool", poolShows(1)}, {"asked", deleteAsked}}});
  rows.push_back({"LbxLyrPool", [&] { doubleClick(pool->viewport(), entry(1)); }, dropped,
                  {{"LbxLyrPool", (entries.removeAt(1), poolShows(1))}, {"asked", deleteAsked + " / " + deleteAsked}}});
  // The first entry dragged onto M7: five dumps of record 0 with part 6 and M7's channel.
  Wire assigned = dropped;
  for (std::size_t s = 0, at = 0; s < 5; at += kTemplateSectionBytes[s], ++s) {
    Bytes dump(record0.begin() + static_cast<std::ptrdiff_t>(at),
               record0.begin() + static_cast<std::ptrdiff_t>(at + static_cast<std::size_t>(kMultiSections[s].length)));
    dump[7] = 6;
    if (s == 0) dump[13] = static_cast<std::uint8_t>(channelOf(7));
    assigned.push_back(test::hex(dump));
  }
  rows.push_back({"CmdMult7",
                  [&] {
                    press(pool->viewport(), entry(0));
                    moveHeld(pool->viewport(), entry(0) + QPoint(QApplication::startDragDistance() + 1, 0));
                    auto* drag = pool->findChild<QDrag*>();
                    ASSERT_NE(drag, nullptr);
                    QMimeData data;
                    for (const QString& format : drag->mimeData()->formats()) data.setData(format, drag->mimeData()->data(format));
                    delete drag;
                    ASSERT_TRUE(dropOn(main, at("CmdMult7"), data));
                  },
                  assigned,
                  {{"LbxLyrPool", poolShows(0)}, {"CmdMult7", QString::fromStdString(nameOfTen(firstEntry.toStdString())) + " M7"}}});
  // The file dialogs are Qt's own: a whole path typed into the file name box.
  auto inDialog = [&](const QString& file, const std::function<void()>& open) {
    return [&, file, open] {
      const QString path = QString::fromStdString(folder.path) + "/" + file;
      answers.script.push_back([path](QWidget* modal) {
        auto* box = child<QLineEdit>(qobject_cast<QFileDialog*>(modal), "fileNameEdit");
        // The whole path in place of the name the dialog offers (the last file chosen).
        qobject_cast<QFileDialog*>(modal)->selectFile(path);
        // Entered once this answer is over, so that a box the dialog opens gets its answer too.
        QTimer::singleShot(0, box, [box] { QTest::keyClick(box, Qt::Key_Return); });
      });
      open();
    };
  };
  QStringList written;  // what the folder holds
  auto wrote = [&](const QString& file, const QString& size) {
    written << QString("%1 %2").arg(file, size);
    written.sort();
    return written.join(", ");
  };
  QStringList poolSaved;
  for (const QString& e : entries) poolSaved << (e + "          ").left(10);
  rows.push_back({"SvLayerPool", inDialog("pool.tvp", entryOf("SvLayerPool")), {}, {{"files", wrote("pool.tvp", "24898")}}});
  rows.push_back({"CmdClrLyrPool", [&] { at<QPushButton>("CmdClrLyrPool")->click(); }, {}, {{"LbxLyrPool", " @-1"}}});

  // The options refill the program list and send nothing; Bank1 after Bank2 shows bank 1 again.
  auto programs = [](const QString& first, const QString& last) { return QString("-1 of %1..%2").arg(first, last); };
  rows.push_back({"OptUser", [&] { at<QRadioButton>("OptUser")->click(); }, {},
                  {{"OptPreset", "off"}, {"OptUser", "on"}, {"CmbPrgm", programs(" 1", " 128")}}});
  rows.push_back({"OptBank2", [&] { at<QRadioButton>("OptBank2")->click(); }, {}, {{"OptBank1", "off"}, {"OptBank2", "on"}}});
  rows.push_back({"OptPreset", [&] { at<QRadioButton>("OptPreset")->click(); }, {},
                  {{"OptPreset", "on"}, {"OptUser", "off"}, {"CmbPrgm", programs(name(PrfNames2[0]), name(PrfNames2[127]))}}});
  rows.push_back({"OptBank1", [&] { at<QRadioButton>("OptBank1")->click(); }, {},
                  {{"OptBank1", "on"}, {"OptBank2", "off"}, {"CmbPrgm", programs(name(PrfNames1[0]), name(PrfNames1[127]))}}});

  // The menus.
  Wire reread{perfChannel(0)};
  reread.insert(reread.end(), kPerfRequests.begin(), kPerfRequests.end());
  reread.push_back(perfChannel(kPerfChannel));
  rows.push_back({"RtrvPerf", entryOf("RtrvPerf"), reread, {}});
  Wire allMultis;
  for (int m = 5; m <= 16; ++m) {
    const Wire one = multiRequests(m);
    allMultis.insert(allMultis.end(), one.begin(), one.end());
    rows.push_back({QString("RtrvMulti%1").arg(m), entryOf(QString("RtrvMulti%1").arg(m)), one, {}});
  }
  rows.push_back({"RtrvAllMulti", entryOf("RtrvAllMulti"), allMultis, {}});
  rows.push_back({"AllNtsOff", entryOf("AllNtsOff"), dropped, {}});
  rows.push_back({"LocalOff", entryOf("LocalOff"), {"F0 43 10 63 50 00 0B 00 F7"}, {{"LocalOff", "on"}}});
  rows.push_back({"ArpOff", entryOf("ArpOff"), {"F0 43 10 63 60 00 33 04 F7"}, {{"ArpOff", "on"}}});
  rows.push_back({"TrnsChnlAssgn", entryOf("TrnsChnlAssgn"), {}, {{"TrnsChnlAssgn", "on"}}});
  rows.push_back({"StrtupPref", entryOf("StrtupPref"), {}, {{"frmPref", "on"}}});
  rows.push_back({"ExitMenu",
                  [&] {
                    answers.script.push_back(ModalAnswers::button(QMessageBox::Cancel));
                    at<QAction>("ExitMenu")->trigger();
                  },
                  {}, {{"asked", deleteAsked + " / " + deleteAsked + " / Exit: Do you really want to exit program?"}}});

  // The test note: a list and its slider show the same number.
  rows.push_back({"CmbMidNtNo", [&] { pick(at<QComboBox>("CmbMidNtNo"), 60); }, {}, {{"CmbMidNtNo", "60"}, {"SldNt", "60"}}});
  rows.push_back({"CmbMidVel", [&] { pick(at<QComboBox>("CmbMidVel"), 100); }, {}, {{"CmbMidVel", "100"}, {"SldVel", "100"}}});
  rows.push_back({"SldNt", [&] { QTest::keyClick(at("SldNt"), Qt::Key_Up); }, {}, {{"CmbMidNtNo", "61"}, {"SldNt", "61"}}});
  rows.push_back({"SldVel", [&] { QTest::keyClick(at("SldVel"), Qt::Key_Down); }, {}, {{"CmbMidVel", "99"}, {"SldVel", "99"}}});

  // ---- The edit panel: opened on M5 with the values it already holds.
  rows.push_back({"EditMult5", entryOf("EditMult5"), {}, {{"SSTab1", "on 0"}}});
  // A slider moved by a key press alone shows its text and sends nothing; the key's release
  // stores and sends. Each comes back to its value, so the part keeps its defaults.
  auto sliderRows = [&](std::size_t first, std::size_t last, int part) {
    for (std::size_t row = first; row <= last; ++row) {
      const SliderRow& r = kSliderMap[row];
      const QString slider = name(r.control), box = name(r.textBox);
      const int v = at<QSlider>(slider)->value();
      const bool up = v < r.max;
      const int moved = up ? v + 1 : v - 1;
      rows.push_back({box, [&, slider, up] { QTest::keyPress(at(slider), up ? Qt::Key_Right : Qt::Key_Left); }, {},
                      {{slider, QString::number(moved)}, {box, QString::fromStdString(familyText(r.family, moved))}}});
      rows.push_back({slider, [&, slider, up] { QTest::keyClick(at(slider), up ? Qt::Key_Left : Qt::Key_Right); },
                      {test::hex(sliderMessage(r, static_cast<std::uint8_t>(part), v))},
                      {{slider, QString::number(v)}, {box, QString::fromStdString(familyText(r.family, v))}}});
    }
  };
  sliderRows(0, 11, 4);
  auto typed = [&](const QString& box, const QString& text) {
    return [&, box, text] {
      at<QLineEdit>(box)->selectAll();
      QTest::keyClicks(at(box), text);
    };
  };
  rows.push_back({"TxtMsb", typed("TxtMsb", "1"), {}, {{"TxtMsb", "1"}}});
  rows.push_back({"TxtLsb", typed("TxtLsb", "2"), {}, {{"TxtLsb", "2"}}});
  rows.push_back({"TxtPrg", typed("TxtPrg", "3"), {}, {{"TxtPrg", "3"}}});
  rows.push_back({"CmdVocChng", [&] { at<QPushButton>("CmdVocChng")->click(); },
                  {"F0 43 10 4C 08 04 01 01 F7", "F0 43 10 4C 08 04 02 02 F7", "F0 43 10 4C 08 04 03 03 F7"}, {}});
  rows.push_back({"TxtName1", typed("TxtName1", "Pad"), {},
                  {{"TxtName1", "Pad"}, {"Label34_0", "Pad        M5"}, {"Label34_1", "Pad        M5"}, {"CmdMult5", "Pad        M5"}}});
  auto clicked = [&](const QString& button) { return [&, button] { at<QAbstractButton>(button)->click(); }; };
  rows.push_back({"CmdDone1", clicked("CmdDone1"), {}, {{"SSTab1", "off 0"}}});
  rows.push_back({"EditMult5", entryOf("EditMult5"), {}, {{"SSTab1", "on 0"}, {"TxtName1", "Pad        M5"}}});
  auto page = [&](int index) {
    return [&, index] {
      QTabBar* bar = at<QTabWidget>("SSTab1")->tabBar();
      QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(index).center());
    };
  };
  rows.push_back({"SSTab1", page(1), {}, {{"SSTab1", "on 1"}}});
  sliderRows(12, 23, 4);
  rows.push_back({"ChckPort", clicked("ChckPort"), {"F0 43 10 4C 08 04 67 01 F7"}, {{"ChckPort", "on"}}});
  rows.push_back({"CmdDone2_0", clicked("CmdDone2_0"), {}, {{"SSTab1", "off 1"}}});
  // M6 holds the defaults: the voice and portamento differ, the page in front stays.
  const QString varSend = at<QSlider>("SldEffVar")->value() == 0 ? "0 off" : QString::number(at<QSlider>("SldEffVar")->value()) + " off";
  rows.push_back({"EditMult6", entryOf("EditMult6"), {"F0 43 10 4C 08 05 67 00 F7"},
                  {{"SSTab1", "on 1"}, {"TxtName1", "Multi Part M6"}, {"Label34_0", "Multi Part M6"}, {"Label34_1", "Multi Part M6"},
                   {"TxtMsb", "0"}, {"TxtLsb", "0"}, {"TxtPrg", "0"}, {"ChckPort", "off"}, {"SldEffVar", varSend},
                   {"Labelx1_15", "off"}}});
  rows.push_back({"SSTab1", page(2), {}, {{"SSTab1", "on 2"}}});
  sliderRows(24, 31, 5);
  for (const auto& [button, message, group, index] :
       std::vector<std::tuple<QString, std::string, QString, QString>>{{"Option3_1", "07 01", "Option3", "1"},
                                                                       {"Option3_2", "07 02", "Option3", "2"},
                                                                       {"Option3_3", "07 03", "Option3", "3"},
                                                                       {"Option3_0", "07 00", "Option3", "0"},
                                                                       {"Option2_0", "05 00", "Option2", "0"},
                                                                       {"Option2_1", "05 01", "Option2", "1"},
                                                                       {"Option1_0", "06 00", "Option1", "0"},
                                                                       {"Option1_2", "06 02", "Option1", "2"},
                                                                       {"Option1_1", "06 01", "Option1", "1"}})
    rows.push_back({button, clicked(button), {"F0 43 10 4C 08 05 " + message + " F7"}, {{group, index}}});
  rows.push_back({"CmdDone2_1", clicked("CmdDone2_1"), {}, {{"SSTab1", "off 2"}}});

  // ---- Initialize, with the panel hidden: defaults, the part's own channel, the start caption.
  auto defaults = [](int part) {
    const std::string p = hexOf({part});
    return Wire{"F0 43 00 4C 00 29 08 " + p + " 00*F7", "F0 43 00 4C 00 3F 08 " + p + " 30*F7",
                "F0 43 00 4C 00 04 08 " + p + " 70*F7", "F0 43 00 4C 00 0C 08 " + p + " 74*F7",
                "F0 43 00 4C 00 02 0A " + p + " 20*F7"};
  };
  Wire everyDefault;
  for (int m = 5; m <= 16; ++m) {
    const QString entry = QString("InitMlt%1").arg(m);
    Wire wire = defaults(m - 1);
    everyDefault.insert(everyDefault.end(), wire.begin(), wire.end());
    wire.push_back(hexOf({0xF0, 0x43, 0x10, 0x4C, 0x08, m - 1, 0x04, m - 1, 0xF7}));
    State changed{{QString("CmbMult%1").arg(m), QString::number(m - 1)}};
    if (m == 5 || m == 7) changed[QString("CmdMult%1").arg(m)] = QString("Multi Part M%1").arg(m);
    rows.push_back({entry, entryOf(entry), wire, changed});
  }
  rows.push_back({"InitMltall", entryOf("InitMltall"), everyDefault, {}});
  // Each part opens on the page in front.
  for (int m = 7; m <= 16; ++m) {
    const QString caption = QString("Multi Part M%1").arg(m);
    State changed{{"TxtName1", caption}, {"Label34_0", caption}, {"Label34_1", caption}};
    if (m == 7) changed["SSTab1"] = "on 2";
    rows.push_back({QString("EditMult%1").arg(m), entryOf(QString("EditMult%1").arg(m)), {}, changed});
  }

  // ---- The effects panel, on Com2 of the Performance chosen above.
  const auto stored = VirtualCs2x::storedPerformance(VirtualCs2x::kPreset1, static_cast<std::uint8_t>(program));
  auto typeRow = [](std::span<const EffectType> table, std::uint8_t high, std::uint8_t low) {
    int row = 0;
    findEffectType(table, high, low, &row);
    return row;
  };
  const int reverb = typeRow(RvrbTbl, stored.com2[0], stored.com2[1]), chorus = typeRow(ChrsTbl, stored.com2[2], stored.com2[3]),
            variation = typeRow(VarTbl, stored.com2[4], stored.com2[5]);
  State opened{{"SSTab2", "on"}, {"CmbRvrb", QString::number(reverb)}, {"CmbChrs", QString::number(chorus)},
               {"CmbVar", QString::number(variation)}};
  for (std::size_t i = 0; i < 3; ++i) {
    const SliderRow& r = kSliderMap[kFirstEffectSlider + i];
    opened[name(r.control)] = QString::number(stored.com2[20 + i]);
    opened[name(r.textBox)] = QString::number(stored.com2[20 + i]);
  }
  rows.push_back({"EditEffcts", entryOf("EditEffcts"), {}, opened});
  const int otherReverb = (reverb + 1) % 13, otherChorus = (chorus + 1) % 15, otherVariation = (variation + 1) % 64;
  rows.push_back({"CmbRvrb", [&, otherReverb] { pick(at<QComboBox>("CmbRvrb"), otherReverb); },
                  {hexOf({0xF0, 0x43, 0x10, 0x63, 0x60, 0x00, 0x40, RvrbTbl[static_cast<std::size_t>(otherReverb)].high,
                          RvrbTbl[static_cast<std::size_t>(otherReverb)].low, 0xF7})},
                  {{"CmbRvrb", QString::number(otherReverb)}}});
  rows.push_back({"CmbChrs", [&, otherChorus] { pick(at<QComboBox>("CmbChrs"), otherChorus); },
                  {hexOf({0xF0, 0x43, 0x10, 0x63, 0x60, 0x00, 0x42, ChrsTbl[static_cast<std::size_t>(otherChorus)].high,
                          ChrsTbl[static_cast<std::size_t>(otherChorus)].low, 0xF7})},
                  {{"CmbChrs", QString::number(otherChorus)}}});
  rows.push_back({"CmbVar", [&, otherVariation] { pick(at<QComboBox>("CmbVar"), otherVariation); },
                  {hexOf({0xF0, 0x43, 0x10, 0x63, 0x60, 0x00, 0x44, VarTbl[static_cast<std::size_t>(otherVariation)].high,
                          VarTbl[static_cast<std::size_t>(otherVariation)].low, 0xF7})},
                  {{"CmbVar", QString::number(otherVariation)}}});
  for (std::size_t i = 0; i < 3; ++i) {
    const SliderRow& r = kSliderMap[kFirstEffectSlider + i];
    const QString slider = name(r.control), box = name(r.textBox);
    const int v = stored.com2[20 + i];
    const bool up = v < r.max;
    const int moved = up ? v + 1 : v - 1;
    rows.push_back({box, [&, slider, up] { QTest::keyPress(at(slider), up ? Qt::Key_Right : Qt::Key_Left); }, {},
                    {{slider, QString::number(moved)}, {box, QString::number(moved)}}});
    rows.push_back({slider, [&, slider, up] { QTest::keyClick(at(slider), up ? Qt::Key_Left : Qt::Key_Right); },
                    {hexOf({0xF0, 0x43, 0x10, 0x63, 0x60, 0x00, r.address, v, 0xF7})},
                    {{slider, QString::number(v)}, {box, QString::number(v)}}});
  }
  const std::string com2Dump = "F0 43 00 63 00 17 60 00 40*F7";
  rows.push_back({"ChkEffByPass", clicked("ChkEffByPass"),
                  {"F0 43 10 63 60 00 40 00 00 F7", "F0 43 10 63 60 00 42 00 00 F7", "F0 43 10 63 60 00 44 40 00 F7"},
                  {{"ChkEffByPass", "on"}, {"CmbRvrb", QString::number(otherReverb) + " off"},
                   {"CmbChrs", QString::number(otherChorus) + " off"}, {"CmbVar", QString::number(otherVariation) + " off"}}});
  rows.push_back({"CmdEffReset", clicked("CmdEffReset"), {com2Dump, com2Dump},
                  {{"ChkEffByPass", "off"}, {"CmbRvrb", QString::number(reverb)}, {"CmbChrs", QString::number(chorus)},
                   {"CmbVar", QString::number(variation)}}});
  rows.push_back({"CmdEffDn1", clicked("CmdEffDn1"), notesOff(61, 99), {{"SSTab2", "off"}}});  // the test note moved above
  rows.push_back({"SSTab2", entryOf("EditEffcts"), {}, {{"SSTab2", "on"}}});

  // ---- Save and Load. Every save with the Performance reads it first.
  const Wire fromEveryMulti = [&] {
    Wire all;
    for (int m = 5; m <= 16; ++m) {
      const Wire one = defaults(m - 1);  // the same frames; the data the file's
      all.insert(all.end(), one.begin(), one.end());
    }
    return all;
  }();
  const Wire perfSent(8, "F0 43 00 63*F7");
  Wire setupSent = fromEveryMulti;
  setupSent.insert(setupSent.end(), perfSent.begin(), perfSent.end());
  rows.push_back({"SvWrkSpace", inDialog("all.tvw", entryOf("SvWrkSpace")), reread, {{"files", wrote("all.tvw", "27850")}}});
  rows.push_back({"SvSetuptvf", inDialog("all.tvf", entryOf("SvSetuptvf")), reread, {{"files", wrote("all.tvf", "2952")}}});
  rows.push_back({"SvPerform", inDialog("all.tvx", entryOf("SvPerform")), reread, {{"files", wrote("all.tvx", "456")}}});
  rows.push_back({"SvMultAll", inDialog("all.tvm", entryOf("SvMultAll")), {}, {{"files", wrote("all.tvm", "2496")}}});
  rows.push_back({"SvSetupMid", inDialog("all.mid", entryOf("SvSetupMid")), reread, {{"files", wrote("all.mid", "2691")}}});
  rows.push_back({"SvSetupSyx", inDialog("all.syx", entryOf("SvSetupSyx")), reread, {{"files", wrote("all.syx", "2760")}}});
  rows.push_back({"SvWrkSpaceText", inDialog("all.txt", entryOf("SvWrkSpaceText")), reread, {{"files", wrote("all.txt", "text")}}});
  for (int m = 5; m <= 16; ++m) {
    const QString entry = QString("SvMult%1").arg(m), file = QString("m%1.tvs").arg(m);
    rows.push_back({entry, inDialog(file, entryOf(entry)), {}, {{"files", wrote(file, "192")}}});
  }
  // Each Multi takes the file of another, with its own part in every dump.
  for (int m = 5; m <= 16; ++m) {
    const QString entry = QString("LdMult%1").arg(m), file = QString("m%1.tvs").arg(m == 16 ? 5 : m + 1);
    State changed;
    if (m == 5) changed["SSTab1"] = "off 2";  // a load hides the edit panel
    rows.push_back({entry, inDialog(file, entryOf(entry)), defaults(m - 1), changed});
  }
  rows.push_back({"LdMultAll", inDialog("all.tvm", entryOf("LdMultAll")), fromEveryMulti, {}});
  rows.push_back({"LdPerform", inDialog("all.tvx", entryOf("LdPerform")), perfSent, {{"SSTab2", "off"}}});
  rows.push_back({"LdFullSetup", inDialog("all.tvf", entryOf("LdFullSetup")), setupSent, {}});
  rows.push_back({"LdLayerPool", inDialog("pool.tvp", entryOf("LdLayerPool")), {},
                  {{"LbxLyrPool", poolSaved.join(" | ") + " @-1"}}});
  rows.push_back({"LdWrkSpace", inDialog("all.tvw", entryOf("LdWrkSpace")), setupSent, {{"LbxLyrPool", " @-1"}}});

  // ---- The debug tools: the log and the manual fields, and a file listed as text.
  // The log shows what the last read left in it: DspPerf's 378 bytes.
  State shown{{"List1", "on 378"}, {"debugButtons", "on"}};
  for (int i = 0; i < 5; ++i) shown[QString("TxtParm_%1").arg(i)] = i == 0 ? "76" : "0";
  rows.push_back({"WinOn", entryOf("WinOn"), {}, shown});
  rows.push_back({"TxtParm_0", typed("TxtParm_0", "76"), {}, {}});
  rows.push_back({"TxtParm_1", typed("TxtParm_1", "8"), {}, {{"TxtParm_1", "8"}}});
  rows.push_back({"TxtParm_2", typed("TxtParm_2", "6"), {}, {{"TxtParm_2", "6"}}});
  rows.push_back({"TxtParm_3", typed("TxtParm_3", "11"), {}, {{"TxtParm_3", "11"}}});
  rows.push_back({"TxtParm_4", typed("TxtParm_4", "90"), {}, {{"TxtParm_4", "90"}}});
  rows.push_back({"CmdChngParm", clicked("CmdChngParm"), {"F0 43 10 4C 08 06 0B 5A F7"}, {}});
  rows.push_back({"CmdChngCntl", clicked("CmdChngCntl"), {"B8 06 0B"}, {}});
  rows.push_back({"CmdRtrvParm", clicked("CmdRtrvParm"), {"F0 43 30 4C 08 06 0B F7"}, {{"List1", "on 9"}}});
  rows.push_back({"List1", entryOf("RtrvPerf"), reread, {{"List1", "on 378"}}});
  rows.push_back({"LdSysEx",
                  [&] {
                    inDialog("all.syx", [] {})();
                    inDialog("all.syx.txt", entryOf("LdSysEx"))();
                  },
                  {}, {{"files", wrote("all.syx.txt", "text")}}});
  rows.push_back({"WinOff", entryOf("WinOff"), {}, [&] {
                    State hidden{{"List1", "off 378"}, {"debugButtons", "off"}};
                    for (const auto& [field, text] : std::vector<std::pair<QString, QString>>{
                             {"TxtParm_0", "76"}, {"TxtParm_1", "8"}, {"TxtParm_2", "6"}, {"TxtParm_3", "11"}, {"TxtParm_4", "90"}})
                      hidden[field] = text + " hidden";
                    return hidden;
                  }()});

  // The Load Aid beside the main form; Done hides it.
  rows.push_back({"LdAidSub",
                  [&] {
                    at<QAction>("LdAidSub")->trigger();
                    QWidget* aid = app.form(FormId::LoadAid);
                    ASSERT_NE(aid, nullptr);
                    EXPECT_TRUE(aid->isVisible());
                    EXPECT_EQ(aid->windowTitle(), "CS2x Load Aid");
                    child<QPushButton>(aid, "cmdLdAid")->click();
                    EXPECT_FALSE(aid->isVisible());
                  },
                  {}, {}});
  rows.push_back({"About", [&] {
                    at<QAction>("About")->trigger();
                    main->findChild<QDialog*>("frmAbout")->close();
                  }, {}, {}});

  run(rows);
  expectEveryControlHasARow(main, rows);
  EXPECT_FALSE(app.logic().finished());
}

// ---- The preferences -----------------------------------------------------------------------

class PrefWiring : public ScriptedQtProgram {
 protected:
  PrefWindow* pref = nullptr;

  template <typename W = QWidget>
  W* at(const QString& name) const {
    return child<W>(pref, name);
  }
  static QString multiBox(int m) { return m == 8 ? "Chkmlt8" : QString("ChkMlt%1").arg(m); }

  // Each control as the window shows it and as the form holds it.
  State state() const {
    const PrefForm& form = const_cast<PrefWiring*>(this)->app.logic().pref();
    State s;
    for (int m = 5; m <= 16; ++m) s[multiBox(m)] = onOff(at<QCheckBox>(multiBox(m))->isChecked()) + QString::number(form.ChkMlt(m).value);
    s["ChkLdFile"] = onOff(at<QCheckBox>("ChkLdFile")->isChecked()) + QString::number(form.ChkLdFile.value);
    s["TxtLdFile"] = at<QLineEdit>("TxtLdFile")->text() + " | " + QString::fromStdString(form.workspacePath());
    const std::pair<const char*, const ListCtl*> lists[] = {{"Combo1", &form.Combo1}, {"Combo2", &form.Combo2}, {"cmbPerfChnl", &form.cmbPerfChnl}};
    for (const auto& [list, ctl] : lists)
      s[list] = at<QComboBox>(list)->currentText() + QString(" %1").arg(ctl->index());
    s["Slider1"] = QString("%1 %2").arg(at<QSlider>("Slider1")->value()).arg(form.Slider1.value);
    s["frmPref"] = onOff(pref->isVisible());
    s["stored"] = QString::number(std::filesystem::exists(prefs.path) ? std::filesystem::file_size(prefs.path) : 0);
    return s;
  }
};

TEST_F(PrefWiring, EveryControlDoesItsOwnWork) {
  ASSERT_NE(startMainForm(), nullptr);
  std::filesystem::remove(prefs.path);
  child<QAction>(app.mainWindow(), "StrtupPref")->trigger();
  pref = app.prefWindow();
  ASSERT_TRUE(pref->isVisible());
  test::TempFile chosen;
  const QString workspace = QString::fromStdString(chosen.path) + ".tvw";
  std::ofstream(workspace.toStdString()) << "x";

  std::vector<Row> rows;
  for (int m = 5; m <= 16; ++m)
    rows.push_back({multiBox(m), [&, m] { at<QCheckBox>(multiBox(m))->click(); }, {}, {{multiBox(m), "on1"}}});
  rows.push_back({"ChkLdFile", [&] { at<QCheckBox>("ChkLdFile")->click(); }, {}, {{"ChkLdFile", "on1"}}});
  rows.push_back({"TxtLdFile", [&] { QTest::keyClicks(at("TxtLdFile"), "/tmp/typed.tvw"); }, {},
                  {{"TxtLdFile", "/tmp/typed.tvw | /tmp/typed.tvw"}}});
  // The dialog's file name box takes the whole path.
  rows.push_back({"CmdBrowse",
                  [&] {
                    answers.script.push_back([&](QWidget* modal) {
                      auto* fileName = child<QLineEdit>(qobject_cast<QFileDialog*>(modal), "fileNameEdit");
                      fileName->setText(workspace);
                      QTest::keyClick(fileName, Qt::Key_Return);
                    });
                    at<QPushButton>("CmdBrowse")->click();
                  },
                  {}, {{"TxtLdFile", workspace + " | " + workspace}}});
  rows.push_back({"Combo1", [&] { pick(at<QComboBox>("Combo1"), 1); }, {}, {{"Combo1", "In B 1"}}});
  rows.push_back({"Combo2", [&] { pick(at<QComboBox>("Combo2"), 1); }, {}, {{"Combo2", "Out B 1"}}});
  rows.push_back({"cmbPerfChnl", [&] { pick(at<QComboBox>("cmbPerfChnl"), 9); }, {perfChannel(9)}, {{"cmbPerfChnl", " 10 9"}}});
  rows.push_back({"Slider1", [&] { QTest::keyClick(at("Slider1"), Qt::Key_Right); }, {}, {{"Slider1", "1 1"}}});
  rows.push_back({"OKButton", [&] { at<QPushButton>("OKButton")->click(); }, {}, {{"frmPref", "off"}, {"stored", "169"}}});

  runTable(rows, [this] { return state(); }, [this] { midi.sent.clear(); }, [this] { return test::hex(midi.sent); });
  expectEveryControlHasARow(pref, rows);
  std::filesystem::remove(workspace.toStdString());
}

// The settings go out through OK and come back at the next start, each to its own control:
// In B and Out A, the boxes of Multi 6 and 13, channel 10, density 2.
TEST_F(ScriptedQtProgram, PreferencesComeBackAtTheNextStartEachInItsOwnControl) {
  app.start();
  PrefWindow* pref = app.prefWindow();
  pick(child<QComboBox>(pref, "Combo1"), 1);
  pick(child<QComboBox>(pref, "Combo2"), 1);
  pick(child<QComboBox>(pref, "Combo2"), 0);
  for (const char* box : {"ChkMlt6", "ChkMlt13", "ChkLdFile"}) child<QCheckBox>(pref, box)->click();
  QTest::keyClicks(child<QLineEdit>(pref, "TxtLdFile"), "/nowhere/set.tvw");
  pick(child<QComboBox>(pref, "cmbPerfChnl"), 9);
  QTest::keyClick(child<QSlider>(pref, "Slider1"), Qt::Key_Right);
  QTest::keyClick(child<QSlider>(pref, "Slider1"), Qt::Key_Right);
  ASSERT_NE(startMainForm(), nullptr);

  // The start opened the chosen devices and read the two chosen Multis (parts 5 and 12).
  auto calls = midi.midiCalls();
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "midiOutOpen 0"), 1);
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "midiInOpen 1 callback"), 1);
  std::set<std::string> multisRead;
  for (const std::string& sent : test::hex(midi.sent))
    if (sent.starts_with("F0 43 20 4C 08") && sent.ends_with(" 00 F7")) multisRead.insert(sent);
  EXPECT_EQ(multisRead, (std::set<std::string>{"F0 43 20 4C 08 05 00 F7", "F0 43 20 4C 08 0C 00 F7"}));

  QtApp next(midi);
  next.logic().pref().prefsPath = prefs.path;
  next.start();
  PrefWindow* again = next.prefWindow();
  EXPECT_EQ(child<QComboBox>(again, "Combo1")->currentText(), "In B");
  EXPECT_EQ(child<QComboBox>(again, "Combo2")->currentText(), "Out A");
  for (int m = 5; m <= 16; ++m)
    EXPECT_EQ(child<QCheckBox>(again, m == 8 ? "Chkmlt8" : QString("ChkMlt%1").arg(m))->isChecked(), m == 6 || m == 13) << m;
  EXPECT_TRUE(child<QCheckBox>(again, "ChkLdFile")->isChecked());
  EXPECT_EQ(child<QLineEdit>(again, "TxtLdFile")->text().trimmed(), "/nowhere/set.tvw");
  EXPECT_EQ(child<QComboBox>(again, "cmbPerfChnl")->currentText(), " 10");
  EXPECT_EQ(child<QSlider>(again, "Slider1")->value(), 2);
}

// A stored density beyond the slider's end (the record allows up to 7) shows at that end.
TEST_F(ScriptedQtProgram, AStoredDensityBeyondTheSliderShowsAtItsEnd) {
  std::string record(169, '\0');
  std::fill(record.begin() + 18, record.begin() + 163, ' ');  // path and reserved field
  record[163] = 5;
  std::ofstream(prefs.path, std::ios::binary) << record;
  app.start();
  EXPECT_EQ(child<QSlider>(app.prefWindow(), "Slider1")->value(), 3);
}

}  // namespace
}  // namespace tessivo::qt
