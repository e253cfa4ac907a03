#include "windows/options/HelpTexts.h"

#include <QCoreApplication>
#include <algorithm>
#include <array>

namespace tme {
namespace {

constexpr int kFirstText = 101;

constexpr std::array kTexts = {
    // 101
    QT_TRANSLATE_NOOP(
        "HelpTexts",
        "You can change which files the TME considers to be Text-Files, and therefore handled by the TXT editor by "
        "defining the TXT file Filters.  ##Enter the three or four character extention into the 'Define Filter' box, "
        "and press the ADD button.  If the extention does not already exist in the list, the extention will be "
        "added. ##To remove an extension, select the filter in the list, and press the Remove button."),
    // 102
    QT_TRANSLATE_NOOP("HelpTexts", "You can select the default font and size that the TXT Editor displays documents."),
    // 103
    QT_TRANSLATE_NOOP(
        "HelpTexts",
        "The TME can disable the completion notifications that pop up when you run such tools as the 'Gather Dir' "
        "and 'Gather Environmental Variables'. ##You may not wish to have these notifications pop up at the "
        "completion.  In that event, check the box to disable further completion notifications.##Any time you wish "
        "to re-enable the notifications, remove the check from the box."),
    // 104
    QT_TRANSLATE_NOOP(
        "HelpTexts",
        "The TME can place an icon into your SendTo menu, which appears from the context-sensitive menu in the "
        "Windows Explorer.##When the Tamarind Editor Icon appears in the SendTo menu, you can right-click on a file, "
        "and select the TME icon under the SendTo menu to have the TME\" & \"load the file for your editing.  This "
        "is essentially a quick way for you to open the file.##If you remove the check from the box, then the TME "
        "will remove the SendTo Icon from your Windows System."),
    // 105
    QT_TRANSLATE_NOOP(
        "HelpTexts",
        "You can change which files the TME considers to be RTF-Files, and therefore handled by the RTF editor by "
        "defining the RTF file Filters. ##Enter the three or four character extention into the 'Define Filter' box, "
        "and press the ADD button.  If the extention does not already exist in the list, the extention will be "
        "added.##To remove an extension, select the filter in the list, and press the Remove button."),
    // 106
    QT_TRANSLATE_NOOP(
        "HelpTexts",
        "You can change the default startup position of the Search / Replace dialog box from the top right corner of "
        "your screen, to the top right corner of the TME shell.##If selected, the Search / Replace dialog will start "
        "up contained in the TME shell.  Deselect to have Search / Replace start up at top of screen."),
    // 107
    QT_TRANSLATE_NOOP(
        "HelpTexts",
        "If this option is checked, then each editor will open up maximized in the TME Shell.##Otherwise, the "
        "editors will open up in a floating windows within the shell."),
    // 108
    QT_TRANSLATE_NOOP(
        "HelpTexts",
        "You can add a context menu item for all files by selecting this optoin.##Once selected, any time you "
        "right-click on an object, an action item called 'Tamarind Editor' is displayed  on your pop-up menu.  "
        "Selecting this will cause the highlighted file to be opened with the TME.##To remove this context shell "
        "link, deselect the box."),
    // 109
    QT_TRANSLATE_NOOP(
        "HelpTexts",
        "The system variables and values have been placed on the Windows Clipboard.  You may paste the results into "
        "any appropriate TME Editor, or external program."),
    // 110
    QT_TRANSLATE_NOOP("HelpTexts", "Windows only recognizes 4 character or less extention lengths.##The extention "),
    // 111
    QT_TRANSLATE_NOOP(
        "HelpTexts",
        " is not acceptable.  If you wish to associate this extension, follow these steps:##1) Create a blank "
        "document in the Windows Explorer with the extension you want to use#2) Right-Click on the new document and "
        "select Properties#3) Note the MS-DOS file name.  This 3 character extension is what you need to enter here."),
    // 112
    QT_TRANSLATE_NOOP("HelpTexts", "You can not associate a zero length extension."),
    // 113
    QT_TRANSLATE_NOOP(
        "HelpTexts",
        "You have entered illegal characters for your desired extention. ##Windows does not recogzine the symbols: "),
    // 114
    QT_TRANSLATE_NOOP(
        "HelpTexts",
        "You can choose to allow the TME to open multiple documents at once from any of the Open dialog boxes.  "
        "Deselecting this option returns the TME to single-file open mode."),
    // 115
    QT_TRANSLATE_NOOP(
        "HelpTexts",
        "You can change which type of file is your default open filter type to save time when opening documents.  "
        "Use the radio buttons under each file type to dictate which is initially filtered."),
    // 116
    QT_TRANSLATE_NOOP(
        "HelpTexts",
        "You can have the TME automatically save your files every x minutes for you.##Valid time ranges are from 1 "
        "minute on up."),
    // 117
    QT_TRANSLATE_NOOP("HelpTexts", "Your entry for the time is not valid.  You must enter a number greater than 1."),
    // 118
    QT_TRANSLATE_NOOP(
        "HelpTexts",
        "By the rules of this editor, opening a file leaves out what they do not take, and puts the rest in their "
        "order "
        "and form.##If this option is checked, each file is kept whole: all of it is shown in its own order, a save "
        "without an edit writes the same bytes, and an edit changes its own lines alone.##View, Whole File changes "
        "between the two for one document."),
};

constexpr std::array kTopics = {
    HelpTopic{"cb_SendTo", QT_TRANSLATE_NOOP("HelpTexts", "SendTo Link Help"), 104},
    HelpTopic{"cb_Notifications", QT_TRANSLATE_NOOP("HelpTexts", "Notifications Help"), 103},
    HelpTopic{"Check1", QT_TRANSLATE_NOOP("HelpTexts", "Shell Link Help"), 108},
    HelpTopic{"cb_ContainSRD", QT_TRANSLATE_NOOP("HelpTexts", "Search / Replace Startup Help"), 106},
    HelpTopic{"cb_SEM", QT_TRANSLATE_NOOP("HelpTexts", "Editors Startup Help"), 107},
    HelpTopic{"Frame2", QT_TRANSLATE_NOOP("HelpTexts", "Text File Filter Help"), 101},
    HelpTopic{"Frame1", QT_TRANSLATE_NOOP("HelpTexts", "Text Default Display Help"), 102},
    HelpTopic{"Frame3", QT_TRANSLATE_NOOP("HelpTexts", "RTF File Filter Help"), 105},
    HelpTopic{"cb_MultiSelect", QT_TRANSLATE_NOOP("HelpTexts", "MultiSelect Help"), 114},
    HelpTopic{"opt_DefOpen", QT_TRANSLATE_NOOP("HelpTexts", "Default Filter Type Help"), 115},
    HelpTopic{"cb_WholeINI", QT_TRANSLATE_NOOP("HelpTexts", "Whole File Help"), 118},
    HelpTopic{"cb_WholeREG", QT_TRANSLATE_NOOP("HelpTexts", "Whole File Help"), 118},
    HelpTopic{"cb_AutoSave", QT_TRANSLATE_NOOP("HelpTexts", "AutoSave Help"), 116},
    HelpTopic{"txt_AutoSave", QT_TRANSLATE_NOOP("HelpTexts", "AutoSave Help"), 116},
};

}  // namespace

QString HelpText(int id) {
  const auto index = static_cast<std::size_t>(id - kFirstText);
  return index < kTexts.size() ? QCoreApplication::translate("HelpTexts", kTexts[index]) : QString();
}

QString HelpTopic::Title() const { return QCoreApplication::translate("HelpTexts", title); }

const HelpTopic* FindHelpTopic(QStringView control) {
  const auto* topic = std::find_if(kTopics.begin(), kTopics.end(), [&](const HelpTopic& each) {
    return control == QLatin1StringView(each.control.data(), static_cast<qsizetype>(each.control.size()));
  });
  return topic == kTopics.end() ? nullptr : topic;
}

}  // namespace tme
