#include "shell/GlobalMenus.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QMetaMethod>
#include <array>

#include "shell/DocumentWindow.h"
#include "shell/Global.h"
#include "shell/Icon.h"
#include "shell/mdform_TMEditor.h"
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
  const char* caption;  ///< null for an item of a menu, set on rows that open a menu themselves: see `opens_menu`
  Kinds kinds;          ///< who shows it; a menu is shown when one of its items is
  const char* command;  ///< sent to the active document; null: the frame's own (or a menu)
  const char* icon = nullptr;
  const char* shortcut = nullptr;
  bool opens_menu = false;
};

constexpr Row OpenMenu(const char* parent, const char* name, const char* caption) {
  return {parent, name, caption, kAlways, nullptr, nullptr, nullptr, true};
}
constexpr Row Separator(const char* parent, const char* name = "") { return {parent, name, nullptr, kAlways, nullptr}; }

// The spellings "&Sectons", menu_ViewCollaspeAlll and global_WIndowTileV are intended.
constexpr std::array kRows{
    OpenMenu("", "md_Menu_File", "&File"),
    OpenMenu("md_Menu_File", "global_FileNew", "&New"),
    Row{"global_FileNew", "global_FileNewINI", "&INI File", kAlways, nullptr, "ini-file", "Ctrl+N"},
    Row{"global_FileNew", "global_FileNewTXT", "Te&xt File", kAlways, nullptr, "txt-file"},
    Row{"global_FileNew", "global_FileNewRTF", "&RTF File", kAlways, nullptr, "rtf-file"},
    Row{"global_FileNew", "global_FileNewREG", "Re&gistry File", kAlways, nullptr, "reg-file"},
    Row{"md_Menu_File", "global_FileOpen", "&Open", kAlways, nullptr, "file-open", "Ctrl+O"},
    Separator("md_Menu_File"),
    Row{"md_Menu_File", "menu_FileSave", "&Save", kIni | kPads, "SaveFile", "file-save", "Ctrl+S"},
    OpenMenu("md_Menu_File", "menu_FileRegSave", "&Save"),
    Row{"menu_FileRegSave", "menu_FileSaveRegular", "&Regular", kReg, "FileSaveRegular", "file-save", "Ctrl+S"},
    Row{"menu_FileRegSave", "menu_FileSaveExpanded", "&Expanded", kReg, "FileSaveExpanded"},
    Row{"md_Menu_File", "menu_FileSaveAs", "Save &As", kIni | kPads, "SaveAs", "file-save-as", "Ctrl+Shift+S"},
    OpenMenu("md_Menu_File", "menu_FileRegSaveAs", "Save &As"),
    Row{"menu_FileRegSaveAs", "Menu_FileSaveAsRegular", "&Regular", kReg, "FileSaveAsRegular", "file-save-as",
        "Ctrl+Shift+S"},
    Row{"menu_FileRegSaveAs", "menu_FileSaveAsExpanded", "&Expanded", kReg, "FileSaveAsExpanded"},
    Row{"md_Menu_File", "menu_FileSaveAll", "Save A&ll", kDocuments, nullptr},
    Separator("md_Menu_File"),
    Row{"md_Menu_File", "menu_FileClose", "&Close File", kDocuments, "FileClose", "file-close", "Ctrl+F4; Ctrl+W"},
    Row{"md_Menu_File", "menu_FileCloseAll", "C&lose All Files", kDocuments, nullptr},
    Separator("md_Menu_File"),
    Row{"md_Menu_File", "menu_FilePrint", "&Print", kDocuments, nullptr, "print", "Ctrl+P"},
    Separator("md_Menu_File", "mrusep"),
    Row{"md_Menu_File", "menu_mru1", "mru1", kAlways, nullptr},
    Row{"md_Menu_File", "menu_mru2", "mru2", kAlways, nullptr},
    Row{"md_Menu_File", "menu_mru3", "mru3", kAlways, nullptr},
    Row{"md_Menu_File", "menu_mru4", "mru4", kAlways, nullptr},
    Separator("md_Menu_File"),
    Row{"md_Menu_File", "global_FileExit", "E&xit TME", kAlways, nullptr, nullptr, "Ctrl+Q"},

    OpenMenu("", "TME_Edit", "&Edit"),
    Row{"TME_Edit", "TME_EditPasteRTF", "Paste to new &RTF", kMdi, nullptr},
    Row{"TME_Edit", "TME_EditPasteTXT", "Paste to new &TXT", kMdi, nullptr},

    OpenMenu("", "menu_Edit", "&Edit"),
    Row{"menu_Edit", "menu_EditUndo", "&Undo", kPads, "EditUndo", "edit-undo", "Ctrl+Z"},
    Row{"menu_Edit", "menu_EditRedo", "R&edo", kPads, "EditRedo", "edit-redo", "Ctrl+Y; Ctrl+Shift+Z"},
    Separator("menu_Edit"),
    Row{"menu_Edit", "menu_EditCut", "&Cut", kIni | kPads, "EditCut", "edit-cut", "Ctrl+X"},
    Row{"menu_Edit", "menu_EditCopy", "C&opy", kIni | kPads, "EditCopy", "edit-copy", "Ctrl+C"},
    Row{"menu_Edit", "menu_EditPaste", "&Paste", kIni | kPads, "EditPaste", "edit-paste", "Ctrl+V"},
    OpenMenu("menu_Edit", "menu_EditPasteAs", "Paste &As"),
    // The caption tells the command; RefreshMenus and CommandOf set both by kind.
    Row{"menu_EditPasteAs", "menu_EditPasteAsTXT", "New Section", kIni | kRtf, "PasteNewSection", nullptr,
        "Ctrl+Shift+V"},
    Row{"menu_EditPasteAs", "Menu_PasteShell", "Paste &Shell", kDocuments, nullptr},
    Row{"menu_Edit", "menu_EditPasteRTF", "Paste to new &RTF", kIni | kPads, nullptr},
    Row{"menu_Edit", "menu_EditPasteTXT", "Paste to new &TXT", kIni | kPads, nullptr},
    Row{"menu_Edit", "menu_EditDel", "&Delete Selection", kIni | kPads, "EditDelete", "edit-delete", "Del"},
    Row{"menu_Edit", "menu_EditSelectAll", "Select &All", kPads, "EditSelectAll", "edit-select-all", "Ctrl+A"},
    Separator("menu_Edit"),
    Row{"menu_Edit", "menu_EditTimeDate", "&Time and Date", kPads, "EditTimeDate", "time-date", "F5"},
    Row{"menu_Edit", "menu_EditWordWrap", "&Word Wrap", kPads, "EditWW"},
    OpenMenu("menu_Edit", "menu_EditKeyValue", "Key / &Value"),
    Row{"menu_EditKeyValue", "menu_EditAddKeyValue", "&Add Key / Value", kIni, "AddValue", "add-entry"},
    Row{"menu_EditKeyValue", "menu_EditAddToAll", "Add &Key to All Sections", kIni, "AddSectionToAll"},
    Row{"menu_EditKeyValue", "menu_EditDeleteValue", "&Delete Key / Value", kIni, "DeleteValue", "delete-entry"},
    Row{"menu_EditKeyValue", "menu_EditRemovefromAll", "Delete Key / &Value from all Sections", kIni, "DeleteAllNodes"},
    OpenMenu("menu_Edit", "menu_EditSections", "&Sectons"),
    Row{"menu_EditSections", "menu_EditSectionsAdd", "&Add Section", kIni, "AddSection", "add-section"},
    Row{"menu_EditSections", "menu_SectionsDelete", "&Delete Sections", kIni, "DeleteSection", "delete-section"},

    OpenMenu("", "menu_EditReg", "&Edit"),
    Row{"menu_EditReg", "menu_EditModify", "&Modify", kReg, "EditModify", "edit-entry"},
    OpenMenu("menu_EditReg", "menu_EditNew", "&New"),
    Row{"menu_EditNew", "menu_EditNewKey", "&Key", kReg, "EditNewKey", "key"},
    Row{"menu_EditNew", "menu_EditNewString", "&String Value", kReg, "EditNewString", "value-string"},
    Row{"menu_EditNew", "Menu_EditNewDword", "&DWORD Value", kReg, "EditNewDword", "value-dword"},
    Row{"menu_EditNew", "menu_EditNewBinary", "&Binary Value", kReg, "EditNewBinary", "value-hex"},
    Row{"menu_EditReg", "menu_EditDelete", "Delete", kReg, "EditDelete", "edit-delete", "Del"},
    Row{"menu_EditReg", "menu_EditRename", "&Rename", kReg, "EditRename", "rename", "F2"},

    OpenMenu("", "menu_Search", "&Search"),
    Row{"menu_Search", "menu_SearchFind", "&Find", kPads, "SearchFind", "search-find", "Ctrl+F"},
    Row{"menu_Search", "menu_SearchAgain", "Find &Again", kTxt, "SearchAgain", "search-again", "F3"},
    Row{"menu_Search", "menu_SearchReplace", "&Replace", kPads, "SearchReplace", "search-replace", "Ctrl+H"},

    OpenMenu("", "menu_Format", "&Format"),
    Row{"menu_Format", "menu_FormatFont", "&Font", kRtf, "FormatFont", "format-font"},
    Row{"menu_Format", "Menu_FormatColor", "&Color", kRtf, "FormatColor", "format-color"},
    Row{"menu_Format", "menu_FormatBold", "&Bold", kRtf, "FormatBold", nullptr, "Ctrl+B"},
    Row{"menu_Format", "menu_FormatItalic", "&Italic", kRtf, "FormatItalic", nullptr, "Ctrl+I"},
    Row{"menu_Format", "menu_FormatUnderline", "&Underline", kRtf, "FormatUnderline", nullptr, "Ctrl+U"},
    Row{"menu_Format", "menu_FormatBulleted", "Bulleted", kRtf, "FormatBulleted"},

    OpenMenu("", "menu_View", "&View"),
    Row{"menu_View", "menu_ViewExpandAll", "&Expand All", kIni, "ExpandAll"},
    Row{"menu_View", "menu_ViewCollaspeAlll", "&Collapse All", kIni, "CollapseAll"},

    OpenMenu("", "menu_Tools", "&Tools"),
    Row{"menu_Tools", "menu_FeatureDIR", "Gather &DIR list", kAlways, nullptr},
    Row{"menu_Tools", "menu_FeaturesSysEdit", "&SYSEDIT", kAlways, nullptr},
    Row{"menu_Tools", "menu_ToolsMSDOS", "Edit &MSDOS.SYS", kAlways, nullptr},
    Row{"menu_Tools", "menu_FeatureVars", "Gather &Environmental Variables", kAlways, nullptr},
    Row{"menu_Tools", "menu_ToolsOptions", "&Options...", kAlways, nullptr},
    Row{"menu_Tools", "menu_ToolsHistory", "File &History...", kAlways, nullptr, "file-history"},
    Row{"menu_Tools", "ASDF", "ASDF", kNever, nullptr},

    OpenMenu("", "md_menu_window", "&Window"),
    Row{"md_menu_window", "global_WindowCascade", "&Cascade", kDocuments, nullptr, "window-cascade"},
    Row{"md_menu_window", "global_WindowTileH", "Tile &Horizontally", kDocuments, nullptr, "window-tile-h"},
    Row{"md_menu_window", "global_WIndowTileV", "Tile &Vertically", kDocuments, nullptr, "window-tile-v"},
    Row{"md_menu_window", "global_WindowIcons", "Arrange &Icons", kDocuments, nullptr, "window-icons"},

    OpenMenu("", "menu_Help", "&Help"),
    Row{"menu_Help", "menu_HelpAbout", "&About", kAlways, nullptr, "about"},
};

