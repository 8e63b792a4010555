// The letters that matter here are those of ASCII: bytes beyond it lie on no key of the key pad,
// and are compared as they are.
#include "benchmarks/Platform.h"

#include <tinyxml.h>
#include <unistd.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>

#include "platform/AccountManager.h"
#include "platform/Backlight.h"
#include "platform/CommonAPI.h"
#include "platform/CommonUnits.h"
#include "platform/ConfigParser.h"
#include "platform/Directory.h"
#include "platform/EtlMisc.h"
#include "platform/EtlMsgHandler.h"
#include "platform/EtlTrace.h"
#include "platform/LedLamp.h"
#include "platform/MenuTitle.h"
#include "platform/NetStatus.h"
#include "platform/SettingTime.h"
#include "platform/TalkLogic.h"
#include "platform/TaskAction.h"
#include "platform/ThreadTimer.h"
#include "platform/TinyXmlHelper.h"

namespace {

constexpr char kKeysOfLetters[] = "22233344455566677778889999";

char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Pads with zeros, and puts the sign behind; returns where that ends.
char* PutNumber(char* at, int width, int number, char sign) {
  for (int i = width - 1; i >= 0; --i, number /= 10) at[i] = static_cast<char>('0' + number % 10);
  at[width] = sign;
  return at + width + 1;
}

// "2026-10-07 09:00:00", or "10-07 09:00" when it is not `full`; without a locale.
std::string TimeText(std::time_t time, const std::string& separator, bool full) {
  std::tm parts{};
  gmtime_r(&time, &parts);
  std::array<char, 32> text{};
  char* at = text.data();
  if (full) at = PutNumber(at, 4, parts.tm_year + 1900, '-');
  at = PutNumber(at, 2, parts.tm_mon + 1, '-');
  at = PutNumber(at, 2, parts.tm_mday, separator.front());
  at = PutNumber(at, 2, parts.tm_hour, ':');
  at = PutNumber(at, 2, parts.tm_min, ':');
  if (full) at = PutNumber(at, 2, parts.tm_sec, ':');
  return {text.data(), at - 1};
}

class Accounts : public CAccountManager {
} accounts;

struct Transfer final : NS_TA::CNetworkFileAction {
  std::string localPath;
  std::string remoteUrl;
  NS_TA::CTaskActionCallbackBase* callback = nullptr;
};

std::unique_ptr<Transfer> transfer;  // one at a time

}  // namespace

// Text and pages

int CommonAPI_ParseIdByClickAction(const std::string& action, const std::string& pattern) {
  const std::string_view prefix(pattern.data(), pattern.size() - 1);
  const std::size_t at = action.find(prefix);
  return at == std::string::npos ? -1 : std::atoi(action.c_str() + at + prefix.size());
}

bool CommonAPI_GetFromAndToIndex(int* from, int* to, int request_index, int request_count,
                                 int /*total*/) {
  if (request_index < 0 || request_count < 1) return false;
  *from = request_index;
  *to = request_index + request_count;
  return true;
}

std::string CommonAPI_FormatString(const char* format, ...) {
  std::array<char, 128> text{};
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  return text.data();
}

std::string CommonAPI_StringConvert(const std::string& text, StringConvertType type) {
  std::string converted = text;
  for (char& c : converted) c = type == STRING_CONVERT_SEARCH_KEY ? ToLower(c) : c;
  return converted;
}

int CommonAPI_StringCompare(const std::string& text, const std::string& key, int position,
                            int length, bool caseSensitive) {
  const auto from = static_cast<std::size_t>(position), count = static_cast<std::size_t>(length);
  if (text.size() < from + count) return 1;
  for (std::size_t i = 0; i < count; ++i) {
    const char a = text[from + i], b = key[i];
    if (a != b && (caseSensitive || ToLower(a) != ToLower(b))) return 1;
  }
  return 0;
}

std::string CommonUnits_ToKeyString(const std::string& name) {
  std::string keys;
  keys.reserve(name.size());
  for (const char c : name) {
    const char lower = ToLower(c);
    if (lower >= 'a' && lower <= 'z') keys += kKeysOfLetters[lower - 'a'];
    if ((c >= '0' && c <= '9') || c == '*' || c == '#' || c == '+') keys += c;
  }
  return keys;
}

std::string Setting_CallLogTime2String(long time, const std::string& separator) {
  return TimeText(time, separator, false);
}
std::string Setting_Time2String(long time, const std::string& separator) {
  return TimeText(time, separator, true);
}

int TinyXml_GetIntAttr(TiXmlElement* element, const char* name, int fallback) {
  const char* const text = element != nullptr ? element->Attribute(name) : nullptr;
  return text != nullptr ? std::atoi(text) : fallback;
}

