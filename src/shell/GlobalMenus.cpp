#include "shell/GlobalMenus.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QMetaMethod>
#include <array>

#include "shell/DocumentWindow.h"
#include "shell/Global.h"
#include "shell/Icon.h"
#include "system/Dialogs.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

using Kinds = unsigned;
constexpr Kinds Bit(DocumentKind kind) { return static_cast<Kinds>(kind); }
constexpr Kinds kMdi = Bit(DocumentKind::Mdi), kIni = Bit(DocumentKind::Ini), kReg = Bit(DocumentKind::Reg),
                kTxt = Bit(DocumentKind::Txt), kRtf = Bit(DocumentKind::Rtf);
constexpr Kinds kPads = kTxt | kRtf, kDocuments = kIni | kReg | kPads, kAlways = kMdi | kDocuments, kNever = 0;

struct Row {
  const char* parent;   ///< menu name; empty for a menu of the bar
  const char* name;     ///< object name; empty for a separator
  const char* caption;  ///< null for a separator
  Kinds kinds;          ///< who shows it; a menu is shown when one of its items is
  const char* command;  ///< sent to the active document; null: the frame's own (or a menu)
  const char* icon = nullptr;
  const char* shortcut = nullptr;
  bool opens_menu = false;
  /// Where the item has another caption and another command for one of its kinds.
  Kinds other_kind = kNever;
  const char* other_caption = nullptr;
  const char* other_command = nullptr;

  const char* CaptionFor(DocumentKind kind) const { return other_kind & Bit(kind) ? other_caption : caption; }
  const char* CommandFor(DocumentKind kind) const { return other_kind & Bit(kind) ? other_command : command; }
};

constexpr Row OpenMenu(const char* parent, const char* name, const char* caption) {
  return {parent, name, caption, kAlways, nullptr, nullptr, nullptr, true};
}
constexpr Row Separator(const char* parent, const char* name = "") { return {parent, name, nullptr, kAlways, nullptr}; }