constexpr const char* kPlainTextCaption = "Plain Text";
constexpr const char* kNewSectionCaption = "New Section";

}  // namespace

GlobalMenus::GlobalMenus(Global& global, QMenuBar& bar) : global_(global), bar_(bar) {
  for (std::size_t index = 0; index < kRows.size(); ++index) {
    const Row& row = kRows[index];
    const QString name = QString::fromLatin1(row.name);
    QMenu* parent = menus_.value(QString::fromLatin1(row.parent));
    if (row.opens_menu) {
      const QString caption = QString::fromLatin1(row.caption);
      QMenu* menu = parent ? parent->addMenu(caption) : bar.addMenu(caption);
      menu->setObjectName(name);
      menu->setAccessibleName(QString(caption).remove(u'&'));
      menu->setToolTipsVisible(true);
      menu->menuAction()->setObjectName(name);
      menus_.insert(name, menu);
      // Pictures come with the first look at a menu: the start of the program waits for none.
      const auto load = [this, name] { LoadIcons(name); };
      connect(menu, &QMenu::aboutToShow, this, load, Qt::SingleShotConnection);
      actions_.insert(name, menu->menuAction());
      continue;
    }
    QAction* action = parent->addAction(QString::fromLatin1(row.caption));
    action->setObjectName(name);
    if (!row.caption) action->setSeparator(true);
    if (row.shortcut) action->setShortcuts(QKeySequence::listFromString(QString::fromLatin1(row.shortcut)));
    if (!name.isEmpty()) actions_.insert(name, action);
    connect(action, &QAction::triggered, this, [this, index] { Choose(index); });
  }
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
  actions_.value(u"menu_EditPasteAsTXT"_s)
      ->setText(QString::fromLatin1(kind == DocumentKind::Rtf ? kPlainTextCaption : kNewSectionCaption));
  QHash<QString, bool> menu_shown;
  QList<QAction*> in_bar;
  // From the last row up, so that the items of a menu are settled before the row that opens it.
  for (std::size_t index = kRows.size(); index-- > 0;) {
    const Row& row = kRows[index];
    QAction* action = actions_.value(QString::fromLatin1(row.name));
    if (!action) continue;
    const QString name = QString::fromLatin1(row.name);
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

void GlobalMenus::SetChecked(const char* item_name, bool checked) {
  QAction* action = actions_.value(QString::fromLatin1(item_name));
  action->setCheckable(true);
  action->setChecked(checked);
}

bool GlobalMenus::IsChecked(const char* item_name) const {
  return actions_.value(QString::fromLatin1(item_name))->isChecked();
}

QAction* GlobalMenus::Action(const QString& item_name) const { return actions_.value(item_name); }

QMenu* GlobalMenus::Menu(const QString& menu_name) const { return menus_.value(menu_name); }

QByteArray GlobalMenus::CommandOf(const QString& item_name, DocumentKind kind) {
  for (const Row& row : kRows) {
    if (item_name != QLatin1StringView(row.name)) continue;
    if (kind == DocumentKind::Rtf && item_name == u"menu_EditPasteAsTXT") return "EditPasteSpecialPlainText";
    return row.command;
  }
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
  DocumentWindow* window = global_.frame->ActiveDocument();
  if (window) SendCommand(global_, *window, CommandOf(name, window->Kind()));
}

bool SendCommand(Global& global, DocumentWindow& window, const QByteArray& command) {
  if (window.metaObject()->indexOfMethod(command + "()") >= 0)
    return QMetaObject::invokeMethod(&window, command.constData());
  global.dialogs.MsgBox(u"This document does not support the command \"%1\"."_s.arg(QLatin1StringView(command)),
                        MsgButtons::Ok, MsgIcon::Warning, kProgramTitle);
  return false;
}

}  // namespace tme
