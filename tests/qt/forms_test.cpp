// The Qt forms under the offscreen platform as a user and the desktop meet them: the start from
// the preferences through the splash to the main form, the controls as the desktop's
// accessibility interface shows them, and every text a musician reads shown whole.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSlider>
#include <QStyleOption>
#include <QTabBar>
#include <QTabWidget>

#include "data/tables.h"
#include "edit/slider_map.h"
#include "qt/qt_program.h"

namespace tessivo::qt {
namespace {

using Forms = QtProgram;

QString text(std::string_view s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }

TEST_F(Forms, ThePreferencesComeFirstAndEnterStartsTheProgramThroughTheSplash) {
  app.start();
  PrefWindow* pref = app.prefWindow();
  ASSERT_NE(pref, nullptr);
  EXPECT_TRUE(pref->isVisible());
  EXPECT_EQ(pref->height(), 2655 / 15);
  EXPECT_GE(pref->width(), 7425 / 15);  // wider where a device name needs it
  for (const char* name : {"Combo1", "Combo2"}) EXPECT_EQ(child<QComboBox>(pref, name)->currentText(), "Virtual CS2x (built-in)");
  EXPECT_TRUE(child<QPushButton>(pref, "OKButton")->isDefault());
  EXPECT_EQ(child<QLabel>(pref, "Label1")->toolTip(), PrefForm::kLabel1Tip);
  pref->activateWindow();
  QTest::keyClick(pref, Qt::Key_Return);

  QWidget* splash = app.form(FormId::Splash);
  ASSERT_NE(splash, nullptr);
  EXPECT_TRUE(splash->isVisible());
  EXPECT_FALSE(pref->isVisible());
  EXPECT_EQ(child<QLabel>(splash, "Picture1")->size(), QSize(415, 121));
  EXPECT_EQ(child<QLabel>(splash, "Picture1")->pixmap().size(), QSize(415, 121));
  EXPECT_EQ(child<QLabel>(splash, "lblCompanyProduct")->font().pointSizeF(), 18);
  EXPECT_TRUE(child<QLabel>(splash, "lblCompanyProduct")->font().bold());
  EXPECT_FALSE(child<QLabel>(splash, "lblWarning")->text().isEmpty());
  MainWindow* main = app.mainWindow();
  ASSERT_NE(main, nullptr);
  EXPECT_FALSE(main->isVisible());  // created hidden until the timer's tick
  ASSERT_TRUE(QTest::qWaitFor([&] { return main->isVisible(); }, 60000));
  EXPECT_EQ(app.form(FormId::Splash), nullptr);
  EXPECT_EQ(child<QComboBox>(main, "CmbPrgm")->currentText(), text(PrfNames1[0]));
}

TEST_F(Forms, TheMenusStandInTheirOrderWithoutShortcutsOrCheckMarks) {
  MainWindow* main = startMainForm();
  ASSERT_NE(main, nullptr);
  std::function<QStringList(const QList<QAction*>&)> tree = [&](const QList<QAction*>& actions) {
    QStringList entries;
    for (QAction* a : actions) {
      EXPECT_TRUE(a->shortcut().isEmpty()) << a->text().toStdString();
      EXPECT_FALSE(a->isChecked()) << a->text().toStdString();
      const QString off = a->isEnabled() ? "" : " (off)";
      entries << (a->menu() ? a->menu()->objectName() + "=" + a->text() + off + " [" + tree(a->menu()->actions()).join(", ") + "]"
                            : a->objectName() + "=" + a->text() + off);
    }
    return entries;
  };
  auto multis = [](const char* name) {
    QStringList entries;
    for (int m = 5; m <= 16; ++m) entries << QString("%1%2=Multi %2").arg(name).arg(m);
    return entries.join(", ");
  };
  EXPECT_EQ(tree(main->menuBar()->actions()),
            QStringList({"FileMenu=File [StrtupPref=Startup Preferences, ExitMenu=Exit]",
                         "EditMenu=Edit [EditEffcts=Effects, EditMulti=Multi [" + multis("EditMult") + "]]",
                         "Retrv=Retrieve [RtrvPerf=Performance, RtrvAllMulti=All Multis, RtrvMult=Multi [" + multis("RtrvMulti") + "]]",
                         "load=Load [LdWrkSpace=Workspace, LdFullSetup=Setup, LdLayerPool=Layer Pool, LdPerform=Performance, "
                         "LdMultAll=All Multis, Mltsel=Multi [" + multis("LdMult") + "], LdAidSub=Load Aid]",
                         "Save=Save [SvWrkSpace=Workspace, SvfullSetup=Setup [SvSetuptvf=as .tvf, SvSetupSyx=as Sys-Ex (off), "
                         "SvSetupMid=as Midi type 0], SvLayerPool=Layer Pool, SvPerform=Performance, SvMultAll=All Multis, "
                         "Mlts=Multi [" + multis("SvMult") + "], SvWrkSpaceText=Workspace Desc Text]",
                         "Init=Initialize [InitMltall=All Multis, Mlt=Multi [" + multis("InitMlt") + "]]",
                         "mnuMidi=Midi [AllNtsOff=All Notes Off, LocalOff=Local Off, ArpOff=Arpeggiator Off, "
                         "TrnsChnlAssgn=Trans Chnl Assigned by Audition]",
                         "Help=Help [About=About]",
                         "DebugMenu=Debug (off) [WinOn=Window On, WinOff=Window Off, LdSysEx=Write sysex]"}));
}

// Escape cancels a question; a message's line breaks show as line breaks.
TEST(MessageBoxes, EscapeCancelsAndLineBreaksShow) {
  std::unique_ptr<QMessageBox> question(makeMessageBox("Exit?", "Exit", MsgButtons::OkCancel, MsgIcon::Question));
  EXPECT_EQ(question->icon(), QMessageBox::Question);
  EXPECT_EQ(question->escapeButton(), question->button(QMessageBox::Cancel));
  std::unique_ptr<QMessageBox> error(makeMessageBox("Operation: Open\r\nx", "Tessivo", MsgButtons::Ok, MsgIcon::None));
  EXPECT_EQ(error->text(), "Operation: Open\nx");
}

// ---- Found from outside ---------------------------------------------------------------------

using R = QAccessible::Role;

// The names of what the desktop's accessibility interface shows below `scope` with this role
// and name (a tab, which is no object of its own, by its name).
QStringList found(QWidget* scope, R role, const QString& name) {
  QStringList hits;
  std::function<void(QAccessibleInterface*)> walk = [&](QAccessibleInterface* e) {
    if (e->role() == role && e->text(QAccessible::Name) == name) hits << (e->object() ? e->object()->objectName() : name);
    for (int i = 0; i < e->childCount(); ++i)
      if (QAccessibleInterface* c = e->child(i)) walk(c);
  };
  walk(QAccessible::queryAccessibleInterface(scope));
  return hits;
}

// The naming convention on every control of a window: a captioned button by its caption, alone
// of its role and caption among its neighbours; a control without a caption by its own name;
// a drop-down list through a label whose buddy it is (the Multis' channel lists after the first
// share one); a label tells the desktop which control it names; the window by its title.
void expectFoundFromOutside(QWidget* window, const QString& title) {
  EXPECT_EQ(QAccessible::queryAccessibleInterface(window)->text(QAccessible::Name), title);
  const QList<QWidget*> all = window->findChildren<QWidget*>();
  for (QWidget* w : all) {
    const QString name = w->objectName();
    if (w->window() != window || name.isEmpty() || name.startsWith("qt_") || qobject_cast<QTabBar*>(w->parentWidget())) continue;
    SCOPED_TRACE(name.toStdString());
    QAccessibleInterface* e = QAccessible::queryAccessibleInterface(w);
    if (auto* button = qobject_cast<QAbstractButton*>(w)) {
      const R role = qobject_cast<QCheckBox*>(w) ? R::CheckBox : qobject_cast<QRadioButton*>(w) ? R::RadioButton : R::PushButton;
      QString caption = button->text().isEmpty() ? name : button->text();  // none of its own: its name
      caption.remove('&');
      EXPECT_EQ(found(w->parentWidget(), role, caption), QStringList{name});
    } else if (qobject_cast<QComboBox*>(w)) {
      EXPECT_TRUE((name.startsWith("CmbMult") && name != "CmbMult5") ||
                  std::any_of(all.begin(), all.end(), [w](QWidget* l) { return qobject_cast<QLabel*>(l) && static_cast<QLabel*>(l)->buddy() == w; }));
    } else if (auto* frame = qobject_cast<QGroupBox*>(w)) {
      EXPECT_EQ(e->text(QAccessible::Name), frame->title().isEmpty() ? name : frame->title());
    } else if (auto* label = qobject_cast<QLabel*>(w); label && label->buddy() != nullptr) {
      const auto relations = e->relations(QAccessible::Labelled);
      EXPECT_TRUE(std::any_of(relations.begin(), relations.end(), [&](const auto& r) { return r.first->object() == label->buddy(); }));
    } else if (qobject_cast<QSlider*>(w) || qobject_cast<QLineEdit*>(w) || qobject_cast<QListWidget*>(w) || qobject_cast<QTabWidget*>(w)) {
      EXPECT_EQ(e->text(QAccessible::Name), name);
    }
  }
  for (QAction* action : window->findChildren<QAction*>())
    if (auto* menu = qobject_cast<QMenu*>(action->parent()); menu && !action->objectName().isEmpty()) {
      EXPECT_EQ(found(menu, R::MenuItem, action->text()), QStringList{action->objectName()});
    }
}

TEST_F(Forms, EveryControlIsFoundFromOutsideByCaptionNameOrLabel) {
  app.start();
  PrefWindow* pref = app.prefWindow();
  expectFoundFromOutside(pref, "Tessivo Startup Preferences");
  child<QPushButton>(pref, "OKButton")->click();
  expectFoundFromOutside(app.form(FormId::Splash), "Tessivo");
  EXPECT_EQ(found(app.form(FormId::Splash), R::Graphic, "Picture1"), QStringList{"Picture1"});
  MainWindow* main = app.mainWindow();
  ASSERT_TRUE(QTest::qWaitFor([&] { return main->isVisible(); }, 60000));
  // With both panels open, so their controls are on the screen too.
  child<QAction>(main, "EditMult7")->trigger();
  child<QAction>(main, "EditEffcts")->trigger();
  expectFoundFromOutside(main, "CS2x Tessivo");
  for (const char* tab : {"Page 1", "Page 2", "Page 3", "Effects"}) EXPECT_EQ(found(main, R::PageTab, tab).size(), 1u) << tab;
}

// ---- Readable -------------------------------------------------------------------------------
// Measured with the widgets' own font against the room that their style gives the text, so
// that a control too narrow for its text fails here; the suite also runs at a scale of 200 %.

int textRoom(QComboBox* box) {
  QStyleOptionComboBox option;
  option.initFrom(box);
  return box->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, box).width() - 2;
}
int textRoom(QLineEdit* edit) {
  QStyleOptionFrame option;
  option.initFrom(edit);
  option.lineWidth = edit->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, edit);
  return edit->style()->subElementRect(QStyle::SE_LineEditContents, &option, edit).width() - 2 * 2 - 1;  // margins, cursor
}
int textRoom(QAbstractButton* button) {
  QStyleOptionButton option;
  option.initFrom(button);
  const auto element = qobject_cast<QCheckBox*>(button)      ? QStyle::SE_CheckBoxContents
                       : qobject_cast<QRadioButton*>(button) ? QStyle::SE_RadioButtonContents
                                                             : QStyle::SE_PushButtonContents;
  return button->style()->subElementRect(element, &option, button).width();
}
int widest(const QWidget* w, const QStringList& texts) {
  int most = 0;
  for (const QString& t : texts) most = std::max(most, w->fontMetrics().horizontalAdvance(t));
  return most;
}

