#include <gtest/gtest.h>

#include <windows.h>

#include <QGuiApplication>
#include <QTest>
#include <future>
#include <memory>

#include "TestSystem.h"
#include "WaitFor.h"
#include "system/InstanceLink.h"

namespace tme {
namespace {

using namespace std::chrono_literals;

/// A window of the system's own, since the tests' frames have none.
class Instance : public testing::Test {
 protected:
  Instance() { AwaitSystemTurn(); }  // another's frame would be found
  ~Instance() override { ::DestroyWindow(window_); }

  std::uint32_t Handle() const { return static_cast<std::uint32_t>(reinterpret_cast<ULONG_PTR>(window_)); }
  std::future<Delivery> Send(const QByteArray& data, std::uint32_t meaning = 3) const {
    return std::async(std::launch::async, [data, meaning, handle = Handle()] {
      return InstanceLink::Send(handle, {meaning, data});
    });
  }
  static bool IsDone(const std::future<Delivery>& sent) { return sent.wait_for(0s) == std::future_status::ready; }
  /// As another program may send it.
  LRESULT SendRaw(ULONG_PTR meaning, QByteArray data) const {
    COPYDATASTRUCT record{meaning, static_cast<DWORD>(data.size()), data.data()};
    return ::SendMessageW(window_, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record));
  }

  QByteArrayList received_;
  std::function<void(const CopyData&)> receive_ = [this](const CopyData& record) {
    received_ += QByteArray::number(record.dwData) + ':' + record.data;
  };
  HWND window_ = ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
};

TEST_F(Instance, ClaimIsOfOne) {
  auto first = std::make_unique<InstanceLink>();
  InstanceLink second;
  EXPECT_TRUE(first->ClaimOnlyInstance() && first->ClaimOnlyInstance());
  EXPECT_FALSE(second.ClaimOnlyInstance());
  first.reset();
  EXPECT_TRUE(second.ClaimOnlyInstance());
}

TEST_F(Instance, HandsOverToAHookedFrameOnly) {
  ASSERT_NE(window_, nullptr);
  EXPECT_EQ(InstanceLink::Send(Handle(), {3, "a window without a frame"}), Delivery::NobodyThere);
  EXPECT_EQ(InstanceLink::Send(0xFFFFFF0, {3, "no window"}), Delivery::NobodyThere);
  const auto before = ::GetWindowLongPtrW(window_, GWLP_WNDPROC);
  InstanceLink link;
  ASSERT_TRUE(link.Listen(Handle(), receive_));
  EXPECT_FALSE(InstanceLink().Listen(Handle(), receive_)) << "one listens";
  const QByteArray longest(255, 'x');
  auto sent = Send(longest);
  WaitFor([&] { return IsDone(sent); });
  EXPECT_EQ(sent.get(), Delivery::DealtWith);
  SendRaw(4, "of another meaning");
  SendRaw(3, QByteArray(300, 'y'));
  SendRaw(3, {});
  SendRaw((ULONG_PTR{1} << 32) + 3, "3 only when cut");
  ::SendMessageW(window_, WM_COPYDATA, 0, 0);
  EXPECT_EQ(received_, (QByteArrayList{"3:" + longest, "4:of another meaning", "3:" + QByteArray(255, 'y'), "3:"}));
  EXPECT_NE(::SetWindowTextW(window_, L"passed on"), 0);
  EXPECT_EQ(::GetWindowTextLengthW(window_), 9);
  link.StopListening();
  EXPECT_EQ(::GetWindowLongPtrW(window_, GWLP_WNDPROC), before);
  EXPECT_EQ(InstanceLink::Send(Handle(), {3, "late"}), Delivery::NobodyThere);
}

TEST_F(Instance, LongRecordsArriveWholeAndAFrameIsFoundWithoutItsHandle) {
  InstanceLink link;
  ASSERT_TRUE(link.Listen(Handle(), receive_));
  const QByteArray text(5000, 'x');
  auto sent = Send(text, kLongData);
  WaitFor([&] { return IsDone(sent); });
  EXPECT_EQ(sent.get(), Delivery::DealtWith);
  auto lost = std::async(std::launch::async, [] { return InstanceLink::Send(std::nullopt, {3, "lost"}); });
  WaitFor([&] { return IsDone(lost); });
  EXPECT_EQ(lost.get(), Delivery::DealtWith);
  EXPECT_EQ(SendRaw(kLongData, QByteArray(kMaxLongDataBytes + 1, 'x')), FALSE);
  EXPECT_EQ(received_, (QByteArrayList{QByteArray::number(kLongData) + ':' + text, "3:lost"}));

  link.StopListening();
  EXPECT_EQ(SendRaw(kLongData, text), FALSE) << "who does not know the record does not take it";
}

TEST_F(Instance, RecordsWaitWhileOneIsDealtWith) {
  InstanceLink link;
  std::future<Delivery> second;
  ASSERT_TRUE(link.Listen(Handle(), [&](const CopyData& record) {
    received_ += record.data + " begins";
    if (record.data == "1") {
      second = Send("2");
      WaitFor([&] { return IsDone(second); });  // like a message box that the opening shows
    }
    received_ += record.data + " ends";
  }));
  const auto first = Send("1");
  WaitFor([&] { return IsDone(first); });
  EXPECT_EQ(received_.join(","), "1 begins,1 ends,2 begins,2 ends");
}

TEST_F(Instance, RecordsWaitUntilTheWaitCursorIsGone) {
  InstanceLink link;
  ASSERT_TRUE(link.Listen(Handle(), receive_));
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  for (const char* data : {"1", "2"}) SendRaw(3, data);
  QTest::qWait(200);  // like an import that repaints
  EXPECT_EQ(received_.size(), 0);
  QGuiApplication::restoreOverrideCursor();
  WaitFor([&] { return received_ == QByteArrayList{"3:1", "3:2"}; });
}

TEST_F(Instance, UnhooksBelowAForeignProcedure) {
  static WNDPROC below = nullptr;
  InstanceLink link;
  ASSERT_TRUE(link.Listen(Handle(), receive_));
  const WNDPROC foreign = [](HWND window, UINT message, WPARAM w_param, LPARAM l_param) {
    return ::CallWindowProcW(below, window, message, w_param, l_param);
  };
  below = reinterpret_cast<WNDPROC>(::SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(foreign)));
  link.StopListening();
  EXPECT_FALSE(link.Listen(Handle(), receive_)) << "would be in the chain twice";
  EXPECT_NE(::SetWindowTextW(window_, L"passed on"), 0);
  EXPECT_EQ(::GetWindowTextLengthW(window_), 9);
}

TEST_F(Instance, LinkOrWindowMayGoWhileItReceives) {
  auto link = std::make_unique<InstanceLink>();
  ASSERT_TRUE(link->Listen(Handle(), [&](const CopyData&) { link.reset(); }));
  SendRaw(3, "x");
  link = std::make_unique<InstanceLink>();
  ASSERT_TRUE(link->Listen(Handle(), [&](const CopyData&) { ::DestroyWindow(window_); }));
  SendRaw(3, "x");
  EXPECT_FALSE(::IsWindow(window_));
  link.reset();
}

}  // namespace
}  // namespace tme
