#include "documents/rtf/RtfContentsWords.h"

#include <algorithm>
#include <array>

namespace tme::rtf {
namespace {

using W = ContentsWord;

// In the order of their letters.
constexpr auto kContentsWords = std::to_array<ContentsWordEntry>({
    {"annotation", W::Comment},
    {"ansicpg", W::CodePage},
    {"atnauthor", W::Skip},
    {"atndate", W::Skip},
    {"atnid", W::Skip},
    {"atnparent", W::Skip},
    {"atnref", W::Skip},
    {"atrfend", W::Skip},
    {"atrfstart", W::Skip},
    {"bkmkend", W::Skip},
    {"bkmkstart", W::Bookmark},
    {"blipuid", W::Shown},
    {"colortbl", W::Skip},
    {"deleted", W::Deleted},
    {"dibitmap", W::PictureKind, "Windows bitmap"},
    {"do", W::Drawing},
    {"emfblip", W::PictureKind, "enhanced metafile"},
    {"file", W::Reference},
    {"fldinst", W::Instruction},
    {"fldrslt", W::Result},
    {"fontfile", W::Reference},
    {"fonttbl", W::Skip},
    {"footer", W::Footer},
    {"footerf", W::Footer},
    {"footerl", W::Footer},
    {"footerr", W::Footer},
    {"footnote", W::Footnote},
    {"ftnalt", W::Endnote},
    {"generator", W::Skip},
    {"header", W::Header},
    {"headerf", W::Header},
    {"headerl", W::Header},
    {"headerr", W::Header},
    {"hl", W::Shown},
    {"hlinkbase", W::Reference},
    {"hlsrc", W::LinkTarget},
    {"info", W::Skip},
    {"jpegblip", W::PictureKind, "JPEG"},
    {"linkval", W::Reference},
    {"listoverridetable", W::Skip},
    {"listpicture", W::Shown},
    {"listtable", W::Skip},
    {"listtext", W::Skip},
    {"macpict", W::PictureKind, "Macintosh picture"},
    {"mmconnectstr", W::Reference},
    {"mmconnectstrdata", W::Reference},
    {"mmdatasource", W::Reference},
    {"mmheadersource", W::Reference},
    {"mmodsosrc", W::Reference},
    {"mmodsoudl", W::Reference},
    {"mmquery", W::Reference},
    {"moMath", W::Formula},
    {"nextfile", W::Reference},
    {"nonshppict", W::PictureCopy},
    {"objautlink", W::ObjectUpdated},
    {"objclass", W::ObjectClass},
    {"objdata", W::ObjectData},
    {"object", W::Object},
    {"objlink", W::ObjectLinked},
    {"objname", W::ObjectName},
    {"objsub", W::ObjectLinked},
    {"objupdate", W::ObjectUpdated},
    {"picprop", W::Shown},
    {"pict", W::Picture},
    {"plain", W::Plain},
    {"pmmetafile", W::PictureKind, "OS/2 metafile"},
    {"pn", W::Skip},
    {"pngblip", W::PictureKind, "PNG"},
    {"pnseclvl", W::Skip},
    {"pntext", W::Skip},
    {"revised", W::Inserted},
    {"revtbl", W::Skip},
    {"shp", W::Drawing},
    {"shpinst", W::Shown},
    {"sn", W::PropertyName},
    {"stylesheet", W::Skip},
    {"sv", W::PropertyValue},
    {"tc", W::IndexEntry},
    {"tcn", W::IndexEntry},
    {"template", W::Template},
    {"wbitmap", W::PictureKind, "bitmap"},
    {"wmetafile", W::PictureKind, "Windows metafile"},
    {"xe", W::IndexEntry},
});
static_assert(std::ranges::is_sorted(kContentsWords, {}, &ContentsWordEntry::name));

constexpr ContentsWordEntry kUnlistedWord{};

}  // namespace

const ContentsWordEntry& FindContentsWord(std::string_view name) {
  const auto found = std::ranges::lower_bound(kContentsWords, name, {}, &ContentsWordEntry::name);
  return found != kContentsWords.end() && found->name == name ? *found : kUnlistedWord;
}

}  // namespace tme::rtf
