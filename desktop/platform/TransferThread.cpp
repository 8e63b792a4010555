// One thread with libcurl's multi interface: takes on what has arrived, ends what is done, stopped
// or idle for too long, and posts each end.
#include "desktop/platform/TransferThread.h"

#include <signal.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "desktop/platform/Text.h"

namespace desk {
namespace {

std::string ErrorText(const char* what, int error) {
  return std::string(what) + ": " + std::generic_category().message(error);
}

int OnConnected(void* context, char*, char*, int, int) {
  static_cast<Download*>(context)->lastByte = SteadyClock::now();
  return CURL_PREREQFUNC_OK;
}

std::size_t OnHeader(char*, std::size_t, std::size_t size, void* context) {
  static_cast<Download*>(context)->lastByte = SteadyClock::now();
  return size;
}

std::size_t OnBody(char* bytes, std::size_t, std::size_t size, void* context) {
  constexpr std::size_t kFailed = 0;
  Download& download = *static_cast<Download*>(context);
  download.lastByte = SteadyClock::now();
  if (size > download.bytesLeft) {
    download.error = "the document is too long";
    return kFailed;
  }
  download.bytesLeft -= size;
  if (download.file.Write(bytes, size)) return size;
  download.error = ErrorText("cannot write", errno);
  return kFailed;
}

bool Configure(Download& download, const TransferLimits& limits) {
  bool good = true;
  const auto set = [&](CURLoption option, auto value) {
    good = curl_easy_setopt(download.handle.get(), option, value) == CURLE_OK && good;
  };
  set(CURLOPT_URL, download.url.address.c_str());
  set(CURLOPT_PROTOCOLS_STR, "http,https");  // of redirects, too
  set(CURLOPT_PROXY, "");  // whatever the environment says: it would see the credentials
  set(CURLOPT_SSL_VERIFYPEER, 1L);
  set(CURLOPT_SSL_VERIFYHOST, 2L);
  if (!limits.ca_file.empty()) set(CURLOPT_CAINFO, limits.ca_file.c_str());
  if (!download.url.user.empty() || !download.url.password.empty()) {
    set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC));
    set(CURLOPT_USERNAME, download.url.user.c_str());
    set(CURLOPT_PASSWORD, download.url.password.c_str());
    set(CURLOPT_UNRESTRICTED_AUTH, 0L);
  }
  set(CURLOPT_FAILONERROR, 1L);
  set(CURLOPT_FOLLOWLOCATION, 1L);
  set(CURLOPT_MAXREDIRS, static_cast<long>(limits.max_redirects));
  set(CURLOPT_CONNECTTIMEOUT, static_cast<long>(limits.connect_seconds));
  set(CURLOPT_TIMEOUT, static_cast<long>(limits.total_seconds));
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_PREREQFUNCTION, OnConnected);
  set(CURLOPT_PREREQDATA, &download);
  set(CURLOPT_HEADERFUNCTION, OnHeader);
  set(CURLOPT_HEADERDATA, &download);
  set(CURLOPT_WRITEFUNCTION, OnBody);
  set(CURLOPT_WRITEDATA, &download);
  return good;
}

// Why it failed; empty when it did not.
std::string ErrorOf(Download& download, CURLcode result) {
  if (!download.error.empty()) return download.error;
  if (result == CURLE_HTTP_RETURNED_ERROR) {
    long status = 0;
    curl_easy_getinfo(download.handle.get(), CURLINFO_RESPONSE_CODE, &status);
    return Format("status %ld", status);
  }
  if (result != CURLE_OK) return curl_easy_strerror(result);
  return download.file.Close() ? "" : ErrorText("cannot write", errno);
}

// libcurl is set up once, before the first transfer.
struct Libcurl {
  Libcurl() { curl_global_init(CURL_GLOBAL_DEFAULT); }
  ~Libcurl() { curl_global_cleanup(); }
};

CURLM* MakeMulti() {
  static const Libcurl once;
  return curl_multi_init();
}

}  // namespace

