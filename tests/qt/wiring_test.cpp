// How the forms' widgets are wired to the logic, one table a form: a row for every control and
// menu entry, with the gesture a user makes and everything that must follow, on the wire and
// on the screen. The values differ from row to row (each Multi on a channel of its own, the
// devices In B and Out A), so a handler wired to a neighbour, a list that sets the next value
// or a menu entry doing another's work fails its row. A control without a row fails the check
// of completeness.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>
#include <QSlider>
#include <QTabBar>
#include <QTabWidget>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
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

struct Row {
  QString control;  // the control or menu entry, by name
  std::function<void()> gesture;
  Wire wire;      // the messages sent, in order
  State changed;  // what the screen shows differently afterwards; everything else stays
};

Wire operator+(Wire a, const Wire& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}
QString onOff(bool on) { return on ? "on" : "off"; }
QString name(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }
QString numbered(const char* prefix, int n) { return QString("%1%2").arg(prefix).arg(n); }

std::string hexOf(std::initializer_list<int> bytes) {
  std::string s;
  for (int b : bytes) s += (s.empty() ? "" : " ") + QString::asprintf("%02X", b).toStdString();
  return s;
}
std::string perfChannel(int c) { return hexOf({0xF0, 0x43, 0x10, 0x63, 0x50, 0x00, 0x00, c, 0xF7}); }
// The Performance read again: its eight requests between the switch to channel 1 and back.
Wire reread(int channel) {
  Wire wire{perfChannel(0)};
  for (const char* at : {"60 00 00", "60 00 40", "60 00 60", "60 01 00", "60 02 00", "60 03 00", "60 04 00", "50 00 00"})
    wire.push_back(std::string("F0 43 20 63 ") + at + " F7");
  wire.push_back(perfChannel(channel));
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

// The data that a drag from `source` (at `at` of `events`, its middle unless given) carries.
std::unique_ptr<QMimeData> dragged(QWidget* source, QWidget* events = nullptr, std::optional<QPoint> at = {}) {
  events = events ? events : source;
  const QPoint from = at.value_or(events->rect().center());
  press(events, from);
  moveHeld(events, from + QPoint(QApplication::startDragDistance() + 1, 0));
  auto* drag = source->findChild<QDrag*>();
  if (drag == nullptr) throw std::runtime_error("no drag from " + source->objectName().toStdString());
  auto copy = std::make_unique<QMimeData>();
  for (const QString& format : drag->mimeData()->formats()) copy->setData(format, drag->mimeData()->data(format));
  delete drag;
  return copy;
}

// Each row's gesture, then its wire byte for byte (the instrument takes a long message apart
// into the messages it holds) and the values that changed; then a row for every control.
// "*" in an expected wire stands for the data of a bulk dump, which the logic's own tests pin
// byte for byte: the pieces between the stars come in order, the first at the start and the
// last at the end.
bool matchesWithGaps(const std::string& sent, const std::string& expected) {
  std::vector<std::string> pieces(1);
  for (char c : expected) {
    if (c == '*') pieces.emplace_back();
    else pieces.back().push_back(c);
  }
  if (!sent.starts_with(pieces.front())) return false;
  std::size_t at = pieces.front().size();
  for (std::size_t i = 1; i + 1 < pieces.size(); ++i) {
    at = sent.find(pieces[i], at);
    if (at == std::string::npos) return false;
    at += pieces[i].size();
  }
  return sent.size() >= at + pieces.back().size() && sent.ends_with(pieces.back());
}

void runTable(QWidget* form, const std::vector<Row>& rows, const std::function<State()>& state,
              const std::function<void()>& clearWire, const std::function<Wire()>& wire) {
  auto bytesOf = [](const Wire& w) {
    std::string all;
    for (const std::string& message : w) all += (all.empty() ? "" : " ") + message;
    return all;
  };
  std::set<QString> covered;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.control.toStdString());
    covered.insert(row.control);
    const State before = state();
    clearWire();
    row.gesture();
    const std::string expected = bytesOf(row.wire), sent = bytesOf(wire());
    if (expected.find('*') == std::string::npos) EXPECT_EQ(sent, expected);
    else EXPECT_TRUE(matchesWithGaps(sent, expected)) << sent << "\n  expected " << expected;
    State changed;
    for (const auto& [key, value] : state())
      if (!before.contains(key) || before.at(key) != value) changed[key] = value;
    EXPECT_EQ(changed, row.changed);
  }
  for (const QString& control : controlsOf(form)) EXPECT_TRUE(covered.contains(control)) << control.toStdString();
}

// ---- The main form -------------------------------------------------------------------------

constexpr int kPerfChannel = 3;
constexpr int kNote = 67, kVelocity = 127;  // the test note at start

// A Layer held: the other three switched off (press) or back on (release) and the note, as one message.
std::string layerHeld(int layer, bool down) {
  std::string s;
  for (int other = 1; other <= 4; ++other)
    if (other != layer) s += hexOf({0xF0, 0x43, 0x10, 0x63, 0x60, other, 0x16, down ? 0 : 1, 0xF7}) + " ";
  return s + hexOf({(down ? 0x90 : 0x80) + kPerfChannel, kNote, kVelocity});
}

