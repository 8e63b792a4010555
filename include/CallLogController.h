// The local call history, as the UI's pages, idle screen and start-up code reach it.
#pragma once

#include <list>
#include <memory>
#include <string>

#include "CallLogExport.h"
#include "CallLogRecords.h"

namespace ETL_MsgQueueHelper {
class msgObject;
}

class ContactGeneralItemData;

namespace NS_CALLLOG {

class CCallLogModel;
class CCallLogSearchHelper;

// One per process. An `action` below is a click action such as "OpenSubPage(call_log_2)": the
// number behind "call_log_" is the call type. An operation that takes one returns 0 when the action
// carries no such id. A row is the position in the list of that type, from 0, newest call first.
class CCallLogController {
 public:
  // The controller. The first call creates it, loads the history file and registers for message
  // 0x8113. Null when there is no memory for it; the next call tries again. When memory runs out
  // while the file is read, the history begins with the calls for which there was some, or empty.
  CALLLOG_EXPORT static CCallLogController* GetInstance();

  // Destroys the controller and the history in memory, without saving: call SaveToFile() first to
  // keep the changes of the last 5 seconds. A save timer that runs is not stopped: what it still
  // sends, again and again where timers are periodic, reaches nobody until the next GetInstance(),
  // and saves then what there is to save.
  CALLLOG_EXPORT static void ReleaseInstance();

  // Handler of the thread-timer message 0x8113. 1 when it saved the history; 0 for another message
  // or timer, when there was nothing to save or no memory to save it with, and when there is no
  // controller.
  CALLLOG_EXPORT static int OnMessage(ETL_MsgQueueHelper::msgObject& msg);

  // Fills one page of a list; type 0 lists all calls. The new missed calls count as seen once the
  // missed list or the list of all calls was filled, the forwarded ones likewise, whatever the
  // page. 1 when filled. 0: null page, a type beyond 4, or a request_index and request_count
  // refused by the platform; the page is untouched then and nothing counts as seen.
  CALLLOG_EXPORT int GetLogListByClickAction(CallLogSimpleListData* page,
                                             const std::string& action) const;

  // Fills the detail of one call. 1 when filled; 0, and the detail as it was, for a null detail, a
  // type beyond 4, or no such row.
  CALLLOG_EXPORT int GetLogDetailByClickAction(CallLogDetailData* detail, const std::string& action,
                                               int row) const;

  // Removes one call. 1 when removed; 0 when there is no such row.
  CALLLOG_EXPORT int RemoveLog(const std::string& action, int row);

  // Removes several calls, their rows as they stood before, in any order; rows that do not exist
  // and repetitions are passed over. 1.
  CALLLOG_EXPORT int RemoveLogList(const std::string& action, const std::list<int>& rows);

  // Removes every call of the type, every call for 0, and saves later even when there was none. 1.
  CALLLOG_EXPORT int RemoveAllLogsByClickAction(const std::string& action);

  // Redials: calls the number of the newest outgoing call, under the name that the directory has
  // for it now (else the number), through the account of the newest outgoing call whose account can
  // be used (else the default account). Acts on "OpenSubPage(call_log_2)" only, and on nothing when
  // there is no outgoing call.
  CALLLOG_EXPORT void RedialNumberByClickAction(const std::string& action);

  // As CallLog_GetLastNewInCall and CallLog_GetLastOutCall.
  CALLLOG_EXPORT std::string GetLastNewInCall() const;
  CALLLOG_EXPORT std::string GetLastOutCall() const;

  // Path of the icon of a call type, under /phone/resource/default/; empty for any but 1 to 4.
  CALLLOG_EXPORT std::string GetImagePathByType(int type) const;

  // As CallLog_AddLog and CallLog_UpdateLog.
  CALLLOG_EXPORT int AddLog(const CallLogAddItemData& call);
  CALLLOG_EXPORT int UpdateLog(const CallLogUpdateData& contact);

  // As CallLog_ResetLogContactName.
  CALLLOG_EXPORT int ResetLogContactName();

  // Gives every call of an entry's number, and every call forwarded to it, the entry's name as it
  // stands, empty or not; an empty number is compared like any other. The later entry of a number
  // wins. Key-pad forms stay, as with CallLog_UpdateLog.
  CALLLOG_EXPORT void UpdateDispName(const std::list<SuperSearchItemData>& names);

  // Writes the history file now if anything changed since the last save. 1 when it was written,
  // also when the disk refused it (nothing reports that); 0 when there was nothing to write, or no
  // memory to make its text: the file stays as it was, and the save is tried again 5 seconds later.
  CALLLOG_EXPORT int SaveToFile();

  // As CallLog_Search, CallLog_SearchRecentOutCall and CallLog_SuperSearchRecentOutCall.
  CALLLOG_EXPORT int Search(CallLogSearchListData* page, const std::string& key);
  CALLLOG_EXPORT int SearchRecentOutCall(CallLogSearchListData* page) const;
  CALLLOG_EXPORT int SearchRecentOutCall(SuperSearchListData* page) const;

  // Append the new missed (forwarded) calls by caller; nothing counts as seen by it. Rows that are
  // in the list already are counted up. 1; 0 for null.
  CALLLOG_EXPORT int GetMissedNotifyList(MissedNotifyListData* list) const;
  CALLLOG_EXPORT int GetForwardedNotifyList(ForwardedNotifyList* list) const;

  // Without effect: a call stops being new when its list is opened, when it is removed, or through
  // the two functions below.
  CALLLOG_EXPORT void ResetMissedCall();
  CALLLOG_EXPORT void ResetForwardedCall();

  // As the exported functions of these names. An empty number is compared like any other.
  CALLLOG_EXPORT void RemoveMissedDirtyByNumber(const std::string& number);
  CALLLOG_EXPORT void RemoveForwardDirtyByNumber(const std::string& number);

  // Fills the directory's record of the contact with this number. The directory's answer.
  CALLLOG_EXPORT bool GetContactDataByNumber(ContactGeneralItemData* contact,
                                             const std::string& number) const;

  // Calls `number`, shown as `name`, through the default account. The talk logic's answer.
  CALLLOG_EXPORT bool CallOut(const std::string& number, const std::string& name);

  // Opens the dial screen with `number`, for the default account.
  CALLLOG_EXPORT void EnterTalkUI(const std::string& number);

  CCallLogController(const CCallLogController&) = delete;
  CCallLogController& operator=(const CCallLogController&) = delete;

 private:
  friend class CCallLogSearchHelper;  // reads the model's records

  CCallLogController();
  ~CCallLogController();
  bool MyInit();
  bool MyFinal();

  static CCallLogController* m_pInst;
  std::unique_ptr<CCallLogModel> m_pModel;
};

}  // namespace NS_CALLLOG
