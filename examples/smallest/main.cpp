// The smallest UI process: the installed public header, the installed library, and a platform of
// its own in one file. The linker proves that nothing else is needed. On a machine without
// /config/data the history lives in memory alone.
#include <CallLog.h>

#include <platform/AccountManager.h>
#include <platform/Backlight.h>
#include <platform/CommonAPI.h>
#include <platform/CommonUnits.h>
#include <platform/ConfigParser.h>
#include <platform/Directory.h>
#include <platform/EtlMisc.h>
#include <platform/EtlMsgHandler.h>
#include <platform/EtlTrace.h>
#include <platform/LedLamp.h>
#include <platform/MenuTitle.h>
#include <platform/NetStatus.h>
#include <platform/SettingTime.h>
#include <platform/TalkLogic.h>
#include <platform/TaskAction.h>
#include <platform/ThreadTimer.h>
#include <platform/TinyXmlHelper.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

std::string idleText;
EtlMsgHandle timerHandler = nullptr;
bool timerRuns = false;
std::string called;

#define CHECK(condition)                                          \
  do {                                                            \
    if (!(condition)) {                                           \
      std::printf("%s:%d: %s\n", __FILE__, __LINE__, #condition); \
      std::exit(1);                                               \
    }                                                             \
  } while (false)

}  // namespace

// What a porter writes first: settings, names, the idle screen, pages and click actions.

int configParser_GetConfigInt(const char*) { return 1; }

std::string Directory_GetContactNameByNumber(const char* number) {
  return std::string(number) == "612" ? "Anna" : "";
}

std::string CommonUnits_ToKeyString(const std::string& name) {
  return name == "Anna" ? "2662" : name;
}

void CommonUnits_AddStatus(int, const std::string& text) { idleText = text; }
void CommonUnits_RemoveStatus(int) { idleText.clear(); }
void ledlamp::ledlamp_PostEvent(LAMP_EVENTTYPE, bool) {}
void backlight_RegisterEvent(BACK_LIGHT_TYPE, bool) {}

std::string CommonAPI_FormatString(const char* format, ...) {
  char text[100];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return text;
}

bool CommonAPI_GetFromAndToIndex(int* from, int* to, int index, int count, int) {
  *from = index;
  *to = index + count;
  return true;
}

int CommonAPI_ParseIdByClickAction(const std::string& action, const std::string& pattern) {
  const std::string prefix = pattern.substr(0, pattern.size() - 1);
  const std::size_t at = action.find("(" + prefix);
  return at == std::string::npos ? -1 : std::atoi(action.c_str() + at + 1 + prefix.size());
}

std::string CommonAPI_StringConvert(const std::string& text, StringConvertType) { return text; }

int CommonAPI_StringCompare(const std::string& text, const std::string& key, int, int length,
                            bool) {
  return text.compare(0, static_cast<std::size_t>(length), key);
}

std::string Setting_CallLogTime2String(long time, const std::string&) {
  return std::to_string(time);
}
std::string Setting_Time2String(long time, const std::string&) { return std::to_string(time); }

// The message loop, one timer long.

bool EtlMsgHandler_RegisterMsgHandle(unsigned int first, unsigned int, EtlMsgHandle handle) {
  if (first == 0x8113) timerHandler = handle;
  return true;
}
bool EtlMsgHandler_UnregisterMsgHandle(unsigned int, unsigned int, EtlMsgHandle) {
  timerHandler = nullptr;
  return true;
}
bool timerSetThreadTimer(unsigned int, unsigned int) { return timerRuns = true; }
bool timerKillThreadTimer(unsigned int) { return std::exchange(timerRuns, false); }

// What this phone does without.