// The spellings "&Sectons", menu_ViewCollaspeAlll and global_WIndowTileV are intended.
constexpr std::array kRows{
    OpenMenu("", "md_Menu_File", QT_TR_NOOP("&File")),
    OpenMenu("md_Menu_File", "global_FileNew", QT_TR_NOOP("&New")),
    Row{"global_FileNew", "global_FileNewINI", QT_TR_NOOP("&INI File"), kAlways, nullptr, "ini-file", "Ctrl+N"},
    Row{"global_FileNew", "global_FileNewTXT", QT_TR_NOOP("Te&xt File"), kAlways, nullptr, "txt-file"},
    Row{"global_FileNew", "global_FileNewRTF", QT_TR_NOOP("&RTF File"), kAlways, nullptr, "rtf-file"},
    Row{"global_FileNew", "global_FileNewREG", QT_TR_NOOP("Re&gistry File"), kAlways, nullptr, "reg-file"},
    Row{"md_Menu_File", "global_FileOpen", QT_TR_NOOP("&Open"), kAlways, nullptr, "file-open", "Ctrl+O"},
    Separator("md_Menu_File"),
    Row{"md_Menu_File", "menu_FileSave", QT_TR_NOOP("&Save"), kIni | kPads, "SaveFile", "file-save", "Ctrl+S"},
    OpenMenu("md_Menu_File", "menu_FileRegSave", QT_TR_NOOP("&Save")),
    Row{"menu_FileRegSave", "menu_FileSaveRegular", QT_TR_NOOP("&Regular"), kReg, "FileSaveRegular", "file-save",
        "Ctrl+S"},
    Row{"menu_FileRegSave", "menu_FileSaveExpanded", QT_TR_NOOP("&Expanded"), kReg, "FileSaveExpanded"},
    Row{"md_Menu_File", "menu_FileSaveAs", QT_TR_NOOP("Save &As"), kIni | kPads, "SaveAs", "file-save-as",
        "Ctrl+Shift+S"},
    OpenMenu("md_Menu_File", "menu_FileRegSaveAs", QT_TR_NOOP("Save &As")),
    Row{"menu_FileRegSaveAs", "Menu_FileSaveAsRegular", QT_TR_NOOP("&Regular"), kReg, "FileSaveAsRegular",
        "file-save-as", "Ctrl+Shift+S"},
    Row{"menu_FileRegSaveAs", "menu_FileSaveAsExpanded", QT_TR_NOOP("&Expanded"), kReg, "FileSaveAsExpanded"},
    Row{"md_Menu_File", "menu_FileSaveForm", QT_TR_NOOP("Save As Another &Form..."), kIni | kReg, "SaveAsAnotherForm"},
    Row{"md_Menu_File", "menu_FileSaveAll", QT_TR_NOOP("Save A&ll"), kDocuments, nullptr},
    Separator("md_Menu_File"),
    Row{"md_Menu_File", "menu_FileClose", QT_TR_NOOP("&Close File"), kDocuments, "FileClose", "file-close",
        "Ctrl+F4; Ctrl+W"},
    Row{"md_Menu_File", "menu_FileCloseAll", QT_TR_NOOP("C&lose All Files"), kDocuments, nullptr},
    Separator("md_Menu_File"),
    Row{"md_Menu_File", "menu_FilePrint", QT_TR_NOOP("&Print"), kDocuments, nullptr, "print", "Ctrl+P"},
    Separator("md_Menu_File", "mrusep"),
    Row{"md_Menu_File", "menu_mru1", "mru1", kAlways, nullptr},
    Row{"md_Menu_File", "menu_mru2", "mru2", kAlways, nullptr},
    Row{"md_Menu_File", "menu_mru3", "mru3", kAlways, nullptr},
    Row{"md_Menu_File", "menu_mru4", "mru4", kAlways, nullptr},
    Separator("md_Menu_File"),
    Row{"md_Menu_File", "global_FileExit", QT_TR_NOOP("E&xit TME"), kAlways, nullptr, nullptr, "Ctrl+Q"},

    OpenMenu("", "TME_Edit", QT_TR_NOOP("&Edit")),
    Row{"TME_Edit", "TME_EditPasteRTF", QT_TR_NOOP("Paste to new &RTF"), kMdi, nullptr},
    Row{"TME_Edit", "TME_EditPasteTXT", QT_TR_NOOP("Paste to new &TXT"), kMdi, nullptr},

    OpenMenu("", "menu_Edit", QT_TR_NOOP("&Edit")),
    Row{"menu_Edit", "menu_EditUndo", QT_TR_NOOP("&Undo"), kIni | kPads, "EditUndo", "edit-undo", "Ctrl+Z"},
    Row{"menu_Edit", "menu_EditRedo", QT_TR_NOOP("R&edo"), kIni | kPads, "EditRedo", "edit-redo",
        "Ctrl+Y; Ctrl+Shift+Z"},
    Separator("menu_Edit"),
    Row{"menu_Edit", "menu_EditCut", QT_TR_NOOP("&Cut"), kIni | kPads, "EditCut", "edit-cut", "Ctrl+X"},
    Row{"menu_Edit", "menu_EditCopy", QT_TR_NOOP("C&opy"), kIni | kPads, "EditCopy", "edit-copy", "Ctrl+C"},
    Row{"menu_Edit", "menu_EditPaste", QT_TR_NOOP("&Paste"), kIni | kPads, "EditPaste", "edit-paste", "Ctrl+V"},
    OpenMenu("menu_Edit", "menu_EditPasteAs", QT_TR_NOOP("Paste &As")),
    Row{"menu_EditPasteAs", "menu_EditPasteAsTXT", QT_TR_NOOP("New Section"), kIni | kRtf, "PasteNewSection", nullptr,
        "Ctrl+Shift+V", false, kRtf, QT_TR_NOOP("Plain Text"), "EditPasteSpecialPlainText"},
    Row{"menu_EditPasteAs", "Menu_PasteShell", QT_TR_NOOP("Paste &Shell"), kDocuments, nullptr},
    Row{"menu_Edit", "menu_EditPasteRTF", QT_TR_NOOP("Paste to new &RTF"), kIni | kPads, nullptr},
    Row{"menu_Edit", "menu_EditPasteTXT", QT_TR_NOOP("Paste to new &TXT"), kIni | kPads, nullptr},
    Row{"menu_Edit", "menu_EditDel", QT_TR_NOOP("&Delete Selection"), kIni | kPads, "EditDelete", "edit-delete", "Del"},
    Row{"menu_Edit", "menu_EditSelectAll", QT_TR_NOOP("Select &All"), kPads, "EditSelectAll", "edit-select-all",
        "Ctrl+A"},
    Row{"menu_Edit", "menu_EditCopyText", QT_TR_NOOP("Copy as Te&xt"), kIni, "CopyAsText"},
    Separator("menu_Edit"),
    Row{"menu_Edit", "menu_EditLine", QT_TR_NOOP("Ed&it"), kIni, "EditLine", "edit-entry"},
    Row{"menu_Edit", "menu_EditLineRename", QT_TR_NOOP("Re&name"), kIni, "EditRename", "rename", "F2"},
    Row{"menu_Edit", "menu_EditTimeDate", QT_TR_NOOP("&Time and Date"), kPads, "EditTimeDate", "time-date", "F5"},
    Row{"menu_Edit", "menu_EditWordWrap", QT_TR_NOOP("&Word Wrap"), kPads, "EditWW"},
    OpenMenu("menu_Edit", "menu_EditKeyValue", QT_TR_NOOP("Key / &Value")),
    Row{"menu_EditKeyValue", "menu_EditAddKeyValue", QT_TR_NOOP("&Add Key / Value"), kIni, "AddValue", "add-entry"},
    Row{"menu_EditKeyValue", "menu_EditAddToAll", QT_TR_NOOP("Add &Key to All Sections"), kIni, "AddSectionToAll"},
    Row{"menu_EditKeyValue", "menu_EditDeleteValue", QT_TR_NOOP("&Delete Key / Value"), kIni, "DeleteValue",
        "delete-entry"},
    Row{"menu_EditKeyValue", "menu_EditRemovefromAll", QT_TR_NOOP("Delete Key / &Value from all Sections"), kIni,
        "DeleteAllNodes"},
    OpenMenu("menu_Edit", "menu_EditSections", QT_TR_NOOP("&Sectons")),
    Row{"menu_EditSections", "menu_EditSectionsAdd", QT_TR_NOOP("&Add Section"), kIni, "AddSection", "add-section"},
    Row{"menu_EditSections", "menu_SectionsDelete", QT_TR_NOOP("&Delete Sections"), kIni, "DeleteSection",
        "delete-section"},

    OpenMenu("", "menu_EditReg", QT_TR_NOOP("&Edit")),
    Row{"menu_EditReg", "menu_EditRegUndo", QT_TR_NOOP("&Undo"), kReg, "EditUndo", "edit-undo", "Ctrl+Z"},
    Row{"menu_EditReg", "menu_EditRegRedo", QT_TR_NOOP("R&edo"), kReg, "EditRedo", "edit-redo", "Ctrl+Y; Ctrl+Shift+Z"},
    Separator("menu_EditReg"),
    Row{"menu_EditReg", "menu_EditModify", QT_TR_NOOP("&Modify"), kReg, "EditModify", "edit-entry"},
    OpenMenu("menu_EditReg", "menu_EditNew", QT_TR_NOOP("&New")),
    Row{"menu_EditNew", "menu_EditNewKey", QT_TR_NOOP("&Key"), kReg, "EditNewKey", "key"},
    Row{"menu_EditNew", "menu_EditNewString", QT_TR_NOOP("&String Value"), kReg, "EditNewString", "value-string"},
    Row{"menu_EditNew", "menu_EditNewExpandString", QT_TR_NOOP("E&xpandable String"), kReg, "EditNewExpandString",
        "value-string"},
    Row{"menu_EditNew", "menu_EditNewMultiString", QT_TR_NOOP("&Multi-String"), kReg, "EditNewMultiString",
        "value-string"},
    Row{"menu_EditNew", "Menu_EditNewDword", QT_TR_NOOP("&DWORD Value"), kReg, "EditNewDword", "value-dword"},
    Row{"menu_EditNew", "menu_EditNewQword", QT_TR_NOOP("&QWORD"), kReg, "EditNewQword", "value-dword"},
    Row{"menu_EditNew", "menu_EditNewBinary", QT_TR_NOOP("&Binary Value"), kReg, "EditNewBinary", "value-hex"},
    Separator("menu_EditReg", "menu_EditRegClipboard"),
    Row{"menu_EditReg", "menu_EditRegCut", QT_TR_NOOP("&Cut"), kReg, "EditCut", "edit-cut", "Ctrl+X"},
    Row{"menu_EditReg", "menu_EditRegCopy", QT_TR_NOOP("C&opy"), kReg, "EditCopy", "edit-copy", "Ctrl+C"},
    Row{"menu_EditReg", "menu_EditRegPaste", QT_TR_NOOP("&Paste"), kReg, "EditPaste", "edit-paste", "Ctrl+V"},
    Separator("menu_EditReg"),
    Row{"menu_EditReg", "menu_EditCopyKeyPath", QT_TR_NOOP("Copy &Key Path"), kReg, "CopyKeyPath", nullptr,
        "Ctrl+Shift+C"},
    Row{"menu_EditReg", "menu_EditCopyRegAdd", QT_TR_NOOP("Copy as reg &add Line"), kReg, "CopyRegAdd"},
    Row{"menu_EditReg", "menu_EditRegCopyText", QT_TR_NOOP("Copy as &Text"), kReg, "CopyAsText"},
    Separator("menu_EditReg"),
    Row{"menu_EditReg", "menu_EditDelete", QT_TR_NOOP("Delete"), kReg, "EditDelete", "edit-delete", "Del"},
    Row{"menu_EditReg", "menu_EditWriteDeletion", QT_TR_NOOP("Write a De&letion"), kReg, "EditWriteDeletion", nullptr,
        "Shift+Del"},
    Row{"menu_EditReg", "menu_EditRename", QT_TR_NOOP("&Rename"), kReg, "EditRename", "rename", "F2"},

    OpenMenu("", "menu_Search", QT_TR_NOOP("&Search")),
    Row{"menu_Search", "menu_SearchFind", QT_TR_NOOP("&Find"), kDocuments, "SearchFind", "search-find", "Ctrl+F"},
    Row{"menu_Search", "menu_SearchAgain", QT_TR_NOOP("Find &Again"), kIni | kReg | kTxt, "SearchAgain", "search-again",
        "F3"},
    Row{"menu_Search", "menu_SearchPrevious", QT_TR_NOOP("Find &Previous"), kIni | kReg, "SearchPrevious", nullptr,
        "Shift+F3"},
    Row{"menu_Search", "menu_SearchReplace", QT_TR_NOOP("&Replace"), kDocuments, "SearchReplace", "search-replace",
        "Ctrl+H"},
    Row{"menu_Search", "menu_SearchGoToLine", QT_TR_NOOP("&Go to Line..."), kIni | kReg | kTxt, nullptr, nullptr,
        "Ctrl+G"},

    OpenMenu("", "menu_Format", QT_TR_NOOP("&Format")),
    Row{"menu_Format", "menu_FormatFont", QT_TR_NOOP("&Font"), kRtf, "FormatFont", "format-font"},
    Row{"menu_Format", "Menu_FormatColor", QT_TR_NOOP("&Color"), kRtf, "FormatColor", "format-color"},
    Row{"menu_Format", "menu_FormatBold", QT_TR_NOOP("&Bold"), kRtf, "FormatBold", nullptr, "Ctrl+B"},
    Row{"menu_Format", "menu_FormatItalic", QT_TR_NOOP("&Italic"), kRtf, "FormatItalic", nullptr, "Ctrl+I"},
    Row{"menu_Format", "menu_FormatUnderline", QT_TR_NOOP("&Underline"), kRtf, "FormatUnderline", nullptr, "Ctrl+U"},
    Row{"menu_Format", "menu_FormatBulleted", QT_TR_NOOP("Bulleted"), kRtf, "FormatBulleted"},

    OpenMenu("", "menu_View", QT_TR_NOOP("&View")),
    Row{"menu_View", "menu_ViewWholeFile", QT_TR_NOOP("&Whole File"), kIni | kReg, "WholeFile"},
    Row{"menu_View", "menu_ViewShowComments", QT_TR_NOOP("Show Co&mments"), kReg, "ShowComments"},
    Row{"menu_View", "menu_ViewSource", QT_TR_NOOP("So&urce"), kIni | kReg, "ViewSource", nullptr, "Ctrl+U"},
    Row{"menu_View", "menu_ViewSourceBeside", QT_TR_NOOP("Source &Beside the Tree"), kIni | kReg, "ViewSourceBeside"},
    Separator("menu_View"),
    Row{"menu_View", "menu_ViewExpandAll", QT_TR_NOOP("&Expand All"), kIni | kReg, "ExpandAll"},
    Row{"menu_View", "menu_ViewCollaspeAlll", QT_TR_NOOP("&Collapse All"), kIni | kReg, "CollapseAll"},
    Row{"menu_View", "menu_ViewLineNumbers", QT_TR_NOOP("&Line Numbers"), kTxt, "ViewLineNumbers"},
    Row{"menu_View", "menu_ViewSortByName", QT_TR_NOOP("&Sort by Name"), kIni, "SortByName"},

    OpenMenu("", "menu_Tools", QT_TR_NOOP("&Tools")),
    Row{"menu_Tools", "menu_FeatureDIR", QT_TR_NOOP("Gather &DIR list"), kAlways, nullptr},
    Row{"menu_Tools", "menu_FeaturesSysEdit", QT_TR_NOOP("&SYSEDIT"), kAlways, nullptr},
    Row{"menu_Tools", "menu_ToolsMSDOS", QT_TR_NOOP("Edit &MSDOS.SYS"), kAlways, nullptr},
    Row{"menu_Tools", "menu_FeatureVars", QT_TR_NOOP("Gather &Environmental Variables"), kAlways, nullptr},
    Row{"menu_Tools", "menu_ToolsOptions", QT_TR_NOOP("&Options..."), kAlways, nullptr},
    Row{"menu_Tools", "menu_ToolsContents", QT_TR_NOOP("Show What This File &Contains..."), kRtf, "ShowContents"},
    Row{"menu_Tools", "menu_ToolsHistory", QT_TR_NOOP("File &History..."), kAlways, nullptr, "file-history"},
    Row{"menu_Tools", "menu_ToolsCompare", QT_TR_NOOP("Compare &Files..."), kAlways, nullptr},
    Row{"menu_Tools", "ASDF", "ASDF", kNever, nullptr},

    OpenMenu("", "md_menu_window", QT_TR_NOOP("&Window")),
    Row{"md_menu_window", "global_WindowCascade", QT_TR_NOOP("&Cascade"), kDocuments, nullptr, "window-cascade"},
    Row{"md_menu_window", "global_WindowTileH", QT_TR_NOOP("Tile &Horizontally"), kDocuments, nullptr, "window-tile-h"},
    Row{"md_menu_window", "global_WIndowTileV", QT_TR_NOOP("Tile &Vertically"), kDocuments, nullptr, "window-tile-v"},
    Row{"md_menu_window", "global_WindowIcons", QT_TR_NOOP("Arrange &Icons"), kDocuments, nullptr, "window-icons"},

    OpenMenu("", "menu_Help", QT_TR_NOOP("&Help")),
    Row{"menu_Help", "menu_HelpAbout", QT_TR_NOOP("&About"), kAlways, nullptr, "about"},
};

}  // namespace