// Where a control draws on its form: a label or a check box where its text stands (a caption
// is centred in the height of its place, which the layout lets overlap its neighbours), any
// other control its whole place.
QRect ink(QWidget* w) {
  const QFontMetrics metrics = w->fontMetrics();
  if (auto* label = qobject_cast<QLabel*>(w); label && label->pixmap().isNull()) {
    const QSize size = label->wordWrap() ? QSize(label->width(), label->heightForWidth(label->width()))
                                         : QSize(metrics.horizontalAdvance(label->text()), metrics.height());
    return QStyle::alignedRect(Qt::LeftToRight, label->alignment(), size, label->geometry());
  }
  if (qobject_cast<QCheckBox*>(w) || qobject_cast<QRadioButton*>(w)) {
    auto* button = static_cast<QAbstractButton*>(w);
    const int right = button->width() - textRoom(button) + metrics.horizontalAdvance(button->text());
    return QStyle::alignedRect(Qt::LeftToRight, Qt::AlignLeft | Qt::AlignVCenter, QSize(right, metrics.height()), w->geometry());
  }
  return w->geometry();
}

// Every caption, list entry and text of the form shows whole, and no two controls run into
// each other (but the Workspace check box, which stands in front of its label's leading blanks).
void expectReadable(QWidget* form) {
  QList<QWidget*> controls;
  for (QWidget* w : form->findChildren<QWidget*>()) {
    if (w->window() != form || !w->isVisible() || w->objectName().isEmpty() || w->objectName().startsWith("qt_")) continue;
    const std::string name = w->objectName().toStdString();
    if (auto* label = qobject_cast<QLabel*>(w); label && label->pixmap().isNull()) {
      EXPECT_TRUE(label->wordWrap() ? label->heightForWidth(label->width()) <= label->height()
                                    : label->sizeHint().width() <= label->width())
          << name;
    }
    if (auto* box = qobject_cast<QComboBox*>(w)) {
      QStringList entries;  // the blanks that pad a type name to its table's width show as nothing
      for (int i = 0; i < box->count(); ++i) entries << box->itemText(i).remove(QRegularExpression(" +$"));
      EXPECT_LE(widest(box, entries), textRoom(box)) << name;
    }
    if (auto* edit = qobject_cast<QLineEdit*>(w)) {
      EXPECT_LE(widest(edit, {edit->text()}), textRoom(edit)) << name;
    }
    if (auto* button = qobject_cast<QAbstractButton*>(w); button && !button->text().isEmpty()) {
      QString shown = button->text();  // an access key's "&" is drawn as an underline
      shown.remove(QChar('&'));
      EXPECT_LE(widest(button, {shown}), textRoom(button)) << name;
    }
    if ((w->parentWidget() == form && w->objectName() != "CS2xClient") || w->parentWidget()->objectName() == "CS2xClient") controls << w;
  }
  for (QWidget* a : controls)
    for (QWidget* b : controls)
      if (a < b && ink(a).intersects(ink(b)) &&
          QSet<QString>{a->objectName(), b->objectName()} != QSet<QString>{"ChkLdFile", "Label3"})
        ADD_FAILURE() << a->objectName().toStdString() << " overlaps " << b->objectName().toStdString();
}