void ETL_TraceHelper::etlTrace(int, const char*, ...) {}
bool ETL_MiscHelper::pathFileExist(const char*) { return true; }
bool EtlMsgHandler_NotifyApp(bool, unsigned int, unsigned int, int) { return true; }
bool EtlMsgHandler_NotifyAppEx(bool, unsigned int, unsigned int, int, int, const void*) {
  return true;
}
void ETL_MsgQueueHelper::msgObject::ReplyMessage(int) {}
int netGetNetworkSta() { return 0; }
NS_MENU::CMenuTitleManager* NS_MENU::CMenuTitleManager::GetInstance() { return nullptr; }
void NS_MENU::CMenuTitleManager::SetTitle(const std::string&, const std::string&) {}
std::string Directory_GetContactImageByNumber(const char*, const char*) { return ""; }
bool Directory_GetContactDataByNumber(ContactGeneralItemData*, const char*) { return false; }
bool talkLogic_CallOut(const std::string& number, const std::string&, int) {
  called = number;
  return true;
}
void talkLogic_EnterDialUI(const std::string&, int, bool) {}

namespace {
class Manager : public CAccountManager {
} manager;
}  // namespace
CAccountManager* CAccountManager::GetInstance() { return &manager; }
CAccount* CAccountManager::GetAccountByFullName(const std::string&) { return nullptr; }
CAccount* CAccountManager::GetAccountBySIPName(const std::string&) { return nullptr; }
bool CAccount::IsSaveMissCallLog() const { return true; }
bool CAccount::IsAccountUsable() const { return true; }
int CAccount::GetAccountId() const { return 0; }

int TinyXml_GetIntAttr(TiXmlElement*, const char*, int fallback) { return fallback; }
std::string TinyXml_GetStringAttr(TiXmlElement*, const char*, const char* fallback) {
  return fallback;
}
std::string TinyXml_GetElemText(TiXmlElement*, const char* fallback) { return fallback; }

namespace NS_TA {
CTaskActionCallbackBase::~CTaskActionCallbackBase() = default;
bool CTaskActionCallbackBase::TryThreadMessage(ETL_MsgQueueHelper::msgObject&) { return false; }
void CTaskAction::SetRead(bool) {}
void CTaskAction::SetSync(bool) {}
void CTaskAction::SetCallback(CTaskActionCallbackBase*) {}
int CTaskAction::GetRequestType() const { return 0; }
bool CTaskAction::IsOperationSucceed() const { return false; }
std::string CFileAction::GetFilePath() const { return ""; }
std::string CNetworkFileAction::GetFilePathRemote() const { return ""; }
}  // namespace NS_TA
NS_TA::CNetworkFileAction* TaskAction_CreateNetworkFileAction(const char*, const char*) {
  return nullptr;
}
bool TaskAction_ExecAction(NS_TA::CTaskAction*) { return false; }
void TaskAction_DestroyNetworkFileAction(NS_TA::CNetworkFileAction*) {}

int main() {
  using NS_CALLLOG::CCallLogController;
  CHECK(CallLog_RegisterMessage() == 1);

  CallLogAddItemData call;
  call.type = 2;
  call.remote_sip_name = "612";
  CHECK(CallLog_AddLog(call) == 0);
  CHECK(idleText == "1 Missed");
  call.type = 1;
  CHECK(CallLog_AddLog(call) == 0);
  CHECK(timerRuns && timerHandler != nullptr);

  CallLogSearchListData hits;
  hits.request_count = 10;
  CHECK(CallLog_Search(&hits, "26") == 1);
  CHECK(hits.total == 1 && hits.items.front().display_name == "Anna");

  CallLogSimpleListData page;
  page.request_count = 10;
  CHECK(CCallLogController::GetInstance()->GetLogListByClickAction(&page,
                                                                   "OpenSubPage(call_log_2)") == 1);
  CHECK(page.total == 1 && idleText.empty());

  CCallLogController::GetInstance()->RedialNumberByClickAction("OpenSubPage(call_log_2)");
  CHECK(called == "612");
  CHECK(CCallLogController::GetInstance()->SaveToFile() == 1 && !timerRuns);
  CCallLogController::ReleaseInstance();
  CHECK(timerHandler == nullptr);
  std::puts("ok");
}