std::string TinyXml_GetStringAttr(TiXmlElement* element, const char* name, const char* fallback) {
  const char* const text = element != nullptr ? element->Attribute(name) : nullptr;
  return text != nullptr ? text : fallback;
}

std::string TinyXml_GetElemText(TiXmlElement* element, const char* fallback) {
  const char* const text = element != nullptr ? element->GetText() : nullptr;
  return text != nullptr ? text : fallback;
}

// The phone around it

int configParser_GetConfigInt(const char* /*key*/) { return 1; }
int netGetNetworkSta() { return 2; }
bool ETL_MiscHelper::pathFileExist(const char* path) { return access(path, F_OK) == 0; }
void ETL_TraceHelper::etlTrace(int /*level*/, const char* /*format*/, ...) {}

std::string Directory_GetContactNameByNumber(const char* /*number*/) { return {}; }
std::string Directory_GetContactImageByNumber(const char* /*number*/, const char* fallback) {
  return fallback;
}
bool Directory_GetContactDataByNumber(ContactGeneralItemData* /*contact*/, const char* /*number*/) {
  return false;
}

CAccountManager* CAccountManager::GetInstance() { return &accounts; }
CAccount* CAccountManager::GetAccountByFullName(const std::string& /*fullName*/) { return nullptr; }
CAccount* CAccountManager::GetAccountBySIPName(const std::string& /*sipName*/) { return nullptr; }
bool CAccount::IsSaveMissCallLog() const { return true; }
bool CAccount::IsAccountUsable() const { return true; }
int CAccount::GetAccountId() const { return 0; }

void CommonUnits_AddStatus(int /*id*/, const std::string& /*text*/) {}
void CommonUnits_RemoveStatus(int /*id*/) {}
void ledlamp::ledlamp_PostEvent(LAMP_EVENTTYPE /*event*/, bool /*on*/) {}
void backlight_RegisterEvent(BACK_LIGHT_TYPE /*type*/, bool /*on*/) {}

bool talkLogic_CallOut(const std::string& /*number*/, const std::string& /*name*/, int /*id*/) {
  return true;
}
void talkLogic_EnterDialUI(const std::string& /*number*/, int /*id*/, bool /*editable*/) {}

NS_MENU::CMenuTitleManager* NS_MENU::CMenuTitleManager::GetInstance() { return nullptr; }
void NS_MENU::CMenuTitleManager::SetTitle(const std::string& /*action*/,
                                          const std::string& /*title*/) {}

// Messages, timers, transfers

bool EtlMsgHandler_RegisterMsgHandle(unsigned int, unsigned int, EtlMsgHandle) { return true; }
bool EtlMsgHandler_UnregisterMsgHandle(unsigned int, unsigned int, EtlMsgHandle) { return true; }
bool EtlMsgHandler_NotifyApp(bool, unsigned int, unsigned int, int) { return true; }
bool EtlMsgHandler_NotifyAppEx(bool, unsigned int, unsigned int, int, int, const void*) {
  return true;
}
void ETL_MsgQueueHelper::msgObject::ReplyMessage(int) {}
bool timerSetThreadTimer(unsigned int, unsigned int) { return true; }
bool timerKillThreadTimer(unsigned int) { return true; }

namespace NS_TA {
CTaskActionCallbackBase::~CTaskActionCallbackBase() { transfer.reset(); }
bool CTaskActionCallbackBase::TryThreadMessage(ETL_MsgQueueHelper::msgObject&) { return false; }
void CTaskAction::SetRead(bool) {}
void CTaskAction::SetSync(bool) {}
void CTaskAction::SetCallback(CTaskActionCallbackBase* callback) {
  static_cast<Transfer*>(this)->callback = callback;
}
int CTaskAction::GetRequestType() const { return 2; }
bool CTaskAction::IsOperationSucceed() const { return true; }
std::string CFileAction::GetFilePath() const {
  return static_cast<const Transfer*>(this)->localPath;
}
std::string CNetworkFileAction::GetFilePathRemote() const {
  return static_cast<const Transfer*>(this)->remoteUrl;
}
}  // namespace NS_TA

NS_TA::CNetworkFileAction* TaskAction_CreateNetworkFileAction(const char* localPath,
                                                              const char* remoteUrl) {
  transfer = std::make_unique<Transfer>();
  transfer->localPath = localPath;
  transfer->remoteUrl = remoteUrl;
  return transfer.get();
}
bool TaskAction_ExecAction(NS_TA::CTaskAction* action) { return action == transfer.get(); }
void TaskAction_DestroyNetworkFileAction(NS_TA::CNetworkFileAction* action) {
  if (action == transfer.get()) transfer.reset();
}

void bench::CompleteTransfer() {
  if (transfer != nullptr) transfer->callback->OnTaskActionCallback(transfer.get());
}