class MainFormWiring : public QtProgram {
 protected:
  MainWindow* main = nullptr;
  QListWidget* pool = nullptr;
  test::TempFile base;
  std::string folder = base.path + ".d";  // what the file menus write, removed at the end

  void SetUp() override {
    std::filesystem::create_directories(folder);
    app.start();
    app.logic().pref().cmbPerfChnl.setIndex(kPerfChannel);
    main = startMainForm();
    ASSERT_NE(main, nullptr);
    pool = child<QListWidget>(main, "LbxLyrPool");
  }
  void TearDown() override { std::filesystem::remove_all(folder); }

  template <typename W = QWidget>
  W* at(const QString& name) const { return child<W>(main, name); }

  State state() const {
    State s;
    auto num = [](int v) { return QString::number(v); };
    auto text = [this](const QString& box) { return at<QLineEdit>(box)->text(); };
    auto checked = [this](const QString& button) { return onOff(at<QAbstractButton>(button)->isChecked()); };
    for (int m = 5; m <= 16; ++m) {
      s[numbered("CmbMult", m)] = num(at<QComboBox>(numbered("CmbMult", m))->currentIndex());
      s[numbered("CmdMult", m)] = at<QPushButton>(numbered("CmdMult", m))->text();
    }
    for (const char* option : {"OptPreset", "OptUser", "OptBank1", "OptBank2", "ChckPort", "ChkEffByPass"}) s[option] = checked(option);
    auto* program = at<QComboBox>("CmbPrgm");
    s["CmbPrgm"] = QString("%1 of %2..%3").arg(program->currentIndex()).arg(program->itemText(0), program->itemText(127));
    s["CmdPrfm"] = at<QPushButton>("CmdPrfm")->text();
    for (int n = 1; n <= 4; ++n) {
      s[numbered("CmdLyr", n)] = onOff(at(numbered("CmdLyr", n))->isEnabled());
      s[numbered("TxtLyr", n)] = text(numbered("TxtLyr", n));
    }
    for (const char* list : {"CmbMidNtNo", "CmbMidVel"}) s[list] = num(at<QComboBox>(list)->currentIndex());
    for (const char* slider : {"SldNt", "SldVel"}) s[slider] = num(at<QSlider>(slider)->value());
    QStringList entries;
    for (int i = 0; i < pool->count(); ++i) entries << pool->item(i)->text();
    s["LbxLyrPool"] = entries.join(" | ") + QString(" @%1").arg(pool->currentRow());
    for (const char* entry : {"LocalOff", "ArpOff", "TrnsChnlAssgn"}) s[entry] = onOff(at<QAction>(entry)->isChecked());
    s["frmPref"] = onOff(app.prefWindow()->isVisible());
    QWidget* aid = app.form(FormId::LoadAid);
    s["aid"] = aid && aid->isVisible() ? aid->windowTitle() : "-";
    s["asked"] = answers.asked.join(" / ");
    // The panels; an edit slider shows whether it is enabled.
    auto* panel = at<QTabWidget>("SSTab1");
    s["SSTab1"] = onOff(panel->isVisible()) + QString(" %1").arg(panel->currentIndex());
    s["SSTab2"] = onOff(at("SSTab2")->isVisible());
    for (std::size_t row = 0; row < kSliderRows; ++row) {
      auto* slider = at<QSlider>(name(kSliderMap[row].control));
      s[slider->objectName()] = num(slider->value()) + (slider->isEnabled() || row >= kEditSliders ? "" : " off");
      s[name(kSliderMap[row].textBox)] = text(name(kSliderMap[row].textBox));
    }
    s["Labelx1_15"] = onOff(at("Labelx1_15")->isEnabled());
    for (const char* box : {"TxtMsb", "TxtLsb", "TxtPrg", "TxtName1"}) s[box] = text(box);
    for (const char* label : {"Label34_0", "Label34_1"}) s[label] = at<QLabel>(label)->text();
    for (const char* list : {"CmbRvrb", "CmbChrs", "CmbVar"})
      s[list] = num(at<QComboBox>(list)->currentIndex()) + (at(list)->isEnabled() ? "" : " off");
    for (const auto& [group, count] : {std::pair{"Option1", 3}, {"Option2", 2}, {"Option3", 4}}) {
      s[group] = "-";
      for (int i = 0; i < count; ++i)
        if (at<QRadioButton>(QString("%1_%2").arg(group).arg(i))->isChecked()) s[group] = num(i);
    }
    // The debug row.
    s["List1"] = onOff(at("List1")->isVisible()) + QString(" %1").arg(at<QListWidget>("List1")->count());
    for (int i = 0; i < 5; ++i) {
      auto* field = at<QLineEdit>(numbered("TxtParm_", i));
      s[field->objectName()] = field->text() + (field->isVisible() ? "" : " hidden");
    }
    s["debugButtons"] = onOff(at("CmdChngParm")->isVisible());
    // What the file menus wrote; a description text's length follows the paths in it.
    QStringList written;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      written << QString("%1 %2").arg(QString::fromStdString(entry.path().filename().string()),
                                      entry.path().extension() == ".txt" ? QString("text") : num(entry.file_size()));
    written.sort();
    s["files"] = written.join(", ");
    return s;
  }
};

