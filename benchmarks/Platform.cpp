// The letters that matter here are those of ASCII: bytes beyond it lie on no key of the key pad,
// and are compared as they are.
#include "benchmarks/Platform.h"

#include <tinyxml.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <cstdarg>
#include <cstdio>
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

bool IsUpper(char c) { return c >= 'A' && c <= 'Z'; }
char ToLower(char c) { return IsUpper(c) ? static_cast<char>(c - 'A' + 'a') : c; }

// Pads with zeros; behind the text's last digit.
char* PutNumber(char* end, int width, long number) {
  for (int i = width - 1; i >= 0; --i, number /= 10) end[i] = static_cast<char>('0' + number % 10);
  return end + width;
}

// "2026-10-07 09:00:00", or "10-07 09:00" when it is not `full`, for the years 1970 to 9999; the
// calendar counts from the first of March of the year 0.
std::string TimeText(long time, const std::string& separator, bool full) {
  const long days = time / 86400 + 719468;
  const long era = days / 146097, dayOfEra = days % 146097;
  const long year = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const long day = dayOfEra - (365 * year + year / 4 - year / 100);
  const long month = (5 * day + 2) / 153;
  std::array<char, 32> text{};
  char* at = text.data();
  if (full) {
    at = PutNumber(at, 4, year + era * 400 + (month >= 10 ? 1 : 0));
    *at++ = '-';
  }
  at = PutNumber(at, 2, month < 10 ? month + 3 : month - 9);
  *at++ = '-';
  at = PutNumber(at, 2, day - (153 * month + 2) / 5 + 1);
  for (const char c : std::string_view(separator).substr(0, 8)) *at++ = c;
  at = PutNumber(at, 2, time / 3600 % 24);
  *at++ = ':';
  at = PutNumber(at, 2, time / 60 % 60);
  if (full) {
    *at++ = ':';
    at = PutNumber(at, 2, time % 60);
  }
  return {text.data(), at};
}

std::array<std::string, 16> idleTexts;
bool lit = false;
bool timerRuns = false;

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
  if (at == std::string::npos) return -1;
  int id = -1;
  std::from_chars(action.data() + at + prefix.size(), action.data() + action.size(), id);
  return id;
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
  if (type == STRING_CONVERT_SEARCH_KEY) {
    for (char& c : converted) c = ToLower(c);
  }
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
  if (text == nullptr) return fallback;
  const std::string_view digits(text);
  std::from_chars(digits.data(), digits.data() + digits.size(), fallback);
  return fallback;
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

void CommonUnits_AddStatus(int id, const std::string& text) {
  idleTexts[static_cast<std::size_t>(id)] = text;
}
void CommonUnits_RemoveStatus(int id) { idleTexts[static_cast<std::size_t>(id)].clear(); }
void ledlamp::ledlamp_PostEvent(LAMP_EVENTTYPE /*event*/, bool on) { lit = on; }
void backlight_RegisterEvent(BACK_LIGHT_TYPE /*type*/, bool on) { lit = on; }

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
bool timerSetThreadTimer(unsigned int, unsigned int) { return timerRuns = true; }
bool timerKillThreadTimer(unsigned int) {
  const bool ran = timerRuns;
  timerRuns = false;
  return ran;
}

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
