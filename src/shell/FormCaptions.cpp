#include "shell/FormCaptions.h"

#include <QCoreApplication>
#include <algorithm>

namespace tme {
namespace {

struct FormTexts {
  Q_DECLARE_TR_FUNCTIONS(FormCaptions)
};

}  // namespace

std::vector<TextEncoding> OfferedEncodings(TextEncoding present) {
  std::vector offered{TextEncoding::CodePage, TextEncoding::Utf8, TextEncoding::Utf8Bom, TextEncoding::Utf16Le,
                      TextEncoding::Utf16Be};
  if (std::find(offered.begin(), offered.end(), present) == offered.end()) offered.push_back(present);
  return offered;
}

QString CaptionOf(TextEncoding encoding) {
  return encoding == TextEncoding::CodePage ? FormTexts::tr("8-bit code page")
                                            : QString::fromUtf8(EncodingName(encoding));
}

QString CaptionOf(LineEnds ends) {
  if (ends == LineEnds::Mixed) return FormTexts::tr("as they are, mixed");
  return ends == LineEnds::CrLf ? FormTexts::tr("CR LF, as on Windows") : FormTexts::tr("LF, as on Linux");
}

}  // namespace tme
