// The message loop of the UI process: one queue, the handlers by message range, and what was sent
// to the application. Posting is allowed from any thread; everything else belongs to the loop's
// thread.
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "platform/EtlMsgHandler.h"

namespace desk {

class Journal;

// A message on its way to the handlers, or one that the application got.
struct Message {
  unsigned int message = 0;
  unsigned int wParam = 0;
  int lParam = 0;
  std::string extra;  // the extra data of an application message
};

class MessageLoop {
 public:
  explicit MessageLoop(Journal& journal);
  ~MessageLoop();
  MessageLoop(const MessageLoop&) = delete;
  MessageLoop& operator=(const MessageLoop&) = delete;

  bool Register(unsigned int first, unsigned int last, EtlMsgHandle handle);
  bool Unregister(unsigned int first, unsigned int last, EtlMsgHandle handle);

  // Queues a message, or a piece of work, for the loop's thread; any thread.
  void Post(const Message& message) {
    PostWork([this, message] { Send(message); });
  }
  void PostWork(std::function<void()> work);

  // Forgets the queue, the handlers and the application's messages.
  void Clear();

  // Called with each result of a handler, on the loop's thread: how a UI process learns, for
  // instance, that the history was saved.
  using Observer = std::function<void(const Message&, int result)>;
  void SetObserver(Observer observer) { observer_ = std::move(observer); }

  // An eventfd: readable from each post until the queue has been delivered, for a thread that
  // sleeps in poll(). Whoever else wants to wake that thread, such as a signal handler, writes to
  // it; the next delivery takes this, too.
  int descriptor() const { return wakeUp_; }

  // Waits until something is queued, somebody has written to the descriptor, or the time is over.
  // True when something is queued.
  bool WaitForPost(std::chrono::milliseconds limit);

  // Delivers what is queued, and what is posted meanwhile, until the queue is empty. The number
  // delivered.
  std::size_t Deliver();

  // Delivers one message now, past the queue, as a waiting sender would; what the handlers replied.
  std::optional<int> Send(const Message& message);

  // What ReplyMessage does.
  void Reply(const ETL_MsgQueueHelper::msgObject& msg, int result);

  // Messages to the application, oldest first, since they were last taken; at most 1,000 are kept.
  void NotifyApp(Message message);
  std::vector<Message> TakeAppMessages();

 private:
  using Handler = std::tuple<unsigned int, unsigned int, EtlMsgHandle>;  // first, last, function

  bool IsRegistered(const Handler& handler) const;

  Journal& journal_;
  std::vector<Handler> handlers_;
  Observer observer_;
  const ETL_MsgQueueHelper::msgObject* current_ = nullptr;
  std::optional<int> reply_;
  const int wakeUp_;

  std::mutex mutex_;  // guards what follows
  std::deque<std::function<void()>> queue_;
  std::vector<Message> appMessages_;
};

}  // namespace desk
