// Network file transfers. An action is what a module holds; the service owns all of them, runs them
// on one thread of its own and completes them on the loop's thread, to which everything declared
// here belongs. The functions that modules call are in TaskAction.cpp.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/TaskAction.h"

namespace desk {

class MessageLoop;
class Trace;
class TransferThread;
struct Download;

// What ends a transfer as failed, and whom it trusts.
struct TransferLimits {
  int max_bytes = 4 * 1024 * 1024;  // of the document
  int connect_seconds = 10;
  int idle_seconds = 15;  // without a byte
  int total_seconds = 60;
  int max_redirects = 5;
  // PEM file with certificates that vouch for https servers beside those of the system; empty:
  // none.
  std::string ca_file = {};
};

struct Transfer final : NS_TA::CNetworkFileAction {
  enum class State { kNew, kRunning, kSucceeded, kFailed };

  unsigned int id = 0;
  std::string localPath;
  std::string remoteUrl;
  bool read = true;
  bool sync = false;
  NS_TA::CTaskActionCallbackBase* callback = nullptr;
  State state = State::kNew;
  std::shared_ptr<Download> download;  // while it runs; shared with the service's thread
};

class TransferService {
 public:
  // Announces the end of the action whose id is wParam, to TryThreadMessage of its callback object.
  static constexpr unsigned int kEndedMessage = 0x8114;

  TransferService(MessageLoop& loop, Trace& trace, const TransferLimits& limits);
  ~TransferService();  // as Clear; the service's thread has ended
  TransferService(const TransferService&) = delete;
  TransferService& operator=(const TransferService&) = delete;

  // Null before the platform is there and after it is gone: callback objects may outlive it.
  static TransferService* Current();

  // Null for a URL that cannot be fetched.
  Transfer* Create(const char* localPath, const char* remoteUrl);
  // False when it was refused: started before, or not a transfer into the local file.
  bool Start(Transfer& transfer);
  // Stops it if it runs. An action that the service does not know is ignored.
  void Destroy(const NS_TA::CTaskAction* action);
  // Stops and destroys whatever would report to `callback`.
  void Detach(const NS_TA::CTaskActionCallbackBase* callback);
  // The action that has ended under this id; null when it is gone.
  Transfer* FindEnded(unsigned int id) const;

  // Why the last transfer from `remoteUrl` failed, told once; empty when it did not.
  std::string TakeFailure(const std::string& remoteUrl);

  // The transfers that have not been completed yet.
  std::size_t Running() const;

  // Keeps completions back until they are let through, for a phone whose time stands still
  // meanwhile.
  void Hold() { holding_ = true; }
  void LetThrough();

  // Destroys all actions.
  void Clear();

 private:
  Transfer* Find(unsigned int id) const;
  void Stop(Transfer& transfer);
  template <class Condition>
  void DestroyIf(Condition condition);
  void OnEnded(unsigned int id);
  void Complete(unsigned int id);

  MessageLoop& loop_;
  Trace& trace_;
  const TransferLimits limits_;
  unsigned int lastId_ = 0;
  bool holding_ = false;
  std::vector<unsigned int> held_;               // ids of the transfers that have ended
  std::map<std::string, std::string> failures_;  // by remote URL
  std::vector<std::unique_ptr<Transfer>> transfers_;
  std::unique_ptr<TransferThread> thread_;  // from the first transfer on
};

}  // namespace desk
