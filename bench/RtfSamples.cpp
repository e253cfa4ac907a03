#include "RtfSamples.h"

#include "RtfInput.h"
#include "Shuffle.h"

namespace tme {

namespace {

constexpr std::size_t kBytes = 20'000'000;

template <typename Make>
std::string Times(int count, Make make) {
  std::string all;
  for (int i = 0; i < count; ++i) all += make(i);
  return all;
}

/// until the file is of the usual size.
template <typename Make>
std::string Filled(Make make) {
  std::string all;
  for (int i = 0; all.size() < kBytes; ++i) all += make(i);
  return all;
}

std::string File(const std::string& body) {
  return "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\froman\\fcharset0 Times New Roman;}{\\f1\\fswiss\\fcharset177 Arial;}}"
         "{\\colortbl;\\red192\\green0\\blue0;\\red0\\green0\\blue192;}\n" +
         body + "}";
}

std::string Words(int seed) {
  Shuffle shuffle;
  static const std::string kText = [&shuffle] {
    std::string text;
    while (text.size() < 4000) text += "letter" + shuffle.Number(1000) + (shuffle.Below(9) == 0 ? ". " : " ");
    return text;
  }();
  return kText.substr(static_cast<std::size_t>(seed) * 7919 % 3000, 400);
}

std::string Hex(int seed, std::size_t bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (std::size_t i = 0; i < bytes * 2; ++i) hex += kDigits[(i * 7 + static_cast<std::size_t>(seed) + i / 16) % 16];
  return hex;
}

std::string Nested(int depth) {
  std::string text;
  for (int level = 1; level <= depth; ++level) text += "\\pard\\intbl\\itap" + std::to_string(level) + " a";
  for (int level = depth; level > 1; --level) text += "\\nestcell{\\*\\nesttableprops\\trowd\\cellx3000\\nestrow}";
  return text + "\\cell\\trowd\\cellx3000\\row\n";
}

const RtfSample kSamples[] = {
    {"mixed", [] { return MakeRtfInput(kBytes); }},
    {"plain", [] { return File(Filled([](int i) { return "\\pard " + Words(i) + "\\par\n"; })); }},
    {"one_paragraph", [] { return File("\\pard " + Filled(&Words) + "\\par"); }},
    {"unicode",
     [] {
       return File(Filled([](int i) {
         return Times(40, [i](int k) { return "\\u" + std::to_string(1040 + (i + k) % 60) + "?"; }) + "\\par\n";
       }));
     }},
    {"pictures",
     [] {
       return File(Filled([](int i) { return "a{\\pict\\pngblip\\picw100\\pich100 " + Hex(i, 10'000) + "}\\par\n"; }));
     }},
    {"right_to_left",
     [] {
       return File(Times(200'000, [](int i) {
         return "\\pard\\rtlpar\\f1 \\'f9\\'ec\\'e5\\'ed \\'f2\\'e5\\'ec\\'ed " + std::to_string(i) + "\\par\n";
       }));
     }},
    {"formats",
     [] { return File(Times(1'000'000, [](int i) { return i % 2 ? "\\b word " : "\\b0 word "; }) + "\\par"); }},
    {"formats_in_paragraphs",
     [] {
       return File(Times(100'000, [](int i) {
         return "\\pard " + Times(10, [](int k) { return "word{\\b\\cf" + std::to_string(k % 3) + " bold} "; }) +
                std::to_string(i) + "\\par\n";
       }));
     }},
    {"many_formats",
     [] {
       return File(Times(100'000, [](int i) {
         return "\\pard\\li" + std::to_string(i) + "{\\expnd" + std::to_string(i) + " word}\\par\n";
       }));
     }},
    {"empty", [] { return File(Times(1'000'000, [](int) { return "\\par\n"; })); }},
    {"list",
     [] {
       return File(Times(200'000, [](int i) {
         return "\\pard{\\pntext " + std::to_string(i) +
                ".\\tab}{\\*\\pn\\pnlvlbody\\pndec{\\pntxta.}}\\fi-360\\li720 item of a list\\par\n";
       }));
     }},
    {"rows",
     [] {
       return File(Times(100'000, [](int) {
         return "\\trowd\\cellx2000\\cellx4000\\cellx6000\\pard\\intbl a\\cell b\\cell c\\cell\\row\n";
       }));
     }},
    {"small_tables",
     [] {
       return File(Times(30'000, [](int) {
         return "\\trowd\\cellx2000\\cellx4000\\pard\\intbl a\\cell b\\cell\\row\n\\pard between\\par\n";
       }));
     }},
    {"cells",
     [] {
       return File("\\trowd" + Times(10'000, [](int i) { return "\\cellx" + std::to_string((i + 1) * 100); }) +
                   "\\pard\\intbl " + Times(10'000, [](int) { return "c\\cell "; }) + "\\row\\pard end\\par");
     }},
    {"nested_tables", [] { return File(Nested(1000) + "\\pard end\\par"); }},
    {"many_nested", [] { return File(Times(2'000, [](int) { return Nested(5) + "\\pard between\\par\n"; })); }},
    {"objects",
     [] {
       return File(Times(100'000,
                         [](int i) {
                           return "{\\object\\objemb{\\*\\objclass X}{\\*\\objdata " + Hex(i, 20) + "}{\\result x}} ";
                         }) +
                   "\\par");
     }},
    {"fields",
     [] {
       return File(Times(100'000, [](int i) {
         return "{\\field{\\*\\fldinst HYPERLINK \"http://example.org/" + std::to_string(i) +
                "\"}{\\fldrslt page}} \\par\n";
       }));
     }},
    {"bookmarks",
     [] {
       return File(Times(100'000, [](int i) {
         const std::string name = std::to_string(i);
         return "{\\*\\bkmkstart m" + name + "}word{\\*\\bkmkend m" + name + "}\\par\n";
       }));
     }},
    {"tabs",
     [] {
       return File("\\pard" + Times(10'000, [](int i) { return "\\tx" + std::to_string(i * 10); }) + " a\\tab b\\par " +
                   Times(1'000, [](int) { return "c\\tab d\\par\n"; }));
     }},
    {"groups",
     [] {
       return File(Times(1'000'000, [](int i) { return i % 2 ? "{\\b " : "{\\i "; }) + "deep" +
                   std::string(1'000'000, '}') + "\\par");
     }},
};

}  // namespace

std::span<const RtfSample> RtfSamples() { return kSamples; }

}  // namespace tme