GlobalMenus::GlobalMenus(QMenuBar& bar, std::function<void(const QByteArray& command)> send)
    : bar_(bar), send_(std::move(send)) {
  for (std::size_t index = 0; index < kRows.size(); ++index) {
    const Row& row = kRows[index];
    const QString name = QString::fromLatin1(row.name);
    QMenu* parent = menus_.value(QString::fromLatin1(row.parent));
    if (row.opens_menu) {
      AddMenu(name, tr(row.caption), parent);
      continue;
    }
    QAction* action = parent->addAction(row.caption ? tr(row.caption) : QString());
    action->setObjectName(name);
    if (!row.caption) action->setSeparator(true);
    if (row.shortcut) action->setShortcuts(QKeySequence::listFromString(QString::fromLatin1(row.shortcut)));
    if (!name.isEmpty()) actions_.insert(name, action);
    connect(action, &QAction::triggered, this, [this, index] { Choose(index); });
  }
}

void GlobalMenus::AddMenu(const QString& name, const QString& caption, QMenu* parent) {
  QMenu* menu = parent ? parent->addMenu(caption) : bar_.addMenu(caption);
  menu->setObjectName(name);
  menu->setAccessibleName(QString(caption).remove(u'&'));
  menu->setToolTipsVisible(true);
  menu->menuAction()->setObjectName(name);
  menus_.insert(name, menu);
  // Pictures are loaded when a menu first opens: the start of the program waits for none.
  const auto load = [this, name] { LoadIcons(name); };
  connect(menu, &QMenu::aboutToShow, this, load, Qt::SingleShotConnection);
  actions_.insert(name, menu->menuAction());
}

