// What the status line says of a document of any kind, and the change of its encoding.
#include <QDir>

#include "base/LineReader.h"
#include "files/TextEncoder.h"
#include "shell/DisplayText.h"
#include "shell/DocumentWindow.h"
#include "shell/Global.h"
#include "shell/KindTraits.h"
#include "shell/StatusLine.h"
#include "shell/WaitCursor.h"

using namespace Qt::StringLiterals;

namespace tme {

DocumentState DocumentWindow::State() {
  DocumentState state{.kind = KindText(TraitsOf(Kind()).message_name),
                      .path = QDir::toNativeSeparators(file_.Path()),
                      .encoding = file_.Format().encoding};
  if (file_.IsBeingRead()) return state;
  const DocumentFigures& figures = figures_.Of(Revision(), [this] { return Figures(); });
  state.count = figures.count;
  state.line_ends = figures.line_ends;
  AddState(state);
  return state;
}

void DocumentWindow::StateChanged() { global_.status.Refresh(); }

QString DocumentWindow::UnfitLine(const TextFormat& format) {
  TextEncoder encoder(format);
  if (Characters()([&encoder](std::string_view part) { return encoder.Encode(part).has_value(); })) return {};
  const std::string text = DocumentFile::BytesOf(nullptr, Characters());
  LineReader lines(text);
  for (std::string_view line; lines.Next(line);)
    if (!TextEncoder(format).Encode(line))
      return tr("line %1:\r%2").arg(QString::number(lines.Number()), DisplayText(line, kMaxCharactersInMessage));
  return {};
}

QString DocumentWindow::MisfitOf(const TextFormat& format) {
  const auto encode = [this, &format](TextEncoder& encoder, const PartSink& put) {
    return Characters()([&](std::string_view part) {
      const std::optional<std::string> bytes = encoder.Encode(part);
      return bytes && put(*bytes);
    });
  };
  TextEncoder encoder(format);
  const bool has_places = encode(encoder, [](std::string_view) { return true; });
  const PartProducer all_bytes = [&](const PartSink& put) {
    TextEncoder again(format);
    return encode(again, put);
  };
  if (has_places && encoder.ReadsBack(all_bytes)) return {};
  const QString unfit = has_places ? QString() : UnfitLine(format),
                name = QString::fromUtf8(EncodingName(format.encoding));
  return unfit.isEmpty() ? tr("This text in %1 would be read as another encoding.").arg(name)
                         : tr("There is no place in %1 for a character of %2").arg(name, unfit);
}

void DocumentWindow::ChangeEncoding(TextEncoding encoding) {
  const TextFormat before = file_.Format();
  WithdrawNotice(std::exchange(misfit_, {}));
  if (encoding == before.encoding) return;
  const TextFormat format{encoding, {}, before.fallback};
  {
    const WaitCursor wait_cursor;
    misfit_ = MisfitOf(format).replace(u'\r', u' ');
  }
  if (!misfit_.isEmpty()) {
    misfit_ = tr("The encoding stays as it is.") + u' ' + misfit_;
    return AddNotice(misfit_);
  }
  // What notes the state before the step does it now.
  AddFormatStep([this, before] { PutFormat(before); }, [this, format] { PutFormat(format); });
  PutFormat(format);
}

void DocumentWindow::PutFormat(const TextFormat& format) {
  file_.SetFormat(format);
  StateChanged();
}

}  // namespace tme
