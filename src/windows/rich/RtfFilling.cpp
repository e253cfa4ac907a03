#include "windows/rich/RtfFilling.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "windows/rich/ClosedDocument.h"
#include "windows/rich/RtfExport.h"
#include "windows/rich/RtfFormats.h"

namespace tme {

RtfFilling::RtfFilling(rtf::RtfDocument&& read, Note note)
    : read_(std::move(read)), note_(std::move(note)), total_(std::max<std::size_t>(read_.text.size(), 1)) {}

void RtfFilling::Start(const BackgroundWork::Done& done) {
  try {
    work_.Start([this](const std::stop_token& stop) { Run(stop); }, done);
  } catch (const std::system_error&) {
    Run({});
    done(nullptr);
  }
}

void RtfFilling::Run(const std::stop_token& stop) {
  View view{std::make_unique<RtfStore>(), std::make_unique<ClosedDocument>(), {}};
  const RtfImportStep step = [this, &stop](std::size_t done, std::size_t /*total*/) {
    done_ = done;
    return !stop.stop_requested();
  };
  if (!ImportRtf(std::move(read_), *view.store, *view.text, view.simplified, step)) return;
  view.text->setDefaultFont(RtfFormats(*view.store).ShowCharFormat(0).font());
  if (note_) note_(RtfExport(*view.text, *view.store).Document());
  view.text->moveToThread(work_.thread());
  view_ = std::move(view);
}

}  // namespace tme