// The first Preset Performance of bank 1 after the one at start with all four Layers on
// (Layer parameter 60 0L 16: 1 is on).
int allLayersOn() {
  for (int p = 1; p < 128; ++p) {
    const auto perf = VirtualCs2x::storedPerformance(VirtualCs2x::kPreset1, static_cast<std::uint8_t>(p));
    if (std::all_of(perf.layers.begin(), perf.layers.end(), [](const auto& layer) { return layer[0x16] == 1; })) return p;
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
  const Wire dropped = notesOff(kNote, kVelocity), perfRead = reread(kPerfChannel);
  auto sounded = [&](int m) { return Wire{hexOf({0x90 + channelOf(m), kNote, kVelocity})} + dropped; };
  QStringList entries{firstEntry};  // what the Layer Pool holds
  auto poolShows = [&](int selected) { return entries.join(" | ") + QString(" @%1").arg(selected); };
  auto menu = [this](const QString& action) { return [this, action] { at<QAction>(action)->trigger(); }; };
  auto clicked = [this](const QString& button) { return [this, button] { at<QAbstractButton>(button)->click(); }; };
  auto pressed = [this](const QString& button) { return [this, button] { press(at(button)), release(at(button)); }; };
  auto picked = [this](const QString& list, int index) { return [this, list, index] { pick(at<QComboBox>(list), index); }; };
  auto typed = [this](const QString& box, const QString& text) {
    return [this, box, text] { at<QLineEdit>(box)->selectAll(), QTest::keyClicks(at(box), text); };
  };
  auto key = [this](const QString& widget, Qt::Key k) { return [this, widget, k] { QTest::keyClick(at(widget), k); }; };

  std::vector<Row> rows;
  // The lone data byte between the Bank Select and the Program Change is no message: the
  // instrument passes over it.
  rows.push_back({"CmbPrgm", picked("CmbPrgm", program),
                  Wire{perfChannel(0), hexOf({0xB0, 0x00, 0x3F, 0xB0, 0x20, 0x40, 0xC0, program})} + perfRead,
                  {{"CmbPrgm", QString("%1 of %2..%3").arg(program).arg(name(PrfNames1[0]), name(PrfNames1[127]))},
                   {"CmdPrfm", perfName}, {"TxtLyr1", perfName + "A"}, {"TxtLyr2", perfName + "B"},
                   {"TxtLyr3", perfName + "C"}, {"TxtLyr4", perfName + "D"}}});
  for (int m = 5; m <= 16; ++m)
    rows.push_back({numbered("CmbMult", m), picked(numbered("CmbMult", m), channelOf(m)),
                    {hexOf({0xF0, 0x43, 0x10, 0x4C, 0x08, m - 1, 0x04, channelOf(m), 0xF7})},
                    {{numbered("CmbMult", m), QString::number(channelOf(m))}}});
  for (int m = 5; m <= 16; ++m) rows.push_back({numbered("CmdMult", m), pressed(numbered("CmdMult", m)), sounded(m), {}});
  rows.push_back({"CmdPrfm", [&] { press(at("CmdPrfm")); }, {hexOf({0x90 + kPerfChannel, kNote, kVelocity})}, {}});
  rows.push_back({"CmdPrfm", [&] { release(at("CmdPrfm")); }, {hexOf({0x80 + kPerfChannel, kNote, kVelocity})}, {}});
  for (int n = 1; n <= 4; ++n) {
    const QString button = numbered("CmdLyr", n);
    rows.push_back({button, [&, button] { press(at(button)); }, {layerHeld(n, true)}, {}});
    rows.push_back({button, [&, button] { release(at(button)); }, {layerHeld(n, false)}, {}});
  }
  for (int n = 1; n <= 4; ++n) {
    const QString box = numbered("TxtLyr", n);
    rows.push_back({box, pressed(box), dropped, {}});
    rows.push_back({box, [&, box] { ASSERT_TRUE(dropOn(main, pool, *dragged(at(box)))); }, dropped,
                    {{"LbxLyrPool", (entries << perfName + QChar('A' + n - 1), poolShows(-1))}}});
  }
  rows.push_back({"LbxLyrPool", [&] { ASSERT_TRUE(dropOn(main, pool, *dragged(at("CmdMult9")))); }, sounded(9),
                  {{"LbxLyrPool", (entries << "Multi Part", poolShows(-1))}}});
  auto entry = [&](int row) { return pool->visualItemRect(pool->item(row)).center(); };
  rows.push_back({"LbxLyrPool", [&] { press(pool->viewport(), entry(2)), release(pool->viewport(), entry(2)); }, dropped,
                  {{"LbxLyrPool", poolShows(2)}}});
  const QString deleteAsked = "Delete from Layer Pool: Do you really want to delete item from Layer Pool?";
  auto cancelled = [&](const std::function<void()>& gesture) {
    return [&, gesture] { answers.script.push_back(ModalAnswers::button(QMessageBox::Cancel)), gesture(); };
  };
  rows.push_back({"LbxLyrPool", cancelled([&] { doubleClick(pool->viewport(), entry(1)); }), dropped,
                  {{"LbxLyrPool", poolShows(1)}, {"asked", deleteAsked}}});
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
  rows.push_back({"CmdMult7", [&] { ASSERT_TRUE(dropOn(main, at("CmdMult7"), *dragged(pool, pool->viewport(), entry(0)))); },
                  assigned,
                  {{"LbxLyrPool", poolShows(0)}, {"CmdMult7", QString::fromStdString(nameOfTen(firstEntry.toStdString())) + " M7"}}});
  // The file dialogs are Qt's own: the whole path in place of the name the dialog offers, and
  // entered once this answer is over, so that a box the dialog opens gets its answer too.
  auto inDialog = [&](const QString& file, const std::function<void()>& open) {
    return [&, file, open] {
      const QString path = QString::fromStdString(folder) + "/" + file;
      answers.script.push_back([path](QWidget* modal) {
        qobject_cast<QFileDialog*>(modal)->selectFile(path);
        auto* box = child<QLineEdit>(modal, "fileNameEdit");
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
  rows.push_back({"SvLayerPool", inDialog("pool.tvp", menu("SvLayerPool")), {}, {{"files", wrote("pool.tvp", "24898")}}});
  rows.push_back({"CmdClrLyrPool", clicked("CmdClrLyrPool"), {}, {{"LbxLyrPool", " @-1"}}});

  // The options refill the program list and send nothing; Bank1 after Bank2 shows bank 1 again.
  auto programs = [](const QString& first, const QString& last) { return QString("-1 of %1..%2").arg(first, last); };
  rows.push_back({"OptUser", clicked("OptUser"), {}, {{"OptPreset", "off"}, {"OptUser", "on"}, {"CmbPrgm", programs(" 1", " 128")}}});
  rows.push_back({"OptBank2", clicked("OptBank2"), {}, {{"OptBank1", "off"}, {"OptBank2", "on"}}});
  rows.push_back({"OptPreset", clicked("OptPreset"), {},
                  {{"OptPreset", "on"}, {"OptUser", "off"}, {"CmbPrgm", programs(name(PrfNames2[0]), name(PrfNames2[127]))}}});
  rows.push_back({"OptBank1", clicked("OptBank1"), {},
                  {{"OptBank1", "on"}, {"OptBank2", "off"}, {"CmbPrgm", programs(name(PrfNames1[0]), name(PrfNames1[127]))}}});

  // The menus. Multi m's five section requests, its part index m - 1.
  rows.push_back({"RtrvPerf", menu("RtrvPerf"), perfRead, {}});
  Wire allMultis;
  for (int m = 5; m <= 16; ++m) {
    Wire one;
    for (auto [high, low] : {std::pair{0x08, 0x00}, {0x08, 0x30}, {0x08, 0x70}, {0x08, 0x74}, {0x0A, 0x20}})
      one.push_back(hexOf({0xF0, 0x43, 0x20, 0x4C, high, m - 1, low, 0xF7}));
    allMultis = allMultis + one;
    rows.push_back({numbered("RtrvMulti", m), menu(numbered("RtrvMulti", m)), one, {}});
  }
  rows.push_back({"RtrvAllMulti", menu("RtrvAllMulti"), allMultis, {}});
  rows.push_back({"AllNtsOff", menu("AllNtsOff"), dropped, {}});
  rows.push_back({"LocalOff", menu("LocalOff"), {"F0 43 10 63 50 00 0B 00 F7"}, {{"LocalOff", "on"}}});
  rows.push_back({"ArpOff", menu("ArpOff"), {"F0 43 10 63 60 00 33 04 F7"}, {{"ArpOff", "on"}}});
  rows.push_back({"TrnsChnlAssgn", menu("TrnsChnlAssgn"), {}, {{"TrnsChnlAssgn", "on"}}});
  rows.push_back({"StrtupPref", menu("StrtupPref"), {}, {{"frmPref", "on"}}});
  rows.push_back({"ExitMenu", cancelled(menu("ExitMenu")), {}, {{"asked", deleteAsked + " / " + deleteAsked + " / Exit: Do you really want to exit program?"}}});

  // The test note: a list and its slider show the same number.
  rows.push_back({"CmbMidNtNo", picked("CmbMidNtNo", 60), {}, {{"CmbMidNtNo", "60"}, {"SldNt", "60"}}});
  rows.push_back({"CmbMidVel", picked("CmbMidVel", 100), {}, {{"CmbMidVel", "100"}, {"SldVel", "100"}}});
  rows.push_back({"SldNt", key("SldNt", Qt::Key_Up), {}, {{"CmbMidNtNo", "61"}, {"SldNt", "61"}}});
  rows.push_back({"SldVel", key("SldVel", Qt::Key_Down), {}, {{"CmbMidVel", "99"}, {"SldVel", "99"}}});

  // ---- The edit panel: opened on M5 with the values it already holds.
  rows.push_back({"EditMult5", menu("EditMult5"), {}, {{"SSTab1", "on 0"}}});
  // A slider moved by a key press alone shows its text and sends nothing; the key's release
  // stores and sends. Each comes back to its value (`valueOf` gives it), so the part keeps its
  // defaults.
  auto sliderRows = [&](std::size_t first, std::size_t last, int part, const std::function<int(std::size_t)>& valueOf) {
    for (std::size_t row = first; row <= last; ++row) {
      const SliderRow& r = kSliderMap[row];
      const QString slider = name(r.control), box = name(r.textBox);
      const int v = valueOf(row), moved = v < r.max ? v + 1 : v - 1;
      const bool up = v < r.max;
      auto shows = [&](int value) { return State{{slider, QString::number(value)}, {box, QString::fromStdString(familyText(r.family, value))}}; };
      rows.push_back({box, [&, slider, up] { QTest::keyPress(at(slider), up ? Qt::Key_Right : Qt::Key_Left); }, {}, shows(moved)});
      rows.push_back({slider, key(slider, up ? Qt::Key_Left : Qt::Key_Right),
                      {test::hex(sliderMessage(r, static_cast<std::uint8_t>(part), v))}, shows(v)});
    }
  };
  auto onScreen = [&](std::size_t row) { return at<QSlider>(name(kSliderMap[row].control))->value(); };
  sliderRows(0, 11, 4, onScreen);
  for (const auto& [box, value] : {std::pair{"TxtMsb", "1"}, {"TxtLsb", "2"}, {"TxtPrg", "3"}})
    rows.push_back({box, typed(box, value), {}, {{box, value}}});
  rows.push_back({"CmdVocChng", clicked("CmdVocChng"),
                  {"F0 43 10 4C 08 04 01 01 F7", "F0 43 10 4C 08 04 02 02 F7", "F0 43 10 4C 08 04 03 03 F7"}, {}});
  rows.push_back({"TxtName1", typed("TxtName1", "Pad"), {},
                  {{"TxtName1", "Pad"}, {"Label34_0", "Pad        M5"}, {"Label34_1", "Pad        M5"}, {"CmdMult5", "Pad        M5"}}});
  rows.push_back({"CmdDone1", clicked("CmdDone1"), {}, {{"SSTab1", "off 0"}}});
  rows.push_back({"EditMult5", menu("EditMult5"), {}, {{"SSTab1", "on 0"}, {"TxtName1", "Pad        M5"}}});
  auto page = [&](int index) {
    return [&, index] {
      QTabBar* bar = at<QTabWidget>("SSTab1")->tabBar();
      QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(index).center());
    };
  };
  rows.push_back({"SSTab1", page(1), {}, {{"SSTab1", "on 1"}}});
  sliderRows(12, 23, 4, onScreen);
  rows.push_back({"ChckPort", clicked("ChckPort"), {"F0 43 10 4C 08 04 67 01 F7"}, {{"ChckPort", "on"}}});
  rows.push_back({"CmdDone2_0", clicked("CmdDone2_0"), {}, {{"SSTab1", "off 1"}}});
  // M6 holds the defaults: the voice and portamento differ, the page in front stays.
  rows.push_back({"EditMult6", menu("EditMult6"), {"F0 43 10 4C 08 05 67 00 F7"},
                  {{"SSTab1", "on 1"}, {"TxtName1", "Multi Part M6"}, {"Label34_0", "Multi Part M6"}, {"Label34_1", "Multi Part M6"},
                   {"TxtMsb", "0"}, {"TxtLsb", "0"}, {"TxtPrg", "0"}, {"ChckPort", "off"},
                   {"SldEffVar", QString::number(at<QSlider>("SldEffVar")->value()) + " off"}, {"Labelx1_15", "off"}}});
  rows.push_back({"SSTab1", page(2), {}, {{"SSTab1", "on 2"}}});
  sliderRows(24, 31, 5, onScreen);
  for (const auto& [group, index, address] : std::vector<std::tuple<QString, int, int>>{
           {"Option3", 1, 7}, {"Option3", 2, 7}, {"Option3", 3, 7}, {"Option3", 0, 7}, {"Option2", 0, 5},
           {"Option2", 1, 5}, {"Option1", 0, 6}, {"Option1", 2, 6}, {"Option1", 1, 6}}) {
    const QString button = QString("%1_%2").arg(group).arg(index);
    rows.push_back({button, clicked(button), {hexOf({0xF0, 0x43, 0x10, 0x4C, 0x08, 0x05, address, index, 0xF7})},
                    {{group, QString::number(index)}}});
  }
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
    everyDefault = everyDefault + defaults(m - 1);
    State changed{{numbered("CmbMult", m), QString::number(m - 1)}};
    if (m == 5 || m == 7) changed[numbered("CmdMult", m)] = numbered("Multi Part M", m);
    rows.push_back({numbered("InitMlt", m), menu(numbered("InitMlt", m)),
                    defaults(m - 1) + Wire{hexOf({0xF0, 0x43, 0x10, 0x4C, 0x08, m - 1, 0x04, m - 1, 0xF7})}, changed});
  }
  rows.push_back({"InitMltall", menu("InitMltall"), everyDefault, {}});
  // Each part opens on the page in front.
  for (int m = 7; m <= 16; ++m) {
    const QString caption = numbered("Multi Part M", m);
    State changed{{"TxtName1", caption}, {"Label34_0", caption}, {"Label34_1", caption}};
    if (m == 7) changed["SSTab1"] = "on 2";
    rows.push_back({numbered("EditMult", m), menu(numbered("EditMult", m)), {}, changed});
  }

  // ---- The effects panel, on Com2 of the Performance chosen above: each list's type at
  // 60 00 40, 42 and 44, then the next type picked.
  const auto stored = VirtualCs2x::storedPerformance(VirtualCs2x::kPreset1, static_cast<std::uint8_t>(program));
  const std::tuple<QString, std::span<const EffectType>> lists[] = {{"CmbRvrb", RvrbTbl}, {"CmbChrs", ChrsTbl}, {"CmbVar", VarTbl}};
  State opened{{"SSTab2", "on"}}, reset, bypassed{{"ChkEffByPass", "on"}};
  std::vector<Row> picks;
  for (int i = 0; i < 3; ++i) {
    const auto& [list, table] = lists[i];
    int type = 0;
    findEffectType(table, stored.com2[2 * i], stored.com2[2 * i + 1], &type);
    const int other = (type + 1) % static_cast<int>(table.size());
    opened[list] = reset[list] = QString::number(type);
    bypassed[list] = QString::number(other) + " off";
    const EffectType& t = table[static_cast<std::size_t>(other)];
    picks.push_back({list, picked(list, other), {hexOf({0xF0, 0x43, 0x10, 0x63, 0x60, 0x00, 0x40 + 2 * i, t.high, t.low, 0xF7})},
                     {{list, QString::number(other)}}});
  }
  auto com2 = [&](std::size_t row) { return static_cast<int>(stored.com2[20 + row - kFirstEffectSlider]); };
  for (std::size_t row = kFirstEffectSlider; row < kSliderRows; ++row)
    opened[name(kSliderMap[row].control)] = opened[name(kSliderMap[row].textBox)] = QString::number(com2(row));
  rows.push_back({"EditEffcts", menu("EditEffcts"), {}, opened});
  rows.insert(rows.end(), picks.begin(), picks.end());
  sliderRows(kFirstEffectSlider, kSliderRows - 1, 0, com2);
  const std::string com2Dump = "F0 43 00 63 00 17 60 00 40*F7";
  rows.push_back({"ChkEffByPass", clicked("ChkEffByPass"),
                  {"F0 43 10 63 60 00 40 00 00 F7", "F0 43 10 63 60 00 42 00 00 F7", "F0 43 10 63 60 00 44 40 00 F7"}, bypassed});
  reset["ChkEffByPass"] = "off";
  rows.push_back({"CmdEffReset", clicked("CmdEffReset"), {com2Dump, com2Dump}, reset});
  rows.push_back({"CmdEffDn1", clicked("CmdEffDn1"), notesOff(61, 99), {{"SSTab2", "off"}}});  // the test note moved above
  rows.push_back({"SSTab2", menu("EditEffcts"), {}, {{"SSTab2", "on"}}});

  // ---- Save and Load. Every save with the Performance reads it first.
  Wire fromEveryMulti;
  for (int m = 5; m <= 16; ++m) fromEveryMulti = fromEveryMulti + defaults(m - 1);  // the same frames; the data the file's
  const Wire perfSent(8, "F0 43 00 63*F7"), setupSent = fromEveryMulti + perfSent;
  for (const auto& [entry, file, size, wire] : std::vector<std::tuple<QString, QString, QString, Wire>>{
           {"SvWrkSpace", "all.tvw", "27850", perfRead}, {"SvSetuptvf", "all.tvf", "2952", perfRead},
           {"SvPerform", "all.tvx", "456", perfRead}, {"SvMultAll", "all.tvm", "2496", {}},
           {"SvSetupMid", "all.mid", "2691", perfRead}, {"SvSetupSyx", "all.syx", "2760", perfRead},
           {"SvWrkSpaceText", "all.txt", "text", perfRead}})
    rows.push_back({entry, inDialog(file, menu(entry)), wire, {{"files", wrote(file, size)}}});
  for (int m = 5; m <= 16; ++m)
    rows.push_back({numbered("SvMult", m), inDialog(QString("m%1.tvs").arg(m), menu(numbered("SvMult", m))), {},
                    {{"files", wrote(QString("m%1.tvs").arg(m), "192")}}});
  // Each Multi takes the file of another, with its own part in every dump; a load hides the edit panel.
  for (int m = 5; m <= 16; ++m)
    rows.push_back({numbered("LdMult", m), inDialog(QString("m%1.tvs").arg(m == 16 ? 5 : m + 1), menu(numbered("LdMult", m))),
                    defaults(m - 1), m == 5 ? State{{"SSTab1", "off 2"}} : State{}});
  rows.push_back({"LdMultAll", inDialog("all.tvm", menu("LdMultAll")), fromEveryMulti, {}});
  rows.push_back({"LdPerform", inDialog("all.tvx", menu("LdPerform")), perfSent, {{"SSTab2", "off"}}});
  rows.push_back({"LdFullSetup", inDialog("all.tvf", menu("LdFullSetup")), setupSent, {}});
  rows.push_back({"LdLayerPool", inDialog("pool.tvp", menu("LdLayerPool")), {}, {{"LbxLyrPool", poolSaved.join(" | ") + " @-1"}}});
  rows.push_back({"LdWrkSpace", inDialog("all.tvw", menu("LdWrkSpace")), setupSent, {{"LbxLyrPool", " @-1"}}});

  // ---- The debug tools: the log and the manual fields, and a file listed as text. The log
  // shows what the last read left in it: DspPerf's 378 bytes.
  const QStringList fields{"76", "8", "6", "11", "90"};
  State shown{{"List1", "on 378"}, {"debugButtons", "on"}}, hidden{{"List1", "off 378"}, {"debugButtons", "off"}};
  for (int i = 0; i < 5; ++i) {
    shown[numbered("TxtParm_", i)] = i == 0 ? "76" : "0";
    hidden[numbered("TxtParm_", i)] = fields[i] + " hidden";
  }
  rows.push_back({"WinOn", menu("WinOn"), {}, shown});
  for (int i = 0; i < 5; ++i)
    rows.push_back({numbered("TxtParm_", i), typed(numbered("TxtParm_", i), fields[i]), {},
                    i == 0 ? State{} : State{{numbered("TxtParm_", i), fields[i]}}});
  rows.push_back({"CmdChngParm", clicked("CmdChngParm"), {"F0 43 10 4C 08 06 0B 5A F7"}, {}});
  rows.push_back({"CmdChngCntl", clicked("CmdChngCntl"), {"B8 06 0B"}, {}});
  rows.push_back({"CmdRtrvParm", clicked("CmdRtrvParm"), {"F0 43 30 4C 08 06 0B F7"}, {{"List1", "on 9"}}});
  rows.push_back({"List1", menu("RtrvPerf"), perfRead, {{"List1", "on 378"}}});
  rows.push_back({"LdSysEx", [&] { inDialog("all.syx", [] {})(), inDialog("all.syx.txt", menu("LdSysEx"))(); }, {},
                  {{"files", wrote("all.syx.txt", "text")}}});
  rows.push_back({"WinOff", menu("WinOff"), {}, hidden});

  // The Load Aid beside the main form; Done hides it.
  rows.push_back({"LdAidSub", menu("LdAidSub"), {}, {{"aid", "CS2x Load Aid"}}});
  rows.push_back({"LdAidSub", [&] { child<QPushButton>(app.form(FormId::LoadAid), "cmdLdAid")->click(); }, {}, {{"aid", "-"}}});
  rows.push_back({"About", [&] { at<QAction>("About")->trigger(), main->findChild<QDialog*>("frmAbout")->close(); }, {}, {}});

  runTable(main, rows, [this] { return state(); }, [this] { cs2x.clearLog(); }, [this] { return wire(); });
  EXPECT_FALSE(app.logic().finished());
}

// The Load Aid's window: the type list sets the pattern, a click on a file loads it, a folder
// is entered by activating it, Done hides the window.
TEST_F(MainFormWiring, TheLoadAidsListsChooseTheTypeTheFolderAndTheFileThatLoads) {
  const std::filesystem::path dir = std::filesystem::path(folder) / "set";
  std::filesystem::create_directories(dir / "inner");
  MainForm& form = *app.logic().mainForm();
  form.files().CommonDialog1.fileName = (dir / "one.tvx").string();
  form.files().SvPerformFile();
  at<QAction>("LdAidSub")->trigger();
  auto* window = qobject_cast<LoadAidWindow*>(app.form(FormId::LoadAid));
  ASSERT_NE(window, nullptr);
  form.loadAid().dirLdAid_Change(dir.string());
  window->render();
  auto* files = child<QListWidget>(window, "flLdAid");
  EXPECT_EQ(files->count(), 0);  // the Workspace pattern at first
  pick(child<QComboBox>(window, "cmbLdAid"), 2);
  ASSERT_EQ(files->count(), 1);
  EXPECT_EQ(files->item(0)->text(), "one.tvx");
  cs2x.clearLog();
  QTest::mouseClick(files->viewport(), Qt::LeftButton, {}, files->visualItemRect(files->item(0)).center());
  const auto sent = wire();
  ASSERT_EQ(sent.size(), 8u);  // the Performance, Com0 first
  EXPECT_EQ(sent[0].substr(18, 8), "50 00 00");
  auto* folders = child<QListWidget>(window, "dirLdAid");
  const auto inner = folders->findItems("inner", Qt::MatchExactly);
  ASSERT_EQ(inner.size(), 1);
  folders->setCurrentItem(inner[0]);
  QTest::keyClick(folders, Qt::Key_Return);
  EXPECT_EQ(form.loadAid().folder, (dir / "inner").string());
  child<QPushButton>(window, "cmdLdAid")->click();
  EXPECT_FALSE(window->isVisible());
}

// ---- The preferences -----------------------------------------------------------------------

QString multiBox(int m) { return m == 8 ? "Chkmlt8" : numbered("ChkMlt", m); }

// Each control as the window shows it and as the form holds it.
State prefState(QWidget* pref, const PrefForm& form) {
  State s;
  for (int m = 5; m <= 16; ++m)
    s[multiBox(m)] = onOff(child<QCheckBox>(pref, multiBox(m))->isChecked()) + QString::number(form.ChkMlt(m).value);
  s["ChkLdFile"] = onOff(child<QCheckBox>(pref, "ChkLdFile")->isChecked()) + QString::number(form.ChkLdFile.value);
  s["TxtLdFile"] = child<QLineEdit>(pref, "TxtLdFile")->text().trimmed() + " | " + QString::fromStdString(form.workspacePath());
  for (const auto& [list, ctl] : {std::pair{"Combo1", &form.Combo1}, {"Combo2", &form.Combo2}, {"cmbPerfChnl", &form.cmbPerfChnl}})
    s[list] = child<QComboBox>(pref, list)->currentText() + QString(" %1").arg(ctl->index());
  s["Slider1"] = QString("%1 %2").arg(child<QSlider>(pref, "Slider1")->value()).arg(form.Slider1.value);
  s["frmPref"] = onOff(pref->isVisible());
  s["stored"] = QString::number(std::filesystem::exists(form.prefsPath) ? std::filesystem::file_size(form.prefsPath) : 0);
  return s;
}

// Each control in turn, then OK stores them all, and they come back at the next start.
TEST_F(ScriptedQtProgram, EveryPreferenceDoesItsOwnWorkAndComesBackAtTheNextStart) {
  ASSERT_NE(startMainForm(), nullptr);
  std::filesystem::remove(prefs.path);
  child<QAction>(app.mainWindow(), "StrtupPref")->trigger();
  PrefWindow* pref = app.prefWindow();
  ASSERT_TRUE(pref->isVisible());
  test::TempFile chosen;
  const QString workspace = QString::fromStdString(chosen.path) + ".tvw";
  std::ofstream(workspace.toStdString()) << "x";
  auto click = [pref](const QString& button) { return [=] { child<QAbstractButton>(pref, button)->click(); }; };
  auto choose = [pref](const QString& list, int index) { return [=] { pick(child<QComboBox>(pref, list), index); }; };

  std::vector<Row> rows;
  for (int m = 5; m <= 16; ++m) rows.push_back({multiBox(m), click(multiBox(m)), {}, {{multiBox(m), "on1"}}});
  rows.push_back({"ChkLdFile", click("ChkLdFile"), {}, {{"ChkLdFile", "on1"}}});
  rows.push_back({"TxtLdFile", [=] { QTest::keyClicks(child<QLineEdit>(pref, "TxtLdFile"), "/tmp/typed.tvw"); }, {},
                  {{"TxtLdFile", "/tmp/typed.tvw | /tmp/typed.tvw"}}});
  // The dialog's file name box takes the whole path.
  rows.push_back({"CmdBrowse",
                  [&] {
                    answers.script.push_back([&](QWidget* modal) {
                      auto* fileName = child<QLineEdit>(modal, "fileNameEdit");
                      fileName->setText(workspace);
                      QTest::keyClick(fileName, Qt::Key_Return);
                    });
                    click("CmdBrowse")();
                  },
                  {}, {{"TxtLdFile", workspace + " | " + workspace}}});
  rows.push_back({"Combo1", choose("Combo1", 1), {}, {{"Combo1", "In B 1"}}});
  rows.push_back({"Combo2", choose("Combo2", 1), {}, {{"Combo2", "Out B 1"}}});
  rows.push_back({"cmbPerfChnl", choose("cmbPerfChnl", 9), {perfChannel(9)}, {{"cmbPerfChnl", " 10 9"}}});
  rows.push_back({"Slider1", [=] { QTest::keyClick(child<QSlider>(pref, "Slider1"), Qt::Key_Right); }, {}, {{"Slider1", "1 1"}}});
  rows.push_back({"OKButton", click("OKButton"), {}, {{"frmPref", "off"}, {"stored", "169"}}});

  runTable(pref, rows, [&] { return prefState(pref, app.logic().pref()); }, [this] { midi.sent.clear(); },
           [this] { return test::hex(midi.sent); });

  QtApp next(midi);
  next.logic().pref().prefsPath = prefs.path;
  next.start();
  State stored = prefState(pref, app.logic().pref());
  stored["frmPref"] = "on";
  EXPECT_EQ(prefState(next.prefWindow(), next.logic().pref()), stored);
  std::filesystem::remove(workspace.toStdString());
}

}  // namespace
}  // namespace tessivo::qt
