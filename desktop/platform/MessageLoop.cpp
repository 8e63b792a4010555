// The queue and the handlers, and the message operations of the platform over them.
#include "desktop/platform/MessageLoop.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <system_error>
#include <utility>

#include "desktop/platform/Journal.h"
#include "desktop/platform/Text.h"
#include "desktop/platform/transfer/TransferUrl.h"

namespace desk {

MessageLoop::MessageLoop(Journal& journal)
    : journal_(journal), wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (wakeUp_ < 0) throw std::system_error(errno, std::generic_category(), "no message loop");
}

MessageLoop::~MessageLoop() { close(wakeUp_); }

bool MessageLoop::IsRegistered(const Handler& handler) const {
  return std::find(handlers_.begin(), handlers_.end(), handler) != handlers_.end();
}

bool MessageLoop::Register(unsigned int first, unsigned int last, EtlMsgHandle handle) {
  const Handler handler{first, last, handle};
  if (handle == nullptr || first > last || IsRegistered(handler)) return false;
  handlers_.push_back(handler);
  journal_.Add(Format("register 0x%x-0x%x", first, last));
  return true;
}

bool MessageLoop::Unregister(unsigned int first, unsigned int last, EtlMsgHandle handle) {
  const auto found = std::find(handlers_.begin(), handlers_.end(), Handler{first, last, handle});
  if (found == handlers_.end()) return false;
  handlers_.erase(found);
  journal_.Add(Format("unregister 0x%x-0x%x", first, last));
  return true;
}

void MessageLoop::Clear() {
  handlers_.clear();
  const std::lock_guard<std::mutex> lock(mutex_);
  queue_.clear();
  appMessages_.clear();
}

void MessageLoop::PostWork(std::function<void()> work) {
  const std::lock_guard<std::mutex> lock(mutex_);
  queue_.push_back(std::move(work));
  eventfd_write(wakeUp_, 1);
}

bool MessageLoop::WaitForPost(std::chrono::milliseconds limit) {
  using Count = std::chrono::milliseconds::rep;
  pollfd waiting = {wakeUp_, POLLIN, 0};
  poll(&waiting, 1, static_cast<int>(std::clamp<Count>(limit.count(), 0, INT_MAX)));
  const std::lock_guard<std::mutex> lock(mutex_);
  return !queue_.empty();
}

std::size_t MessageLoop::Deliver() {
  for (std::size_t delivered = 0;; ++delivered) {
    std::function<void()> work;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (queue_.empty()) {
        eventfd_t ignored = 0;
        eventfd_read(wakeUp_, &ignored);
        return delivered;
      }
      work = std::move(queue_.front());
      queue_.pop_front();
    }
    work();
  }
}

std::optional<int> MessageLoop::Send(const Message& message) {
  ETL_MsgQueueHelper::msgObject msg;
  msg.message = message.message;
  msg.wParam = message.wParam;
  msg.lParam = message.lParam;

  const auto outerMessage = std::exchange(current_, &msg);
  const auto outerReply = std::exchange(reply_, std::nullopt);
  const std::vector<Handler> handlers = handlers_;  // a handler may register and unregister
  for (const Handler& handler : handlers) {
    const auto& [first, last, handle] = handler;
    const bool inRange = first <= message.message && message.message <= last;
    if (!inRange || !IsRegistered(handler)) continue;
    const int result = handle(msg);
    if (observer_) observer_(message, result);
  }
  current_ = outerMessage;
  return std::exchange(reply_, outerReply);
}

void MessageLoop::Reply(const ETL_MsgQueueHelper::msgObject& msg, int result) {
  if (&msg == current_ && !reply_) reply_ = result;
  journal_.Add(Format("reply %d to 0x%x", result, msg.message));
}

void MessageLoop::NotifyApp(Message message) {
  constexpr std::size_t kMaxKept = 1000;
  journal_.Add(Format("app 0x%x %u %d", message.message, message.wParam, message.lParam) +
               (message.extra.empty() ? "" : " " + MaskCredentials(CString(message.extra))));
  const std::lock_guard<std::mutex> lock(mutex_);
  if (appMessages_.size() == kMaxKept) appMessages_.erase(appMessages_.begin());
  appMessages_.push_back(std::move(message));
}

std::vector<Message> MessageLoop::TakeAppMessages() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::exchange(appMessages_, {});
}

}  // namespace desk
