#include "shell/LongWork.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QProgressDialog>
#include <algorithm>

#include "shell/Global.h"
#include "shell/PlainText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr int kBoxRefreshMs = 50;
constexpr int kBoxRange = 1000;

}  // namespace

LongWork::LongWork(QWidget* parent, const QString& what) : parent_(parent), what_(what) { since_start_.start(); }

LongWork::~LongWork() = default;

void LongWork::Show() {
  box_ = std::make_unique<QProgressDialog>(parent_);
  box_->setObjectName(u"LongWorkProgress"_s);
  box_->setWindowTitle(kProgramTitle);
  box_->setAccessibleName(what_);
  box_->setWindowModality(Qt::ApplicationModal);
  box_->setLabel(PlainLabel(what_));
  box_->setRange(0, kBoxRange);
  box_->setAutoReset(false);
  box_->setAutoClose(false);
  box_->setMinimumWidth(box_->fontMetrics().averageCharWidth() * 50);
  box_->show();
  since_shown_.start();
}

bool LongWork::GoOn(std::size_t done, std::size_t total) {
  if (!box_) {
    if (since_start_.elapsed() < quiet_ms) return true;
    Show();
  } else if (!box_->wasCanceled() && since_shown_.elapsed() < kBoxRefreshMs && quiet_ms > 0) {
    return true;
  }
  since_shown_.start();
  const double part = total == 0 ? 0 : static_cast<double>(std::min(done, total)) / static_cast<double>(total);
  box_->setValue(static_cast<int>(part * kBoxRange));
  QCoreApplication::processEvents();
  return !box_->wasCanceled();
}

}  // namespace tme