void GlobalMenus::LoadIcons(const QString& menu_name) {
  for (const Row& row : kRows)
    if (row.icon && menu_name == QLatin1StringView(row.parent))
      Action(QString::fromLatin1(row.name))->setIcon(Icon(QString::fromLatin1(row.icon)));
}

void GlobalMenus::Handle(const char* item_name, std::function<void()> handler) {
  handlers_[QString::fromLatin1(item_name)] = std::move(handler);
}

bool GlobalMenus::IsOffered(std::size_t index, DocumentKind kind) const {
  const Row& row = kRows[index];
  const QString name = QString::fromLatin1(row.name);
  if (!(row.kinds & Bit(kind)) || hidden_.contains(name)) return false;
  return !row.caption || row.command || handlers_.contains(name);
}

void GlobalMenus::SetHidden(const QString& item_name, bool hidden) {
  if (hidden)
    hidden_.insert(item_name);
  else
    hidden_.remove(item_name);
  for (std::size_t index = 0; index < kRows.size(); ++index)
    if (item_name == QLatin1StringView(kRows[index].name)) Action(item_name)->setVisible(IsOffered(index, kind_));
}

void GlobalMenus::RefreshMenus(DocumentKind kind) {
  kind_ = kind;
  QHash<QString, bool> menu_shown;
  QList<QAction*> in_bar;
  // From the last row up, so that the items of a menu are settled before the row that opens it.
  for (std::size_t index = kRows.size(); index-- > 0;) {
    const Row& row = kRows[index];
    QAction* action = actions_.value(QString::fromLatin1(row.name));
    if (!action) continue;
    const QString name = QString::fromLatin1(row.name);
    if (row.other_caption || captioned_.remove(name)) action->setText(tr(row.CaptionFor(kind)));
    const bool shown = row.opens_menu ? menu_shown.value(name) : IsOffered(index, kind);
    action->setVisible(shown);
    action->setEnabled(true);
    if (shown && *row.parent == '\0') in_bar.prepend(action);
    if (shown && row.caption) menu_shown.insert(QString::fromLatin1(row.parent), true);
  }
  ShowInBar(in_bar);
}

