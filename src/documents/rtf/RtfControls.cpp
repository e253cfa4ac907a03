#include "documents/rtf/RtfControls.h"

#include <array>

#include "documents/rtf/RtfDocument.h"

namespace tme::rtf {
namespace {

using C = Control;

constexpr std::int32_t kLineSeparator = 0x2028;

constexpr std::int32_t Of(auto value) { return static_cast<std::int32_t>(value); }

// clang-format off
constexpr auto kIgnoredWords = std::to_array<std::string_view>({
    "rtf", "nosectexpand", "softline", "softpage", "softcol", "softlheight", "fcs", "insrsid",
    "charrsid", "pararsid", "sectrsid", "delrsid", "tblrsid", "styrsid", "yts", "wrapdefault",
});

constexpr auto kTextWords = std::to_array<ControlWord>({
    {"tab", C::Character, '\t'}, {"emdash", C::Character, 0x2014}, {"endash", C::Character, 0x2013},
    {"bullet", C::Character, 0x2022}, {"lquote", C::Character, 0x2018}, {"rquote", C::Character, 0x2019},
    {"ldblquote", C::Character, 0x201C}, {"rdblquote", C::Character, 0x201D}, {"emspace", C::Character, 0x2003},
    {"enspace", C::Character, 0x2002}, {"qmspace", C::Character, 0x2005}, {"zwj", C::Character, 0x200D},
    {"zwnj", C::Character, 0x200C}, {"zwbo", C::Character, 0x200B}, {"zwnbo", C::Character, 0x2060},
    {"ltrmark", C::Character, 0x200E}, {"rtlmark", C::Character, 0x200F}, {"nbsp", C::Character, 0xA0},
    {"par", C::Paragraph}, {"sect", C::Section}, {"page", C::Break, '\f'}, {"line", C::Break, kLineSeparator},
    {"lbr", C::Break, kLineSeparator}, {"chpgn", C::DynamicText}, {"sectnum", C::DynamicText},
    {"chdate", C::DynamicText}, {"chtime", C::DynamicText}, {"chdpl", C::DynamicText}, {"chdpa", C::DynamicText},
    {"column", C::InvisibleMark}, {"chftn", C::InvisibleMark}, {"chatn", C::InvisibleMark},
    {"chftnsep", C::InvisibleMark}, {"chftnsepc", C::InvisibleMark}, {"uc", C::UnicodeSkip}, {"u", C::Unicode},
});

constexpr auto kCharacterWords = std::to_array<ControlWord>({
    {"plain", C::Plain}, {"f", C::FontNumber}, {"fs", C::FontSize}, {"cf", C::Color}, {"cb", C::Shading},
    {"highlight", C::Background}, {"chcbpat", C::Shading}, {"b", C::Bold}, {"i", C::Italic},
    {"ul", C::Underlined, Of(Underline::Single)}, {"ulnone", C::Underlined, Of(Underline::None)},
    {"ulw", C::Underlined, Of(Underline::Words)}, {"uldb", C::Underlined, Of(Underline::Double)},
    {"uld", C::Underlined, Of(Underline::Dotted)}, {"uldash", C::Underlined, Of(Underline::Dash)},
    {"ulldash", C::Underlined, Of(Underline::LongDash)}, {"uldashd", C::Underlined, Of(Underline::DashDot)},
    {"uldashdd", C::Underlined, Of(Underline::DashDotDot)}, {"ulth", C::Underlined, Of(Underline::Thick)},
    {"ulthd", C::Underlined, Of(Underline::ThickDotted)}, {"ulthdash", C::Underlined, Of(Underline::ThickDash)},
    {"ulthdashd", C::Underlined, Of(Underline::ThickDashDot)},
    {"ulthdashdd", C::Underlined, Of(Underline::ThickDashDotDot)},
    {"ulthldash", C::Underlined, Of(Underline::ThickLongDash)}, {"ulwave", C::Underlined, Of(Underline::Wave)},
    {"ulhwave", C::Underlined, Of(Underline::HeavyWave)}, {"ululdbwave", C::Underlined, Of(Underline::DoubleWave)},
    {"strike", C::Struck, Of(Strike::Single)}, {"striked", C::Struck, Of(Strike::Double)},
    {"super", C::Scripted, Of(Script::Super)}, {"sub", C::Scripted, Of(Script::Sub)},
    {"nosupersub", C::Scripted, Of(Script::Normal)}, {"up", C::Raised, 1}, {"dn", C::Raised, -1},
    {"caps", C::Capital, Of(Capitals::All)}, {"scaps", C::Capital, Of(Capitals::Small)}, {"v", C::Hidden},
    {"ltrch", C::Direction}, {"rtlch", C::Direction}, {"af", C::OtherFont}, {"chbrdr", C::CharacterBorder},
    {"loch", C::FontClassWord, Of(FontClass::Low)}, {"hich", C::FontClassWord, Of(FontClass::High)},
    {"dbch", C::FontClassWord, Of(FontClass::Double)},
});
constexpr auto kKeptCharacterWords = std::to_array<std::string_view>({
    "lang", "langfe", "langnp", "langfenp", "noproof", "kerning", "expnd", "expndtw", "charscalex", "cs", "outl",
    "shad", "embo", "impr", "afs", "ab", "ai", "alang", "animtext", "ulc", "webhidden", "deleted", "revised", "revauth",
    "revdttm", "revauthdel", "revdttmdel", "crauth", "crdate", "chshdng",
    "chcfpat",
});

constexpr auto kParagraphWords = std::to_array<ControlWord>({
    {"pard", C::ParagraphReset}, {"ql", C::Aligned, Of(Alignment::Left)}, {"qr", C::Aligned, Of(Alignment::Right)},
    {"qc", C::Aligned, Of(Alignment::Center)}, {"qj", C::Aligned, Of(Alignment::Justify)},
    {"qd", C::Aligned, Of(Alignment::Justify)}, {"li", C::IndentLeft}, {"lin", C::IndentLeft, 1}, {"ri", C::IndentRight},
    {"rin", C::IndentRight, 1}, {"fi", C::IndentFirst}, {"sb", C::SpaceBefore}, {"sa", C::SpaceAfter},
    {"sl", C::LineSpacing}, {"slmult", C::LineMultiple}, {"tx", C::TabAt}, {"tb", C::TabAt, 1},
    {"tql", C::TabKindNext, Of(TabKind::Left)}, {"tqr", C::TabKindNext, Of(TabKind::Right)},
    {"tqc", C::TabKindNext, Of(TabKind::Center)}, {"tqdec", C::TabKindNext, Of(TabKind::Decimal)},
    {"tldot", C::TabLeaderNext, Of(TabLeader::Dots)}, {"tlmdot", C::TabLeaderNext, Of(TabLeader::MiddleDots)},
    {"tlhyph", C::TabLeaderNext, Of(TabLeader::Hyphens)}, {"tlul", C::TabLeaderNext, Of(TabLeader::Underline)},
    {"tlth", C::TabLeaderNext, Of(TabLeader::Thick)}, {"tleq", C::TabLeaderNext, Of(TabLeader::Equal)},
    {"pagebb", C::PageBreakBefore}, {"ls", C::ListOverride}, {"ilvl", C::ListLevel}, {"intbl", C::InTable},
    {"itap", C::TableDepth},
});
constexpr auto kKeptParagraphWords = std::to_array<std::string_view>({
    "nocwrap", "s", "keep", "keepn", "widctlpar", "nowidctlpar", "hyphpar", "noline", "sbauto", "saauto", "lisb",
    "lisa", "rtlpar", "outlinelevel", "level", "shading", "cfpat", "cbpat", "aspalpha", "aspnum", "faauto", "fahang",
    "facenter", "faroman", "favar", "fafixed", "adjustright", "contextualspace", "sbys", "nooverflow", "cufi", "culi",
    "curi", "indmirror", "posx", "posy", "posxc", "posxr", "posyt", "absw", "absh", "abslock", "phmrg", "phpg", "phcol",
    "pvpara", "pvmrg", "pvpg", "dxfrtext", "dfrmtxtx", "dfrmtxty", "nowrap", "dropcapli", "dropcapt", "ltrpar",
    "posnegx", "posnegy", "posxi", "posxo", "posxl", "posyil", "posyb", "posyc", "posyin", "posyout", "overlay",
    "wraparound", "wraptight", "wrapthrough", "absnoovrlp", "frmtxlrtb", "frmtxtbrl", "frmtxbtlr", "frmtxlrtbv",
    "frmtxtbrlv", "bghoriz", "bgvert", "bgfdiag", "bgbdiag", "bgcross", "bgdcross", "bgdkhoriz", "bgdkvert",
    "bgdkfdiag", "bgdkbdiag", "bgdkcross", "bgdkdcross", "nosnaplinegrid", "toplinepunct", "nowwrap", "nowordwrap",
    "collapsed", "subdocument", "spv", "txbxtwno", "txbxtwalways", "txbxtwfirstlast", "txbxtwfirst", "txbxtwlast",
});

constexpr auto kBorderWords = std::to_array<std::string_view>({
    "brdrt", "brdrb", "brdrl", "brdrr", "brdrbtw", "brdrbar", "box", "brdrs", "brdrth", "brdrsh", "brdrdb", "brdrdot",
    "brdrdash", "brdrdashsm", "brdrdashd", "brdrdashdd", "brdrhair", "brdrtriple", "brdrtnthsg", "brdrthtnsg",
    "brdrwavy", "brdrinset", "brdroutset", "brdrnone", "brdrnil", "brdrtbl", "brdrw", "brdrcf", "brsp", "brdrframe",
    "brdrwavydb", "brdrdashdot", "brdrdashdotdot", "brdrdashdotstr", "brdremboss", "brdrengrave", "brdrart",
    "brdrtnthtnsg", "brdrtnthmg", "brdrthtnmg", "brdrtnthtnmg", "brdrtnthlg", "brdrthtnlg", "brdrtnthtnlg",
});

// What begins with \tr, \cl or \ts is kept with the row even when it is not here.
constexpr auto kRowWords = std::to_array<ControlWord>({
    {"trowd", C::RowStart}, {"cellx", C::CellEdge}, {"clvmgf", C::VerticalMerge, 1}, {"clvmrg", C::VerticalMerge, 2},
    {"clmgf", C::HorizontalMerge, 1}, {"clmrg", C::HorizontalMerge, 2}, {"cell", C::CellEnd},
    {"nestcell", C::CellEnd, 1}, {"row", C::RowEnd}, {"nestrow", C::RowEnd, 1},
});
constexpr auto kKeptRowWords = std::to_array<std::string_view>({
    "lastrow", "irow", "irowband", "tdfrmtxtLeft", "tdfrmtxtRight", "tdfrmtxtTop", "tdfrmtxtBottom", "tposx", "tposy",
    "tphpg", "tphmrg", "tphcol", "tpvpg", "tpvmrg", "tpvpara", "rtlrow", "ltrrow", "tbllkhdrrows", "tbllklastrow",
    "tbllkhdrcols", "tbllklastcol", "tbllknorowband", "tbllknocolband", "tblind", "tblindtype", "taprtl",
});

constexpr auto kFileWords = std::to_array<ControlWord>({
    {"ansi", C::CodePage, 1252}, {"mac", C::CodePage, 10000}, {"pc", C::CodePage, 437}, {"pca", C::CodePage, 850},
    {"ansicpg", C::CodePage, 0}, {"deff", C::DefaultFont},
});

constexpr auto kTableEntryWords = std::to_array<ControlWord>({
    {"red", C::ColorPart, 16}, {"green", C::ColorPart, 8}, {"blue", C::ColorPart, 0}, {"fcharset", C::FontCharset},
    {"cpg", C::FontCodePage},
});
constexpr auto kFontFamilies = std::to_array<std::string_view>({
    "fnil", "froman", "fswiss", "fmodern", "fscript", "fdecor", "ftech", "fbidi",
});

constexpr auto kGroupWords = std::to_array<ControlWord>({
    {"fonttbl", C::FontTable}, {"colortbl", C::ColorTable}, {"listtable", C::ListTable},
    {"listoverridetable", C::ListTable, 1}, {"pn", C::LegacyNumbering}, {"pntext", C::ListText},
    {"listtext", C::ListText}, {"field", C::Field}, {"fldinst", C::FieldInstruction}, {"fldrslt", C::TransparentGroup},
    {"upr", C::TwoForms}, {"ud", C::UnicodeForm}, {"nesttableprops", C::NestedTableProperties}, {"pict", C::Picture},
    {"shppict", C::ShownPicture}, {"nonshppict", C::Picture}, {"object", C::Object}, {"shp", C::Drawing},
    {"shpgrp", C::Drawing}, {"do", C::Drawing}, {"shptxt", C::DrawingText}, {"dptxbxtext", C::DrawingText},
    {"result", C::DrawingText}, {"footnote", C::Footnote},
    {"moMath", C::Formula}, {"moMathPara", C::Formula},
});
constexpr auto kHeaderGroups = std::to_array<std::string_view>({
    "stylesheet", "info", "revtbl", "rsidtbl", "generator", "themedata", "colorschememapping", "latentstyles",
    "datastore", "xmlnstbl", "mmathPr", "filetbl", "pgptbl", "docvar", "userprops", "defchp", "defpap", "background",
    "ftnsep", "ftnsepc", "ftncn", "aftnsep", "aftnsepc", "aftncn",
});
constexpr auto kSectionGroups = std::to_array<std::string_view>({
    "header", "headerl", "headerr", "headerf", "footer", "footerl", "footerr", "footerf",
});
constexpr auto kInvisibleGroups = std::to_array<std::string_view>({
    "bkmkstart", "bkmkend", "xe", "rxe", "tc", "tcn", "txe", "atnid", "atnauthor", "atndate", "annotation", "atrfstart",
    "atrfend", "datafield", "formfield",
});
constexpr auto kSkippedGroups = std::to_array<std::string_view>({
    "fontemb", "falt", "fname", "panose", "nonesttables", "shprslt",
});

constexpr auto kSectionBreaks = std::to_array<std::string_view>({"sbkpage", "sbknone", "sbkcol", "sbkeven", "sbkodd"});

constexpr auto kDocumentWords = std::to_array<std::string_view>({
    "deflang", "deflangfe", "adeff", "adeflang", "stshfdbch", "stshfloch", "stshfhich", "stshfbi", "deftab",
    "hyphhotz", "hyphauto", "hyphconsec", "hyphcaps", "paperw", "paperh", "margl", "margr", "margt", "margb", "gutter",
    "rtlgutter", "facingp", "margmirror", "landscape", "pgnstart", "linestart", "widowctrl", "viewkind", "viewscale",
    "viewzk", "viewbksp", "ftnbj", "ftntj", "enddoc", "endnotes", "aenddoc", "aendnotes", "aftnbj", "aftntj",
    "ftnstart", "ftnrstpg", "ftnrestart", "ftnrstcont", "aftnrestart", "aftnrstcont", "ftnnar", "ftnnalc", "aftnnar",
    "aftnnrlc", "aftnnalc", "aftnnauc", "aftnnruc", "fet", "noxlattoyen", "expshrtn", "noultrlspc", "dntblnsbdb",
    "nospaceforul", "formshade", "horzdoc", "dghspace", "dgvspace", "dghorigin", "dgvorigin", "dghshow", "dgvshow",
    "dgmargin", "jexpand", "jcompress", "pgbrdrhead", "pgbrdrfoot", "splytwnine", "ftnlytwnine", "htmautsp",
    "useltbaln", "alntblind", "lytcalctblwd", "lyttblrtgr", "lnbrkrule", "nobrkwrptbl", "snaptogridincell",
    "allowfieldendsel", "rsidroot", "trackmoves", "trackformatting", "donotembedsysfont", "relyonvml",
    "donotembedlingdata", "grfdocevents", "validatexml", "showplaceholdtext", "ignoremixedcontent", "saveinvalidxml",
    "showxmlerrors", "themelang", "themelangfe", "themelangcs", "wrppunct", "asianbrkrule", "newtblstyruls",
    "nogrowautofit", "usenormstyforlist", "noindnmbrts", "felnbrelev", "nocxsptable", "indrlsweleven", "noafcnsttbl",
    "afelev", "utinl", "hwelev", "notcvasp", "notbrkcnstfrctbl", "notvatxbx", "krnprsnet", "cachedcolbal",
    "nouicompat", "nofeaturethrottle", "revisions", "revprop", "revbar", "brkfrm", "cvmme", "transmf", "private",
    "rtldoc", "ltrdoc", "psz", "makebackup", "defformat", "annotprot", "formprot", "readprot", "cocoartf",
    "cocoasubrtf", "cocoatextscaling", "cocoaplatform", "hyphlead", "hyphtrail", "nolnhtadjtbl",
});

constexpr auto kSectionWords = std::to_array<std::string_view>({
    "pgwsxn", "pghsxn", "marglsxn", "margrsxn", "margtsxn", "margbsxn", "guttersxn", "lndscpsxn", "titlepg", "headery",
    "footery", "cols", "colsx", "colno", "colw", "colsr", "linebetcol", "linex", "linemod", "linestarts",
    "linerestart", "lineppage", "linecont", "pgnstarts", "pgncont", "pgnrestart", "pgndec", "pgnucrm", "pgnlcrm",
    "pgnucltr", "pgnlcltr", "pgnx", "pgny", "pgnhn", "pgnhnsh", "vertalt", "vertalb", "vertalc", "vertalj", "endnhere",
    "binfsxn", "binsxn", "ds", "sectdefaultcl", "sectspecifycl", "sectlinegrid", "sectspecifyl", "sectexpand",
    "sectunlocked", "rtlsect", "ltrsect", "sftnbj", "sftntj", "saftnnar", "sftnnar", "sftnrestart", "saftnrestart",
    "stextflow", "pgbrdropt", "pgbrdrsnap", "sftnstart", "saftnstart", "sftnrstpg", "sftnrstcont", "saftnrstcont",
});
constexpr auto kPageBorders = std::to_array<std::string_view>({"pgbrdrt", "pgbrdrb", "pgbrdrl", "pgbrdrr"});
// clang-format on

constexpr std::size_t kSlots = 1024;  // a power of two, about twice the words

constexpr std::size_t SlotOf(std::string_view name) {
  std::uint32_t hash = 2166136261u;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
  return (hash ^ (hash >> 15)) % kSlots;
}

/// All words, each in the first free slot from that of its hash on.
constexpr std::array<ControlWord, kSlots> kTable = [] {
  std::array<ControlWord, kSlots> table{};
  const auto add = [&](ControlWord word, ControlClass control_class) {
    word.control_class = control_class;
    std::size_t slot = SlotOf(word.name);
    while (!table[slot].name.empty()) slot = (slot + 1) % kSlots;
    table[slot] = word;
  };
  const auto add_all = [&](const auto& words, ControlClass control_class) {
    for (const ControlWord& word : words) add(word, control_class);
  };
  const auto add_names = [&](const auto& names, ControlClass control_class, Control control) {
    for (const std::string_view name : names) add({name, control}, control_class);
  };
  add_names(kIgnoredWords, ControlClass::Ignored, C::None);
  add_names(kFieldWords, ControlClass::Ignored, C::FieldWord);
  add_all(kTextWords, ControlClass::Text);
  add_all(kCharacterWords, ControlClass::CharacterFormat);
  add_names(kKeptCharacterWords, ControlClass::CharacterFormat, C::CharacterWord);
  add_all(kParagraphWords, ControlClass::ParagraphFormat);
  add_names(kKeptParagraphWords, ControlClass::ParagraphFormat, C::ParagraphWord);
  add_names(kBorderWords, ControlClass::Border, C::BorderWord);
  add_all(kRowWords, ControlClass::Row);
  add_names(kKeptRowWords, ControlClass::Row, C::RowWord);
  add_all(kFileWords, ControlClass::File);
  add_all(kTableEntryWords, ControlClass::TableEntry);
  add_names(kFontFamilies, ControlClass::TableEntry, C::FontFamily);
  add_all(kGroupWords, ControlClass::Group);
  add_names(kHeaderGroups, ControlClass::Group, C::HeaderGroup);
  add_names(kSectionGroups, ControlClass::Group, C::SectionGroup);
  add_names(kInvisibleGroups, ControlClass::Group, C::InvisibleGroup);
  add_names(kSkippedGroups, ControlClass::Group, C::SkippedGroup);
  add({"sectd", C::SectionReset}, ControlClass::File);
  add_names(kSectionBreaks, ControlClass::File, C::SectionBreak);
  add_names(kSectionWords, ControlClass::File, C::SectionWord);
  add_names(kPageBorders, ControlClass::File, C::PageBorder);
  std::int32_t number = 0;
  for (const std::string_view name : kDocumentWords) add({name, C::DocumentWord, number++}, ControlClass::File);
  return table;
}();

constexpr ControlWord kUnknown{};

}  // namespace

const ControlWord& FindControl(std::string_view name) {
  for (std::size_t slot = SlotOf(name); !kTable[slot].name.empty(); slot = (slot + 1) % kSlots) {
    if (kTable[slot].name == name) return kTable[slot];
  }
  return kUnknown;
}

const std::size_t kDocumentWordCount = kDocumentWords.size();

}  // namespace tme::rtf
