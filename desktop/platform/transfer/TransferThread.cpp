// One thread with libcurl's multi interface: takes on what has arrived, ends what is done, stopped
// or idle for too long, and posts each end.
#include "desktop/platform/transfer/TransferThread.h"

#include <signal.h>

#include <cerrno>
#include <new>
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
  download.bytes += size;
  if (download.bytes > static_cast<std::size_t>(download.limits.max_bytes)) {
    download.error = "the document is too long";
    return kFailed;
  }
  if (download.file.Write(bytes, size)) return size;
  download.error = ErrorText("cannot write", errno);
  return kFailed;
}

int OnProgress(void* context, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
  constexpr int kFailed = 1;
  Download& download = *static_cast<Download*>(context);
  const int idle = download.limits.idle_seconds;
  if (download.stopped) return kFailed;
  if (!download.lastByte || SteadyClock::now() - *download.lastByte < std::chrono::seconds(idle)) {
    return 0;
  }
  download.error = Format("no byte for %d s", idle);
  return kFailed;
}

template <class Value>
void Set(const Download& download, CURLoption option, Value value) {
  const CURLcode result = curl_easy_setopt(download.handle.get(), option, value);
  if (result != CURLE_OK) throw std::bad_alloc();
}

// What is asked of whom. As by default, certificates must be good, and credentials are for the
// first host alone.
void SetRequest(const Download& download) {
  const TransferUrl& url = download.url;
  Set(download, CURLOPT_URL, url.address.c_str());
  Set(download, CURLOPT_PROTOCOLS_STR, "http,https");  // of redirects, too
  Set(download, CURLOPT_USERAGENT, "deskphone/" DESKPHONE_VERSION);
  Set(download, CURLOPT_PROXY, "");  // whatever the environment says: it would see the credentials
  Set(download, CURLOPT_FAILONERROR, 1L);
  Set(download, CURLOPT_FOLLOWLOCATION, 1L);
  if (url.user.empty() && url.password.empty()) return;
  Set(download, CURLOPT_USERNAME, url.user.c_str());
  Set(download, CURLOPT_PASSWORD, url.password.c_str());
}

void SetLimits(const Download& download) {
  const TransferLimits& limits = download.limits;
  if (!limits.ca_file.empty()) Set(download, CURLOPT_CAINFO, limits.ca_file.c_str());
  Set(download, CURLOPT_MAXREDIRS, static_cast<long>(limits.max_redirects));
  Set(download, CURLOPT_CONNECTTIMEOUT, static_cast<long>(limits.connect_seconds));
  Set(download, CURLOPT_TIMEOUT, static_cast<long>(limits.total_seconds));
}

void SetCallbacks(Download& download) {
  Set(download, CURLOPT_NOSIGNAL, 1L);
  Set(download, CURLOPT_QUICK_EXIT, 1L);  // nobody waits for a name server that stays silent
  Set(download, CURLOPT_ERRORBUFFER, download.reason.data());
  Set(download, CURLOPT_NOPROGRESS, 0L);
  Set(download, CURLOPT_XFERINFOFUNCTION, OnProgress);
  Set(download, CURLOPT_XFERINFODATA, &download);
  Set(download, CURLOPT_PREREQFUNCTION, OnConnected);
  Set(download, CURLOPT_PREREQDATA, &download);
  Set(download, CURLOPT_HEADERFUNCTION, OnHeader);
  Set(download, CURLOPT_HEADERDATA, &download);
  Set(download, CURLOPT_WRITEFUNCTION, OnBody);
  Set(download, CURLOPT_WRITEDATA, &download);
}

long InfoOf(const Download& download, CURLINFO what) {
  long value = 0;
  curl_easy_getinfo(download.handle.get(), what, &value);
  return value;
}

std::string StatusText(long status) {
  switch (status) {
    case 401: return "wrong user or wrong password (401)";
    case 403: return "not allowed (403)";
    case 404: return "no such page (404)";
    default: return Format("the server answers with status %ld", status);
  }
}

// Why it failed; empty when it did not.
std::string ErrorOf(Download& download, CURLcode result) {
  if (!download.error.empty()) return download.error;
  switch (result) {
    case CURLE_OK: return download.file.Close() ? "" : ErrorText("cannot write", errno);
    case CURLE_HTTP_RETURNED_ERROR: return StatusText(InfoOf(download, CURLINFO_RESPONSE_CODE));
    case CURLE_TOO_MANY_REDIRECTS: return "too many redirects";
    case CURLE_COULDNT_CONNECT:
      if (const long error = InfoOf(download, CURLINFO_OS_ERRNO)) {
        return ErrorText("no connection", static_cast<int>(error));
      }
      break;
    default: break;
  }
  // Where a redirect has led, libcurl's own words can be those of the server's header.
  const bool redirected = InfoOf(download, CURLINFO_REDIRECT_COUNT) > 0;
  if (redirected || download.reason[0] == '\0') return curl_easy_strerror(result);
  return download.reason.data();
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

TransferThread::TransferThread(OnEnded onEnded)
    : onEnded_(std::move(onEnded)),
      multi_(MakeMulti(), curl_multi_cleanup),
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
  constexpr int kHour = 3600 * 1000, kLook = 100;  // milliseconds
  // Signals are for the program's own thread; one that TLS can raise is for nobody.
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
  while (Admit()) {
    int ignored = 0;
    curl_multi_perform(multi_.get(), &ignored);
    EndDone();
    const int wait = running_.empty() ? kHour : kLook;
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

bool TransferThread::Open(Download& download) try {
  if (!download.file.CreateBeside(download.target)) {
    download.error = ErrorText("no file for it", errno);
    return false;
  }
  download.handle.reset(curl_easy_init());
  SetRequest(download);
  SetLimits(download);
  SetCallbacks(download);
  if (curl_multi_add_handle(multi_.get(), download.handle.get()) == CURLM_OK) return true;
  throw std::bad_alloc();
} catch (const std::bad_alloc&) {
  download.error = "out of memory";
  return false;
}

void TransferThread::EndDone() {
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    const auto found = running_.find(message->easy_handle);
    found->second->error = ErrorOf(*found->second, message->data.result);
    PostEnd(Remove(found));
  }
}

std::shared_ptr<Download> TransferThread::Remove(Running::iterator running) {
  std::shared_ptr<Download> download = std::move(running->second);
  running_.erase(running);
  curl_multi_remove_handle(multi_.get(), download->handle.get());
  download->handle.reset();
  return download;
}

void TransferThread::PostEnd(std::shared_ptr<Download> download) {
  const unsigned int id = download->id;
  std::promise<void> ended = std::move(download->ended);
  download.reset();  // from here on it is the loop's thread that decides when its file goes
  onEnded_(id);
  ended.set_value();
}

}  // namespace desk
