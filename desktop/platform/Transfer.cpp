// A download's file appears under its real name only when its completion is delivered, so that
// transfers into one local file never meet.
#include "desktop/platform/Transfer.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <system_error>
#include <utility>

#include "desktop/platform/MessageLoop.h"
#include "desktop/platform/Quietly.h"
#include "desktop/platform/Trace.h"
#include "desktop/platform/TransferThread.h"
#include "platform/EtlMsgHandler.h"

namespace desk {
namespace {

TransferService* current = nullptr;

}  // namespace

TransferService::TransferService(MessageLoop& loop, Trace& trace, const TransferLimits& limits)
    : loop_(loop), trace_(trace), limits_(limits) {
  assert(current == nullptr);
  current = this;
}

TransferService::~TransferService() { current = nullptr; }

TransferService* TransferService::Current() { return current; }

Transfer* TransferService::Create(const char* localPath, const char* remoteUrl) {
  if (localPath == nullptr || *localPath == '\0' || remoteUrl == nullptr) return nullptr;
  if (!SplitUrl(remoteUrl)) return nullptr;
  auto transfer = std::make_unique<Transfer>();
  transfer->id = ++lastId_;
  transfer->localPath = localPath;
  transfer->remoteUrl = remoteUrl;
  return transfers_.emplace_back(std::move(transfer)).get();
}

bool TransferService::Start(Transfer& transfer) {
  if (transfer.state != Transfer::State::kNew || !transfer.read) return false;
  if (thread_ == nullptr) {
    thread_ = std::make_unique<TransferThread>(
        limits_, [this](unsigned int id) { loop_.PostWork([this, id] { OnEnded(id); }); });
  }
  const auto download = std::make_shared<Download>();
  download->id = transfer.id;
  download->target = transfer.localPath;
  download->url = *SplitUrl(transfer.remoteUrl);
  const std::future<void> ended = download->ended.get_future();
  thread_->Start(download);
  transfer.download = download;
  transfer.state = Transfer::State::kRunning;
  if (transfer.sync) ended.wait();
  return true;
}

void TransferService::OnEnded(unsigned int id) {
  if (holding_) {
    held_.push_back(id);
  } else {
    Complete(id);
  }
}

void TransferService::LetThrough() {
  for (const unsigned int id : std::exchange(held_, {})) Complete(id);
}

void TransferService::Complete(unsigned int id) {
  const auto found = std::find_if(transfers_.begin(), transfers_.end(),
                                  [&](const auto& transfer) { return transfer->id == id; });
  if (found == transfers_.end() || (*found)->state != Transfer::State::kRunning) return;
  Transfer& transfer = **found;
  std::string error = std::move(transfer.download->error);
  if (error.empty() && !transfer.download->file.MoveTo(transfer.localPath)) {
    error = "cannot replace the local file: " + std::generic_category().message(errno);
  }
  transfer.download.reset();  // a failed one leaves nothing behind
  transfer.state = error.empty() ? Transfer::State::kSucceeded : Transfer::State::kFailed;
  if (!error.empty()) {
    Quietly([&] { trace_.Write(2, "transfer of " + transfer.remoteUrl + " failed: " + error); });
  }
  if (transfer.callback == nullptr) return;
  ETL_MsgQueueHelper::msgObject message;
  message.message = kEndedMessage;
  message.wParam = id;
  transfer.callback->TryThreadMessage(message);
}

void TransferService::Stop(Transfer& transfer) {
  if (transfer.state != Transfer::State::kRunning) return;
  thread_->Stop(*transfer.download);
  transfer.download.reset();
  transfer.state = Transfer::State::kFailed;
}

void TransferService::Destroy(const NS_TA::CTaskAction* action) {
  const auto found = std::find_if(transfers_.begin(), transfers_.end(),
                                  [&](const auto& transfer) { return transfer.get() == action; });
  if (found == transfers_.end()) return;
  Stop(**found);
  transfers_.erase(found);
}

void TransferService::Detach(const NS_TA::CTaskActionCallbackBase* callback) {
  for (auto transfer = transfers_.begin(); transfer != transfers_.end();) {
    if ((*transfer)->callback == callback) {
      Stop(**transfer);
      transfer = transfers_.erase(transfer);
    } else {
      ++transfer;
    }
  }
}

Transfer* TransferService::FindEnded(unsigned int id) const {
  for (const auto& transfer : transfers_) {
    const bool ended = transfer->state == Transfer::State::kSucceeded ||
                       transfer->state == Transfer::State::kFailed;
    if (transfer->id == id && ended) return transfer.get();
  }
  return nullptr;
}

std::size_t TransferService::Running() const {
  const auto running = [](const auto& transfer) {
    return transfer->state == Transfer::State::kRunning;
  };
  return static_cast<std::size_t>(std::count_if(transfers_.begin(), transfers_.end(), running));
}

void TransferService::Clear() {
  for (const auto& transfer : transfers_) Stop(*transfer);
  transfers_.clear();
}

}  // namespace desk