// Where the text of a line edit starts to show, from the left of its frame.
int firstShown(QLineEdit* edit) {
  edit->grab();  // lays the text out as painting does
  EXPECT_EQ(edit->cursorPosition(), 0);
  return edit->inputMethodQuery(Qt::ImCursorRectangle).toRect().center().x();
}

TEST_F(Forms, ReadableEverythingAMusicianReadsShowsWhole) {
  MainWindow* main = startMainForm();
  ASSERT_NE(main, nullptr);
  expectReadable(main);
  PrefWindow* pref = app.prefWindow();
  pref->show();
  expectReadable(pref);
  EXPECT_LE(widest(pref, {"Virtual CS2x (built-in)"}), textRoom(child<QComboBox>(pref, "Combo1")));

  // Every Performance name, in the program list, on the Performance button and with its
  // Layer's letter in the name boxes, from the first character.
  QStringList names{" 128"}, layers;
  for (const auto* bank : {&PrfNames1, &PrfNames2})
    for (std::string_view name : *bank) {
      names << text(name);
      for (QChar letter : {'A', 'B', 'C', 'D'}) layers << text(name) + letter;
    }
  EXPECT_LE(widest(main, names), textRoom(child<QComboBox>(main, "CmbPrgm")));
  EXPECT_LE(widest(main, names), textRoom(child<QPushButton>(main, "CmdPrfm")));
  for (int n = 1; n <= 4; ++n) {
    auto* box = child<QLineEdit>(main, QString("TxtLyr%1").arg(n));
    EXPECT_LE(widest(box, layers), textRoom(box));
    EXPECT_LT(firstShown(box), box->width() / 4) << n;
  }
  // A stored Workspace path longer than its box, with the blanks that fill the record.
  PrefForm& prefs = app.logic().pref();
  prefs.TxtLdFile.text = "/home/musician/workspaces/for the concert in the old town hall/second set.tvw" + std::string(50, ' ');
  pref->render();
  auto* path = child<QLineEdit>(pref, "TxtLdFile");
  EXPECT_LT(firstShown(path), path->width() / 10);
  // Each page of the edit panel, in front in turn: every caption, heading, box and button whole,
  // every text a slider's box can show, and the panel whole on the form beside the Multi rows.
  child<QAction>(main, "EditMult5")->trigger();
  auto* panel = child<QTabWidget>(main, "SSTab1");
  for (int page = 0; page < panel->count(); ++page) {
    SCOPED_TRACE(page);
    panel->setCurrentIndex(page);
    expectReadable(main);
  }
  for (const SliderRow& row : kSliderMap) {
    if (row.page == 0) continue;  // the effects panel's
    auto* box = child<QLineEdit>(panel, text(row.textBox));
    QStringList texts;
    for (int v = row.min; v <= row.max; ++v) texts << QString::fromStdString(familyText(row.family, v));
    EXPECT_LE(widest(box, texts), textRoom(box)) << row.textBox;
  }
  QWidget* client = child<QWidget>(main, "CS2xClient");
  EXPECT_TRUE(client->rect().contains(panel->geometry()));
  // The effects panel beside it, over the Performance block: every type name whole.
  child<QAction>(main, "EditEffcts")->trigger();
  expectReadable(main);
  EXPECT_TRUE(client->rect().contains(child<QWidget>(main, "SSTab2")->geometry()));
  // The About box beside the main form, closed by Escape.
  child<QAction>(main, "About")->trigger();
  auto* about = main->findChild<QDialog*>("frmAbout");
  ASSERT_NE(about, nullptr);
  EXPECT_TRUE(about->isVisible() && !about->isModal());
  EXPECT_EQ(about->windowTitle(), "About CS2x Tessivo");
  EXPECT_EQ(child<QLabel>(about, "lblVersion")->text(), "Version 1.2.0");
  expectReadable(about);
  QTest::keyClick(about, Qt::Key_Escape);
  EXPECT_TRUE(QTest::qWaitFor([&] { return main->findChild<QWidget*>("frmAbout") == nullptr; }, 2000));
}