void GlobalMenus::ShowInBar(const QList<QAction*>& menus) {
  if (bar_.actions() == menus) return;
  for (QAction* action : bar_.actions()) bar_.removeAction(action);
  bar_.addActions(menus);
}

void GlobalMenus::SetAvailable(const char* item_name, bool available) {
  actions_.value(QString::fromLatin1(item_name))->setEnabled(available);
}

void GlobalMenus::SetCaption(const char* item_name, const QString& caption) {
  const QString name = QString::fromLatin1(item_name);
  captioned_.insert(name);
  actions_.value(name)->setText(caption);
}

void GlobalMenus::SetChecked(const char* item_name, bool checked) {
  QAction* action = actions_.value(QString::fromLatin1(item_name));
  action->setCheckable(true);
  action->setChecked(checked);
}

QAction* GlobalMenus::Action(const QString& item_name) const { return actions_.value(item_name); }

QMenu* GlobalMenus::Menu(const QString& menu_name) const { return menus_.value(menu_name); }

QByteArray GlobalMenus::CommandOf(const QString& item_name, DocumentKind kind) {
  for (const Row& row : kRows)
    if (item_name == QLatin1StringView(row.name)) return row.CommandFor(kind);
  return {};
}

void GlobalMenus::Choose(std::size_t index) {
  const QString name = QString::fromLatin1(kRows[index].name);
  // The click itself has inverted a check mark; that is for the command to do.
  if (QAction* action = actions_.value(name); action && action->isCheckable()) action->setChecked(!action->isChecked());
  if (const auto handler = handlers_.constFind(name); handler != handlers_.constEnd()) {
    (*handler)();
    return;
  }
  send_(kRows[index].CommandFor(kind_));
}

bool SendCommand(Global& global, DocumentWindow& window, const QByteArray& command) {
  if (window.TakeCommand(command)) return true;
  if (window.metaObject()->indexOfMethod(command + "()") >= 0)
    return QMetaObject::invokeMethod(&window, command.constData());
  global.dialogs.MsgBox(
      GlobalMenus::tr("This document does not support the command \"%1\".").arg(QLatin1StringView(command)),
      MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
  return false;
}

}  // namespace tme
