// How much memory the program holds: the whole program with its Qt forms (offscreen platform)
// on the built-in instrument, started as a user starts it, then hours' worth of a musician's
// work driven as fast as it goes, through the widgets: slider releases on the edit and effects
// panels, channel and program lists, auditions, Layers dragged into the Pool and Pool entries
// onto Multis, loads and saves of every own file type and the exports through Qt's file dialogs.
// VmRSS and VmHWM are sampled after the start and after every quarter of an hour's worth.
//
// Beside them, the bytes malloc holds for the program (mallinfo2): what is live, apart from
// what the allocator keeps for later. The work can be narrowed to some kinds, to find what grows.
//
//   memory_bench [hours] [releases,lists,auditions,drops,files]     (4 hours, every kind)
// ("filecalls": the saves and loads without the file dialogs.)
#include <malloc.h>
#include <stdlib.h>  // mkdtemp

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDrag>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMimeData>
#include <QMouseEvent>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include "edit/slider_map.h"
#include "files/files.h"
#include "instrument/virtual_cs2x.h"
#include "link/port_service.h"
#include "link/rtmidi_ports.h"
#include "shell/qt/qt_app.h"
#include "stamped_ports.h"

using namespace tessivo;
using namespace tessivo::qt;

namespace {

// VmRSS and VmHWM of this process, in KiB.
std::pair<long, long> memory() {
  std::ifstream status("/proc/self/status");
  std::string key;
  long rss = -1, hwm = -1;
  while (status >> key) {
    if (key == "VmRSS:") status >> rss;
    else if (key == "VmHWM:") status >> hwm;
    status.ignore(1 << 12, '\n');
  }
  return {rss, hwm};
}

template <typename W = QWidget>
W* child(QObject* parent, const QString& name) {
  auto* w = parent->findChild<W*>(name);
  if (w == nullptr) throw std::runtime_error("no " + name.toStdString());
  return w;
}

// Mouse events as the window system delivers them, sent straight to the widget.
void mouse(QWidget* w, QEvent::Type type, QPoint pos, Qt::MouseButtons held) {
  QMouseEvent event(type, QPointF(pos), w->mapToGlobal(QPointF(pos)), Qt::LeftButton, held, Qt::NoModifier);
  QApplication::sendEvent(w, &event);
}
void click(QWidget* w) {
  mouse(w, QEvent::MouseButtonPress, w->rect().center(), Qt::LeftButton);
  mouse(w, QEvent::MouseButtonRelease, w->rect().center(), Qt::NoButton);
}

// A drag from `source` (pressed at `at` of `events`) dropped on `over` in `window`; the
// platform's drag returns at once offscreen, so the drop's events are sent as it would send them.
void drag(QWidget* window, QWidget* source, QWidget* events, QPoint at, QWidget* over) {
  mouse(events, QEvent::MouseButtonPress, at, Qt::LeftButton);
  mouse(events, QEvent::MouseMove, at + QPoint(QApplication::startDragDistance() + 1, 0), Qt::LeftButton);
  auto* started = source->findChild<QDrag*>();
  if (started == nullptr) return;
  QMimeData data;
  for (const QString& format : started->mimeData()->formats()) data.setData(format, started->mimeData()->data(format));
  delete started;
  const QPoint inWindow = over->mapTo(window, over->rect().center());
  QWidget* receiver = window->childAt(inWindow);
  if (receiver == nullptr) receiver = window;
  const QPoint pos = receiver->mapFrom(window, inWindow);
  QDragEnterEvent enter(pos, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(receiver, &enter);
  QDragMoveEvent move(pos, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(receiver, &move);
  QDropEvent drop(QPointF(pos), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(receiver, &drop);
}

// A pick in a drop-down list as a user makes it: the list opens and the entry is clicked.
void pick(QComboBox* box, int index) {
  box->showPopup();
  QAbstractItemView* view = box->view();
  const QModelIndex entry = view->model()->index(index, box->modelColumn());
  view->scrollTo(entry);
  QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(entry).center());
}

// Answers the file dialogs with `path` and every box with Yes (an overwrite) or its default.
class Answers {
 public:
  QString path;
  long dialogs = 0, boxes = 0;
  QStringList asked;  // the boxes' texts, each once
  Answers() {
    timer_.callOnTimeout([this] {
      QWidget* modal = QApplication::activeModalWidget();
      if (modal == nullptr || !modal->isVisible()) return;
      if (auto* box = qobject_cast<QMessageBox*>(modal)) {
        ++boxes;
        if (!asked.contains(box->text())) asked << box->text();
        QAbstractButton* yes = box->button(QMessageBox::Yes);
        (yes ? yes : static_cast<QAbstractButton*>(box->defaultButton()))->click();
      } else if (auto* dialog = qobject_cast<QFileDialog*>(modal)) {
        ++dialogs;
        dialog->selectFile(path);
        auto* name = dialog->findChild<QLineEdit*>("fileNameEdit");
        QTimer::singleShot(0, name, [name] { QTest::keyClick(name, Qt::Key_Return); });
      }
    });
    timer_.start(2);
  }

 private:
  QTimer timer_;
};

struct Counts {
  long releases = 0, lists = 0, auditions = 0, drops = 0, loads = 0, saves = 0, exports = 0;
};

class Musician {
 public:
  Musician(MainForm& form, MainWindow* main, Answers& answers, const std::filesystem::path& folder, const QString& kinds)
      : form_(form), main_(main), answers_(answers), folder_(folder) {
    const QStringList k = kinds.split(',');
    releases_ = k.contains("releases"), lists_ = k.contains("lists"), auditions_on_ = k.contains("auditions");
    drops_on_ = k.contains("drops"), files_on_ = k.contains("files"), undialogued_ = k.contains("filecalls");
  }

  // A quarter of an hour's work: 750 slider releases, 75 list picks, 150 auditions, 10 drops,
  // 15 saves, 15 loads and 2 exports.
  void quarter(Counts& n) {
    for (int i = 0; i < 750; ++i) {
      if (releases_) {
        if (i % 50 == 0) openPanel();
        releaseSlider();
        ++n.releases;
      }
      if (lists_ && i % 10 == 0) {
        pickList();
        ++n.lists;
      }
      if (auditions_on_ && i % 5 == 0) {
        audition();
        ++n.auditions;
      }
      if (drops_on_ && i % 75 == 0) {
        drops();
        n.drops += 2;
      }
      if (files_on_ && i % 50 == 25) fileWork(n);
      if (undialogued_ && i % 50 == 25) fileCalls(n);
      QApplication::processEvents();
    }
    click(child(main_, "CmdClrLyrPool"));  // the Pool emptied now and then
  }

 private:
  template <typename W = QWidget>
  W* at(const QString& name) { return child<W>(main_, name); }

  void openPanel() {
    ++panels_;
    if (panels_ % 5 == 0) {
      at<QAction>("EditEffcts")->trigger();
      onEffects_ = true;
    } else {
      multi_ = 5 + (panels_ * 7) % 12;
      at<QAction>(QString("EditMult%1").arg(multi_))->trigger();
      onEffects_ = false;
    }
  }
  void releaseSlider() {
    const std::size_t row = onEffects_ ? kEditSliders + step_ % (kSliderRows - kEditSliders) : step_ % kEditSliders;
    auto* slider = at<QSlider>(QString::fromUtf8(kSliderMap[row].control.data(), static_cast<qsizetype>(kSliderMap[row].control.size())));
    // Each release moves the slider one step, up on even rounds and down on odd ones.
    QTest::keyClick(slider, (step_ / kSliderRows) % 2 == 0 ? Qt::Key_Right : Qt::Key_Left);
    ++step_;
  }
  void pickList() {
    ++picks_;
    if (picks_ % 5 == 0) {
      auto* programs = at<QComboBox>("CmbPrgm");
      pick(programs, (picks_ * 13) % programs->count());
    } else {
      auto* list = at<QComboBox>(QString("CmbMult%1").arg(5 + picks_ % 12));
      pick(list, (picks_ * 5) % list->count());
    }
  }
  void audition() {
    ++auditions_;
    const int which = auditions_ % 17;
    QWidget* button = which < 12 ? at(QString("CmdMult%1").arg(5 + which))
                      : which < 16 ? at(QString("CmdLyr%1").arg(which - 11))
                                   : at("CmdPrfm");
    click(button);
  }
  void drops() {
    auto* pool = at<QListWidget>("LbxLyrPool");
    const int layer = 1 + drops_++ % 4;
    drag(main_, at(QString("TxtLyr%1").arg(layer)), at(QString("TxtLyr%1").arg(layer)), {5, 5}, pool);
    if (pool->count() > 0) {
      const QPoint entry = pool->visualItemRect(pool->item(0)).center();
      drag(main_, pool, pool->viewport(), entry, at(QString("CmdMult%1").arg(5 + drops_ % 12)));
    }
  }
  // One save and one load of the next own file type in turn, and now and then an export.
  void fileWork(Counts& n) {
    static const char* const kinds[][3] = {{"SvWrkSpace", "LdWrkSpace", "work.tvw"},
                                           {"SvSetuptvf", "LdFullSetup", "setup.tvf"},
                                           {"SvPerform", "LdPerform", "perf.tvx"},
                                           {"SvLayerPool", "LdLayerPool", "pool.tvp"},
                                           {"SvMultAll", "LdMultAll", "multis.tvm"}};
    const auto& kind = kinds[files_ % 5];
    answers_.path = QString::fromStdString((folder_ / kind[2]).string());
    at<QAction>(kind[0])->trigger();
    ++n.saves;
    at<QAction>(kind[1])->trigger();
    ++n.loads;
    if (files_ % 7 == 3) {
      const bool mid = files_ % 2 == 0;
      answers_.path = QString::fromStdString((folder_ / (mid ? "setup.mid" : "desc.txt")).string());
      at<QAction>(mid ? "SvSetupMid" : "SvWrkSpaceText")->trigger();
      ++n.exports;
    }
    ++files_;
  }
  // The same saves and loads without Qt's file dialog: the logic's readers and writers, then the
  // form rendered, as after the dialog.
  void fileCalls(Counts& n) {
    static const std::pair<void (Files::*)(), void (Files::*)()> kinds[] = {
        {&Files::SvWrkSpaceFile, &Files::LdWrkSpaceFile}, {&Files::SvSetupFile, &Files::LdFullSetupFile},
        {&Files::SvPerformFile, &Files::LdPerformFile},   {&Files::SvLyrPoolFile, &Files::LdLyrPoolFile},
        {&Files::SvMultAllFile, &Files::LdMultAllFile}};
    static const char* const names[] = {"work.tvw", "setup.tvf", "perf.tvx", "pool.tvp", "multis.tvm"};
    Files& files = form_.files();
    files.CommonDialog1.fileName = files.CurFilePath = (folder_ / names[files_ % 5]).string();
    (files.*kinds[files_ % 5].first)();
    ++n.saves;
    (files.*kinds[files_ % 5].second)();
    ++n.loads;
    main_->render();
    ++files_;
  }

  MainForm& form_;
  MainWindow* main_;
  Answers& answers_;
  std::filesystem::path folder_;
  int panels_ = 0, multi_ = 5, picks_ = 0, auditions_ = 0, drops_ = 0, files_ = 0;
  std::size_t step_ = 0;
  bool onEffects_ = false;
  bool releases_ = true, lists_ = true, auditions_on_ = true, drops_on_ = true, files_on_ = true, undialogued_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  const int hours = argc > 1 ? std::max(1, std::atoi(argv[1])) : 4;
  const QString kinds = argc > 2 ? QString(argv[2]) : QString("releases,lists,auditions,drops,files");
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  // The offscreen platform says of every raise and grab that it has none.
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
    if (!text.startsWith("This plugin does not support")) std::fprintf(stderr, "%s\n", qPrintable(text));
  });
  std::string pattern = (std::filesystem::temp_directory_path() / "memory_bench_XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) return 1;
  const std::filesystem::path folder = pattern;

  const auto t0 = std::chrono::steady_clock::now();
  // As app/main.cpp builds the program; the built-in instrument's output counts the messages.
  QApplication qapp(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  VirtualCs2x instrument;
  VirtualCs2xProvider builtIn(instrument);
  bench::Stamps stamps;
  bench::StampedProvider counted(builtIn, stamps);
  RtMidiProvider system(chooseMidiSystem());
  PortMidiService midi({&counted, &system});
  int code = 0;
  {
    QtApp app(midi);
    app.logic().pref().prefsPath = (folder / "tessivo.ini").string();
    Answers answers;
    app.start();
    child<QPushButton>(app.prefWindow(), "OKButton")->click();
    MainWindow* main = app.mainWindow();
    if (main == nullptr || !QTest::qWaitFor([&] { return main->isVisible(); }, 60000)) {
      std::fprintf(stderr, "memory_bench: no main form\n");
      return 1;
    }
    QTest::qWait(100);
    std::printf("Memory of the whole program (Qt forms, offscreen platform, %s), built-in instrument\n",
                qgetenv("QT_QPA_PLATFORM").constData());
    std::printf("An hour's worth: 3000 slider releases, 300 list picks, 600 auditions, 40 Layers dropped into the\n"
                "Pool and 40 Pool entries onto Multis, 60 saves, 60 loads, about 8 exports; as fast as they go.\n");
    std::printf("Work: %s\n", qPrintable(kinds));
    std::printf("%-22s %9s %9s %9s %9s %9s %9s %9s %8s %10s\n", "", "VmRSS MB", "VmHWM MB", "malloc MB", "releases",
                "lists", "auditions", "loads", "saves", "messages");
    Counts n;
    auto sample = [&](const std::string& when) {
      const auto [rss, hwm] = memory();
      const struct mallinfo2 heap = mallinfo2();
      std::printf("%-22s %9.1f %9.1f %9.1f %9ld %9ld %9ld %9ld %8ld %10ld\n", when.c_str(), rss / 1024.0, hwm / 1024.0,
                  static_cast<double>(heap.uordblks) / 1048576.0, n.releases, n.lists, n.auditions, n.loads, n.saves, stamps.messages.load());
      std::fflush(stdout);
    };
    sample("after start");
    Musician musician(*app.logic().mainForm(), main, answers, folder, kinds);
    for (int h = 0; h < hours; ++h)
      for (int q = 1; q <= 4; ++q) {
        musician.quarter(n);
        sample(q == 4 ? "hour " + std::to_string(h + 1) : "hour " + std::to_string(h) + " + " + std::to_string(q) + "/4");
      }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    std::printf("%ld drops, %ld exports, %ld file dialogs, %ld boxes answered; %.0f s in all (goal: at most 60 MB, flat)\n",
                n.drops, n.exports, answers.dialogs, answers.boxes, seconds);
    for (const QString& text : answers.asked) std::printf("  box: %s\n", qPrintable(QString(text).replace('\n', ' ')));
    app.logic().Terminate();
  }
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  return code;
}