// The note slider shows the note: the highest at the top, and the groove filled, if at all,
// from the bottom up to the handle, never above it.
TEST_F(Forms, ReadableTheNoteSliderFillsFromTheBottomUpToTheNote) {
  MainWindow* main = startMainForm();
  ASSERT_NE(main, nullptr);
  auto* slider = child<QSlider>(main, "SldNt");
  pick(child<QComboBox>(main, "CmbMidNtNo"), 64);
  const QImage image = slider->grab().toImage();
  const int x = image.width() / 2;
  for (int y = image.height() / 20; y < image.height() / 4; ++y)
    EXPECT_LT(image.pixelColor(x, y).hsvSaturation(), 60) << "a coloured groove above the handle at " << y;

  QTest::mouseClick(slider, Qt::LeftButton, {}, QPoint(slider->width() / 2, 2));  // near the top: higher
  EXPECT_GT(app.logic().mainForm()->CmbMidNtNo.index(), 64);
}

// Device names show whole as far as the form allows; a longer one shows as a tool tip.
TEST_F(ScriptedQtProgram, ReadableALongDeviceNameShowsUnderThePointer) {
  const QString longName = "USB MIDI Interface with a rather long name:USB MIDI Interface MIDI 1 20:0";
  midi.inNames = {"In A", longName.toStdString()};
  app.start();
  PrefWindow* pref = app.prefWindow();
  auto* in = child<QComboBox>(pref, "Combo1");
  EXPECT_LE(in->geometry().right(), child<QComboBox>(pref, "Combo2")->x());
  EXPECT_LE(child<QComboBox>(pref, "Combo2")->geometry().right(), pref->width());
  EXPECT_TRUE(in->toolTip().isEmpty());
  pick(in, 1);
  EXPECT_EQ(in->toolTip(), longName);
}