TransferThread::TransferThread(const TransferLimits& limits, OnEnded onEnded)
    : limits_(limits),
      onEnded_(std::move(onEnded)),
      multi_(MakeMulti()),
      thread_([this] { Run(); }) {}

TransferThread::~TransferThread() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
  }
  WakeUp();
  thread_.join();
}

void TransferThread::Start(std::shared_ptr<Download> download) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    arrived_.push_back(std::move(download));
  }
  WakeUp();
}

void TransferThread::Stop(Download& download) {
  download.stopped = true;
  WakeUp();
}

void TransferThread::WakeUp() { curl_multi_wakeup(multi_.get()); }

void TransferThread::Run() {
  // Signals are for the program's own thread; one that TLS can raise is for nobody.
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
  while (Admit()) {
    int ignored = 0;
    curl_multi_perform(multi_.get(), &ignored);
    EndDone();
    DropStopped();
    const auto wait = static_cast<int>(EndIdle().count());
    curl_multi_poll(multi_.get(), nullptr, 0, wait, nullptr);
  }
  while (!running_.empty()) Remove(running_.begin());
}

// Takes on what has arrived. False when the thread is to end.
bool TransferThread::Admit() {
  std::vector<std::shared_ptr<Download>> arrived;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (stopping_) return false;
    arrived.swap(arrived_);
  }
  for (auto& download : arrived) {
    if (Open(*download)) {
      CURL* const handle = download->handle.get();
      running_.emplace(handle, std::move(download));
    } else {
      PostEnd(std::move(download));
    }
  }
  return true;
}

bool TransferThread::Open(Download& download) {
  if (!download.file.CreateBeside(download.target)) {
    download.error = ErrorText("no file for it", errno);
    return false;
  }
  download.bytesLeft = static_cast<std::size_t>(limits_.max_bytes);
  download.handle.reset(curl_easy_init());
  if (download.handle != nullptr && Configure(download, limits_) &&
      curl_multi_add_handle(multi_.get(), download.handle.get()) == CURLM_OK) {
    return true;
  }
  download.error = "out of memory";
  return false;
}

void TransferThread::EndDone() {
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
    const auto found = running_.find(message->easy_handle);
    if (message->msg == CURLMSG_DONE) End(found, ErrorOf(*found->second, message->data.result));
  }
}

void TransferThread::DropStopped() {
  for (auto next = running_.begin(); next != running_.end();) {
    const auto download = next++;
    if (download->second->stopped) Remove(download);
  }
}

// How long to wait for the next one that might have to end.
std::chrono::milliseconds TransferThread::EndIdle() {
  using std::chrono::milliseconds;
  const auto now = SteadyClock::now();
  milliseconds wait = std::chrono::hours(1);
  for (auto next = running_.begin(); next != running_.end();) {
    const auto download = next++;
    if (!download->second->lastByte) continue;
    const auto end = *download->second->lastByte + std::chrono::seconds(limits_.idle_seconds);
    if (end <= now) {
      End(download, Format("no byte for %d s", limits_.idle_seconds));
    } else {
      wait = std::min(wait, std::chrono::ceil<milliseconds>(end - now));
    }
  }
  return wait;
}

std::shared_ptr<Download> TransferThread::Remove(Running::iterator running) {
  std::shared_ptr<Download> download = std::move(running->second);
  running_.erase(running);
  curl_multi_remove_handle(multi_.get(), download->handle.get());
  download->handle.reset();
  return download;
}

void TransferThread::End(Running::iterator running, std::string error) {
  std::shared_ptr<Download> download = Remove(running);
  download->error = std::move(error);
  PostEnd(std::move(download));
}

void TransferThread::PostEnd(std::shared_ptr<Download> download) {
  const unsigned int id = download->id;
  std::promise<void> ended = std::move(download->ended);
  download.reset();  // from here on it is the loop's thread that decides when its file goes
  onEnded_(id);
  ended.set_value();
}

}  // namespace desk
