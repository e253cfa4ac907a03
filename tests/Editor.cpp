#include "Editor.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QTimer>
#include <QTreeView>

#include "windows/ini/IniItemModel.h"
#include "windows/reg/form_REG.h"
#include "windows/rich/form_RTF.h"
#include "windows/text/form_TXT.h"

using namespace tme;

namespace {

DocumentWindow* MakeWindow(Global& global, DocumentKind kind, int slot) {
  if (kind == DocumentKind::Ini) return new form_INI(global, slot);
  if (kind == DocumentKind::Txt) return new form_TXT(global, slot);
  if (kind == DocumentKind::Rtf) return new form_RTF(global, slot);
  return kind == DocumentKind::Reg ? new form_REG(global, slot) : nullptr;
}

}  // namespace

Editor::Editor()
    : frame_(std::make_unique<mdform_TMEditor>(
          Services{registry_, shell_utilities_, dialogs_, common_dialog_, link_, history_}, MakeWindow)),
      global_(frame_->Shared()) {}

Editor::~Editor() {
  dialogs_.ExpectAllAsked();
  common_dialog_.ExpectAllAsked();
}

void Editor::Start(const QStringList& command_line) {
  frame_->MDIForm_Load(command_line);
  QApplication::processEvents();
}

form_INI& Editor::Ini(int slot) { return dynamic_cast<form_INI&>(*global_.documents.At(DocumentKind::Ini, slot)); }

form_INI& Editor::NewIni(const std::string& text) {
  const int slot = global_.documents.FindFreeSlot(DocumentKind::Ini);
  form_INI& window = Ini(slot);
  window.NewINI();
  QGuiApplication::clipboard()->setText(QString::fromStdString(text));
  window.EditPaste();
  return window;
}

QString Editor::File(const QString& name, const std::string& bytes) {
  QFile file(InFolder(name));
  EXPECT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(bytes.data(), static_cast<qsizetype>(bytes.size()));
  return InFolder(name);
}

std::string Editor::BytesOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "(no file)";
}

std::string Editor::Dump(const IniTree& tree) {
  std::string text;
  const std::function<void(const IniNode*, int)> add = [&](const IniNode* node, int level) {
    text.append(static_cast<std::size_t>(level), ' ').append(node == tree.Selected() ? ">" : "");
    text.append(node->Text()).append("\n");
    for (int row = 0; row < node->ChildCount(); ++row) add(node->Child(row), level + 1);
  };
  add(tree.Root(), 0);
  return text;
}

void Editor::Select(form_INI& window, const QStringList& path) {
  auto* view = window.findChild<QTreeView*>(QStringLiteral("TV"));
  QModelIndex index = view->model()->index(0, 0);
  for (const QString& text : path) {
    QModelIndex found;
    for (int row = 0; row < view->model()->rowCount(index); ++row)
      if (view->model()->index(row, 0, index).data().toString() == text) found = view->model()->index(row, 0, index);
    ASSERT_TRUE(found.isValid()) << text.toStdString();
    index = found;
  }
  view->setCurrentIndex(index);
}

void Editor::OnDialog(const QString& object_name, std::function<void(QWidget&)> drive) {
  auto* timer = new QTimer(qApp);
  QObject::connect(timer, &QTimer::timeout, timer, [timer, object_name, drive = std::move(drive)] {
    QWidget* dialog = QApplication::activeModalWidget();
    if (!dialog || dialog->objectName() != object_name || !dialog->isActiveWindow()) return;
    timer->deleteLater();
    timer->stop();
    drive(*dialog);
  });
  timer->start(1);
}
