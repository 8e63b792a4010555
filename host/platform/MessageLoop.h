// The message loop of the UI process: one queue, the handlers by message range, and what was sent
// to the application. Posting is allowed from any thread; everything else belongs to the loop's
// thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "EtlMsgHandler.h"

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
  explicit MessageLoop(Journal& journal) : journal_(journal) {}

  bool Register(unsigned int first, unsigned int last, EtlMsgHandle handle);
  bool Unregister(unsigned int first, unsigned int last, EtlMsgHandle handle);

  // Queues a message, or a piece of work, for the loop's thread; any thread.
  void Post(const Message& message);
  void PostWork(std::function<void()> work);

  // Forgets the queue, the handlers and the application's messages.
  void Clear();

  // Called with each result of a handler, on the loop's thread: how a UI process learns, for
  // instance, that the history was saved.
  using Observer = std::function<void(const Message&, int result)>;
  void SetObserver(Observer observer) { observer_ = std::move(observer); }

  // Called with each post, on the posting thread: how a thread that sleeps in poll() is woken. It
  // must not post itself.
  void SetWakeUp(std::function<void()> wakeUp);

  // Waits until something is queued, or the time is over. True when something is.
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
  bool HasAppMessages() const;

 private:
  struct Handler {
    unsigned int first;
    unsigned int last;
    EtlMsgHandle handle;
    bool operator==(const Handler& other) const {
      return first == other.first && last == other.last && handle == other.handle;
    }
  };

  bool IsRegistered(const Handler& handler) const;

  Journal& journal_;
  std::vector<Handler> handlers_;
  Observer observer_;
  const ETL_MsgQueueHelper::msgObject* current_ = nullptr;
  std::optional<int> reply_;

  mutable std::mutex mutex_;  // guards what follows
  std::condition_variable posted_;
  std::deque<std::function<void()>> queue_;
  std::deque<Message> appMessages_;
  std::function<void()> wakeUp_;
};

}  // namespace desk