// The main form as laid out, in twips: each control at its place and at least its size. Those
// that a Linux desktop's font widens keep their left and top (the README names them); the
// program list, the option frames and the two panels move, and are checked by their own tests.
TEST_F(Forms, TheMainFormsControlsStandWhereTheLayoutPutsThem) {
  MainWindow* main = startMainForm();
  ASSERT_NE(main, nullptr);
  struct Place {
    QString name;
    int left, top, width, height;
  };
  std::vector<Place> places{{"LbxLyrPool", 3960, 3720, 1815, 3375}, {"CmdClrLyrPool", 4080, 7200, 1575, 255},
                            {"CmdPrfm", 1800, 4440, 975, 375},      {"CmbMidNtNo", 360, 5160, 735, 315},
                            {"SldNt", 600, 5520, 255, 1935},        {"SldVel", 1320, 5520, 255, 1935},
                            {"List1", 360, 360, 5295, 1230}};
  for (int i = 0; i < 12; ++i) {
    places.push_back({QString("CmdMult%1").arg(i + 5), 5880, 1560 + 480 * i, 1455, 375});
    places.push_back({QString("CmbMult%1").arg(i + 5), 7395, 1560 + 480 * i, 585, 315});
  }
  for (int i = 0; i < 4; ++i) {
    places.push_back({QString("CmdLyr%1").arg(i + 1), 1920, 5040 + 480 * i, 735, 375});
    places.push_back({QString("TxtLyr%1").arg(i + 1), 2760, 5160 + 480 * i, 975, 285});
  }
  for (const Place& p : places) {
    const QRect at = child<QWidget>(main, p.name)->geometry();
    EXPECT_EQ(at.topLeft(), QPoint(p.left / 15, p.top / 15)) << p.name.toStdString();
    EXPECT_GE(at.width(), p.width / 15) << p.name.toStdString();
    EXPECT_EQ(at.height(), p.height / 15) << p.name.toStdString();
  }
  QWidget* client = child<QWidget>(main, "CS2xClient");
  EXPECT_EQ(client->height(), 7740 / 15);
  EXPECT_GE(client->width(), 11085 / 15);
}

}  // namespace
}  // namespace tessivo::qt
