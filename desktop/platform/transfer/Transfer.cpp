// A download's file appears under its real name only when its completion is delivered, so that
// transfers into one local file never meet.
#include "desktop/platform/transfer/Transfer.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <system_error>
#include <utility>

#include "desktop/platform/MessageLoop.h"
#include "desktop/platform/Quietly.h"
#include "desktop/platform/Trace.h"
#include "desktop/platform/transfer/TransferThread.h"
#include "platform/EtlMsgHandler.h"

namespace desk {
namespace {

TransferService* current = nullptr;

// Why its document is not there; empty when it is.
std::string MoveInPlace(Transfer& transfer) {
  Download& download = *transfer.download;
  if (!download.error.empty()) return std::move(download.error);
  if (download.file.MoveTo(transfer.localPath)) return {};
  return "cannot replace the local file: " + std::generic_category().message(errno);
}

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
        [this](unsigned int id) { loop_.PostWork([this, id] { OnEnded(id); }); });
  }
  transfer.download = std::make_shared<Download>(transfer.id, transfer.localPath,
                                                 *SplitUrl(transfer.remoteUrl), limits_);
  const std::future<void> ended = transfer.download->ended.get_future();
  thread_->Start(transfer.download);
  transfer.state = Transfer::State::kRunning;
  failures_.erase(transfer.remoteUrl);
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
  Transfer* const transfer = Find(id);
  if (transfer == nullptr || transfer->state != Transfer::State::kRunning) return;
  const std::string error = MoveInPlace(*transfer);
  transfer->download.reset();  // a failed one leaves nothing behind
  transfer->state = error.empty() ? Transfer::State::kSucceeded : Transfer::State::kFailed;
  if (!error.empty()) {
    Quietly([&] {
      failures_[transfer->remoteUrl] = error;
      trace_.Write(2, "transfer of " + transfer->remoteUrl + " failed: " + error);
    });
  }
  if (transfer->callback == nullptr) return;
  ETL_MsgQueueHelper::msgObject message;
  message.message = kEndedMessage;
  message.wParam = id;
  transfer->callback->TryThreadMessage(message);
}

void TransferService::Stop(Transfer& transfer) {
  if (transfer.state != Transfer::State::kRunning) return;
  thread_->Stop(*transfer.download);
  transfer.download.reset();
  transfer.state = Transfer::State::kFailed;
}

template <class Condition>
void TransferService::DestroyIf(Condition condition) {
  const auto gone =
      std::stable_partition(transfers_.begin(), transfers_.end(),
                            [&](const auto& transfer) { return !condition(*transfer); });
  std::for_each(gone, transfers_.end(), [this](const auto& transfer) { Stop(*transfer); });
  transfers_.erase(gone, transfers_.end());
}

void TransferService::Destroy(const NS_TA::CTaskAction* action) {
  DestroyIf([=](const Transfer& transfer) { return &transfer == action; });
}

void TransferService::Detach(const NS_TA::CTaskActionCallbackBase* callback) {
  DestroyIf([=](const Transfer& transfer) { return transfer.callback == callback; });
}

void TransferService::Clear() {
  DestroyIf([](const Transfer&) { return true; });
}

Transfer* TransferService::Find(unsigned int id) const {
  for (const auto& transfer : transfers_) {
    if (transfer->id == id) return transfer.get();
  }
  return nullptr;
}

Transfer* TransferService::FindEnded(unsigned int id) const {
  Transfer* const transfer = Find(id);
  const bool ended = transfer != nullptr && transfer->state > Transfer::State::kRunning;
  return ended ? transfer : nullptr;
}

std::string TransferService::TakeFailure(const std::string& remoteUrl) {
  const auto failure = failures_.extract(remoteUrl);
  return failure.empty() ? "" : failure.mapped();
}

std::size_t TransferService::Running() const {
  const auto running = [](const auto& transfer) {
    return transfer->state == Transfer::State::kRunning;
  };
  return static_cast<std::size_t>(std::count_if(transfers_.begin(), transfers_.end(), running));
}

}  // namespace desk
