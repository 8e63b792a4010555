// The thread that runs transfers with libcurl. It has a download to itself until it has posted its
// end, and shares nothing else with the loop's thread.
#pragma once

#include <curl/curl.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "desktop/platform/PrivateFile.h"
#include "desktop/platform/transfer/Transfer.h"
#include "desktop/platform/transfer/TransferUrl.h"

namespace desk {

using SteadyClock = std::chrono::steady_clock;

// One transfer under way. The service's thread has it to itself until it has posted the end, but
// for `stopped`.
struct Download {
  Download(unsigned int itsId, std::string path, TransferUrl from, const TransferLimits& itsLimits)
      : id(itsId), target(std::move(path)), url(std::move(from)), limits(itsLimits) {}

  const unsigned int id;
  const std::string target;
  const TransferUrl url;
  const TransferLimits limits;
  std::atomic<bool> stopped{false};
  std::promise<void> ended;

  PrivateFile file;
  std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> handle{nullptr, curl_easy_cleanup};
  std::size_t bytes = 0;
  std::optional<SteadyClock::time_point> lastByte;  // none as long as there is no connection
  std::string error;
  std::array<char, CURL_ERROR_SIZE> reason{};  // libcurl's words for it
};

class TransferThread {
 public:
  using OnEnded = std::function<void(unsigned int id)>;  // called on this thread

  explicit TransferThread(OnEnded onEnded);
  ~TransferThread();  // stops what runs

  void Start(std::shared_ptr<Download> download);
  void Stop(Download& download);  // returns before it has stopped

 private:
  using Running = std::map<CURL*, std::shared_ptr<Download>>;

  void WakeUp();
  void Run();
  bool Admit();
  bool Open(Download& download);
  void EndDone();
  std::shared_ptr<Download> Remove(Running::iterator running);
  void PostEnd(std::shared_ptr<Download> download);

  const OnEnded onEnded_;
  const std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)> multi_;
  Running running_;  // the thread's own

  std::mutex mutex_;  // guards what follows
  bool stopping_ = false;
  std::vector<std::shared_ptr<Download>> arrived_;

  std::thread thread_;  // last: it uses all of the above
};

}  // namespace desk
